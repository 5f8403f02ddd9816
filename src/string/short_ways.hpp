// The short ways to match with page and order as constants, each pair in a function of its own.
//
// Included by the files that instantiate kernels; what it defines is local to each.
#pragma once

#include "string/short_at_once.hpp"
#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls {
namespace {

template <ShortPage kPage, ShortOrder kOrder>
[[gnu::always_inline]] inline ShortMatching knownMatching(const nlsLocale &locale, unsigned mode) {
    if constexpr (kOrder == ShortOrder::Weights)
        return {kOrder, kPage, weightsOf(*locale.collation, mode)};
    else
        return {kOrder, kPage, &factsOf(*locale.charTable)};
}

// The way for what is proved of how characters match under a mode; null where there is none. `Ways::Way` has
// it as `match`. kMaps: the masks take weights.
template <typename Ways, bool kMaps>
[[gnu::always_inline]] inline auto wayFor(std::uint32_t proofs, unsigned mode) {
    using Utf8 = typename Ways::template Way<ShortPage::Utf8, ShortOrder::Bytes>;
    using FoldedUtf8 = typename Ways::template Way<ShortPage::Utf8, ShortOrder::Ascii>;
    using Bytes = typename Ways::template Way<ShortPage::Bytes, ShortOrder::Bytes>;
    using FoldedBytes = typename Ways::template Way<ShortPage::Bytes, ShortOrder::Ascii>;
    using OtherBytes =
        typename Ways::template Way<ShortPage::Bytes, kMaps ? ShortOrder::Weights : ShortOrder::AsciiAlone>;
    using Pairs = typename Ways::template Way<ShortPage::Pairs, ShortOrder::Bytes>;
    using FoldedPairs = typename Ways::template Way<ShortPage::Pairs, ShortOrder::Ascii>;
    constexpr decltype(&Utf8::match) kNone = nullptr;
    if (mode > 1)
        return kNone;
    const bool folds = mode == 0;
    if ((proofs & matchProof(mode)) == 0) {
        const bool others =
            (proofs & kMatchesWeights) != 0 && (kMaps || (folds && (proofs & kAsciiAmongWeights) != 0));
        return others ? &OtherBytes::match : kNone;
    }
    if ((proofs & kUtf8Page) != 0)
        return folds ? &FoldedUtf8::match : &Utf8::match;
    if ((proofs & kSingleBytePage) != 0)
        return folds ? &FoldedBytes::match : &Bytes::match;
    return folds ? &FoldedPairs::match : &Pairs::match;
}

// ---- Search ---------------------------------------------------------------------------------------------

using FindCall = ShortPlaces(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                             unsigned mode);

// kClosely looks closely at UTF-8: what is said at once of other pages leaves nothing to look at.
template <typename Masks, FindCall kClosely>
struct PlacesWays {
    template <ShortPage kPage, ShortOrder kOrder>
    struct Way {
        [[gnu::noinline]] static ShortPlaces match(const nlsLocale &locale, const std::uint8_t *pattern,
                                                   const std::uint8_t *text, unsigned mode) {
            const ShortPlaces found =
                placesAtOnce<Masks>(knownMatching<kPage, kOrder>(locale, mode), pattern, text);
            if (found.settled() || kPage != ShortPage::Utf8)
                return found;
            return kClosely(locale, pattern, text, mode);
        }
    };
};

template <typename Masks, FindCall kClosely>
[[gnu::always_inline]] inline ShortPlaces findBy(const nlsLocale &locale, const std::uint8_t *pattern,
                                                 const std::uint8_t *text, unsigned mode) {
    const auto find = wayFor<PlacesWays<Masks, kClosely>, Masks::kMaps>(locale.header.proofs, mode);
    return find == nullptr ? kUnsettledPlaces : find(locale, pattern, text, mode);
}

// ---- LIKE -----------------------------------------------------------------------------------------------

// How characters match, by what the masks can do.
template <typename Masks>
ShortMatching matchingIn(const nlsLocale &locale, unsigned mode) {
    const ShortMatching matching = fast::matchingOf(locale, mode);
    if (!Masks::kMaps || (matching.order != ShortOrder::Unknown && matching.order != ShortOrder::AsciiAlone))
        return matching;
    if ((locale.header.proofs & kMatchesWeights) == 0 || mode > 1)
        return {ShortOrder::Unknown, ShortPage::Bytes, nullptr};
    return {ShortOrder::Weights, ShortPage::Bytes, weightsOf(*locale.collation, mode)};
}

// The calls are those for texts that go on behind a block, by how characters match.
template <typename Masks, LikeCall kLongByBytes, LikeCall kLongByAscii, LikeCall kLongByOthers>
struct LikeWays {
    // Page and order are variables.
    [[gnu::noinline]] static nlsStatus likeClosely(nlsLocale *locale, const char *pattern, const char *text,
                                                   LikeAsked asked) {
        const ShortLike said = shortLikeBy<Masks>(matchingIn<Masks>(*locale, asked.mode()), bytesOf(pattern),
                                                  bytesOf(text), asked.signs());
        return fast::answerOf(said, locale, pattern, text, asked);
    }

    template <ShortPage kPage, ShortOrder kOrder>
    struct Way {
        [[gnu::always_inline]] static nlsStatus likeLong(nlsLocale *locale, const char *pattern,
                                                         const char *text, LikeAsked asked) {
            if constexpr (kOrder == ShortOrder::Bytes)
                return kLongByBytes(locale, pattern, text, asked);
            else if constexpr (kOrder == ShortOrder::Ascii)
                return kLongByAscii(locale, pattern, text, asked);
            else
                return kLongByOthers(locale, pattern, text, asked);
        }
        [[gnu::noinline]] static nlsStatus match(nlsLocale *locale, const char *pattern, const char *text,
                                                 LikeAsked asked) {
            // Without AVX-512, the masks of pairs take more code than a way of their own is worth.
            if (kPage == ShortPage::Pairs && !Masks::kMaps)
                return likeClosely(locale, pattern, text, asked);
            switch (likeAtOnce<Masks>(knownMatching<kPage, kOrder>(*locale, asked.mode()), bytesOf(pattern),
                                      bytesOf(text), asked.signs())) {
            case ShortLike::No:
                return kLikeNo;
            case ShortLike::Yes:
                return kLikeYes;
            case ShortLike::Unsettled:
                return likeByPage(locale, pattern, text, asked);
            case ShortLike::TextGoesOn:
                return likeLong(locale, pattern, text, asked);
            default:
                return likeClosely(locale, pattern, text, asked);
            }
        }
    };
};

template <typename Masks, typename Ways>
[[gnu::always_inline]] inline nlsStatus likeBy(nlsLocale *locale, const char *pattern, const char *text,
                                               LikeAsked asked) {
    const auto like = wayFor<Ways, Masks::kMaps>(locale->header.proofs, asked.mode());
    return (like == nullptr ? likeByPage : like)(locale, pattern, text, asked);
}

} // namespace
} // namespace velnls

#endif
