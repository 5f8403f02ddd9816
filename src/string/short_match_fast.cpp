#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

// Half a block holds most texts.
ShortPlaces shortPlaces(const ShortMatching &matching, const std::uint8_t *pattern,
                        const std::uint8_t *text) {
    return onPage(matching, [&](const auto &page, const auto &order) {
        const ShortPlaces half = shortPlacesBy<Sse2Masks<2>>(page, order, pattern, text);
        return half.settled() ? half : shortPlacesBy<Sse2Masks<4>>(page, order, pattern, text);
    });
}

ShortLike shortLike(const ShortMatching &matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    const ShortSigns &signs) {
    return onPage(matching, [&](const auto &page, const auto &order) {
        const ShortLike half = shortLikeBy<Sse2Masks<2>>(page, order, pattern, text, signs);
        return half != ShortLike::Unsettled ? half
                                            : shortLikeBy<Sse2Masks<4>>(page, order, pattern, text, signs);
    });
}

} // namespace velnls::fast

#endif
