// Looks for the places of a text where a run of characters may begin, for searching and for LIKE.
#pragma once

#include "core/instruction_sets.hpp"
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
        const std::ptrdiff_t length = end - start;
        if (length >= Page::kFilterWorth)
            filters_ = page.makeFilter(run, runEnd, length, filter_);
        // In a short text all places are found at once. Where its end cuts no character, none is a match that
        // lacks one of the bytes that the filter is about.
        if (filters_ && length <= PlaceFilter::kShortText && !cutsCharacter(page.characters(), start, end)) {
            knowsPlaces_ = true;
            places_ = filter_.places(start, static_cast<std::size_t>(length));
        } else if (filters_ && length >= kWideWorth) {
            filter_.wide = (instructionSets() & kWideVectors) != 0;
        }
    }

    // The first place from `at` on that may be one; the text's end when there is none. A character begins at
    // `at`, unless the page's first bytes decide. Never asked for a place before an earlier answer.
    const std::uint8_t *next(const std::uint8_t *at) {
        if (knowsPlaces_)
            return nextKnown(at);
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
    static constexpr std::ptrdiff_t kWideWorth = 256; // bytes of text

    const std::uint8_t *nextKnown(const std::uint8_t *at) {
        const std::ptrdiff_t passed = at - text_;
        if (passed >= PlaceFilter::kShortText)
            return end_;
        for (std::uint64_t left = places_ >> passed; left != 0; left &= left - 1) {
            const std::uint8_t *const place = at + __builtin_ctzll(left);
            if (boundaries_.from(place) == place)
                return place;
        }
        return end_;
    }

    const Page &page_;
    Boundaries<std::remove_cvref_t<decltype(std::declval<const Page &>().characters())>> boundaries_;
    typename Page::Sought sought_;
    const std::uint8_t *text_;
    const std::uint8_t *end_;
    PlaceFilter filter_;
    bool filters_ = false;
    bool knowsPlaces_ = false;
    std::uint64_t places_ = 0;
};

} // namespace velnls
