#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

namespace {

// Half a block holds most texts, and is looked through in half the time.
using Masks = Sse2Masks<2>;

} // namespace

ShortPlaces shortPlaces(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text) {
    return shortPlacesBy<Masks>(matching, pattern, text);
}

ShortLike shortLike(ShortMatching matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    const ShortSigns &signs) {
    return shortLikeBy<Masks>(matching, pattern, text, signs);
}

} // namespace velnls::fast

#endif
