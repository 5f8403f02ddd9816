// The BASIC order: bytes as they stand, or characters folded to lower case.
#pragma once

#include "locale/locale.hpp"
#include "locale/text.hpp"

namespace velnls {

int compareBytes(Text a, Text b);
int compareFolded(const nlsLocale &locale, Text a, Text b);

// A character folded to lower case by what the locale carries: the number of its bytes, read big-endian. Only
// single bytes have a case without the paged table of UTF-8; four-byte characters have none.
std::uint32_t foldNumber(const nlsLocale &locale, std::uint32_t number);

// The folded value of the character at text.at, its bytes read as a big-endian number; text moves past it. A
// bound or a NUL inside a character ends it early; characters of five bytes and more count as "?".
std::uint32_t takeFolded(const nlsLocale &locale, Text &text);

} // namespace velnls
