#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

// Half a block holds most texts.
ShortPlaces shortPlaces(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text) {
    const ShortPlaces half = shortPlacesBy<Sse2Masks<2>>(matching, pattern, text);
    return half.settled() ? half : shortPlacesBy<Sse2Masks<4>>(matching, pattern, text);
}

ShortLike shortLike(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    const ShortSigns &signs) {
    const ShortLike half = shortLikeBy<Sse2Masks<2>>(matching, pattern, text, signs);
    return half != ShortLike::Unsettled ? half : shortLikeBy<Sse2Masks<4>>(matching, pattern, text, signs);
}

} // namespace velnls::fast

#endif
