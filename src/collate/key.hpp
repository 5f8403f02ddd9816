// Sort keys under a locale's collation.
#pragma once

#include "locale/locale.hpp"
#include "locale/text.hpp"

#include <cstddef>

namespace velnls {

// Writes the NUL-terminated key of `text`, which ends at its bound or NUL, into a buffer of `size` bytes.
// Leaves the buffer as it is where the mode selects no BASIC key or a BASIC source is too long. `trimKey`:
// cut trailing 0x20 bytes of a weight key. 0, or 2 (ICU had to cut the key), or 7 or 8 where the Shift-JIS
// companion is missing, or 25 where the user sort exit is: nothing is written then.
nlsStatus writeSortKey(const nlsLocale &locale, Text text, unsigned mode, bool trimKey, std::uint8_t *key,
                       std::size_t size);

// Whether keys of this collation spell an expanding character as the letters "SS".
inline bool spellsLiteralSs(const Collation &collation) {
    return collation.kind == file::kWeights && collation.variant == 0;
}

// The weight key alone, as words are keyed too.
nlsStatus writeTableKey(const nlsLocale &locale, Text text, unsigned mode, bool trimKey, std::uint8_t *key,
                        std::size_t size);

} // namespace velnls
