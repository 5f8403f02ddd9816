// The short ways to search and to match by LIKE: by what is proved of the locale.
#pragma once

#include "collate/compare.hpp"
#include "string/short_fast.hpp"
#include "string/short_match.hpp"

// The kernels for processors with AVX-512; call them only where kWideVectors is proved.
namespace velnls::avx512 {

ShortPlaces shortPlaces(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text);
ShortLike shortLike(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    const ShortSigns &signs);
// What shortLike() says of a text that goes on behind its block.
ShortLike longLike(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text,
                   const ShortSigns &signs);

} // namespace velnls::avx512

namespace velnls::fast {

// The same for every processor.
ShortPlaces shortPlaces(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text);
ShortLike shortLike(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    const ShortSigns &signs);

#if defined(VELNLS_SHORT_TEXTS)

// What is proved of how characters match under a mode.
[[gnu::always_inline]] inline ShortMatching matchingOf(const nlsLocale &locale, unsigned mode) {
    const std::uint32_t proofs = locale.header.proofs;
    const bool bytes = (proofs & kSingleBytePage) != 0;
    ShortMatching matching{ShortOrder::Unknown,
                           bytes                       ? ShortPage::Bytes
                           : (proofs & kUtf8Page) != 0 ? ShortPage::Utf8
                                                       : ShortPage::Pairs,
                           {&factsOf(*locale.charTable)}};
    if (mode > 1 || locale.collation == nullptr)
        return matching;
    if ((proofs & (mode == 0 ? kMatchesAscii : kMatchesBytes)) != 0) {
        matching.order = mode == 0 ? ShortOrder::Ascii : ShortOrder::Bytes;
    } else if ((proofs & kMatchesWeights) != 0 && (proofs & kWideVectors) != 0) {
        matching.order = ShortOrder::Weights;
        matching.weights = weightsOf(*locale.collation, mode);
    }
    return matching;
}

// A pattern is used again and again: one that stands across two pages of memory is moved into a block of its
// own, as far as that takes it. A function of its own, so that others do not keep the block.
template <typename Match>
[[gnu::noinline, gnu::cold]] auto matchMoved(ShortMatching matching, const std::uint8_t *pattern, bool wide,
                                             Match match) {
    alignas(kShortBlock) std::uint8_t block[kShortBlock];
    std::size_t length = 0;
    for (; length < kShortBlock && pattern[length] != 0; ++length)
        block[length] = pattern[length];
    if (length < kShortBlock)
        block[length] = 0; // behind it stands anything, as behind any string
    return match(matching, block, wide);
}

// Calls `match` with the pattern in a block, where text and locale are for the short ways.
template <typename Result, typename Match>
[[gnu::always_inline]] inline Result matchShortly(const nlsLocale &locale, unsigned mode,
                                                  const std::uint8_t *pattern, const std::uint8_t *text,
                                                  Result unsettled, Match match) {
    if (!fitsBlock(text))
        return unsettled;
    const ShortMatching matching = matchingOf(locale, mode);
    if (matching.order == ShortOrder::Unknown)
        return unsettled;
    const bool wide = (locale.header.proofs & kWideVectors) != 0;
    return fitsBlock(pattern) ? match(matching, pattern, wide) : matchMoved(matching, pattern, wide, match);
}

[[gnu::always_inline]] inline ShortPlaces findShortly(const nlsLocale &locale, unsigned mode,
                                                      const std::uint8_t *pattern, const std::uint8_t *text) {
    return matchShortly(locale, mode, pattern, text, kUnsettledPlaces,
                        [text](ShortMatching matching, const std::uint8_t *block, bool wide) {
                            return wide ? avx512::shortPlaces(matching, block, text)
                                        : shortPlaces(matching, block, text);
                        });
}

[[gnu::always_inline]] inline ShortLike likeShortly(const nlsLocale &locale, unsigned mode,
                                                    const std::uint8_t *pattern, const std::uint8_t *text,
                                                    const ShortSigns &signs) {
    return matchShortly(locale, mode, pattern, text, ShortLike::Unsettled,
                        [text, &signs](ShortMatching matching, const std::uint8_t *block, bool wide) {
                            if (!wide)
                                return shortLike(matching, block, text, signs);
                            const ShortLike result = avx512::shortLike(matching, block, text, signs);
                            return result == ShortLike::TextGoesOn
                                       ? avx512::longLike(matching, block, text, signs)
                                       : result;
                        });
}

#else

inline ShortPlaces findShortly(const nlsLocale &, unsigned, const std::uint8_t *, const std::uint8_t *) {
    return kUnsettledPlaces;
}

inline ShortLike likeShortly(const nlsLocale &, unsigned, const std::uint8_t *, const std::uint8_t *,
                             ShortSigns) {
    return ShortLike::Unsettled;
}

#endif

} // namespace velnls::fast
