// Case by blocks of 64 bytes, for processors with AVX-512: long texts here, whole short ones in
// short_text_avx512.cpp.
#include "locale/case_fast.hpp"

#include "core/utf8_boundary.hpp"
#include "locale/case_blocks_avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

namespace velnls::avx512 {

template <Case kCase>
void mapCommonUtf8(fast::CaseStretch &stretch) {
    constexpr std::size_t kBehind = 3; // bytes of a character that a block leaves incomplete
    fast::CaseStretch rest = stretch;  // in registers, which a stretch of the caller's is not
    while (rest.at != rest.end) {
        const auto left = static_cast<std::size_t>(rest.end - rest.at);
        const std::size_t size = left < kBlock ? left : kBlock;
        const Vector bytes =
            size == kBlock ? _mm512_loadu_si512(rest.at) : _mm512_maskz_loadu_epi8(lowBits(size), rest.at);
        if (_mm512_movepi8_mask(bytes) == 0 && size == kBlock && rest.room >= kBlock) {
            _mm512_storeu_si512(rest.out, mapAsciiBlock<kCase>(bytes, ~std::uint64_t{0}));
            rest.advance(kBlock);
            continue;
        }
        std::uint64_t wrong = 0;
        std::uint64_t trails = 0;
        const Vector mapped = mapCommonBlock<kCase>(bytes, wrong, trails);
        std::size_t whole = size == kBlock ? kBlock - incompleteBefore<3>(rest.at + kBlock) : size;
        if (wrong != 0) {
            // The character that the first wrong byte belongs to may begin before it.
            const std::uint64_t begins = ~trails & (_blsmsk_u64(wrong) >> 1);
            whole = begins == 0 ? 0 : 63 - static_cast<std::size_t>(_lzcnt_u64(begins));
        }
        if (whole > rest.room)
            break;
        if (wrong == 0 && size == kBlock && rest.room >= kBlock + kBehind)
            _mm512_storeu_si512(rest.out, mapped);
        else
            _mm512_mask_storeu_epi8(rest.out, lowBits(whole), mapped);
        rest.advance(whole);
        if (wrong != 0)
            break;
    }
    stretch = rest;
}

template <Case kCase>
void mapPairs(const PageFacts &facts, fast::CaseStretch &stretch) {
    fast::CaseStretch rest = stretch; // in registers, which a stretch of the caller's is not
    std::uint64_t pending = 0;
    while (rest.at != rest.end) {
        const auto left = static_cast<std::size_t>(rest.end - rest.at);
        const std::size_t size = left < kBlock ? left : kBlock;
        const WideMasks masks = size == kBlock ? WideMasks(rest.at) : WideMasks(rest.at, size);
        std::uint64_t pendingBehind = pending;
        const std::uint64_t trails = pairTrails(leadsOf(masks, facts), pendingBehind);
        if (size != kBlock)
            pendingBehind = trails >> size & 1;
        // A lead byte is stored only where its trail byte fits too.
        if (size + pendingBehind > rest.room)
            break;
        pending = pendingBehind;
        const Vector mapped = mapAsciiBlock<kCase>(masks.bytes(), ~trails);
        if (size == kBlock)
            _mm512_storeu_si512(rest.out, mapped);
        else
            _mm512_mask_storeu_epi8(rest.out, lowBits(size), mapped);
        rest.advance(size);
    }
    // A lead byte without its trail byte is left to the caller.
    rest.stepBack(pending);
    stretch = rest;
}

template void mapCommonUtf8<Case::Upper>(fast::CaseStretch &);
template void mapCommonUtf8<Case::Lower>(fast::CaseStretch &);
template void mapPairs<Case::Upper>(const PageFacts &, fast::CaseStretch &);
template void mapPairs<Case::Lower>(const PageFacts &, fast::CaseStretch &);

} // namespace velnls::avx512

#else

namespace velnls::avx512 {

// Never called on other processors.
template <Case>
void mapCommonUtf8(fast::CaseStretch &) {}
template <Case>
void mapPairs(const PageFacts &, fast::CaseStretch &) {}

template void mapCommonUtf8<Case::Upper>(fast::CaseStretch &);
template void mapCommonUtf8<Case::Lower>(fast::CaseStretch &);
template void mapPairs<Case::Upper>(const PageFacts &, fast::CaseStretch &);
template void mapPairs<Case::Lower>(const PageFacts &, fast::CaseStretch &);

} // namespace velnls::avx512

#endif
