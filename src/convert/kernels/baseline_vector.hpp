// What the baseline's kernels ask of a block of 64 bytes, as bit masks: bit i speaks of byte i.
//
// This header alone knows the vectors. Without them kHasVectors is false and the kernels keep to their scalar
// loops. Everything is in an unnamed namespace: kernels for other instruction sets take some of it in too,
// and no function compiled for one set may stand in for its twin in another.
#pragma once

#include "core/unaligned.hpp"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace velnls {
namespace {

#if defined(__SSE2__)

inline constexpr bool kHasVectors = true;

template <int Width, typename Test>
[[gnu::always_inline]] inline std::uint64_t maskOf(const std::uint8_t *at, Test test) {
    std::uint64_t mask = 0;
    for (int i = 0; i < Width; i += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at + i));
        mask |= std::uint64_t{static_cast<std::uint32_t>(_mm_movemask_epi8(test(bytes)))} << i;
    }
    return mask;
}

// The bytes from 80 up.
template <int Width>
[[gnu::always_inline]] inline std::uint64_t notAsciiMask(const std::uint8_t *at) {
    return maskOf<Width>(at, [](__m128i bytes) { return bytes; });
}

// The bytes of that value and above, unsigned.
template <int Width>
[[gnu::always_inline]] inline std::uint64_t atLeastMask(const std::uint8_t *at, std::uint8_t value) {
    const __m128i least = _mm_set1_epi8(static_cast<char>(value));
    return maskOf<Width>(
        at, [least](__m128i bytes) { return _mm_cmpeq_epi8(_mm_max_epu8(bytes, least), bytes); });
}

#else

inline constexpr bool kHasVectors = false;

template <int Width>
inline std::uint64_t atLeastMask(const std::uint8_t *at, std::uint8_t value) {
    std::uint64_t mask = 0;
    for (int i = 0; i < Width; ++i)
        mask |= std::uint64_t{at[i] >= value} << i;
    return mask;
}

template <int Width>
inline std::uint64_t notAsciiMask(const std::uint8_t *at) {
    return atLeastMask<Width>(at, 0x80);
}

#endif

// ---- Bytes by registers ---------------------------------------------------------------------------------

// Copies exactly `Count` bytes, by registers.
template <int Count>
[[gnu::always_inline]] inline void copyBytes(std::uint8_t *to, const std::uint8_t *from) {
    std::memcpy(to, from, Count);
}

[[gnu::always_inline]] inline bool isAscii8(const std::uint8_t *at) {
    return (loadNumber<std::uint64_t>(at) & 0x8080808080808080) == 0;
}

// How many of the 16 bytes at `at` are ASCII before the first that is not.
[[gnu::always_inline]] inline int asciiPrefix16(const std::uint8_t *at) {
#if defined(__SSE2__)
    const int mask = _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(at)));
    return __builtin_ctz(static_cast<unsigned>(mask) | 0x10000u);
#else
    int count = 0;
    while (count < 16 && at[count] < 0x80)
        ++count;
    return count;
#endif
}

// All ones or zero. Compilers turn selections into jumps where they see a condition; which character follows
// is what no processor can foresee in mixed text, so the condition is hidden from them behind an empty
// instruction.
[[gnu::always_inline]] inline std::uint32_t maskIf(bool condition) {
    std::uint32_t mask = 0u - static_cast<std::uint32_t>(condition);
    asm("" : "+r"(mask));
    return mask;
}

[[gnu::always_inline]] inline std::uint32_t select(std::uint32_t mask, std::uint32_t yes, std::uint32_t no) {
    return no ^ ((yes ^ no) & mask);
}

[[gnu::always_inline]] inline int firstBit(std::uint64_t mask) {
    return __builtin_ctzll(mask);
}

} // namespace
} // namespace velnls
