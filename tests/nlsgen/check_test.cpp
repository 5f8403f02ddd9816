// `nlsgen check`: a fault planted in each field of header, directory and records is found, and no file,
// however broken, makes the checker read outside it.
#include "checker.hpp"

#include "file_view.hpp"
#include "real_files.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace velnls::nlsgen::test {
namespace {

class Check : public testing::Test {
protected:
    void put(std::size_t offset, std::string_view text) {
        std::memcpy(file_.data() + offset, text.data(), text.size());
    }
    void put16(std::size_t offset, unsigned value) {
        file_[offset] = static_cast<std::uint8_t>(value);
        file_[offset + 1] = static_cast<std::uint8_t>(value >> 8);
    }
    [[nodiscard]] std::size_t entryPlace(char kind, const std::string &name, const std::string &name2) const {
        return sizeof(file::Header) + entryNumber(smallSample(), kind, name, name2) * sizeof(file::Entry);
    }
    [[nodiscard]] std::size_t record(char kind, const std::string &name, const std::string &name2) const {
        return recordOffset(smallSample(), entryNumber(smallSample(), kind, name, name2));
    }
    // The fault at this place with these words, then the sound file again.
    void expectFault(std::size_t offset, const std::string &expected) {
        const auto fault = firstFault(file_);
        ASSERT_TRUE(fault.has_value()) << expected;
        EXPECT_EQ(fault->offset, offset) << fault->text();
        EXPECT_NE(fault->expected.find(expected), std::string::npos) << fault->text();
        file_ = smallSample();
    }
    void expectAnyFault(const std::string &where) {
        EXPECT_TRUE(firstFault(file_).has_value()) << where;
        file_ = smallSample();
    }
    Bytes file_ = smallSample();
};

TEST_F(Check, ASoundFileHasNoFault) {
    const auto fault = firstFault(file_);
    EXPECT_FALSE(fault.has_value()) << fault->text();
}

TEST_F(Check, AnEmptyDirectoryIsSound) {
    EXPECT_FALSE(firstFault(layOut({})).has_value());
}

TEST_F(Check, HeaderFields) {
    put(0, "4243");
    expectFault(0, "4242");
    put(4, "15");
    expectFault(4, "a directory behind the header");
    put(4, "17");
    expectAnyFault("directory offset");
    put(6, "06");
    expectFault(6, "version 4 or 5");
    put(8, "-01");
    expectFault(8, "a count of entries from 0 to 999");
    put(8, "999");
    expectAnyFault("entry count");
    file_.resize(15);
    expectFault(0, "a header of 16 bytes");
    file_.resize(16 + 63);
    expectFault(8, "entries within the file");
}

TEST_F(Check, VersionFourIsSound) {
    put(6, "04");
    EXPECT_FALSE(firstFault(file_).has_value());
}

TEST_F(Check, EntryNames) {
    const std::size_t place = entryPlace('1', "1252", "UTF-8");
    put(place, std::string(20, 'X'));
    expectFault(place, "a name of at most 19 bytes and its NUL");
    put(place + 20, std::string(20, 'X'));
    expectFault(place + 20, "a second name of at most 19 bytes and its NUL");
    file_[place] = 0;
    expectFault(place, "a name");
    file_[place + 20] = 0;
    expectFault(place + 20, "a second name");
    put(place, "1253");
    expectAnyFault("source page");
    put(place + 20, "UTF-9");
    expectAnyFault("target page");
    const std::size_t caseTable = entryPlace('3', "1252", "basic");
    put(caseTable, "1253");
    expectAnyFault("case table page");
    const std::size_t charSet = entryPlace('2', "1252", "");
    put(charSet + 20, "x");
    expectFault(charSet + 20, "no second name of a character set");
    const std::size_t other = entryPlace('2', "ISO8859-1", "");
    put(other, std::string("1252\0\0\0\0\0\0", 10));
    expectAnyFault("two pages of one name");
}

TEST_F(Check, EntryNumbers) {
    const std::size_t place = entryPlace('2', "1252", "");
    put(place + 40, "00000x0");
    expectFault(place + 40, "an offset in decimal digits");
    put(place + 40, "0000000");
    expectFault(place + 40, "an offset above 0");
    put(place + 40, "0000016");
    expectFault(place + 40, "a table behind the directory");
    put(place + 40, "9999999");
    expectFault(place + 40, "1552 bytes of the table within the file");
    put(place + 47, "x");
    expectFault(place + 47, "a digit as variant");
    put(place + 49, "0");
    expectFault(place + 49, "kind 1 to 4");
    put(place + 49, "5");
    expectFault(place + 49, "kind 1 to 4");
}

TEST_F(Check, TheLastRecordNeedsItsWholeRead) {
    file_.resize(file_.size() - 600);
    expectAnyFault("cut file");
}

TEST_F(Check, CharacterSets) {
    const std::size_t place = entryPlace('2', "1252", "");
    const std::size_t table = record('2', "1252", "");
    file_[place + 48] = 0x80;
    expectFault(place + 48, "only the code page flags");
    file_[place + 48] = file::kUtf8;
    expectFault(place + 48, "flag 02");
    put(table, "255 ");
    expectFault(table, "the count 256");
    file_[table + 516 + 0x41] = 0x10;
    expectFault(table + 516 + 0x41, "attributes of the bits 0 to 3");
    file_[table + 516 + 0x81] = 1;
    expectFault(table + 516 + 0x81, "no trail bytes in a page without flag 02");
    file_[table + 1028 + 0x81] = 1;
    expectFault(table + 1028 + 0x81, "no trail bytes in a page without flag 02");
    const std::size_t japanese = record('2', "SHIFT-JIS", "");
    file_[japanese + 516] = 1;
    expectFault(japanese + 516, "no trail bytes behind the byte that ends a string");
    file_[entryPlace('2', "SHIFT-JIS", "") + 48] = 0;
    expectAnyFault("flags of a multibyte page");
}

TEST_F(Check, CompanionsOfAPage) {
    put(entryPlace('3', "1252", "basic") + 20, "other");
    expectFault(entryPlace('2', "1252", ""), "a case table \"basic\"");
    put(entryPlace('4', "1252", "basic") + 20, "other");
    expectFault(entryPlace('2', "1252", ""), "a collation \"basic\"");
    put(entryPlace('4', "EUCJIS", "basic") + 20, "other");
    expectAnyFault("collation of EUCJIS");
    put(entryPlace('4', "IBM037", "basic"), std::string("UTF-8\0", 6));
    expectAnyFault("two collations of UTF-8");
}

TEST_F(Check, CaseTables) {
    const std::size_t place = entryPlace('3', "1252", "basic");
    const std::size_t table = record('3', "1252", "basic");
    put(table, " -1 ");
    expectFault(table, "the count 256");
    file_[place + 48] = 2;
    expectFault(place + 48, "format 2");
    file_[place + 48] = 1;
    expectFault(place + 48, "format 0 or 2");
    const std::size_t wide = record('3', "UTF-8", "basic");
    file_[entryPlace('3', "UTF-8", "basic") + 48] = 0;
    expectFault(entryPlace('3', "UTF-8", "basic") + 48, "format 2");
    put16(wide + 6, 0x3042);
    expectFault(wide + 6, "a character of one or two bytes");
    put16(wide + 2982 + 2, 0x3042);
    expectFault(wide + 2982, "a counterpart");
    put16(wide + 6 + 4, 'a');
    expectFault(wide + 6 + 4, "slot");
    for (std::size_t pair = 736; pair < 744; pair++) {
        put16(wide + 6 + pair * 4, static_cast<unsigned>(0x780 + pair - 736));
        put16(wide + 6 + pair * 4 + 2, 0x780);
    }
    expectFault(wide + 6 + 743 * 4, "at most 743 pairs");
}

TEST_F(Check, Collations) {
    const std::size_t table = record('4', "1252", "basic");
    put(table, "0256");
    EXPECT_FALSE(firstFault(file_).has_value());
    put(table, "512 ");
    expectFault(table, "the count 256");
    file_[table + 1028] = 0;
    expectFault(table + 1028, "collation kind 1 to 4");
    file_[table + 1028] = 5;
    expectFault(table + 1028, "collation kind 1 to 4");
    file_[table + 1029] = 2;
    expectFault(table + 1029, "variant 0 or 1");
    file_[table + 4 + 'b'] = file_[table + 4 + 'a'];
    expectFault(table + 4 + 'b', "a weight of its own");
    file_[table + 516 + 'b'] = 0;
    expectFault(table + 516 + 'b', "weight 0 in both tables or in none");
    const std::size_t german = record('4', "1252", "german");
    file_[german + 4 + 0xE4] = file_[german + 516 + 0xE4] = 0;
    expectFault(german + 4 + 0xE4, "weight 0 of a sharp s only");
    const std::size_t ebcdic = record('4', "IBM037", "basic");
    file_[ebcdic + 4 + 0x59] = file_[ebcdic + 516 + 0x59] = 0;
    expectFault(ebcdic + 4 + 0x59, "no weight 0 in a page that has no s at 73");
    std::swap(file_[table + 4 + 0x20], file_[table + 4 + 0xE9]);
    expectFault(table + 4 + '0', "a letter or digit to weigh more than the blank");
    std::swap(file_[table + 516 + 0x20], file_[table + 516 + '7']);
    expectFault(table + 516 + '0', "a letter or digit to weigh more than the blank");
    const std::size_t noAccents = record('4', "1252", "noaccents");
    file_[noAccents + 516 + 0xE9]++;
    expectFault(noAccents + 516 + 0xE9, "the same weight for bytes that share one");
    const std::size_t basic = record('4', "UTF-8", "basic");
    file_[basic + 4 + 5] = 'x';
    expectFault(basic + 4, "BASIC");
    file_[basic + 516] = 'b';
    expectFault(basic + 516, "BASIC");
}

TEST_F(Check, ConversionTypes) {
    const std::size_t direct = record('1', "1252", "ISO8859-1");
    const std::size_t place = entryPlace('1', "1252", "ISO8859-1");
    put(direct, "255 ");
    expectFault(direct, "the length 256");
    file_[direct + 516] = 1;
    expectFault(direct + 516, "a conversion type of a data file");
    file_[direct + 517] = 3;
    expectFault(place + 40, "offset 0 of type 3");
    file_[place + 48] = 2;
    expectFault(place + 48, "format 0 or 1 of a byte table");
    const std::size_t japanese = entryPlace('1', "SHIFT-JIS", "EUCJIS");
    file_[japanese + 48] = 2;
    expectFault(japanese + 48, "a conversion type of a data file");
    file_[japanese + 48] = 1;
    expectFault(japanese + 40, "a table for type 1");
    file_[japanese + 48] = 5;
    expectFault(japanese + 48, "types of the two ways that fit");
    const std::size_t mapping = entryPlace('1', "1252", "UTF-8");
    file_[mapping + 48] = 81;
    expectFault(mapping + 48, "the type 17 as format");
    const std::size_t back = entryPlace('1', "UTF-8", "1252");
    file_[back + 48] = 20;
    expectFault(mapping + 48, "types of the two ways that fit");
    put(back, std::string("UTF-16\0", 7));
    expectAnyFault("way back");
}

TEST_F(Check, ByteMapsNeedDifferentSlots) {
    // The record of a byte map: 256 units, here made from the sample's byte table.
    const std::size_t mapping = entryPlace('1', "1252", "UTF-8");
    const std::size_t table = record('1', "1252", "ISO8859-1");
    const auto makeByteMap = [&] {
        put(mapping + 40,
            std::string(reinterpret_cast<const char *>(&file_[entryPlace('1', "1252", "ISO8859-1") + 40]),
                        7));
        file_[mapping + 48] = 19;
        file_[entryPlace('1', "UTF-8", "1252") + 48] = 20;
        put(table, "512 ");
        for (unsigned byte = 0; byte < 256; byte++)
            put16(table + 4 + byte * 2, byte);
        file_[table + 517] = 19;
    };
    makeByteMap();
    put16(table + 4 + 0x80 * 2, 0x7F);
    expectAnyFault("two bytes of one slot");
    makeByteMap();
    put16(table + 4 + 0x80 * 2, 0xD800);
    expectAnyFault("surrogate");
}

struct Field {
    const char *name;
    std::size_t offset;
    std::size_t width;
};
#define VELNLS_FIELD(name)                                                                                   \
    { #name, offsetof(file::MappingGroup, name), sizeof(file::MappingGroup::name) }
constexpr Field kGroupFields[] = {
    VELNLS_FIELD(flags),         VELNLS_FIELD(valuesOffset), VELNLS_FIELD(reverseOffset),
    VELNLS_FIELD(deltasOffset),  VELNLS_FIELD(lowest),       VELNLS_FIELD(highest),
    VELNLS_FIELD(split),         VELNLS_FIELD(runMask),      VELNLS_FIELD(indexShift),
    VELNLS_FIELD(valueCount),    VELNLS_FIELD(zeroCode),     VELNLS_FIELD(indexBase),
    VELNLS_FIELD(holeStart),     VELNLS_FIELD(holeSize),     VELNLS_FIELD(indexLimit),
    VELNLS_FIELD(reverseCount),  VELNLS_FIELD(deltaCount),   VELNLS_FIELD(firstLead),
    VELNLS_FIELD(leadGapLow),    VELNLS_FIELD(leadGapHigh),  VELNLS_FIELD(lastLead),
    VELNLS_FIELD(leadShift),     VELNLS_FIELD(firstTrail),   VELNLS_FIELD(trailGap1Low),
    VELNLS_FIELD(trailGap1High), VELNLS_FIELD(trailGap2Low), VELNLS_FIELD(trailGap2High),
    VELNLS_FIELD(lastTrail),     VELNLS_FIELD(trailShift1),  VELNLS_FIELD(trailShift2),
    VELNLS_FIELD(trailsPerLead),
};
#undef VELNLS_FIELD

// Every field of every group in use, with several wrong values each; what a group does not use may be
// anything.
TEST_F(Check, MappingFields) {
    for (const char *page : {"1252", "SHIFT-JIS", "CP950-HKSCS", "IBM037"}) {
        const std::size_t mapping = record('1', page, "UTF-8");
        for (std::size_t group = 0; group < 3; group++) {
            const std::size_t place = mapping + 8 + group * sizeof(file::MappingGroup);
            const auto fields = FileView(file_).at<file::MappingGroup>(place);
            if (fields.valueCount == 0 && fields.reverseCount == 0)
                continue;
            for (const Field &field : kGroupFields) {
                // The zero code is read only where index 0 has a value.
                if (std::string_view(field.name) == "zeroCode" && fields.valueCount == 0)
                    continue;
                for (std::size_t byte = 0; byte < field.width; byte++) {
                    for (const int change : {0x01, 0xFF}) {
                        file_[place + field.offset + byte] ^= static_cast<std::uint8_t>(change);
                        expectAnyFault(std::string(page) + ", group " + std::to_string(group) + ", " +
                                       field.name + ", byte " + std::to_string(byte) + " changed by " +
                                       std::to_string(change));
                    }
                }
            }
        }
        put16(mapping + 8 + 124, 0);
        expectFault(mapping + 8 + 124, "a substitution code");
        file_[mapping + 516] = 1;
        expectFault(mapping + 516, "a conversion type of a data file");
        file_[mapping + 517] = 19;
        expectAnyFault("type of a mapping");
    }
}

TEST_F(Check, SubTables) {
    for (const char *page : {"1252", "SHIFT-JIS", "CP950-HKSCS"}) {
        const std::size_t mapping = record('1', page, "UTF-8");
        for (std::size_t group = 0; group < 3; group++) {
            const auto fields =
                FileView(file_).at<file::MappingGroup>(mapping + 8 + group * sizeof(file::MappingGroup));
            if (fields.valueCount != 0) {
                file_[fields.valuesOffset] = '9';
                expectFault(fields.valuesOffset, "in the head of the values");
                // The last value of a code that is defined.
                std::size_t last = fields.valuesOffset + 6 + (fields.valueCount - 1U) * 2;
                while (file_[last] == 0xFF && file_[last + 1] == 0xFF)
                    last -= 2;
                file_[last] ^= 1;
                expectAnyFault(std::string("a value of ") + page + ", group " + std::to_string(group));
            }
            if (fields.reverseCount != 0) {
                file_[fields.reverseOffset] = '9';
                expectFault(fields.reverseOffset, "in the head of the reverse table");
                put16(fields.reverseOffset + 6, group == 2 ? 0x7FFF : fields.reverseCount);
                expectFault(group == 2 ? fields.reverseOffset + 6
                                       : fields.reverseOffset + 6 + fields.reverseCount * 2U,
                            group == 2 ? "an index of the rectangle" : "entries of the reverse table");
            }
            if (group < 2 && fields.reverseCount != 0) {
                put16(fields.reverseOffset + 6, 0);
                expectFault(fields.reverseOffset + 6, "a segment's start behind the starts");
            }
            if (fields.deltaCount != 0) {
                file_[fields.deltasOffset + 6 + 6 * 2] = 1;
                expectAnyFault("end of the delta list");
                file_[fields.deltasOffset + 6 + 2] ^= 1;
                expectAnyFault("a delta");
            }
        }
    }
}

TEST_F(Check, LegsOfUtf16NeedAMapping) {
    file_[entryPlace('1', "1252", "UTF-16") + 48] = 171;
    expectAnyFault("type 29 against 170");
    put(entryPlace('1', "1252", "UTF-8"), "125 ");
    expectAnyFault("no way to UTF-8");
}

TEST_F(Check, EveryShorterFileIsFaultyAndNeverReadBeyondItsEnd) {
    std::mt19937 random(7);
    for (int i = 0; i < 200; i++) {
        const std::size_t size = i < 100 ? static_cast<std::size_t>(i) * 37 : random() % (file_.size() - 600);
        // A copy of exact size: a read beyond its end is seen by the address sanitizer.
        const Bytes cut(file_.begin(), file_.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_TRUE(firstFault(cut).has_value()) << size;
    }
}

TEST_F(Check, BrokenBytesNeverLeadOutsideTheFile) {
    std::mt19937 random(11);
    for (int i = 0; i < 300; i++) {
        Bytes broken = smallSample();
        for (unsigned change = 0; change <= random() % 8; change++) {
            // Directory and mapping records hold the numbers that lead somewhere.
            const std::size_t place =
                i % 2 == 0
                    ? random() % 8000
                    : recordOffset(broken, entryNumber(broken, '1', "SHIFT-JIS", "UTF-8")) + random() % 528;
            broken[place] = static_cast<std::uint8_t>(random());
        }
        firstFault(broken);
    }
}

} // namespace
} // namespace velnls::nlsgen::test
