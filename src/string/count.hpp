// Counting of characters, bytes and columns, and the check of text against its code page.
#pragma once

#include "locale/locale.hpp"
#include "velnls.h"

#include <cstddef>

namespace velnls {

// Characters in the first `limit` bytes of a text that a NUL may end before: 0, or NLS_R_CUT where either
// falls inside one.
nlsStatus countCharacters(const nlsLocale &locale, const std::uint8_t *text, std::uint32_t limit,
                          std::uint32_t &count);

// The same as far as whole characters reach, and the bytes of these.
std::uint32_t countWhole(const nlsLocale &locale, const std::uint8_t *text, std::uint32_t limit,
                         std::uint32_t &count);

// Bytes of the first `wanted` characters of a text of `length` bytes: 0, or NLS_R_CUT where a character is
// longer than the whole text.
nlsStatus countBytes(const CharTable &table, const std::uint8_t *text, std::uint32_t length,
                     std::uint32_t wanted, std::uint32_t &bytes);

// Display columns of the characters that begin within the first `limit` bytes. False where a NUL stands among
// these bytes: nothing is counted then.
bool countColumns(const nlsLocale &locale, const std::uint8_t *text, std::uint32_t limit,
                  std::uint32_t &columns);

// Checks of `length` bytes; `count` tells what was accepted before the verdict: 0, 16, 20 (a NUL), 33,
// NLS_R_CUT.
nlsStatus validateBytes(const nlsLocale &locale, const std::uint8_t *data, std::int32_t length,
                        std::uint32_t &count);
nlsStatus validateUtf16(const std::uint8_t *data, std::int32_t length, bool bigEndian, std::uint32_t &count);
nlsStatus validateUtf32(const std::uint8_t *data, std::int32_t length, bool bigEndian, std::uint32_t &count);

} // namespace velnls
