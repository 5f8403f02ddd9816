#include "string/count_fast.hpp"

#include "core/instruction_sets.hpp"
#include "locale/masks_sse2.hpp"

namespace velnls::fast {

#if defined(VELNLS_TEXT_VECTORS)

namespace {

using Masks = Sse2Masks<4>;
using Half = Sse2Masks<2>;
using Quarter = Sse2Masks<1>;

bool isWide(const nlsLocale &locale) {
    return (locale.header.proofs & kWideVectors) != 0;
}

} // namespace

Passed countCharacters(const nlsLocale &locale, const std::uint8_t *text, std::size_t length) {
    if ((locale.header.proofs & kUtf8Page) != 0)
        return isWide(locale) ? avx512::countUtf8(text, length)
                              : countUtf8By<Masks, Half, Quarter>(text, length);
    if ((locale.header.proofs & kPairPage) != 0) {
        const PageFacts &facts = factsOf(*locale.charTable);
        return isWide(locale) ? avx512::countPairs(facts, text, length)
                              : countPairsBy<false, Masks, Half, Quarter>(facts, text, length);
    }
    return {0, 0};
}

Passed countValid(const nlsLocale &locale, const std::uint8_t *text, std::size_t length) {
    if ((locale.header.proofs & kUtf8Trails) != 0)
        return countCharacters(locale, text, length);
    if ((locale.header.proofs & kPairPage) != 0) {
        const PageFacts &facts = factsOf(*locale.charTable);
        return isWide(locale) ? avx512::countValidPairs(facts, text, length)
                              : countPairsBy<true, Masks, Half, Quarter>(facts, text, length);
    }
    return {0, 0};
}

Passed countColumns(const nlsLocale &locale, const std::uint8_t *text, std::size_t length) {
    if ((locale.header.proofs & kUtf8Page) != 0)
        return isWide(locale) ? avx512::columnsUtf8(text, length) : columnsUtf8By<Masks, Half>(text, length);
    if ((locale.header.proofs & kNarrowLeads) == 0)
        return {0, 0};
    const PageFacts &facts = factsOf(*locale.charTable);
    return isWide(locale) ? avx512::narrowColumns(facts, text, length)
                          : narrowColumnsBy<Masks, Half>(facts, text, length);
}

#else

Passed countCharacters(const nlsLocale &, const std::uint8_t *, std::size_t) {
    return {0, 0};
}

Passed countValid(const nlsLocale &, const std::uint8_t *, std::size_t) {
    return {0, 0};
}

Passed countColumns(const nlsLocale &, const std::uint8_t *, std::size_t) {
    return {0, 0};
}

#endif

} // namespace velnls::fast
