// The short ways to search and to match by LIKE: by what is proved of the locale.
#pragma once

#include "collate/compare.hpp"
#include "string/short_fast.hpp"
#include "string/short_match.hpp"

// The kernels for processors with AVX-512; call them only where kWideVectors is proved.
namespace velnls::avx512 {

ShortPlaces shortPlaces(const ShortMatching &matching, const std::uint8_t *pattern, const std::uint8_t *text);
ShortLike shortLike(const ShortMatching &matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    ShortSigns signs);

} // namespace velnls::avx512

namespace velnls::fast {

// The same for every processor.
ShortPlaces shortPlaces(const ShortMatching &matching, const std::uint8_t *pattern, const std::uint8_t *text);
ShortLike shortLike(const ShortMatching &matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    ShortSigns signs);

// What is proved of how characters match under a mode; without any of the bits for it where that is not
// proved, or where one of the strings may not be looked at by a block.
[[gnu::always_inline]] inline ShortMatching
matchingOf(const nlsLocale &locale, unsigned mode, const std::uint8_t *pattern, const std::uint8_t *text) {
    const std::uint32_t proofs = locale.header.proofs;
    const PageFacts &facts = factsOf(*locale.charTable);
    if (mode > 1 || locale.collation == nullptr || !fitsBlock(pattern) || !fitsBlock(text))
        return {0, facts, nullptr, false};
    if ((proofs & (mode == 0 ? kMatchesAscii : kMatchesBytes)) != 0)
        return {proofs, facts, nullptr, mode == 0};
    if ((proofs & kMatchesWeights) != 0 && (proofs & kWideVectors) != 0)
        return {proofs, facts, weightsOf(*locale.collation, mode), false};
    return {0, facts, nullptr, false};
}

[[gnu::always_inline]] inline ShortPlaces findShortly(const nlsLocale &locale, unsigned mode,
                                                      const std::uint8_t *pattern, const std::uint8_t *text) {
    const ShortMatching matching = matchingOf(locale, mode, pattern, text);
    if (matching.proofs == 0)
        return kUnsettledPlaces;
    return (matching.proofs & kWideVectors) != 0 ? avx512::shortPlaces(matching, pattern, text)
                                                 : shortPlaces(matching, pattern, text);
}

[[gnu::always_inline]] inline ShortLike likeShortly(const nlsLocale &locale, unsigned mode,
                                                    const std::uint8_t *pattern, const std::uint8_t *text,
                                                    ShortSigns signs) {
    const ShortMatching matching = matchingOf(locale, mode, pattern, text);
    if (matching.proofs == 0)
        return ShortLike::Unsettled;
    return (matching.proofs & kWideVectors) != 0 ? avx512::shortLike(matching, pattern, text, signs)
                                                 : shortLike(matching, pattern, text, signs);
}

} // namespace velnls::fast
