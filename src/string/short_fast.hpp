// The short ways to count: texts that one block settles, by what is proved of the locale. What they leave
// unsettled goes the general way.
#pragma once

#include "convert/kernels/instruction_sets.hpp"
#include "core/read_ahead.hpp"
#include "locale/masks_sse2.hpp"
#include "string/short_text.hpp"

#if defined(VELNLS_READS_AHEAD) && defined(VELNLS_TEXT_VECTORS)
#define VELNLS_SHORT_TEXTS 1
#endif

// The kernels for processors with AVX-512; call them only where kWideVectors is proved.
namespace velnls::avx512 {

ShortCount shortUtf8(const std::uint8_t *text, std::uint32_t limit);
ShortCount shortPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit);
ShortCount shortValidPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit);
ShortStretch shortUtf8Stretch(const std::uint8_t *text, std::uint32_t start, std::uint32_t length);
ShortStretch shortPairsStretch(const PageFacts &facts, const std::uint8_t *text, std::uint32_t start,
                               std::uint32_t length);

} // namespace velnls::avx512

namespace velnls::fast {

// The same for every processor.
ShortCount shortUtf8(const std::uint8_t *text, std::uint32_t limit);
ShortCount shortPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit);
ShortCount shortValidPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit);
ShortStretch shortUtf8Stretch(const std::uint8_t *text, std::uint32_t start, std::uint32_t length);
ShortStretch shortPairsStretch(const PageFacts &facts, const std::uint8_t *text, std::uint32_t start,
                               std::uint32_t length);

// Whether a short text may be looked at by a block.
[[gnu::always_inline]] inline bool fitsBlock([[maybe_unused]] const std::uint8_t *text) {
#if defined(VELNLS_SHORT_TEXTS)
    return leftInPage(text) >= kShortBlock;
#else
    return false;
#endif
}

// Characters in the first `limit` bytes, where there are any; kChecked: trail bytes have to be valid ones.
template <bool kChecked>
[[gnu::always_inline]] inline ShortCount shortCharacters(const nlsLocale &locale, const std::uint8_t *text,
                                                         std::uint32_t limit) {
    const std::uint32_t proofs = locale.header.proofs;
    if (limit == 0 || !fitsBlock(text))
        return kUnsettledCount;
    const bool wide = (proofs & kWideVectors) != 0;
    if ((proofs & (kChecked ? kUtf8Trails : kUtf8Page)) != 0)
        return wide ? avx512::shortUtf8(text, limit) : shortUtf8(text, limit);
    if ((proofs & kPairPage) == 0)
        return kUnsettledCount;
    const PageFacts &facts = factsOf(*locale.charTable);
    if (kChecked)
        return wide ? avx512::shortValidPairs(facts, text, limit) : shortValidPairs(facts, text, limit);
    return wide ? avx512::shortPairs(facts, text, limit) : shortPairs(facts, text, limit);
}

[[gnu::always_inline]] inline ShortStretch shortStretch(const nlsLocale &locale, const std::uint8_t *text,
                                                        std::uint32_t start, std::uint32_t length) {
    const std::uint32_t proofs = locale.header.proofs;
    if (!fitsBlock(text))
        return {0, 0, 0, false};
    const bool wide = (proofs & kWideVectors) != 0;
    if ((proofs & kUtf8Page) != 0)
        return wide ? avx512::shortUtf8Stretch(text, start, length) : shortUtf8Stretch(text, start, length);
    if ((proofs & kPairPage) == 0)
        return {0, 0, 0, false};
    const PageFacts &facts = factsOf(*locale.charTable);
    return wide ? avx512::shortPairsStretch(facts, text, start, length)
                : shortPairsStretch(facts, text, start, length);
}

} // namespace velnls::fast
