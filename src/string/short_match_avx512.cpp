// The short ways to match on processors with AVX-512.
#include "locale/masks_avx512.hpp"
#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::avx512 {

ShortPlaces shortPlaces(const ShortMatching &matching, const std::uint8_t *pattern,
                        const std::uint8_t *text) {
    if (matching.weights != nullptr)
        return shortPlacesBy<WideMasks>(ShortBytes(), ShortByWeights(matching.weights), pattern, text);
    return onPage(matching, [&](const auto &page, const auto &order) {
        return shortPlacesBy<WideMasks>(page, order, pattern, text);
    });
}

ShortLike shortLike(const ShortMatching &matching, const std::uint8_t *pattern, const std::uint8_t *text,
                    const ShortSigns &signs) {
    if (matching.weights != nullptr)
        return shortLikeBy<WideMasks>(ShortBytes(), ShortByWeights(matching.weights), pattern, text, signs);
    return onPage(matching, [&](const auto &page, const auto &order) {
        return shortLikeBy<WideMasks>(page, order, pattern, text, signs);
    });
}

} // namespace velnls::avx512

#endif
