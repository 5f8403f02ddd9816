// Every converter once more, as plain as it can be written: what the library's converters are compared with.
#pragma once

#include "converted.hpp"
#include "data_file.hpp"
#include "mapping_table.hpp"

namespace reference {

using fixture::Bytes;
using fixture::Converted;

// Shift_JIS to EUC-JP and back, by arithmetic.
Converted shiftJisToEuc(const Bytes &source, std::uint32_t capacity);
Converted eucToShiftJis(const Bytes &source, std::uint32_t capacity);

// A byte page to UTF-8 by a table of 256 characters, padding what it leaves behind when there is no room.
Converted byteToUtf8(const Bytes &source, std::uint32_t capacity, const std::vector<std::uint16_t> &units);
// UTF-8 to that byte page.
Converted utf8ToByte(const Bytes &source, std::uint32_t capacity, const std::vector<std::uint16_t> &units);

struct ByteOrder {
    bool swapSource = false;
    bool swapTarget = false;
};

// Between the Unicode encoding forms.
Converted utf16ToUtf8(const Bytes &source, std::uint32_t capacity, ByteOrder order = {});
Converted utf32ToUtf8(const Bytes &source, std::uint32_t capacity, ByteOrder order = {});
Converted utf8ToUtf16(const Bytes &source, std::uint32_t capacity, ByteOrder order = {},
                      unsigned char behind = 0);
Converted utf8ToUtf32(const Bytes &source, std::uint32_t capacity, ByteOrder order = {},
                      unsigned char behind = 0);
Converted utf16ToUtf32(const Bytes &source, std::uint32_t capacity, ByteOrder order = {});
Converted utf32ToUtf16(const Bytes &source, std::uint32_t capacity, ByteOrder order = {});

// Between a page with a mapping table and Unicode.
Converted pageToUtf8(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                     const fixture::ByteTable &attributes);
Converted pageToUtf16(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                      const fixture::ByteTable &attributes, ByteOrder order = {});
Converted utf8ToPage(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                     unsigned char behind = 0);
Converted utf16ToPage(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                      ByteOrder order = {});

// UTF-8 of one character by length alone.
Bytes utf8Of(std::uint32_t character);

} // namespace reference
