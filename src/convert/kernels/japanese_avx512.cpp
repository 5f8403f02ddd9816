// Shift_JIS to EUC-JP and back, for processors with AVX-512.
#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/avx512_lanes.hpp"
#include "locale/pair_masks.hpp"

namespace velnls::avx512 {

namespace {

struct ShiftJisText {
    static std::uint64_t leadValues(Vector bytes) {
        return between(bytes, 0x81, 0x9F) | between(bytes, 0xE0, 0xEF);
    }
    static std::uint64_t oddSingles(Vector bytes) {
        return between(bytes, 0xA1, 0xDF); // half-width katakana
    }
    static std::uint64_t oddTrails(Vector bytes) {
        return ~between(bytes, 0x40, 0xFC);
    }
    // `next` and `before` are the bytes one place further and one place back.
    [[gnu::always_inline]] static Vector convert(Vector bytes, Vector next, Vector, std::uint64_t leads,
                                                 std::uint64_t trails) {
        const std::uint64_t low = _mm512_cmplt_epu8_mask(bytes, bytesOf(0xA0));
        Vector first = _mm512_sub_epi8(_mm512_add_epi8(bytes, bytes),
                                       _mm512_mask_mov_epi8(bytesOf(0xE0), low, bytesOf(0x60)));
        first = _mm512_mask_sub_epi8(first, _mm512_cmplt_epu8_mask(next, bytesOf(0x9F)), first, bytesOf(1));
        Vector shift =
            _mm512_mask_mov_epi8(bytesOf(0x02), _mm512_cmplt_epu8_mask(bytes, bytesOf(0x9F)), bytesOf(0x60));
        shift = _mm512_mask_mov_epi8(shift, _mm512_cmplt_epu8_mask(bytes, bytesOf(0x80)), bytesOf(0x61));
        const Vector made = _mm512_mask_mov_epi8(bytes, leads, first);
        return _mm512_mask_add_epi8(made, trails, bytes, shift);
    }
};

struct EucText {
    static std::uint64_t leadValues(Vector bytes) {
        return between(bytes, 0xA1, 0xFE);
    }
    static std::uint64_t oddSingles(Vector bytes) {
        return _mm512_cmpeq_epi8_mask(bytes, bytesOf(0x8E)); // the shift before half-width katakana
    }
    static std::uint64_t oddTrails(Vector bytes) {
        return ~leadValues(bytes);
    }
    [[gnu::always_inline]] static Vector convert(Vector bytes, Vector, Vector before, std::uint64_t leads,
                                                 std::uint64_t trails) {
        const Vector row = _mm512_sub_epi8(bytes, bytesOf(0x80));
        const std::uint64_t low = _mm512_cmplt_epu8_mask(row, bytesOf(0x5F));
        const Vector first = _mm512_add_epi8(_mm512_avg_epu8(row, _mm512_setzero_si512()),
                                             _mm512_mask_mov_epi8(bytesOf(0xB0), low, bytesOf(0x70)));
        const std::uint64_t odd = _mm512_test_epi8_mask(before, bytesOf(1));
        Vector shift = bytesOf(0x7E);
        shift = _mm512_mask_mov_epi8(shift, odd, bytesOf(0x20));
        shift = _mm512_mask_mov_epi8(shift, odd & _mm512_cmplt_epu8_mask(row, bytesOf(0x60)), bytesOf(0x1F));
        const Vector made = _mm512_mask_mov_epi8(bytes, leads, first);
        return _mm512_mask_add_epi8(made, trails, row, shift);
    }
};

// Blocks follow each other at a fixed distance: a pair that begins with a block's last byte is carried into
// the next one, so that no block waits for the end of the one before.
template <typename Text>
[[gnu::always_inline]] inline void convertJapanese(Source &source, Target &out) {
    const Vector placeBefore = _mm512_sub_epi8(countingBytes(), bytesOf(1));
    const std::uint8_t *at = source.at;
    Target target = out;
    std::uint64_t carried = 0; // 1: the block's first byte is a trail
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, 64);
        if (target.end - target.at < static_cast<std::ptrdiff_t>(size))
            break;
        const std::uint64_t whole = lowBits(size);
        const Vector bytes = _mm512_maskz_loadu_epi8(whole, at);
        const Vector next = _mm512_maskz_loadu_epi8(lowBits(source.end - at - 1), at + 1);
        // Before the first byte of the source nothing is read: it is no trail.
        const Vector before = carried != 0 ? _mm512_maskz_loadu_epi8(whole, at - 1)
                                           : _mm512_permutexvar_epi8(placeBefore, bytes);
        const std::uint64_t leadValues = Text::leadValues(bytes) & ~carried;
        std::uint64_t pending = carried;
        const std::uint64_t trails = pairTrails(leadValues, pending) & whole;
        const std::uint64_t leads = leadValues & ~trails;
        const std::uint64_t oddSingles = Text::oddSingles(bytes) & ~trails & ~leads & whole;
        const std::uint64_t oddTrails = Text::oddTrails(bytes) & trails;
        store(target, Text::convert(bytes, next, before, leads, trails), size);
        if ((oddSingles | oddTrails) != 0) {
            // The characters before the first odd one stay; a pair begins one byte before its trail.
            const auto single = static_cast<std::ptrdiff_t>(firstBitOr64(oddSingles));
            const auto pair = static_cast<std::ptrdiff_t>(firstBitOr64(oddTrails)) - 1;
            const std::ptrdiff_t good = single < pair || oddTrails == 0 ? single : pair;
            at += good;
            target.at += good;
            carried = 0;
            break;
        }
        at += size;
        target.at += size;
        carried = leads >> (size - 1) & 1;
    }
    // A pair without its trail, at the end of the source or of the target's room, is left.
    source.at = at - static_cast<std::ptrdiff_t>(carried);
    out.at = target.at - static_cast<std::ptrdiff_t>(carried);
}

} // namespace

void shiftJisToEuc(Source &source, Target &target) {
    convertJapanese<ShiftJisText>(source, target);
}

void eucToShiftJis(Source &source, Target &target) {
    convertJapanese<EucText>(source, target);
}

} // namespace velnls::avx512

#endif
