// What the kernels between code pages and UTF-8 share, for processors with AVX2.
#pragma once

#include "convert/kernels/avx2_from_utf8.hpp"
#include "convert/kernels/page_steps.hpp"
#include "convert/kernels/proofs.hpp"
#include "convert/kernels/table_entries.hpp"
#include "convert/kernels/through_units.hpp"

namespace velnls::avx2 {
namespace {

inline unsigned spanOf(const file::MappingGroup &group) {
    return group.reverseCount != 0 ? group.highest - group.lowest + 1U : 0;
}

// Where the text, kStretch of it at most, before the next whole block ends that has no more than one byte in
// `kMostly` beyond ASCII.
template <std::uint32_t kMostly>
[[gnu::always_inline]] inline const std::uint8_t *denseStretch(const Source &source) {
    const std::uint8_t *at = source.at;
    for (; at - source.at < kStretch; at += Block::kSize) {
        if (source.end - at < static_cast<std::ptrdiff_t>(Block::kSize))
            return source.end - source.at <= kStretch ? source.end : at;
        const std::uint64_t notAscii = both(maskOf(load(at)), maskOf(load(at + kRegister)));
        if (at != source.at && countBits(notAscii) * kMostly <= Block::kSize)
            break;
    }
    return at;
}

// Writes units by groups of up to sixteen: `put` gets them, with zeros behind `count`, and gives how many it
// has written, fewer where it stops.
template <typename Put>
[[gnu::always_inline]] inline void writeUnits(Source &units, Target &out, Put put) {
    Target target = out;
    while (units.at < units.end) {
        const std::uint32_t count = smaller(units.left() / 2, kLanes);
        // By halves, as they were stored: a load across two stores would wait for both to reach memory.
        const auto *const halves = reinterpret_cast<const __m128i *>(units.at);
        const Bytes group = joined(_mm_loadu_si128(halves), _mm_loadu_si128(halves + 1));
        const std::uint32_t taken = put(_mm256_and_si256(group, firstBytes(2 * count)), count, target);
        units.at += std::ptrdiff_t{taken} * 2;
        if (taken != count) [[unlikely]]
            break;
    }
    out.at = target.at;
}

// What the conversions of UTF-8 into a page have in common.
class FromUtf8 : public PageSteps {
protected:
    explicit FromUtf8(const MappingBody &page)
        : PageSteps(page), window_(windowOf(page.groups[2])), lowest_(unitsOf(page.groups[2].lowest)),
          span_(unitsOf(spanOf(page.groups[2]))) {}

    // The entries of the reverse window, and in which lanes they are those of the units.
    struct Found {
        Bytes entries;
        Bytes inside;
    };
    [[gnu::always_inline]] [[nodiscard]] Found inWindow(Bytes units, Bytes beyondAscii, bool both) const {
        const Bytes places = _mm256_sub_epi16(units, lowest_);
        const Bytes inside = _mm256_andnot_si256(isAtLeast(places, span_), beyondAscii);
        return {entriesAt(window_, _mm256_and_si256(places, inside), both), inside};
    }

private:
    const std::uint16_t *window_;
    Bytes lowest_;
    Bytes span_;
};

} // namespace
} // namespace velnls::avx2
