// The short ways to count: texts that one block settles, by what is proved of the locale. What they leave
// unsettled goes the general way.
#pragma once

#include "core/instruction_sets.hpp"
#include "core/read_ahead.hpp"
#include "locale/masks_sse2.hpp"
#include "string/short_text.hpp"

// Kernels for all processors of the kind, and for those with AVX-512.
#if defined(VELNLS_READS_AHEAD) && defined(VELNLS_TEXT_VECTORS) && defined(__x86_64__)
#define VELNLS_SHORT_TEXTS 1
#endif

// The kernels for processors with AVX-512; call them only where kWideVectors is proved.
namespace velnls::avx512 {

ShortCount countShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit);
ShortStretch stretchOfShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text,
                            std::uint32_t start, std::uint32_t length);

} // namespace velnls::avx512

namespace velnls::fast {

// The same for every processor.
ShortCount countShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit);
ShortStretch stretchOfShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text,
                            std::uint32_t start, std::uint32_t length);

#if defined(VELNLS_SHORT_TEXTS)

// Whether a short text may be looked at by a block.
[[gnu::always_inline]] inline bool fitsBlock(const std::uint8_t *text) {
    return staysInPage<kShortBlock>(text);
}

// Characters in the first `limit` bytes, where there are any; kChecked: trail bytes have to be valid ones.
template <bool kChecked>
[[gnu::always_inline]] inline ShortCount shortCharacters(const nlsLocale &locale, const std::uint8_t *text,
                                                         std::uint32_t limit) {
    const std::uint32_t proofs = locale.header.proofs;
    const bool utf8 = (proofs & (kChecked ? kUtf8Trails : kUtf8Page)) != 0;
    if (limit == 0 || !fitsBlock(text) || (!utf8 && (proofs & kPairPage) == 0))
        return kUnsettledCount;
    const ShortPage page = utf8 ? ShortPage::Utf8 : kChecked ? ShortPage::ValidPairs : ShortPage::Pairs;
    const PageFacts &facts = factsOf(*locale.charTable);
    return (proofs & kWideVectors) != 0 ? avx512::countShort(page, facts, text, limit)
                                        : countShort(page, facts, text, limit);
}

[[gnu::always_inline]] inline ShortStretch shortStretch(const nlsLocale &locale, const std::uint8_t *text,
                                                        std::uint32_t start, std::uint32_t length) {
    const std::uint32_t proofs = locale.header.proofs;
    if (!fitsBlock(text) || (proofs & (kUtf8Page | kPairPage)) == 0)
        return kUnsettledStretch;
    const ShortPage page = (proofs & kUtf8Page) != 0 ? ShortPage::Utf8 : ShortPage::Pairs;
    const PageFacts &facts = factsOf(*locale.charTable);
    return (proofs & kWideVectors) != 0 ? avx512::stretchOfShort(page, facts, text, start, length)
                                        : stretchOfShort(page, facts, text, start, length);
}

#else

template <bool kChecked>
inline ShortCount shortCharacters(const nlsLocale &, const std::uint8_t *, std::uint32_t) {
    return kUnsettledCount;
}

inline ShortStretch shortStretch(const nlsLocale &, const std::uint8_t *, std::uint32_t, std::uint32_t) {
    return kUnsettledStretch;
}

#endif

} // namespace velnls::fast
