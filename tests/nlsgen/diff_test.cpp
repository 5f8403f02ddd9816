// `nlsgen diff`: every kind of change is reported once, by the characters' names, and nothing else is.
#include "file_difference.hpp"

#include "file_view.hpp"
#include "order_moves.hpp"
#include "real_files.hpp"
#include "temporary_folder.hpp"
#include "text_file.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <cstring>
#include <sstream>

namespace velnls::nlsgen::test {
namespace {

const CharacterNames &names() {
    static const CharacterNames names(NLSGEN_UNICODE "/UnicodeData.txt");
    return names;
}

// All lines; their count is the number given back.
std::string differences(const Bytes &before, const Bytes &after) {
    std::ostringstream out;
    const std::size_t count = reportDifferences({"before", before}, {"after", after}, names(), out);
    const std::string text = out.str();
    EXPECT_EQ(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')), count);
    return text;
}

std::vector<PlannedEntry> sampleEntries() {
    const Bytes &sample = smallSample();
    std::vector<PlannedEntry> entries;
    for (const EntryView &entry : entriesOf(FileView(sample)))
        for (const PlannedEntry &planned : realPlan().entries)
            if (planned.kind == entry.kind && planned.name == entry.name && planned.name2 == entry.name2)
                entries.push_back(planned);
    return entries;
}

class Diff : public testing::Test {
protected:
    [[nodiscard]] static std::size_t entryPlace(char kind, const char *name, const char *name2) {
        return sizeof(file::Header) + entryNumber(smallSample(), kind, name, name2) * sizeof(file::Entry);
    }
    [[nodiscard]] static std::size_t record(char kind, const char *name, const char *name2) {
        return recordOffset(smallSample(), entryNumber(smallSample(), kind, name, name2));
    }
    // What changed; then the sample again.
    std::string changes() {
        const std::string text = differences(smallSample(), file_);
        file_ = smallSample();
        return text;
    }
    void expectLine(const std::string &line) {
        EXPECT_EQ(changes(), line + "\n");
    }
    Bytes file_ = smallSample();
};

TEST_F(Diff, OfAFileAndItselfIsNothing) {
    EXPECT_EQ(changes(), "");
}

TEST_F(Diff, TakesNoNoticeOfWhereThingsLie) {
    std::vector<PlannedEntry> entries = sampleEntries();
    std::reverse(entries.begin(), entries.end());
    const Bytes other = layOut(entries);
    EXPECT_NE(other, smallSample());
    EXPECT_EQ(differences(smallSample(), other), "");
}

TEST_F(Diff, NamesEntriesThatCameAndWent) {
    std::vector<PlannedEntry> entries = sampleEntries();
    std::erase_if(entries, [](const PlannedEntry &entry) {
        return entry.name2 == "swedish" || entry.name == "IBM037" || entry.name2 == "IBM037";
    });
    const Bytes fewer = layOut(entries);
    const std::string removed = differences(smallSample(), fewer);
    EXPECT_NE(removed.find("collation 1252, swedish: removed\n"), std::string::npos);
    EXPECT_NE(removed.find("collation ISO8859-1, swedish: removed\n"), std::string::npos);
    EXPECT_NE(removed.find("character set IBM037: removed\n"), std::string::npos);
    EXPECT_NE(removed.find("case table IBM037, basic: removed\n"), std::string::npos);
    EXPECT_NE(removed.find("conversion UTF-8 to IBM037: removed\n"), std::string::npos);
    const std::string added = differences(fewer, smallSample());
    EXPECT_EQ(std::count(added.begin(), added.end(), '\n'), std::count(removed.begin(), removed.end(), '\n'));
    EXPECT_NE(added.find("collation 1252, swedish: added\n"), std::string::npos);
}

TEST_F(Diff, Version) {
    file_[7] = '4';
    expectLine("the file: version was 5, is 4");
}

TEST_F(Diff, CharacterSets) {
    const std::size_t entry = entryPlace('2', "IBM037", "");
    file_[entry + 48] = 1;
    expectLine("character set IBM037: flags was none, is borrows collations");
    const std::size_t table = record('2', "1252", "");
    file_[table + 4 + 0xE4] = 0;
    expectLine("character set 1252, class of U+00E4 LATIN SMALL LETTER A WITH DIAERESIS: was 1, is 0");
    file_[table + 516 + 0x80] = 8;
    expectLine("character set 1252, attributes of U+20AC EURO SIGN: was 0, is 8");
    file_[record('2', "SHIFT-JIS", "") + 1028 + 0xFD] = 1;
    expectLine("character set SHIFT-JIS, valid trail byte of byte FD: was 0, is 1");
}

TEST_F(Diff, CasePairs) {
    const std::size_t table = record('3', "1252", "basic");
    file_[table + 4 + 0xE4] = 0xE4;
    expectLine(
        "case table 1252, basic, upper case of U+00E4 LATIN SMALL LETTER A WITH DIAERESIS: was U+00C4 LATIN "
        "CAPITAL LETTER A WITH DIAERESIS, is U+00E4 LATIN SMALL LETTER A WITH DIAERESIS");
    file_[table + 516 + 'A'] = 'b';
    expectLine("case table 1252, basic, lower case of U+0041 LATIN CAPITAL LETTER A: was U+0061 LATIN SMALL "
               "LETTER A, "
               "is U+0062 LATIN SMALL LETTER B");
    const std::size_t wide = record('3', "UTF-8", "basic");
    std::memset(file_.data() + wide + 6 + 2, 0x42, 1); // the first pair is a, A
    expectLine(
        "case table UTF-8, basic, upper case of U+0061 LATIN SMALL LETTER A: was U+0041 LATIN CAPITAL LETTER "
        "A, is U+0042 LATIN CAPITAL LETTER B");
}

TEST_F(Diff, OrdersByTheCharactersThatMoved) {
    const std::size_t table = record('4', "1252", "basic");
    std::uint8_t *sensitive = file_.data() + table + 4;
    std::uint8_t *insensitive = file_.data() + table + 516;
    // b goes before a: all between move up by one.
    const std::uint8_t place = sensitive[0x61];
    const std::uint8_t old = sensitive[0x62];
    for (int byte = 0; byte < 256; byte++)
        if (sensitive[byte] >= place && sensitive[byte] < old)
            sensitive[byte]++;
    sensitive[0x62] = place;
    expectLine(
        "collation 1252, basic, case-sensitive: U+0062 LATIN SMALL LETTER B moved: was between U+00C6 LATIN "
        "CAPITAL LETTER AE and U+0042 LATIN CAPITAL LETTER B, is between U+0039 DIGIT NINE and U+0061 LATIN "
        "SMALL "
        "LETTER A");
    insensitive[0x7A] = insensitive[0x79];
    insensitive[0x5A] = insensitive[0x79];
    const std::string merged = changes();
    EXPECT_NE(merged.find("case-insensitive: U+007A LATIN SMALL LETTER Z moved: was between "),
              std::string::npos);
    EXPECT_NE(merged.find("is equal to U+0059 LATIN CAPITAL LETTER Y\n"), std::string::npos) << merged;
    EXPECT_EQ(std::count(merged.begin(), merged.end(), '\n'), 2) << merged;
}

TEST_F(Diff, OrdersByWhatExpands) {
    const std::size_t table = record('4', "1252", "basic");
    file_[table + 4 + 0xDF] = file_[table + 516 + 0xDF] = 0;
    EXPECT_EQ(
        changes(),
        "collation 1252, basic, case-sensitive: U+00DF LATIN SMALL LETTER SHARP S sorts as \"ss\" now\n"
        "collation 1252, basic, case-insensitive: U+00DF LATIN SMALL LETTER SHARP S sorts as \"ss\" now\n");
    const std::size_t german = record('4', "1252", "german");
    file_[german + 4 + 0xDF] = file_[table + 4 + 0xDF];
    file_[german + 516 + 0xDF] = file_[table + 516 + 0xDF];
    EXPECT_NE(changes().find(
                  "german, case-insensitive: U+00DF LATIN SMALL LETTER SHARP S does not sort as \"ss\" any "
                  "more\n"),
              std::string::npos);
}

TEST_F(Diff, OtherWeightsInTheSameOrderAreToldApart) {
    const std::size_t german = record('4', "1252", "german"); // its weights have a gap where sharp s was
    const std::size_t gap = german + 4 + 0x74;
    file_[gap]--;
    expectLine("collation 1252, german, case-sensitive: other weights in the same order: keys of the two "
               "files do not "
               "compare");
}

TEST_F(Diff, CollationKinds) {
    const std::size_t table = record('4', "1252", "danish");
    file_[table + 1028] = 4;
    expectLine("collation 1252, danish: kind was weights, is Thai");
    file_[table + 1029] = 0;
    expectLine("collation 1252, danish: variant of the table was 1, is 0");
}

// The sample with another page 1252 in its conversion to UTF-8.
template <typename Change>
Bytes withPage1252(Change change) {
    std::vector<PlannedEntry> entries = sampleEntries();
    for (PlannedEntry &entry : entries) {
        if (entry.name != "1252" || entry.name2 != "UTF-8")
            continue;
        Page page = realPage("1252");
        change(page);
        page.finish(UnicodeData(NLSGEN_UNICODE "/UnicodeData.txt"));
        entry.mapping = std::make_shared<const MappingData>(buildSingleByteMapping(page, {0xA0, 0xFF}));
    }
    return layOut(entries);
}

TEST_F(Diff, CodesByWhatTheyStandFor) {
    const Bytes after = withPage1252([](Page &page) {
        page.remove(0x80);
        page.set(0x8E, 0x20AC, false, {"test", 1});
    });
    const std::string text = differences(smallSample(), after);
    EXPECT_NE(
        text.find("code page 1252, 80: was U+20AC EURO SIGN, is nothing\n"
                  "code page 1252, 8E: was U+017D LATIN CAPITAL LETTER Z WITH CARON, is U+20AC EURO SIGN\n"),
        std::string::npos)
        << text;
    EXPECT_EQ(text.find("turned back"), std::string::npos) << text;
    // Its byte has the weight of a Z now.
    EXPECT_NE(text.find("collation 1252, basic, case-sensitive: U+20AC EURO SIGN moved: "), std::string::npos)
        << text;
}

TEST_F(Diff, CharactersByWhatTheyTurnBackTo) {
    const auto withEuroTwice = [](std::uint32_t oneWay) {
        return withPage1252([oneWay](Page &page) {
            for (const std::uint32_t code : {0x80U, 0x81U}) {
                page.remove(code);
                page.set(code, 0x20AC, code == oneWay, {"test", 1});
            }
        });
    };
    EXPECT_EQ(differences(withEuroTwice(0x81), withEuroTwice(0x80)),
              "code page 1252, U+20AC EURO SIGN: turned back to 80, turns back to 81\n");
}

TEST_F(Diff, CodesOfAByteMap) {
    const auto withByteMap = [](std::uint16_t of80) {
        std::vector<PlannedEntry> entries;
        for (PlannedEntry entry : sampleEntries()) {
            const bool back = entry.name == "UTF-8" && entry.name2 == "1252";
            const bool there = entry.name == "1252" && entry.name2 == "UTF-8";
            if ((entry.kind == file::kConversion && !there && !back) ||
                (entry.name != "1252" && entry.name != "UTF-8"))
                continue;
            if (back)
                entry.format = 20;
            if (there) {
                file::Conversion map{};
                std::memcpy(map.length, "512 ", sizeof map.length);
                for (std::uint32_t byte = 0; byte < 256; byte++) {
                    const std::uint32_t character = byte == 0x80 ? of80 : realPage("1252").toUnicode(byte);
                    map.body[byte * 2] = static_cast<std::uint8_t>(character);
                    map.body[byte * 2 + 1] = static_cast<std::uint8_t>(character >> 8);
                }
                map.typeLow = entry.format = 19;
                entry.mapping.reset();
                entry.record = bytesOf(map);
            }
            entries.push_back(entry);
        }
        return layOut(entries);
    };
    EXPECT_EQ(differences(withByteMap(0x20AC), withByteMap(0x20AC)), "");
    EXPECT_EQ(differences(withByteMap(0x20AC), withByteMap(0x20AD)),
              "code page 1252, 80: was U+20AC EURO SIGN, is U+20AD KIP SIGN\n");
}

TEST_F(Diff, DirectTablesByTheCharactersOfBothPages) {
    // The tables of both directions are alike, byte for byte, and stored once.
    file_[record('1', "1252", "ISO8859-1") + 4 + 0x80] = 'E';
    EXPECT_EQ(changes(),
              "conversion 1252 to ISO8859-1, U+20AC EURO SIGN: was U+003F QUESTION MARK, is U+0045 LATIN "
              "CAPITAL LETTER E\n"
              "conversion ISO8859-1 to 1252, U+0080 control: was U+003F QUESTION MARK, is U+0045 LATIN "
              "CAPITAL LETTER E\n");
}

TEST_F(Diff, TypesAndVariants) {
    file_[entryPlace('1', "1252", "ISO8859-1") + 47] = '1';
    expectLine("conversion 1252 to ISO8859-1: variant was 0, is 1");
    file_[entryPlace('1', "1252", "UTF-16") + 48] = 171;
    file_[entryPlace('1', "UTF-16", "1252") + 48] = 170;
    EXPECT_EQ(changes(), "conversion 1252 to UTF-16: type was 29, is 171\n"
                         "conversion UTF-16 to 1252: type was 30, is 170\n");
}

TEST_F(Diff, RefusesAFileWithAFault) {
    file_[0] = 'x';
    EXPECT_EQ(problemOf([&] { differences(smallSample(), file_); }), "after: byte 0: expected 4242");
    EXPECT_EQ(problemOf([&] { differences(file_, smallSample()); }), "before: byte 0: expected 4242");
}

TEST_F(Diff, TheCommandExitsWithWhatItFound) {
    const TemporaryFolder folder;
    const auto write = [&folder](const char *name, const Bytes &bytes) {
        return folder.write(name, std::string(bytes.begin(), bytes.end()));
    };
    const std::string one = write("one.dat", smallSample());
    file_[7] = '4';
    const std::string other = write("other.dat", file_);
    file_[0] = 'x';
    const std::string broken = write("broken.dat", file_);
    const std::string out = (folder.path() / "out").string();
    const auto run = [&out](const std::string &arguments, const char *unicode = NLSGEN_UNICODE) {
        const std::string command =
            std::string(NLSGEN_PROGRAM " diff ") + arguments + " --unicode " + unicode + " >" + out + " 2>&1";
        const int status = WEXITSTATUS(std::system(command.c_str()));
        return std::pair(status, readText(out));
    };
    EXPECT_EQ(run(one + " " + one), std::pair(0, std::string()));
    EXPECT_EQ(run(one + " " + other), std::pair(1, std::string("the file: version was 5, is 4\n")));
    EXPECT_EQ(run(one + " " + broken), std::pair(2, "nlsgen: " + broken + ": byte 0: expected 4242\n"));
    EXPECT_EQ(run(one + " /nowhere").first, 2);
    EXPECT_EQ(run(one + " " + one, "/nowhere").first, 2);
    EXPECT_EQ(run(one).first, 2);
    EXPECT_EQ(run("--help").first, 0);
}

bool sameOrder(const TwoWeights &a, const TwoWeights &b) {
    return (a.before < b.before) == (a.after < b.after) && (a.before > b.before) == (a.after > b.after);
}

// All pairs of orders of five items with ties: what is left is in the same order, and nothing less would be.
TEST(MovedItems, AreTheFewestWithoutWhichTheOrdersAreTheSame) {
    constexpr std::size_t kItems = 5;
    for (unsigned orders = 0; orders < 3 * 3 * 3 * 3 * 3 * 3 * 3 * 3 * 3 * 3; orders++) {
        std::vector<TwoWeights> items;
        unsigned rest = orders;
        for (std::size_t i = 0; i < kItems; i++, rest /= 9)
            items.push_back({static_cast<std::uint8_t>(rest % 3), static_cast<std::uint8_t>(rest / 3 % 3)});
        std::size_t most = 0;
        for (unsigned set = 0; set < 1U << kItems; set++) {
            bool good = true;
            std::size_t size = 0;
            for (std::size_t i = 0; i < kItems; i++) {
                size += set >> i & 1;
                for (std::size_t j = 0; j < i && (set >> i & 1) != 0; j++)
                    good = good && ((set >> j & 1) == 0 || sameOrder(items[i], items[j]));
            }
            most = good ? std::max(most, size) : most;
        }
        const auto moved = movedItems(items);
        ASSERT_EQ(moved.size(), kItems - most) << orders;
        for (std::size_t i = 0; i < kItems; i++)
            for (std::size_t j = 0; j < i; j++) {
                const bool both = std::find(moved.begin(), moved.end(), i) == moved.end() &&
                                  std::find(moved.begin(), moved.end(), j) == moved.end();
                ASSERT_TRUE(!both || sameOrder(items[i], items[j])) << orders;
            }
    }
}

TEST(CharacterNames, AreThoseOfTheCharacterDatabase) {
    EXPECT_EQ(names().describe(0x41), "U+0041 LATIN CAPITAL LETTER A");
    EXPECT_EQ(names().describe(0x01), "U+0001 START OF HEADING");
    EXPECT_EQ(names().describe(0x80), "U+0080 control");
    EXPECT_EQ(names().describe(0x4E9C), "U+4E9C CJK UNIFIED IDEOGRAPH-4E9C");
    EXPECT_EQ(names().describe(0x20000), "U+20000 CJK UNIFIED IDEOGRAPH-20000");
    EXPECT_EQ(names().describe(0xAC00), "U+AC00 HANGUL SYLLABLE GA");
    EXPECT_EQ(names().describe(0xD4DB), "U+D4DB HANGUL SYLLABLE PWILH");
    EXPECT_EQ(names().describe(0xD7A3), "U+D7A3 HANGUL SYLLABLE HIH");
    EXPECT_EQ(names().describe(0xE000), "U+E000 private use");
    EXPECT_EQ(names().describe(0x0378), "U+0378 no character");
}

} // namespace
} // namespace velnls::nlsgen::test
