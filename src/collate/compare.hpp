// Comparison of strings under a locale's collation, for the exports and for everything that matches
// characters.
#pragma once

#include "locale/locale.hpp"
#include "locale/text.hpp"

namespace velnls {

// The weight table that a mode selects: 1 case-sensitive, 0 case-insensitive, any other none.
inline const std::uint8_t *weightsOf(const Collation &collation, unsigned mode) {
    if (mode > 1)
        return nullptr;
    return mode == 1 ? collation.caseSensitive : collation.caseInsensitive;
}

// The locale has a character table and a collation. 0 and the result, or 16 (no order for this mode), 7, 8.
nlsStatus compareTexts(const nlsLocale &locale, Text a, Text b, unsigned mode, int &result);

} // namespace velnls
