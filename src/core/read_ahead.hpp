// Looking at a NUL-terminated string by blocks: a load may reach past the string's end, but never into
// another page of memory, where nothing may be. What lies behind the end is not used.
//
// Sanitizers and valgrind take such loads for faults. Builds for them define VELNLS_EXACT_READS, and what
// looks ahead elsewhere goes byte by byte there.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELNLS_EXACT_READS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer)
#define VELNLS_EXACT_READS 1
#endif
#endif

#if defined(__SSE2__) && !defined(VELNLS_EXACT_READS)

#define VELNLS_READS_AHEAD 1
#include <emmintrin.h>

namespace velnls {

inline constexpr unsigned kHalfBytes = 16;
inline constexpr unsigned kAheadBytes = 2 * kHalfBytes; // of one block
inline constexpr std::size_t kSmallestPage = 4096;

// Bytes from `at` to the end of its page.
inline std::size_t leftInPage(const std::uint8_t *at) {
    return kSmallestPage - (reinterpret_cast<std::uintptr_t>(at) & (kSmallestPage - 1));
}

// Whether a block at `at` lies in one page.
template <std::size_t kBytes = kAheadBytes>
[[gnu::always_inline]] inline bool staysInPage(const std::uint8_t *at) {
    return (reinterpret_cast<std::uintptr_t>(at) & (kSmallestPage - 1)) <= kSmallestPage - kBytes;
}

// Hides from the compiler what a pointer points at: it would take loads past the end of a known object for
// faults too.
[[gnu::always_inline]] inline const std::uint8_t *unknownPlace(const std::uint8_t *at) {
    asm("" : "+r"(at));
    return at;
}

// The halves of a block.
struct Ahead {
    __m128i low;
    __m128i high;
};

inline Ahead loadAhead(const std::uint8_t *at) {
    const auto *const halves = reinterpret_cast<const __m128i *>(at);
    return {_mm_loadu_si128(halves), _mm_loadu_si128(halves + 1)};
}

// Bit i speaks of byte i: the zero ones.
inline std::uint32_t zeroesIn(Ahead block) {
    const __m128i zero = _mm_setzero_si128();
    const auto low = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(block.low, zero)));
    const auto high = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(block.high, zero)));
    return low | high << 16;
}

// Zero where two blocks differ or both have a NUL.
inline Ahead sameAhead(const std::uint8_t *a, const std::uint8_t *b) {
    const Ahead blockA = loadAhead(a);
    const Ahead blockB = loadAhead(b);
    return {_mm_min_epu8(_mm_cmpeq_epi8(blockA.low, blockB.low), blockA.low),
            _mm_min_epu8(_mm_cmpeq_epi8(blockA.high, blockB.high), blockA.high)};
}

inline std::uint32_t differencesAhead(const std::uint8_t *a, const std::uint8_t *b) {
    return zeroesIn(sameAhead(a, b));
}

inline std::uint32_t endsAhead(const std::uint8_t *at) {
    return zeroesIn(loadAhead(at));
}

// The same of half a block.
inline std::uint32_t differencesInHalf(const std::uint8_t *a, const std::uint8_t *b) {
    const __m128i halfA = _mm_loadu_si128(reinterpret_cast<const __m128i *>(a));
    const __m128i halfB = _mm_loadu_si128(reinterpret_cast<const __m128i *>(b));
    const __m128i same = _mm_min_epu8(_mm_cmpeq_epi8(halfA, halfB), halfA);
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(same, _mm_setzero_si128())));
}

// The bytes from 80 up.
inline std::uint32_t highAhead(const std::uint8_t *at) {
    const Ahead block = loadAhead(at);
    const auto low = static_cast<std::uint32_t>(_mm_movemask_epi8(block.low));
    const auto high = static_cast<std::uint32_t>(_mm_movemask_epi8(block.high));
    return low | high << 16;
}

// Of two blocks the smaller byte at each place.
inline Ahead least(Ahead a, Ahead b) {
    return {_mm_min_epu8(a.low, b.low), _mm_min_epu8(a.high, b.high)};
}

// Whether a block has a zero byte.
inline bool anyZero(Ahead block) {
    const __m128i both = _mm_min_epu8(block.low, block.high);
    return _mm_movemask_epi8(_mm_cmpeq_epi8(both, _mm_setzero_si128())) != 0;
}

[[gnu::always_inline]] inline unsigned firstOf(std::uint32_t mask) {
    return static_cast<unsigned>(__builtin_ctz(mask));
}

} // namespace velnls

#endif
