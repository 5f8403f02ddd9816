// Shift_JIS to EUC-JP and back, blocks of 64 bytes at a time: where no half-width katakana stand, no
// character changes its length, so both formulas are computed on all bytes and chosen by mask.
#include "convert/kernels/japanese_blocks.hpp"

#if defined(VELNLS_JAPANESE_BLOCKS)

#include "convert/kernels/baseline_vector.hpp"
#include "convert/kernels/text_reader.hpp"
#include "locale/pair_masks.hpp"

#include <algorithm>

namespace velnls::fast {
namespace {

// A byte of ones for each bit of the low 16.
[[gnu::always_inline]] inline __m128i bytesOfBits(std::uint64_t bits) {
    __m128i spread = _mm_cvtsi32_si128(static_cast<int>(bits & 0xFFFF));
    spread = _mm_unpacklo_epi8(spread, spread);
    spread = _mm_shufflelo_epi16(spread, 0x50);
    spread = _mm_shuffle_epi32(spread, 0x50);
    const __m128i bit = _mm_set1_epi64x(static_cast<long long>(0x8040201008040201));
    return _mm_cmpeq_epi8(_mm_and_si128(spread, bit), bit);
}

[[gnu::always_inline]] inline __m128i constant(unsigned byte) {
    return _mm_set1_epi8(static_cast<char>(byte));
}

// Ones where the byte is below the limit, unsigned.
[[gnu::always_inline]] inline __m128i isBelow(__m128i bytes, unsigned limit) {
    return _mm_cmpeq_epi8(_mm_min_epu8(bytes, constant(limit - 1)), bytes);
}

[[gnu::always_inline]] inline __m128i choose(__m128i mask, __m128i yes, __m128i no) {
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

[[gnu::always_inline]] inline __m128i load16(const std::uint8_t *at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}

// Writes `good` bytes of a block, which hold whole characters; stores 64.
struct ShiftJisBlock {
    // Leads 81-9F and E0-EF.
    [[gnu::always_inline]] static std::uint64_t leadValues(const std::uint8_t *at) {
        return (atLeastMask<64>(at, 0x81) & ~atLeastMask<64>(at, 0xA0)) |
               (atLeastMask<64>(at, 0xE0) & ~atLeastMask<64>(at, 0xF0));
    }
    [[gnu::always_inline]] static std::uint64_t oddSingles(const std::uint8_t *at) {
        return atLeastMask<64>(at, 0xA1) & ~atLeastMask<64>(at, 0xE0); // half-width katakana
    }
    [[gnu::always_inline]] static std::uint64_t oddTrails(const std::uint8_t *at) {
        return ~atLeastMask<64>(at, 0x40) | atLeastMask<64>(at, 0xFD);
    }
    [[gnu::always_inline]] static __m128i convert(const std::uint8_t *at, bool, __m128i leads,
                                                  __m128i trails) {
        const __m128i bytes = load16(at);
        const __m128i next = load16(at + 1);
        // 2b - 60 below A0, 2b - E0 above; one less where the trail is below 9F.
        const __m128i shift = choose(isBelow(bytes, 0xA0), constant(0x60), constant(0xE0));
        const __m128i first =
            _mm_add_epi8(_mm_sub_epi8(_mm_add_epi8(bytes, bytes), shift), isBelow(next, 0x9F));
        // t + 61 below 80, t + 60 below 9F, t + 2 above.
        const __m128i lowShift = _mm_sub_epi8(constant(0x60), isBelow(bytes, 0x80));
        const __m128i second = _mm_add_epi8(bytes, choose(isBelow(bytes, 0x9F), lowShift, constant(0x02)));
        return choose(leads, first, choose(trails, second, bytes));
    }
};

struct EucBlock {
    [[gnu::always_inline]] static std::uint64_t leadValues(const std::uint8_t *at) {
        return atLeastMask<64>(at, 0xA1) & ~atLeastMask<64>(at, 0xFF);
    }
    [[gnu::always_inline]] static std::uint64_t oddSingles(const std::uint8_t *at) {
        return atLeastMask<64>(at, 0x8E) & ~atLeastMask<64>(at, 0x8F); // the shift before half-width katakana
    }
    [[gnu::always_inline]] static std::uint64_t oddTrails(const std::uint8_t *at) {
        return ~leadValues(at);
    }
    [[gnu::always_inline]] static __m128i convert(const std::uint8_t *at, bool atBegin, __m128i leads,
                                                  __m128i trails) {
        const __m128i bytes = load16(at);
        // The first byte of a block is no trail; nothing before it is read.
        const __m128i before = atBegin ? _mm_slli_si128(bytes, 1) : load16(at - 1);
        const __m128i row = _mm_sub_epi8(bytes, constant(0x80));
        // (r + 1) / 2 + 70 below 5F, + B0 above.
        const __m128i first = _mm_add_epi8(_mm_avg_epu8(row, _mm_setzero_si128()),
                                           choose(isBelow(row, 0x5F), constant(0x70), constant(0xB0)));
        // c + 7E in an even row; in an odd one c + 1F up to 5F, c + 20 above.
        const __m128i odd = _mm_cmpeq_epi8(_mm_and_si128(before, constant(1)), constant(1));
        const __m128i oddShift = _mm_add_epi8(constant(0x20), isBelow(row, 0x60));
        const __m128i second = _mm_add_epi8(row, choose(odd, oddShift, constant(0x7E)));
        return choose(leads, first, choose(trails, second, bytes));
    }
};

constexpr std::ptrdiff_t kBlock = 64;
constexpr std::ptrdiff_t kPart = 16; // as formulas are computed and stored

template <typename Block>
void japaneseBlocks(Source &source, Target &target) {
    TextReader<kBlock + kPart> reader; // the byte behind each is looked at
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    while (at < source.end) {
        const std::ptrdiff_t size = std::min(source.end - at, kBlock);
        if (target.end - to < ((size + kPart - 1) & -kPart))
            break;
        const std::uint64_t inside = ~std::uint64_t{0} >> (kBlock - size);
        const std::uint8_t *const text = reader.block(at, source.end);
        const std::uint64_t leadValues = Block::leadValues(text) & inside;
        const std::uint64_t trails = pairTrails(leadValues) & inside;
        const std::uint64_t leads = leadValues & ~trails;
        const std::uint64_t odd =
            (Block::oddSingles(text) & inside & ~trails & ~leads) | (Block::oddTrails(text) & trails) >> 1;
        // A pair that the block cuts belongs to the next one.
        const std::uint64_t stop = odd | (leads & std::uint64_t{1} << (size - 1));
        for (std::ptrdiff_t i = 0; i < size; i += kPart) {
            const __m128i made =
                Block::convert(text + i, i == 0, bytesOfBits(leads >> i), bytesOfBits(trails >> i));
            _mm_storeu_si128(reinterpret_cast<__m128i *>(to + i),
                             _mm_and_si128(made, bytesOfBits(inside >> i)));
        }
        const std::ptrdiff_t good = stop != 0 ? firstBit(stop) : size;
        at += good;
        to += good;
        if (odd != 0 || good == 0)
            break;
    }
    source.at = at;
    target.at = to;
}

} // namespace

void shiftJisToEucBlocks(Source &source, Target &target) {
    japaneseBlocks<ShiftJisBlock>(source, target);
}

void eucToShiftJisBlocks(Source &source, Target &target) {
    japaneseBlocks<EucBlock>(source, target);
}

} // namespace velnls::fast

#endif
