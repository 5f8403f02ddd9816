// Up to 64 bytes of text as masks of one bit per byte, by AVX2.
//
// Included by the files that instantiate kernels for it; what it defines is local to each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace velnls::avx2 {
namespace {

// `kPieces`, 1 or 2, times 32 bytes.
template <unsigned kPieces>
class Masks {
public:
    // NOLINTNEXTLINE(bugprone-dynamic-static-initializers): a constant expression, in a template
    static constexpr unsigned kBytes = 32 * kPieces;
    // NOLINTNEXTLINE(bugprone-dynamic-static-initializers): the same
    static constexpr bool kMaps = false; // there is no mapped()

    [[gnu::always_inline]] explicit Masks(const std::uint8_t *at) {
        for (unsigned i = 0; i < kPieces; ++i)
            pieces_[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(at + std::size_t{32} * i));
    }
    // The bytes from 80 on.
    [[gnu::always_inline]] std::uint64_t high() const {
        return bits([](__m256i bytes) { return bytes; });
    }
    [[gnu::always_inline]] std::uint64_t equal(unsigned value) const {
        const __m256i wanted = all(value);
        return bits([wanted](__m256i bytes) { return _mm256_cmpeq_epi8(bytes, wanted); });
    }
    [[gnu::always_inline]] std::uint64_t atLeast(unsigned value) const {
        const __m256i least = all(value);
        return bits(
            [least](__m256i bytes) { return _mm256_cmpeq_epi8(_mm256_max_epu8(bytes, least), bytes); });
    }
    // The bytes from 80 to BF.
    [[gnu::always_inline]] std::uint64_t utf8Trails() const {
        const __m256i behind = all(0xC0);
        return bits([behind](__m256i bytes) { return _mm256_cmpgt_epi8(behind, bytes); });
    }
    [[gnu::always_inline]] std::uint64_t inRange(unsigned first, unsigned span) const {
        return bits([first, span](__m256i bytes) { return isInRange(bytes, first, span); });
    }
    // With the capital letters of ASCII as small ones.
    [[gnu::always_inline]] Masks lowered() const {
        Masks result(*this);
        for (unsigned i = 0; i < kPieces; ++i)
            result.pieces_[i] =
                _mm256_add_epi8(pieces_[i], _mm256_and_si256(isInRange(pieces_[i], 'A', 25), all(0x20)));
        return result;
    }
    [[gnu::always_inline]] static unsigned population(std::uint64_t mask) {
        return static_cast<unsigned>(_mm_popcnt_u64(mask));
    }

private:
    [[gnu::always_inline]] static __m256i all(unsigned value) {
        return _mm256_set1_epi8(static_cast<char>(value));
    }
    [[gnu::always_inline]] static __m256i isInRange(__m256i bytes, unsigned first, unsigned span) {
        const __m256i place = _mm256_sub_epi8(bytes, all(first));
        return _mm256_cmpeq_epi8(_mm256_min_epu8(place, all(span)), place);
    }
    template <typename Test>
    [[gnu::always_inline]] std::uint64_t bits(Test test) const {
        std::uint64_t mask = 0;
        for (unsigned i = 0; i < kPieces; ++i)
            mask |= std::uint64_t{static_cast<unsigned>(_mm256_movemask_epi8(test(pieces_[i])))} << 32 * i;
        return mask;
    }

    __m256i pieces_[kPieces];
};

} // namespace
} // namespace velnls::avx2
