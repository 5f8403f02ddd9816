// Up to 64 bytes of text as masks of one bit per byte, by the baseline's vectors.
//
// Included by the files that instantiate kernels; what it defines is local to each.
#pragma once

#include "core/unaligned.hpp"

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__) && !defined(VELNLS_PLAIN_LOOPS)
#define VELNLS_TEXT_VECTORS 1
#include <emmintrin.h>

namespace velnls {
namespace {

// The first `count` bytes, 1 to 15, with zeros behind them: overlapping loads, so that nothing else is read.
[[gnu::always_inline]] inline __m128i loadFirst(const std::uint8_t *at, std::size_t count) {
    std::uint64_t low;
    std::uint64_t high = 0;
    if (count >= 8) {
        low = loadNumber<std::uint64_t>(at);
        if (count > 8)
            high = loadNumber<std::uint64_t>(at + count - 8) >> (16 - count) * 8;
    } else if (count >= 4) {
        low = loadNumber<std::uint32_t>(at) | std::uint64_t{loadNumber<std::uint32_t>(at + count - 4)}
                                                  << (count - 4) * 8;
    } else {
        low = std::uint64_t{at[0]} | std::uint64_t{at[count / 2]} << count / 2 * 8 |
              std::uint64_t{at[count - 1]} << (count - 1) * 8;
    }
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
}

// `kPieces` times 16 bytes, of which `count` are text and the rest reads as zeros.
template <unsigned kPieces>
class Sse2Masks {
public:
    // NOLINTNEXTLINE(bugprone-dynamic-static-initializers): a constant expression, in a template
    static constexpr unsigned kBytes = 16 * kPieces;
    // NOLINTNEXTLINE(bugprone-dynamic-static-initializers): the same
    static constexpr bool kMaps = false; // there is no mapped()

    [[gnu::always_inline]] explicit Sse2Masks(const std::uint8_t *at) {
        for (unsigned i = 0; i < kPieces; ++i)
            pieces_[i] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at + std::size_t{16} * i));
    }
    [[gnu::always_inline]] Sse2Masks(const std::uint8_t *at, std::size_t count) {
        for (unsigned i = 0; i < kPieces; ++i) {
            if (count >= 16) {
                pieces_[i] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
                at += 16;
                count -= 16;
            } else {
                pieces_[i] = count != 0 ? loadFirst(at, count) : _mm_setzero_si128();
                count = 0;
            }
        }
    }
    [[nodiscard]] [[gnu::always_inline]] __m128i piece(unsigned i) const {
        return pieces_[i];
    }
    // The bytes from 80 on.
    [[gnu::always_inline]] std::uint64_t high() const {
        return bits([](__m128i bytes) { return bytes; });
    }
    [[gnu::always_inline]] std::uint64_t equal(unsigned value) const {
        const __m128i wanted = all(value);
        return bits([wanted](__m128i bytes) { return _mm_cmpeq_epi8(bytes, wanted); });
    }
    [[gnu::always_inline]] std::uint64_t atLeast(unsigned value) const {
        const __m128i least = all(value);
        return bits([least](__m128i bytes) { return _mm_cmpeq_epi8(_mm_max_epu8(bytes, least), bytes); });
    }
    // The bytes from 80 to BF.
    [[gnu::always_inline]] std::uint64_t utf8Trails() const {
        const __m128i behind = all(0xC0);
        return bits([behind](__m128i bytes) { return _mm_cmplt_epi8(bytes, behind); });
    }
    [[gnu::always_inline]] std::uint64_t inRange(unsigned first, unsigned span) const {
        const __m128i base = all(first);
        const __m128i most = all(span);
        return bits([base, most](__m128i bytes) {
            const __m128i place = _mm_sub_epi8(bytes, base);
            return _mm_cmpeq_epi8(_mm_min_epu8(place, most), place);
        });
    }
    // With the capital letters of ASCII as small ones.
    [[gnu::always_inline]] Sse2Masks lowered() const {
        Sse2Masks result(*this);
        for (unsigned i = 0; i < kPieces; ++i) {
            const __m128i place = _mm_sub_epi8(pieces_[i], all('A'));
            const __m128i capital = _mm_cmpeq_epi8(_mm_min_epu8(place, all(25)), place);
            result.pieces_[i] = _mm_add_epi8(pieces_[i], _mm_and_si128(capital, all(0x20)));
        }
        return result;
    }
    [[gnu::always_inline]] static unsigned population(std::uint64_t mask) {
        mask -= mask >> 1 & 0x5555'5555'5555'5555;
        mask = (mask & 0x3333'3333'3333'3333) + (mask >> 2 & 0x3333'3333'3333'3333);
        mask = (mask + (mask >> 4)) & 0x0F0F'0F0F'0F0F'0F0F;
        return static_cast<unsigned>(mask * 0x0101'0101'0101'0101 >> 56);
    }

private:
    static __m128i all(unsigned value) {
        return _mm_set1_epi8(static_cast<char>(value));
    }
    template <typename Test>
    [[gnu::always_inline]] std::uint64_t bits(Test test) const {
        std::uint64_t mask = 0;
        for (unsigned i = 0; i < kPieces; ++i)
            mask |= std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(test(pieces_[i])))} << 16 * i;
        return mask;
    }

    __m128i pieces_[kPieces];
};

} // namespace
} // namespace velnls

#endif
