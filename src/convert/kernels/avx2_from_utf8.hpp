// Reads UTF-8 by blocks of 64 bytes, eight characters at a time, whatever their lengths.
//
// Stops at the first character that is not well formed, longer than three bytes or cut by the end of the
// source.
#pragma once

#include "convert/kernels/avx2_lanes.hpp"

namespace velnls::avx2 {
namespace {

// Well-formed characters of one to three bytes, in four bytes each, the first one lowest: their values.
[[gnu::always_inline]] inline Bytes valuesOf(Bytes words) {
    const Bytes six = numbersOf(0x3F);
    const Bytes second = _mm256_and_si256(_mm256_srli_epi32(words, 8), six);
    const Bytes third = _mm256_and_si256(_mm256_srli_epi32(words, 16), six);
    const Bytes two = _mm256_or_si256(_mm256_slli_epi32(_mm256_and_si256(words, numbersOf(0x1F)), 6), second);
    const Bytes three = _mm256_or_si256(_mm256_slli_epi32(two, 6), third);
    // Bit 5 of a lead byte tells two from three bytes, bit 7 both from ASCII.
    const Bytes isThree = _mm256_srai_epi32(_mm256_slli_epi32(words, 26), 31);
    const Bytes isLead = _mm256_srai_epi32(_mm256_slli_epi32(words, 24), 31);
    const Bytes beyondAscii = _mm256_blendv_epi8(two, three, isThree);
    return _mm256_blendv_epi8(_mm256_and_si256(words, numbersOf(0x7F)), beyondAscii, isLead);
}

// The values of the characters at the first eight bits of `starts`, which loses them; 0 behind `count` of
// them.
[[gnu::always_inline]] inline Bytes takeEight(const std::uint8_t *text, std::uint64_t &starts,
                                              std::uint32_t count) {
    const auto next = [text, &starts] { return loadNumber<std::int32_t>(text + takeFirst(starts)); };
    __m128i low = _mm_cvtsi32_si128(next());
    low = _mm_insert_epi32(low, next(), 1);
    low = _mm_insert_epi32(low, next(), 2);
    low = _mm_insert_epi32(low, next(), 3);
    __m128i high = _mm_cvtsi32_si128(next());
    high = _mm_insert_epi32(high, next(), 1);
    high = _mm_insert_epi32(high, next(), 2);
    high = _mm_insert_epi32(high, next(), 3);
    return valuesOf(_mm256_and_si256(joined(low, high), firstBytes(4 * count)));
}

// The characters of a block: well formed, and none of them longer than three bytes or cut.
struct Utf8Starts {
    std::uint64_t starts;
    std::uint32_t length; // bytes, up to the first that is no such character's
};

[[gnu::always_inline]] inline Utf8Starts utf8Starts(const Block &block, std::uint64_t notAscii,
                                                    std::uint32_t size) {
    const std::uint64_t lead = block.atLeast(0xC0);
    const std::uint64_t three = block.atLeast(0xE0);
    const std::uint64_t four = block.atLeast(0xF0);
    const std::uint64_t trail = notAscii & ~lead;
    const std::uint64_t odd = (trail ^ (lead << 1 | three << 2)) | four | ~lowBits(size);
    std::uint32_t length = firstBitOr64(odd);
    std::uint64_t starts = ~trail & lowBits(length);
    if (length == 0)
        return {0, 0};
    // The last one may be cut by the end, or by what is odd.
    const std::uint32_t last = 63 - static_cast<std::uint32_t>(_lzcnt_u64(starts));
    if (last + 1 + (lead >> last & 1) + (three >> last & 1) > length) {
        starts &= ~(std::uint64_t{1} << last);
        length = last;
    }
    return {starts, length};
}

// Writes the characters of a block, `kWidth` bytes each: `store8` stores eight values whole.
template <std::ptrdiff_t kWidth, typename Store>
[[gnu::always_inline]] inline void putEights(const std::uint8_t *text, const Utf8Starts &characters,
                                             std::uint8_t *&to, Store store8) {
    std::uint64_t starts = characters.starts;
    for (std::uint32_t left = countBits(starts); left != 0;) {
        const std::uint32_t count = left < kHalf ? left : kHalf;
        store8(to, takeEight(text, starts, count));
        to += std::ptrdiff_t{count} * kWidth;
        left -= count;
    }
}

[[gnu::always_inline]] inline void storeUnits(std::uint8_t *to, Bytes values) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), narrowedHalf(values));
}

} // namespace
} // namespace velnls::avx2
