// Up to 64 bytes of text as masks of one bit per byte, by AVX-512.
//
// Included by the files that instantiate kernels for it; what it defines is local to each.
#pragma once

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

namespace velnls::avx512 {
namespace {

[[gnu::always_inline]] inline Vector all(unsigned value) {
    return _mm512_set1_epi8(static_cast<char>(value));
}

class WideMasks {
public:
    static constexpr unsigned kBytes = 64;
    static constexpr bool kMaps = true;

    [[gnu::always_inline]] explicit WideMasks(const std::uint8_t *at) : bytes_(_mm512_loadu_si512(at)) {}
    [[gnu::always_inline]] WideMasks(const std::uint8_t *at, std::size_t count)
        : bytes_(_mm512_maskz_loadu_epi8(lowBits(count), at)) {}
    [[gnu::always_inline]] explicit WideMasks(Vector bytes) : bytes_(bytes) {}
    [[nodiscard]] [[gnu::always_inline]] Vector bytes() const {
        return bytes_;
    }
    [[gnu::always_inline]] std::uint64_t high() const {
        return _mm512_movepi8_mask(bytes_);
    }
    [[gnu::always_inline]] std::uint64_t equal(unsigned value) const {
        return _mm512_cmpeq_epi8_mask(bytes_, all(value));
    }
    // To what others have at the same place.
    [[gnu::always_inline]] std::uint64_t equal(const WideMasks &others) const {
        return _mm512_cmpeq_epi8_mask(bytes_, others.bytes_);
    }
    // To the byte that others have at a place.
    [[gnu::always_inline]] std::uint64_t equalToOneOf(const WideMasks &others, unsigned place) const {
        return _mm512_cmpeq_epi8_mask(bytes_, _mm512_permutexvar_epi8(all(place), others.bytes_));
    }
    [[gnu::always_inline]] std::uint64_t atLeast(unsigned value) const {
        return _mm512_cmpge_epu8_mask(bytes_, all(value));
    }
    [[gnu::always_inline]] std::uint64_t utf8Trails() const {
        return _mm512_cmplt_epi8_mask(bytes_, all(0xC0));
    }
    [[gnu::always_inline]] std::uint64_t inRange(unsigned first, unsigned span) const {
        return _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes_, all(first)), all(span));
    }
    // With the capital letters of ASCII as small ones.
    [[gnu::always_inline]] WideMasks lowered() const {
        const __mmask64 capitals = _mm512_cmplt_epu8_mask(_mm512_sub_epi8(bytes_, all('A')), all(26));
        return WideMasks(_mm512_mask_add_epi8(bytes_, capitals, bytes_, all(0x20)));
    }
    // As a table of 256 bytes maps them; what it maps to 0 becomes `none`.
    [[gnu::always_inline]] WideMasks mapped(const std::uint8_t *table, unsigned none) const {
        const Vector low =
            _mm512_permutex2var_epi8(_mm512_loadu_si512(table), bytes_, _mm512_loadu_si512(table + 64));
        const Vector high = _mm512_permutex2var_epi8(_mm512_loadu_si512(table + 128), bytes_,
                                                     _mm512_loadu_si512(table + 192));
        const Vector values = _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes_), low, high);
        return WideMasks(_mm512_mask_blend_epi8(_mm512_test_epi8_mask(values, values), all(none), values));
    }
    [[gnu::always_inline]] static unsigned population(std::uint64_t mask) {
        return static_cast<unsigned>(_mm_popcnt_u64(mask));
    }

private:
    Vector bytes_;
};

} // namespace
} // namespace velnls::avx512

#endif
