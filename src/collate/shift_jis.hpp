// The companion of a page that collates through Shift-JIS: its locale and the conversion to it.
#pragma once

#include "locale/locale.hpp"
#include "locale/text.hpp"

namespace velnls {

struct ShiftJisWay {
    const CharTable *chars; // of the Shift-JIS locale
    const void *converter;  // from the page to Shift-JIS; null: they are the same
};

// Looks both up on the handle's object list: 0, 7 (no such locale) or 8 (no such conversion).
nlsStatus findShiftJisWay(const nlsLocale &locale, ShiftJisWay &way);

// The character at text.at, 1 or 2 bytes, converted; text moves past it. The number of bytes written, 1 or 2.
unsigned takeAsShiftJis(const CharTable &pageChars, const ShiftJisWay &way, Text &text,
                        std::uint8_t (&out)[2]);

} // namespace velnls
