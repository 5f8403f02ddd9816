// The BASIC order: bytes as they stand, or characters folded to lower case.
#pragma once

#include "collate/prefix.hpp"
#include "locale/locale.hpp"
#include "locale/text.hpp"

namespace velnls {

[[gnu::always_inline]] inline int compareBytes(Text a, Text b) {
    const std::size_t alike = equalBytes(a, b);
    a.at += alike;
    b.at += alike;
    if (!a.ended() && !b.ended()) [[likely]]
        return orderOf(*a.at, *b.at);
    return compareRests(a, b);
}

int compareFolded(const nlsLocale &locale, Text a, Text b);

// Of ASCII: 20 is added to A to Z.
constexpr unsigned asciiLower(unsigned byte) {
    return byte + (byte - 'A' < 26 ? 0x20u : 0u);
}

// A character folded to lower case by what the locale carries: the number of its bytes, read big-endian. Only
// single bytes have a case without the paged table of UTF-8; four-byte characters have none.
std::uint32_t foldNumber(const nlsLocale &locale, std::uint32_t number);

// The folded value of the character at text.at, its bytes read as a big-endian number; text moves past it. A
// bound or a NUL inside a character ends it early; characters of five bytes and more count as "?".
std::uint32_t takeFolded(const nlsLocale &locale, Text &text);

} // namespace velnls
