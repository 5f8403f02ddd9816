// What the kernels between pages of lead and trail bytes and UTF-8 share, for processors with AVX-512.
#pragma once

#include "convert/kernels/avx512_lanes.hpp"
#include "convert/kernels/through_units.hpp"

namespace velnls::avx512 {
namespace {

// What reads a stretch stores the units of a whole block of 64 bytes.
static_assert(kUnitsRoom >= 2 * 64);

// Text up to the first block of 64 bytes that is not all ASCII.
[[gnu::always_inline]] inline void copyAscii(Source &source, Target &target) {
    while (source.at < source.end) {
        const std::uint32_t size = smaller(source.left(), 64);
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), source.at);
        if (_mm512_movepi8_mask(block) != 0 || target.room() < static_cast<std::ptrdiff_t>(size))
            break;
        store(target, block, size);
        source.at += size;
        target.at += size;
    }
}

// Short texts by blocks, up to the first byte that is in no character of Page::Characters: `put` gets up to
// sixteen of these, and gives those it refuses, having written the ones before the first of them.
template <typename Page>
[[gnu::always_inline]] inline void bySixteens(const Page &page, Source &source, Target &out) {
    byBlocks(page, source, out,
             [&page](const std::uint8_t *at, Vector block, std::uint32_t size, std::uint64_t &ends,
                     Target &target) -> std::uint32_t {
                 auto characters = page.charactersOf(at, block, size, ends);
                 const std::uint32_t count = countBits(ends);
                 std::uint32_t written = 0;
                 while (written != count && target.room() >= Page::kRoom) {
                     const std::uint32_t some = count - written < 16 ? count - written : 16;
                     const std::uint32_t refused =
                         page.put(characters, static_cast<__mmask16>(lowBits(some)), target);
                     if (refused != 0)
                         return written + firstBitOr64(refused);
                     written += some;
                     characters.dropSixteen();
                 }
                 return written;
             });
}

// Where the text, kStretch of it at most, before the next whole block of ASCII ends.
[[gnu::always_inline]] inline const std::uint8_t *denseStretch(const Source &source) {
    const std::uint8_t *at = source.at;
    for (; at - source.at < kStretch; at += 64) {
        if (source.end - at < 64)
            return source.end - source.at <= kStretch ? source.end : at;
        if (at != source.at && _mm512_movepi8_mask(_mm512_loadu_si512(at)) == 0)
            break;
    }
    return at;
}

// Writes units by groups of up to sixteen: `put` gets them and the lanes that are meant, and gives those it
// refuses, having written the ones before the first of them.
template <std::ptrdiff_t kRoom, typename Put>
[[gnu::always_inline]] inline void writeUnits(Source &units, Target &out, Put put) {
    Target target = out;
    while (units.at < units.end && target.room() >= kRoom) {
        const std::uint32_t count = smaller(units.left() / 2, 16);
        const std::uint32_t refused =
            put(loadNumber<__m256i>(units.at), static_cast<__mmask16>(lowBits(count)), target);
        if (refused != 0) [[unlikely]] {
            units.at += 2 * static_cast<std::ptrdiff_t>(firstBitOr64(refused));
            break;
        }
        units.at += 2 * std::ptrdiff_t{count};
    }
    out.at = target.at;
}

} // namespace
} // namespace velnls::avx512
