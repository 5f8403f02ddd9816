// The short ways to match on processors with AVX-512.
#include "locale/masks_avx512.hpp"
#include "string/short_ways.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::avx512 {

namespace {

[[gnu::noinline]] ShortPlaces findClosely(const nlsLocale &locale, const std::uint8_t *pattern,
                                          const std::uint8_t *text, unsigned mode) {
    const ShortMatching matching{mode == 0 ? ShortOrder::Ascii : ShortOrder::Bytes, ShortPage::Utf8,
                                 &factsOf(*locale.charTable)};
    return shortPlacesBy<WideMasks>(matching, pattern, text);
}

using Ways = LikeWays<WideMasks, likeLongByBytes, likeLongByAscii, likeLongByWeights>;

} // namespace

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode) {
    return findBy<WideMasks, findClosely>(locale, pattern, text, mode);
}

nlsStatus likeShortly(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    return likeBy<WideMasks, Ways>(locale, pattern, text, asked);
}

nlsStatus likePrefixShortly(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const ShortMatching matching = matchingIn<WideMasks>(*locale, asked.mode());
    if (matching.order == ShortOrder::Unknown)
        return likeByPage(locale, pattern, text, asked);
    const ShortLike said = likePrefixBy<WideMasks>(matching, bytesOf(pattern), bytesOf(text), asked.signs());
    return fast::answerOf(said, locale, pattern, text, asked);
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
