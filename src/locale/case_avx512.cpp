// The case kernel for processors with AVX-512: 64 bytes at once, in masks of one bit per byte.
#include "locale/case_fast.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

namespace velnls::avx512 {

namespace {

constexpr std::size_t kBlock = 64;

[[gnu::always_inline]] inline Vector all(unsigned value) {
    return _mm512_set1_epi8(static_cast<char>(value));
}
[[gnu::always_inline]] inline std::uint64_t isEqual(Vector bytes, unsigned value) {
    return _mm512_cmpeq_epi8_mask(bytes, all(value));
}
[[gnu::always_inline]] inline std::uint64_t isAtLeast(Vector bytes, unsigned value) {
    return _mm512_cmpge_epu8_mask(bytes, all(value));
}

template <Case kCase>
[[gnu::always_inline]] inline Vector mapAsciiBlock(Vector bytes) {
    constexpr unsigned kFirst = kCase == Case::Upper ? kSmallA : kCapitalA;
    const __mmask64 letters = _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes, all(kFirst)), all(25));
    return _mm512_mask_add_epi8(bytes, letters, bytes, all(kCase == Case::Upper ? 0xE0 : 0x20));
}

// `bytes` begin with a character. `wrong` gets what the kernel is not for; `incomplete` is how many bytes at
// the end are a character's first ones.
template <Case kCase>
[[gnu::always_inline]] inline Vector mapCommonBlock(Vector bytes, std::uint64_t &wrong, std::uint64_t &trails,
                                                    unsigned &incomplete) {
    const std::uint64_t leads = isAtLeast(bytes, 0xC0);
    const std::uint64_t c2 = isEqual(bytes, 0xC2) << 1;
    const std::uint64_t c3 = isEqual(bytes, 0xC3) << 1;
    const std::uint64_t d0 = isEqual(bytes, 0xD0) << 1;
    const std::uint64_t d1 = isEqual(bytes, 0xD1) << 1;
    const std::uint64_t e2 = isEqual(bytes, 0xE2) << 1;
    const std::uint64_t allowed = c2 | c3 | d0 | d1 | e2;
    trails = _mm512_cmplt_epi8_mask(bytes, all(0xC0));
    // Every trail byte is announced, and every lead byte is allowed; the last byte's turn comes later.
    wrong = ((allowed | e2 << 1) ^ trails) | (allowed ^ leads << 1) | (e2 & ~isEqual(bytes, 0x80)) |
            (d1 & isAtLeast(bytes, 0xA0));
    incomplete = static_cast<unsigned>((leads >> 63) + 2 * (e2 >> 63));
    Vector mapped = mapAsciiBlock<kCase>(bytes);
    if constexpr (kCase == Case::Upper) {
        wrong |= (c2 & isEqual(bytes, 0xB5)) | (c3 & isEqual(bytes, 0xBF));
        const std::uint64_t latin = c3 & isAtLeast(bytes, 0xA0) & ~isEqual(bytes, 0xB7);
        const std::uint64_t basic = d0 & isAtLeast(bytes, 0xB0);
        const std::uint64_t toFirst = d1 & isAtLeast(bytes, 0x90);
        mapped = _mm512_mask_add_epi8(mapped, latin | basic, mapped, all(0xE0));
        mapped = _mm512_mask_add_epi8(mapped, d1 & ~toFirst, mapped, all(0x20));
        mapped = _mm512_mask_add_epi8(mapped, toFirst, mapped, all(0xF0));
        return _mm512_mask_mov_epi8(mapped, d1 >> 1, all(0xD0));
    } else {
        const std::uint64_t latin = c3 & ~(isAtLeast(bytes, 0x9F) | isEqual(bytes, 0x97));
        const std::uint64_t first = d0 & ~isAtLeast(bytes, 0x90);
        const std::uint64_t last = d0 & isAtLeast(bytes, 0xA0) & ~isAtLeast(bytes, 0xB0);
        const std::uint64_t basic = d0 & isAtLeast(bytes, 0x90) & ~isAtLeast(bytes, 0xA0);
        mapped = _mm512_mask_add_epi8(mapped, latin | basic, mapped, all(0x20));
        mapped = _mm512_mask_add_epi8(mapped, first, mapped, all(0x10));
        mapped = _mm512_mask_add_epi8(mapped, last, mapped, all(0xE0));
        return _mm512_mask_mov_epi8(mapped, (first | last) >> 1, all(0xD1));
    }
}

} // namespace

template <Case kCase>
void mapCommonUtf8(fast::CaseStretch &stretch) {
    constexpr std::size_t kBehind = 3; // bytes of a character that a block leaves incomplete
    const std::uint8_t *at = stretch.at;
    std::uint8_t *out = stretch.out;
    std::size_t room = stretch.room;
    while (at != stretch.end) {
        const auto left = static_cast<std::size_t>(stretch.end - at);
        const std::size_t size = left < kBlock ? left : kBlock;
        const Vector bytes =
            size == kBlock ? _mm512_loadu_si512(at) : _mm512_maskz_loadu_epi8(lowBits(size), at);
        if (_mm512_movepi8_mask(bytes) == 0 && size == kBlock && room >= kBlock) {
            _mm512_storeu_si512(out, mapAsciiBlock<kCase>(bytes));
            at += kBlock;
            out += kBlock;
            room -= kBlock;
            continue;
        }
        std::uint64_t wrong = 0;
        std::uint64_t trails = 0;
        unsigned incomplete = 0;
        const Vector mapped = mapCommonBlock<kCase>(bytes, wrong, trails, incomplete);
        std::size_t whole = size == kBlock ? kBlock - incomplete : size;
        if (wrong != 0) {
            // The character that the first wrong byte belongs to may begin before it.
            const std::uint64_t begins = ~trails & (_blsmsk_u64(wrong) >> 1);
            whole = begins == 0 ? 0 : 63 - static_cast<std::size_t>(_lzcnt_u64(begins));
        }
        if (whole > room)
            break;
        if (wrong == 0 && size == kBlock && room >= kBlock + kBehind)
            _mm512_storeu_si512(out, mapped);
        else
            _mm512_mask_storeu_epi8(out, lowBits(whole), mapped);
        at += whole;
        out += whole;
        room -= whole;
        if (wrong != 0)
            break;
    }
    stretch = {at, stretch.end, out, room};
}

template void mapCommonUtf8<Case::Upper>(fast::CaseStretch &);
template void mapCommonUtf8<Case::Lower>(fast::CaseStretch &);

} // namespace velnls::avx512

#else

namespace velnls::avx512 {

// Never called on other processors.
template <Case>
void mapCommonUtf8(fast::CaseStretch &) {}

template void mapCommonUtf8<Case::Upper>(fast::CaseStretch &);
template void mapCommonUtf8<Case::Lower>(fast::CaseStretch &);

} // namespace velnls::avx512

#endif
