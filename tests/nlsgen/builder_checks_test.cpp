// Each check that nlsgen makes before it writes, broken once by a small input: the message names file, line,
// reason.
#include "case_table.hpp"
#include "checks.hpp"
#include "conversion_types.hpp"
#include "data_file.hpp"
#include "mapping.hpp"
#include "real_files.hpp"
#include "verifier.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace velnls::nlsgen::test {
namespace {

PlannedEntry entry(file::EntryKind kind, const std::string &name, const std::string &name2,
                   std::uint8_t format = 0) {
    PlannedEntry planned;
    planned.kind = kind;
    planned.name = name;
    planned.name2 = name2;
    planned.format = format;
    planned.place = {"plan", 7};
    return planned;
}

// A page of ASCII and three codes of two bytes.
Page tinyPage() {
    Page page("TINY");
    page.flags = file::kMultibyte;
    for (std::uint32_t code = 0; code < 0x80; code++)
        page.set(code, code, false, {"tiny.map", static_cast<int>(code) + 1});
    page.set(0x8140, 0x4E00, false, {"tiny.map", 201});
    page.set(0x8141, 0x3042, false, {"tiny.map", 202});
    page.set(0x8142, 0x4E00, true, {"tiny.map", 203});
    page.attributes[0x81] = 1;
    page.trailValid[0x40] = page.trailValid[0x41] = page.trailValid[0x42] = 1;
    page.finish(UnicodeData(NLSGEN_UNICODE "/UnicodeData.txt"));
    return page;
}

MultibytePlan tinyPlan() {
    MultibytePlan plan{};
    plan.firstLead = plan.lastLead = 0x81;
    plan.leadGapLow = plan.trailGapLow = kNoGapLow;
    plan.firstTrail = 0x40;
    plan.lastTrail = 0x42;
    plan.window = {0x4E00, 0x9FFF};
    return plan;
}

TEST(NumbersFit, NamesHaveAtMostNineteenBytes) {
    EXPECT_NE(problemOf([] {
                  layOut({entry(file::kCharSet, std::string(20, 'X'), "")});
              }).find("plan:7: entry \"XXXXXXXXXXXXXXXXXXXX\", \"\": expected names of at most 19 bytes"),
              std::string::npos);
    EXPECT_EQ(problemOf([] { layOut({entry(file::kCharSet, std::string(19, 'X'), "")}); }), "");
}

TEST(NumbersFit, ThereAreAtMost999Entries) {
    std::vector<PlannedEntry> entries(999, entry(file::kCharSet, "A", ""));
    EXPECT_EQ(problemOf([&] { layOut(entries); }), "");
    entries.push_back(entries.back());
    EXPECT_EQ(problemOf([&] { layOut(entries); }),
              "plan:7: entry \"A\", \"\": expected at most 999 entries, found 1000");
}

TEST(NumbersFit, OffsetsHaveSevenDigits) {
    std::vector<PlannedEntry> entries(2, entry(file::kCharSet, "A", ""));
    entries[0].record = Bytes(10'000'000);
    entries[1].record = Bytes(1, 1);
    EXPECT_NE(problemOf([&] { layOut(entries); }).find("expected an offset below 10000000, found 1000"),
              std::string::npos);
}

TEST(NumbersFit, SubTablesCountInSixteenBits) {
    auto mapping = std::make_shared<MappingData>();
    mapping->groups[2].values.assign(0x10000, 0);
    std::vector<PlannedEntry> entries = {entry(file::kConversion, "A", "UTF-8")};
    entries[0].mapping = mapping;
    EXPECT_EQ(problemOf([&] { layOut(entries); }),
              "plan:7: entry \"A\", \"UTF-8\": a sub-table has 65536 values, expected fewer than 65536");
    mapping->groups[2].values.clear();
    mapping->groups[2].group.indexLimit = 0xFFFF;
    EXPECT_EQ(problemOf([&] { layOut(entries); }),
              "plan:7: entry \"A\", \"UTF-8\": expected an index limit below 65535");
}

TEST(NumbersFit, IndexesOfCompressedTablesLeaveABit) {
    Page page = tinyPage();
    page.set(0xFEFE, 0x2500, false, {"tiny.map", 204});
    page.finish(UnicodeData(NLSGEN_UNICODE "/UnicodeData.txt"));
    MultibytePlan plan = tinyPlan();
    plan.firstLead = 0x40;
    plan.lastLead = 0xFE;
    plan.firstTrail = 0x02;
    plan.lastTrail = 0xFE;
    EXPECT_EQ(problemOf([&] { buildMultibyteMapping(page, plan); }),
              "tiny.map:204: page TINY: code FEFE lies outside the bytes that the page's layout covers");
}

TEST(Mapping, CodesOutsideTheRectangleAreRefused) {
    MultibytePlan plan = tinyPlan();
    plan.lastTrail = 0x41;
    EXPECT_EQ(problemOf([&] { buildMultibyteMapping(tinyPage(), plan); }),
              "tiny.map:203: page TINY: code 8142 lies outside the page's lead and trail bytes");
}

TEST(Mapping, CharactersOfOtherPlanesAreRefused) {
    Page page = tinyPage();
    page.set(0x8142, 0x10400, false, {"tiny.map", 204});
    page.finish(UnicodeData(NLSGEN_UNICODE "/UnicodeData.txt"));
    EXPECT_EQ(problemOf([&] { buildMultibyteMapping(page, tinyPlan()); }),
              "tiny.map:204: page TINY: U+10400 lies outside the planes 0 and 2");
}

TEST(Mapping, MultibytePagesNeedAscii) {
    Page page = tinyPage();
    page.set(0x5C, 0x20A9, false, {"tiny.map", 93});
    page.finish(UnicodeData(NLSGEN_UNICODE "/UnicodeData.txt"));
    EXPECT_NE(
        problemOf([&] { buildMultibyteMapping(page, tinyPlan()); }).find("tiny.map:93: page TINY: code 5C"),
        std::string::npos);
}

class FinishedFile : public testing::Test {
protected:
    void SetUp() override {
        entry_.mapping = std::make_shared<const MappingData>(buildMultibyteMapping(*page_, tinyPlan()));
        bytes_ = layOut({entry_});
    }
    std::string problem() {
        return problemOf([this] { verifyMappings(bytes_, {page_}); });
    }
    // The place in the file of a 16-bit value of a sub-table.
    std::size_t place(std::size_t group, bool reverse, std::size_t index) {
        file::Mapping mapping;
        std::memcpy(&mapping, bytes_.data() + recordOffset(bytes_, 0), sizeof mapping);
        const file::MappingGroup &fields = mapping.groups[group];
        return (reverse ? fields.reverseOffset : fields.valuesOffset) + file::kSubTableHead + index * 2;
    }
    std::shared_ptr<const Page> page_ = std::make_shared<const Page>(tinyPage());
    PlannedEntry entry_ = entry(file::kConversion, "TINY", "UTF-8", kPageToUtf8);
    Bytes bytes_;
};

TEST_F(FinishedFile, AsBuiltAgreesWithItsPage) {
    EXPECT_EQ(problem(), "");
}

TEST_F(FinishedFile, AWrongValueIsNamedWithItsSource) {
    bytes_[place(2, false, 2)] ^= 1;
    EXPECT_EQ(problem(),
              "tiny.map:202: page TINY: code 8141 expected to give 3042, the finished file gives 3043");
}

TEST_F(FinishedFile, AWrongWayBackIsNamedWithItsSource) {
    bytes_[place(2, true, 0)] = 2;
    EXPECT_EQ(problem(),
              "tiny.map:201: page TINY: U+4E00 expected to give 8140, the finished file gives 8141");
}

TEST_F(FinishedFile, ACodeTooManyIsNamed) {
    Page page = tinyPage();
    page.remove(0x8141);
    page.finish(UnicodeData(NLSGEN_UNICODE "/UnicodeData.txt"));
    page_ = std::make_shared<const Page>(page);
    EXPECT_EQ(problem(),
              "tiny.map: page TINY: code 8141 expected to give nothing, the finished file gives 3042");
}

TEST_F(FinishedFile, AMissingMappingIsNamed) {
    bytes_ = layOut({entry(file::kConversion, "TINY", "UTF-8", kPageToUtf8)});
    EXPECT_EQ(problem(), "tiny.map: page TINY: expected a mapping to UTF-8 in the finished file");
}

TEST(Pairs, EachConversionHasAWayBack) {
    const auto one = entry(file::kConversion, "A", "UTF-8", 17);
    EXPECT_EQ(problemOf([&] { checkPairs({one}); }),
              "plan:7: conversion \"A\", \"UTF-8\": expected an entry of the way back");
    EXPECT_EQ(problemOf([&] { checkPairs({one, entry(file::kConversion, "UTF-8", "A", 50)}); }), "");
}

TEST(Pairs, TypesOfTheTwoWaysFit) {
    const auto problem = [](std::uint8_t forward, std::uint8_t back) {
        return problemOf([=] {
            checkPairs({entry(file::kConversion, "A", "UTF-8", forward),
                        entry(file::kConversion, "UTF-8", "A", back)});
        });
    };
    EXPECT_EQ(problem(17, 20),
              "plan:7: conversion \"A\", \"UTF-8\" of type 17: expected the opposite type on the "
              "way back, found 20");
    for (const auto &[forward, back] : {std::pair{19, 50}, {51, 18}, {81, 17}, {29, 170}, {3, 3}, {23, 26}})
        EXPECT_NE(problem(static_cast<std::uint8_t>(forward), static_cast<std::uint8_t>(back)), "");
    for (const auto &[forward, back] : {std::pair{17, 18}, {17, 50}, {81, 18}, {51, 20}, {19, 20}, {3, 4}})
        EXPECT_EQ(problem(static_cast<std::uint8_t>(forward), static_cast<std::uint8_t>(back)), "");
}

TEST(Pairs, TypesInOtherByteOrdersFitWhereBothWaysReadAndWriteTheSameUnits) {
    const std::pair<std::uint8_t, std::uint8_t> kPairs[] = {
        {144, 145}, {146, 147}, {148, 149}, {150, 151}, {152, 153}, {154, 155},
        {156, 157}, {158, 159}, {160, 161}, {162, 163}, {164, 165}, {166, 167},
        {168, 169}, {170, 171}, {172, 173}, {174, 175}, {176, 177},
    };
    for (int forward = 144; forward <= 177; forward++)
        for (int back = 144; back <= 177; back++) {
            const bool fit = std::any_of(std::begin(kPairs), std::end(kPairs), [&](const auto &pair) {
                return (pair.first == forward && pair.second == back) ||
                       (pair.first == back && pair.second == forward);
            });
            EXPECT_EQ(typesFit(static_cast<std::uint8_t>(forward), static_cast<std::uint8_t>(back)), fit)
                << forward << ", " << back;
        }
    for (int plain = 1; plain <= 89; plain++)
        for (int swapped = 144; swapped <= 177; swapped++)
            EXPECT_FALSE(typesFit(static_cast<std::uint8_t>(plain), static_cast<std::uint8_t>(swapped)))
                << plain << ", " << swapped;
}

TEST(Basics, EveryPageHasACollationAndEveryBytePageACaseTable) {
    std::vector<PlannedEntry> entries = {entry(file::kCharSet, "A", "")};
    EXPECT_EQ(problemOf([&] { checkBasics(entries); }), "plan:7: page A: expected a case table \"basic\"");
    entries.push_back(entry(file::kCaseTable, "A", "basic"));
    EXPECT_EQ(problemOf([&] { checkBasics(entries); }), "plan:7: page A: expected a collation \"basic\"");
    entries.push_back(entry(file::kCollation, "A", "basic"));
    EXPECT_EQ(problemOf([&] { checkBasics(entries); }), "");
    entries = {entry(file::kCharSet, "W", "", file::kMultibyte | file::kWide),
               entry(file::kCollation, "W", "basic")};
    EXPECT_EQ(problemOf([&] { checkBasics(entries); }), "");
}

TEST(Names, NoTwoEntriesOfAKindCompareEqual) {
    const auto utf8 = entry(file::kCollation, "UTF-8", "basic");
    EXPECT_EQ(problemOf([&] {
                  checkNames({utf8, entry(file::kCharSet, "ab", ""), entry(file::kCharSet, "AB ", "")});
              }),
              "plan:7: entry \"AB \", \"\" of kind 2: expected names of its own, another entry has the same");
    EXPECT_EQ(problemOf([&] {
                  checkNames({utf8, entry(file::kCollation, "utf-8", "other")});
              }),
              "plan:7: entry \"utf-8\", \"other\": expected one collation of UTF-8");
    EXPECT_EQ(problemOf([] { checkNames({}); }), "the plan: expected one collation of UTF-8, found none");
}

TEST(CharTable, EveryCodeWalksAsOneCharacter) {
    EXPECT_EQ(problemOf([] { checkCharTable(tinyPage()); }), "");
    Page page = tinyPage();
    page.attributes[0x81] = 2;
    EXPECT_EQ(problemOf([&] { checkCharTable(page); }),
              "tiny.map:201: page TINY, code 8140: expected 1 trail bytes, the first byte has 2");
    page = tinyPage();
    page.attributes[0x41] = 1;
    EXPECT_EQ(problemOf([&] { checkCharTable(page); }),
              "tiny.map:66: page TINY, code 41: expected 0 trail bytes, the first byte has 1");
    page = tinyPage();
    page.trailValid[0x42] = 0;
    EXPECT_EQ(problemOf([&] { checkCharTable(page); }),
              "tiny.map:203: page TINY, code 8142: expected a trail byte that validation accepts");
    page = tinyPage();
    page.classes[0x41] = 1;
    EXPECT_NE(problemOf([&] { checkCharTable(page); }).find("expected class 0"), std::string::npos);
    page = tinyPage();
    page.flags = 0;
    EXPECT_NE(problemOf([&] { checkCharTable(page); }).find("expected no trail bytes in a single-byte page"),
              std::string::npos);
}

class UnicodeCase : public testing::Test {
protected:
    std::string problem() {
        return problemOf([this] { checkUnicodeCaseTable(table_, {"UnicodeData.txt", 0}); });
    }
    void set(std::size_t pair, std::uint16_t character, std::uint16_t counterpart) {
        table_.upper[pair].character = character;
        table_.upper[pair].counterpart = counterpart;
    }
    file::UnicodeCaseTable table_ =
        makeUnicodeCaseTable(UnicodeData(NLSGEN_UNICODE "/UnicodeData.txt"), false);
};

TEST_F(UnicodeCase, TheListsOfUnicodeKeepTheirRules) {
    EXPECT_EQ(problem(), "");
    std::size_t upper = 0;
    std::size_t lower = 0;
    while (table_.upper[upper].character != 0)
        upper++;
    while (table_.lower[lower].character != 0)
        lower++;
    EXPECT_EQ(upper, 736U);
    EXPECT_EQ(lower, 725U);
}

TEST_F(UnicodeCase, AFullListNeedsItsEnd) {
    for (std::size_t pair = 736; pair < 744; pair++)
        set(pair, static_cast<std::uint16_t>(0x3A0 + pair), 0x3A3);
    EXPECT_NE(problem(), "");
}

TEST_F(UnicodeCase, ACharacterNeedsAPage) {
    set(0, 0x3042, 0x3041);
    EXPECT_EQ(
        problem(),
        "UnicodeData.txt: upper-case list, pair 1 (U+3042 to U+3041): expected a character of one or two "
        "bytes or of the lead bytes E1, E2, EF");
}

TEST_F(UnicodeCase, TheCounterpartHasTheSameLeadByte) {
    set(0, 0x1E9E, 0x00DF);
    EXPECT_NE(
        problem().find("pair 1 (U+1E9E to U+00DF): expected a counterpart of the character's lead byte"),
        std::string::npos);
}

TEST_F(UnicodeCase, NoTwoCharactersShareASlot) {
    set(1, 'a', 'A');
    EXPECT_NE(problem().find("pair 2 (U+0061 to U+0041): expected a character whose slot no other"),
              std::string::npos);
}

TEST_F(UnicodeCase, SurrogatesAreNoCharacters) {
    set(0, 0xD800, 'A');
    EXPECT_NE(problem().find("expected characters that are no surrogates"), std::string::npos);
}

TEST(ByteCase, KeepsTheLettersOfThePage) {
    const UnicodeData unicode(NLSGEN_UNICODE "/UnicodeData.txt");
    const file::CaseTable western = makeByteCaseTable(realPage("1252"), unicode, false);
    EXPECT_EQ(western.upper[0x61], 'A');
    EXPECT_EQ(western.upper[0xFF], 0x9F);
    EXPECT_EQ(western.upper[0xB5], 0xB5); // micro sign
    EXPECT_EQ(western.upper[0xDF], 0xDF);
    const file::CaseTable japanese = makeByteCaseTable(realPage("SHIFT-JIS"), unicode, false);
    EXPECT_EQ(japanese.lower[0x5A], 'z');
    EXPECT_EQ(japanese.lower[0x83], 0x83);
    const file::CaseTable turkish = makeByteCaseTable(realPage("1254"), unicode, true);
    EXPECT_EQ(turkish.upper[0x69], 0xDD);
    EXPECT_EQ(turkish.lower[0x49], 0xFD);
    EXPECT_EQ(makeByteCaseTable(realPage("IBM037"), unicode, false).upper[0x81], 0xC1);
}

TEST(ByteCase, CyrillicHasTheMostPairsAndHebrewOnlyLatin) {
    const UnicodeData unicode(NLSGEN_UNICODE "/UnicodeData.txt");
    const auto pairs = [&unicode](const std::string &page) {
        const file::CaseTable table = makeByteCaseTable(realPage(page), unicode, false);
        int count = 0;
        for (int byte = 0; byte < 256; byte++)
            count += table.upper[byte] != byte ? 1 : 0;
        return count;
    };
    EXPECT_EQ(pairs("1251"), 73);
    EXPECT_EQ(pairs("ISO8859-8"), 26);
    EXPECT_EQ(pairs("620-2533"), 26);
}

} // namespace
} // namespace velnls::nlsgen::test
