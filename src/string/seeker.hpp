// Looks for the places of a text where a run of characters may begin, for searching and for LIKE.
#pragma once

#include "string/pages.hpp"

namespace velnls {

// On a quick page. Both strings are NUL-terminated, and must stay while the seeker is used.
template <typename Page>
class Seeker {
public:
    // The characters from `run` to its end, at least one, none of them empty. A character of the text begins
    // at `start`.
    Seeker(const Page &page, const std::uint8_t *run, const std::uint8_t *runEnd, const std::uint8_t *start,
           const std::uint8_t *end)
        : page_(page), boundaries_(page.characters(), start),
          sought_(page.soughtFor(page.characters().characterAt(run), end - start)), text_(start), end_(end) {
        if (end - start >= Page::kFilterWorth + (runEnd - run))
            filters_ = page.makeFilter(run, runEnd, end - start, filter_);
    }

    // The first place from `at` on, where a character begins, that may be one; the text's end when there is
    // none. Never asked for a place before an earlier answer.
    const std::uint8_t *next(const std::uint8_t *at) {
        const std::uint8_t *stopped = nullptr;
        while (filters_) {
            const std::uint8_t *const place = filter_.find(text_, at, end_ - Page::kUnfiltered, stopped);
            if (place == nullptr) {
                filters_ = false;
                at = std::min(boundaries_.from(stopped), end_);
            } else if (boundaries_.from(place) == place) {
                return place;
            } else {
                at = place + 1;
            }
        }
        if constexpr (!Page::kFirstByteDecides) {
            return page_.seek(text_, at, end_, sought_);
        } else {
            for (; at != end_; ++at) {
                at = static_cast<const std::uint8_t *>(
                    std::memchr(at, sought_, static_cast<std::size_t>(end_ - at)));
                if (at == nullptr)
                    return end_;
                if (boundaries_.from(at) == at)
                    break;
            }
            return at;
        }
    }

private:
    const Page &page_;
    Boundaries<std::remove_cvref_t<decltype(std::declval<const Page &>().characters())>> boundaries_;
    typename Page::Sought sought_;
    const std::uint8_t *text_;
    const std::uint8_t *end_;
    PlaceFilter filter_;
    bool filters_ = false;
};

} // namespace velnls
