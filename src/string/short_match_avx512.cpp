// The short ways to match on processors with AVX-512.
#include "locale/masks_avx512.hpp"
#include "string/short_at_once.hpp"
#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::avx512 {

namespace {

// ---- What is looked at closely: the order of matching is a variable, and the page unless it is one of pairs
// ------

// Where a way for the mode is known.
template <bool kPairs>
[[gnu::always_inline]] inline ShortMatching matchingIn(const nlsLocale &locale, unsigned mode) {
    ShortMatching matching = fast::matchingOf(locale, mode);
    if constexpr (kPairs)
        matching.page = ShortPage::Pairs;
    else if (matching.order == ShortOrder::Unknown || matching.order == ShortOrder::AsciiAlone)
        return {ShortOrder::Weights, ShortPage::Bytes, weightsOf(*locale.collation, mode)};
    return matching;
}

template <bool kPairs>
[[gnu::noinline]] ShortPlaces findClosely(const nlsLocale &locale, const std::uint8_t *pattern,
                                          const std::uint8_t *text, unsigned mode) {
    return shortPlacesBy<WideMasks>(matchingIn<kPairs>(locale, mode), pattern, text);
}

[[gnu::always_inline]] inline LikeCall *likeLongBy(ShortOrder order) {
    return order == ShortOrder::Bytes   ? likeLongByBytes
           : order == ShortOrder::Ascii ? likeLongByAscii
                                        : likeLongByWeights;
}

template <bool kPairs>
[[gnu::noinline]] nlsStatus likeClosely(nlsLocale *locale, const char *pattern, const char *text,
                                        LikeAsked asked) {
    const ShortMatching matching = matchingIn<kPairs>(*locale, asked.mode());
    const ShortLike said =
        shortLikeBy<WideMasks>(matching, bytesOf(pattern), bytesOf(text), asked.signs());
    if (fast::isAnswer(said))
        return fast::answerOf(said);
    return (said == ShortLike::TextGoesOn ? likeLongBy(matching.order) : likeByPage)(locale, pattern, text,
                                                                                    asked);
}

// ---- What is said at once: with page and order as constants, each pair in a function of its own
// ---------------

template <ShortPage kPage, ShortOrder kOrder>
[[gnu::always_inline]] inline ShortMatching known(const nlsLocale &locale, unsigned mode) {
    if constexpr (kOrder == ShortOrder::Weights)
        return {kOrder, kPage, weightsOf(*locale.collation, mode)};
    else
        return {kOrder, kPage, &factsOf(*locale.charTable)};
}

template <ShortPage kPage, ShortOrder kOrder>
struct Places {
    static constexpr auto kOfPairs = &findClosely<true>;
    [[gnu::noinline]] static ShortPlaces match(const nlsLocale &locale, const std::uint8_t *pattern,
                                               const std::uint8_t *text, unsigned mode) {
        const ShortPlaces found = placesAtOnce<WideMasks>(known<kPage, kOrder>(locale, mode), pattern, text);
        // A page of single bytes leaves nothing to look at.
        if (found.settled() || kPage == ShortPage::Bytes)
            return found;
        return findClosely<false>(locale, pattern, text, mode);
    }
};

template <ShortPage kPage, ShortOrder kOrder>
struct Like {
    static constexpr auto kOfPairs = &likeClosely<true>;
    [[gnu::noinline]] static nlsStatus match(nlsLocale *locale, const char *pattern, const char *text,
                                             LikeAsked asked) {
        switch (likeAtOnce<WideMasks>(known<kPage, kOrder>(*locale, asked.mode()), bytesOf(pattern),
                                      bytesOf(text), asked.signs())) {
        case ShortLike::No:
            return kLikeNo;
        case ShortLike::Yes:
            return kLikeYes;
        case ShortLike::Unsettled:
            return likeByPage(locale, pattern, text, asked);
        case ShortLike::TextGoesOn:
            return likeLongBy(kOrder)(locale, pattern, text, asked);
        default:
            return likeClosely<false>(locale, pattern, text, asked);
        }
    }
};

// The way for what is proved of how characters match under a mode; null where there is none.
template <template <ShortPage, ShortOrder> typename By>
[[gnu::always_inline]] inline auto wayFor(std::uint32_t proofs, unsigned mode) {
    using Utf8 = By<ShortPage::Utf8, ShortOrder::Bytes>;
    constexpr decltype(&Utf8::match) kNone = nullptr;
    if (mode > 1)
        return kNone;
    const bool folds = mode == 0;
    if ((proofs & (folds ? kMatchesAscii : kMatchesBytes)) == 0)
        return (proofs & kMatchesWeights) != 0 ? &By<ShortPage::Bytes, ShortOrder::Weights>::match : kNone;
    if ((proofs & kUtf8Page) != 0)
        return folds ? &By<ShortPage::Utf8, ShortOrder::Ascii>::match : &Utf8::match;
    if ((proofs & kSingleBytePage) != 0)
        return folds ? &By<ShortPage::Bytes, ShortOrder::Ascii>::match
                     : &By<ShortPage::Bytes, ShortOrder::Bytes>::match;
    return Utf8::kOfPairs;
}

} // namespace

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode) {
    const auto find = wayFor<Places>(locale.header.proofs, mode);
    if (!fast::fitsBlock(text) || find == nullptr)
        return kUnsettledPlaces;
    return fast::fitsBlock(pattern) ? find(locale, pattern, text, mode)
                                    : fast::findMoved(locale, pattern, text, mode);
}

nlsStatus likeShortly(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const auto like = wayFor<Like>(locale->header.proofs, asked.mode());
    if (like == nullptr)
        return likeByPage(locale, pattern, text, asked);
    if (!fast::fitsBlock(bytesOf(pattern)))
        return fast::likeMoved(locale, pattern, text, asked);
    return like(locale, pattern, text, asked);
}

} // namespace velnls::avx512

#endif
