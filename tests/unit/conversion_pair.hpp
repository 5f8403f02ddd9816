// Libraries with just enough code pages for one conversion.
#pragma once

#include "converted.hpp"
#include "library_fixture.hpp"
#include "mapping_table.hpp"
#include "status_rows.hpp"

#include <vector>

namespace unit {

using fixture::Bytes;
using fixture::Converted;
using Types = std::initializer_list<unsigned char>;

// Two single-byte pages A and B and a conversion of the given type between them.
inline fixture::DataFile pairOfType(unsigned char type) {
    fixture::DataFile file;
    file.codePage("A", fixture::CharacterTable::singleByte());
    file.codePage("B", fixture::CharacterTable::singleByte());
    file.conversion("A", "B", type);
    return file;
}

// As above with a byte map.
inline fixture::DataFile pairOfMap(const fixture::ByteTable &map, int type = 1) {
    fixture::DataFile file;
    file.codePage("A", fixture::CharacterTable::singleByte());
    file.codePage("B", fixture::CharacterTable::singleByte());
    file.conversion("A", "B", type, Bytes(map.begin(), map.end()));
    return file;
}

// A byte page S by a table of 256 units, with UTF-8: types 19 or 51, and 20.
inline fixture::DataFile byteUnicodePair(const std::vector<std::uint16_t> &units, unsigned char type = 19) {
    fixture::DataFile file;
    file.codePage("S", fixture::CharacterTable::singleByte());
    file.codePage("UTF-8", fixture::CharacterTable::utf8());
    file.conversion("S", "UTF-8", type, fixture::units16(units), type);
    file.conversion("UTF-8", "S", 20);
    return file;
}

// 256 units without two that claim one slot: ASCII, then two-byte and three-byte characters.
inline std::vector<std::uint16_t> someUnits() {
    std::vector<std::uint16_t> units;
    for (unsigned b = 0; b < 256; ++b)
        units.push_back(fixture::halfOf(b < 0x80 ? b : b < 0xC0 ? 0x400 + b : 0x20AC + b));
    return units;
}

// A double-byte page P by its mapping, with UTF-8 and, through it, with UTF-16 of both byte orders.
inline fixture::DataFile
mappedPage(const fixture::Mapping &mapping, unsigned char toUtf8 = 17, unsigned char fromUtf8 = 18,
           const fixture::CharacterTable &page = fixture::CharacterTable::doubleByte()) {
    fixture::DataFile file;
    file.codePage("P", page);
    file.codePage("UTF-8", fixture::CharacterTable::utf8());
    for (const char *const name : {"UTF-16", "UTF-16BE"})
        file.codePage(name, fixture::CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
    file.mapping("P", "UTF-8", toUtf8, mapping);
    file.conversion("UTF-8", "P", fromUtf8);
    file.conversion("P", "UTF-16", 29);
    file.conversion("UTF-16", "P", 30);
    file.conversion("P", "UTF-16BE", 171);
    file.conversion("UTF-16BE", "P", 170);
    return file;
}

// A library and its one conversion.
struct Pair {
    explicit Pair(const fixture::DataFile &file, const char *source = "A", const char *target = "B")
        : library(file), conversion(library.conversion(source, target)) {}

    [[nodiscard]] std::uint32_t property(std::int32_t id) const {
        std::uint32_t value = 0xDEAD;
        EXPECT_TRUE(fixture::gives("nlsGetIntConversionProperty", 0,
                                   nlsGetIntConversionProperty(conversion, id, &value)));
        return value;
    }

    fixture::Library library;
    nlsConversion *conversion;
};

// Runs a converter with every capacity around what its whole output needs and compares it with the reference,
// which is a function of source and capacity.
template <typename Reference>
void compareAtEveryCapacity(nlsConversion *conversion, const Bytes &source, const Reference &reference) {
    const std::uint32_t need = reference(source, 100000).written;
    const std::uint32_t most = need == fixture::kNotWritten ? 8 : need + 8;
    for (std::uint32_t capacity = 0; capacity <= most; ++capacity) {
        const Converted expected = reference(source, capacity);
        const Converted got = fixture::convert(conversion, source, capacity);
        ASSERT_TRUE(fixture::agree(expected, got))
            << "capacity " << capacity << ", source " << fixture::hex(source);
    }
}

} // namespace unit
