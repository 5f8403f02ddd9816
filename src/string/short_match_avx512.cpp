// The short ways to match on processors with AVX-512.
#include "locale/masks_avx512.hpp"
#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::avx512 {

namespace {

template <ShortPage kPage, ShortOrder kOrder, typename Match>
[[gnu::always_inline]] inline auto matchKnown(ShortMatching matching, Match match) {
    matching.page = kPage;
    matching.order = kOrder;
    return match(matching);
}

// Calls `match` with page and order as constants: the code for each pair is by itself.
template <typename Match>
[[gnu::always_inline]] inline auto matchBy(ShortMatching matching, Match match) {
    const bool folds = matching.order == ShortOrder::Ascii;
    switch (matching.page) {
    case ShortPage::Utf8:
        return folds ? matchKnown<ShortPage::Utf8, ShortOrder::Ascii>(matching, match)
                     : matchKnown<ShortPage::Utf8, ShortOrder::Bytes>(matching, match);
    case ShortPage::Bytes:
        if (matching.order == ShortOrder::Weights)
            return matchKnown<ShortPage::Bytes, ShortOrder::Weights>(matching, match);
        return folds ? matchKnown<ShortPage::Bytes, ShortOrder::Ascii>(matching, match)
                     : matchKnown<ShortPage::Bytes, ShortOrder::Bytes>(matching, match);
    default:
        return folds ? matchKnown<ShortPage::Pairs, ShortOrder::Ascii>(matching, match)
                     : matchKnown<ShortPage::Pairs, ShortOrder::Bytes>(matching, match);
    }
}

} // namespace

ShortPlaces shortPlaces(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text) {
    return matchBy(
        matching, [=](ShortMatching known) __attribute__((always_inline)) {
            return shortPlacesBy<WideMasks>(known, pattern, text);
        });
}

ShortLike shortLike(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    const ShortSigns &signs) {
    return matchBy(
        matching, [ =, &signs ](ShortMatching known) __attribute__((always_inline)) {
            return shortLikeBy<WideMasks>(known, pattern, text, signs);
        });
}

} // namespace velnls::avx512

#endif
