// The short ways to match with masks that take no weights: for every set of instructions but AVX-512.
//
// Included by the files that instantiate kernels; what it defines is local to each.
#pragma once

#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls {
namespace {

template <typename Masks>
[[gnu::always_inline]] inline ShortPlaces findShortlyBy(const nlsLocale &locale, const std::uint8_t *pattern,
                                                        const std::uint8_t *text, unsigned mode) {
    const ShortMatching matching = fast::matchingOf(locale, mode);
    return matching.order == ShortOrder::Unknown ? kUnsettledPlaces
                                                 : shortPlacesBy<Masks>(matching, pattern, text);
}

template <typename Masks>
[[gnu::always_inline]] inline nlsStatus likeShortlyBy(nlsLocale *locale, const char *pattern,
                                                      const char *text, LikeAsked asked) {
    const ShortMatching matching = fast::matchingOf(*locale, asked.mode());
    if (matching.order != ShortOrder::Unknown) {
        const ShortLike said = shortLikeBy<Masks>(matching, bytesOf(pattern), bytesOf(text), asked.signs());
        if (fast::isAnswer(said))
            return fast::answerOf(said);
    }
    return likeByPage(locale, pattern, text, asked);
}

} // namespace
} // namespace velnls

#endif
