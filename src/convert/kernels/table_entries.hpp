// Entries of a table of 16-bit numbers, for processors with AVX2: a load for each is quicker than gathering
// them, or than taking the places out of a register. Local to each file that includes it, as such kernels
// are.
#pragma once

#include "core/unaligned.hpp"

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace velnls {
namespace {

// Those at eight places; every place is one that the table has.
[[gnu::always_inline]] inline __m128i eightEntries(const std::uint16_t *table, const std::uint16_t *places) {
    const auto entry = [table, places](std::size_t lane) -> int { return loadElement(table, places[lane]); };
    // Two halves: each number put into a register waits for the one before it.
    __m128i low = _mm_cvtsi32_si128(entry(0));
    __m128i high = _mm_cvtsi32_si128(entry(4));
    low = _mm_insert_epi16(low, entry(1), 1);
    high = _mm_insert_epi16(high, entry(5), 1);
    low = _mm_insert_epi16(low, entry(2), 2);
    high = _mm_insert_epi16(high, entry(6), 2);
    low = _mm_insert_epi16(low, entry(3), 3);
    high = _mm_insert_epi16(high, entry(7), 3);
    return _mm_unpacklo_epi64(low, high);
}

[[gnu::always_inline]] inline __m128i entriesAt(const std::uint16_t *table, __m128i places) {
    alignas(16) std::uint16_t place[8];
    _mm_store_si128(reinterpret_cast<__m128i *>(place), places);
    asm("" : "+m"(place)); // compilers would take each place out of the register
    return eightEntries(table, place);
}

// Those at sixteen places; with `both` the upper eight too, which short texts mostly do without.
[[gnu::always_inline]] inline __m256i entriesAt(const std::uint16_t *table, __m256i places,
                                                bool both = true) {
    alignas(32) std::uint16_t place[16];
    _mm256_store_si256(reinterpret_cast<__m256i *>(place), places);
    asm("" : "+m"(place));
    const __m256i low = _mm256_castsi128_si256(eightEntries(table, place));
    return both ? _mm256_inserti128_si256(low, eightEntries(table, place + 8), 1) : low;
}

} // namespace
} // namespace velnls
