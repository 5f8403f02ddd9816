// Builds NLS data files in memory, byte by byte, without help from the library or from nlsgen: the tests' own
// reading of the file format.
#pragma once

#include "bytes.hpp"

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace fixture {

struct Mapping;

using ByteTable = std::array<unsigned char, 256>;

// Code page flags.
inline constexpr unsigned char kBorrows = 0x01;
inline constexpr unsigned char kMultibyte = 0x02;
inline constexpr unsigned char kThroughShiftJis = 0x04;
inline constexpr unsigned char kUtf8 = 0x08;
inline constexpr unsigned char kWide = 0x10;
inline constexpr unsigned char kUnits32 = 0x40;

ByteTable identityTable();

// Character attributes of a code page.
struct CharacterTable {
    ByteTable classes{};
    ByteTable attributes{};
    ByteTable trailValid{};
    std::string count = "256 ";
    unsigned char flags = 0;

    static CharacterTable singleByte(unsigned char flags = 0);
    static CharacterTable utf8();
    // Shift_JIS shape: leads 81-9F and E0-FC, trails 40-7E and 80-FC.
    static CharacterTable doubleByte(unsigned char flags = kMultibyte);

    [[nodiscard]] Bytes record() const; // 1552 bytes
};

struct ByteCase {
    ByteTable upper = identityTable();
    ByteTable lower = identityTable();
    std::string count = "256 ";

    static ByteCase ascii();

    [[nodiscard]] Bytes record() const; // 1040 bytes
};

struct UnicodeCase {
    std::vector<std::pair<std::uint16_t, std::uint16_t>> upper; // character, counterpart
    std::vector<std::pair<std::uint16_t, std::uint16_t>> lower;

    [[nodiscard]] Bytes record() const; // 5968 bytes
};

struct CollationTable {
    ByteTable sensitive = identityTable();
    ByteTable insensitive = identityTable();
    std::string count = "256 ";
    unsigned char kind = 1;
    unsigned char variant = 1;

    // The order without weights.
    static CollationTable basic();

    [[nodiscard]] Bytes record() const; // 1040 bytes
};

struct DirectoryEntry {
    std::string name;
    std::string name2;
    std::uint32_t offset = 0;
    int variant = 0;
    unsigned char format = 0;
    int kind = 0;
};

class DataFile {
public:
    // Room for so many directory entries lies before the records.
    explicit DataFile(int maxEntries = 48);

    // Header fields as text of any content, cut or filled with blanks to their width.
    std::string magic = "4242";
    std::string directoryOffset = "16";
    std::string version = "05";
    std::string count; // empty: the number of entries

    // Appends a record and returns its file offset.
    std::uint32_t place(const Bytes &record);

    int add(const DirectoryEntry &entry); // returns its number

    int codePage(const std::string &name, const CharacterTable &table);
    int caseTable(const std::string &page, const std::string &name, const ByteCase &table);
    int caseTable(const std::string &page, const std::string &name, const UnicodeCase &table);
    int collation(const std::string &page, const std::string &name, const CollationTable &table);

    // A conversion without data: its type is the format byte.
    int conversion(const std::string &source, const std::string &target, unsigned char type);
    // A conversion with a 528-byte record.
    int conversion(const std::string &source, const std::string &target, int type, const Bytes &body,
                   unsigned char format = 0, int variant = 0);
    // As above with the length field spelled by the caller.
    int conversionRecord(const std::string &source, const std::string &target, const std::string &length,
                         int type, const Bytes &body, unsigned char format = 0, int variant = 0);
    // A mapping: its sub-tables and its record.
    int mapping(const std::string &source, const std::string &target, int type, const Mapping &table);

    [[nodiscard]] Bytes image() const;
    [[nodiscard]] int entries() const {
        return static_cast<int>(directory_.size());
    }

private:
    std::uint32_t base_;
    std::vector<DirectoryEntry> directory_;
    Bytes records_;
};

} // namespace fixture
