// The short ways to match on processors with AVX2.
#include "string/short_ways.hpp"

#if defined(VELNLS_SHORT_TEXTS)

#include "locale/masks_avx2.hpp"

namespace velnls::avx2 {

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode) {
    return findBy<Masks<1>, fast::findShortly>(locale, pattern, text, mode);
}

nlsStatus likeShortly(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    return likeBy<Masks<2>, LikeWays<Masks<2>, likeByPage, likeByPage, likeByPage>>(locale, pattern, text,
                                                                                    asked);
}

} // namespace velnls::avx2

#endif
