// The short ways to match on processors with AVX-512.
#include "locale/masks_avx512.hpp"
#include "string/short_at_once.hpp"
#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::avx512 {

namespace {

// ---- What is looked at closely: page and order are variables --------------------------------------------

ShortMatching matchingIn(const nlsLocale &locale, unsigned mode) {
    const ShortMatching matching = fast::matchingOf(locale, mode);
    if (matching.order != ShortOrder::Unknown && matching.order != ShortOrder::AsciiAlone)
        return matching;
    if ((locale.header.proofs & kMatchesWeights) == 0 || mode > 1)
        return {ShortOrder::Unknown, ShortPage::Bytes, nullptr};
    return {ShortOrder::Weights, ShortPage::Bytes, weightsOf(*locale.collation, mode)};
}

// In UTF-8: what is said at once of other pages leaves nothing to look at.
[[gnu::noinline]] ShortPlaces findClosely(const nlsLocale &locale, const std::uint8_t *pattern,
                                          const std::uint8_t *text, unsigned mode) {
    const ShortMatching matching{mode == 0 ? ShortOrder::Ascii : ShortOrder::Bytes, ShortPage::Utf8,
                                 &factsOf(*locale.charTable)};
    return shortPlacesBy<WideMasks>(matching, pattern, text);
}

[[gnu::noinline]] nlsStatus likeClosely(nlsLocale *locale, const char *pattern, const char *text,
                                        LikeAsked asked) {
    const ShortLike said = shortLikeBy<WideMasks>(matchingIn(*locale, asked.mode()), bytesOf(pattern),
                                                  bytesOf(text), asked.signs());
    return fast::isAnswer(said) ? fast::answerOf(said) : likeByPage(locale, pattern, text, asked);
}

// ---- What is said at once: with page and order as constants, each pair in a function of its own ---------

template <ShortPage kPage, ShortOrder kOrder>
[[gnu::always_inline]] inline ShortMatching known(const nlsLocale &locale, unsigned mode) {
    if constexpr (kOrder == ShortOrder::Weights)
        return {kOrder, kPage, weightsOf(*locale.collation, mode)};
    else
        return {kOrder, kPage, &factsOf(*locale.charTable)};
}

template <ShortPage kPage, ShortOrder kOrder>
struct Places {
    [[gnu::noinline]] static ShortPlaces match(const nlsLocale &locale, const std::uint8_t *pattern,
                                               const std::uint8_t *text, unsigned mode) {
        const ShortPlaces found = placesAtOnce<WideMasks>(known<kPage, kOrder>(locale, mode), pattern, text);
        // A page of single bytes leaves nothing to look at, and one of pairs has been.
        if (found.settled() || kPage != ShortPage::Utf8)
            return found;
        return findClosely(locale, pattern, text, mode);
    }
};

template <ShortPage kPage, ShortOrder kOrder>
struct Like {
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
            return (kOrder == ShortOrder::Bytes   ? likeLongByBytes
                    : kOrder == ShortOrder::Ascii ? likeLongByAscii
                                                  : likeLongByWeights)(locale, pattern, text, asked);
        default:
            return likeClosely(locale, pattern, text, asked);
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
    return folds ? &By<ShortPage::Pairs, ShortOrder::Ascii>::match
                 : &By<ShortPage::Pairs, ShortOrder::Bytes>::match;
}

} // namespace

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode) {
    const auto find = wayFor<Places>(locale.header.proofs, mode);
    return find == nullptr ? kUnsettledPlaces : find(locale, pattern, text, mode);
}

nlsStatus likeShortly(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const auto like = wayFor<Like>(locale->header.proofs, asked.mode());
    return like == nullptr ? likeByPage(locale, pattern, text, asked) : like(locale, pattern, text, asked);
}

nlsStatus likeFromStart(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const ShortMatching matching = matchingIn(*locale, asked.mode());
    if (matching.order == ShortOrder::Unknown)
        return likeByPage(locale, pattern, text, asked);
    const ShortLike said = likePrefixBy<WideMasks>(matching, bytesOf(pattern), bytesOf(text), asked.signs());
    return fast::isAnswer(said) ? fast::answerOf(said) : likeByPage(locale, pattern, text, asked);
}

[[gnu::cold]] bool moveFromPageEnd(const std::uint8_t *string, std::uint8_t *block) {
    const std::size_t before = kShortBlock - leftInPage(string);
    const __m512i last = _mm512_loadu_si512(string - before);
    const std::uint64_t mask = ~std::uint64_t{0} << before;
    _mm512_store_si512(block, _mm512_maskz_compress_epi8(mask, last));
    return _mm512_mask_testn_epi8_mask(mask, last, last) != 0;
}

} // namespace velnls::avx512

#endif
