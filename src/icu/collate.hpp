// Order by an ICU collator, which a collation record of kind 5 holds in place of weights. Texts are taken as
// UTF-8, whatever the page.
#pragma once

#include "collate/record.hpp"
#include "core/file_layout.hpp"
#include "icu/functions.hpp"
#include "locale/text.hpp"
#include "velnls.h"

#include <cstddef>

namespace velnls::icu {

// Whether a record is served by ICU. A kind 5 that comes from a data file has no collator: it is weights.
inline bool isServed(const Collation &record) {
    return record.kind == file::kIcu && record.collatorOpen != 0;
}

// Opens the collator that the record's name asks for ("ICU-" and a locale of ICU) and fills both weight areas
// with it: 0 and kind 5, or 1 and kind -2 when ICU is not there or lacks the language.
nlsStatus openCollator(Collation &record);

// Closes the record's collator, if it has one.
void closeCollator(Collation &record);
void closeCollator(Collator *collator);

// The collator of a record that ICU serves.
Collator *collatorOf(const Collation &record);

// Takes out of a copied record what means something in this process only.
void clearAddresses(Collation &copy);

// Compares without blanks at the ends. Mode 1 is tertiary and 0 secondary strength; 4, 5, 6, 8 are the
// strengths 0, 1, 2, 4; any other mode leaves the result as it was. 0, 2 (no memory for a long text), 16 (no
// converter), 22 (ICU could not decode or compare).
nlsStatus compareTexts(const Collation &record, Text a, Text b, unsigned mode, int &result);

// Bits of a key's mode: one that is not looked at, and primary strength.
inline constexpr unsigned kKeyIgnored = 0x2000;
inline constexpr unsigned kKeyPrimary = 0x4000;

// Writes ICU's key, with its NUL; modes as above, and 7 too. `text` may lie in `key`. An empty text, an
// unknown mode and whatever ICU cannot do leave an empty key. 0, or 2 when the key was cut.
nlsStatus writeKey(const Collation &record, Text text, unsigned mode, std::uint8_t *key, std::size_t size);

} // namespace velnls::icu
