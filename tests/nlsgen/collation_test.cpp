// Orders, weights and the rules that the weights keep to.
#include "collation_table.hpp"

#include "real_files.hpp"
#include "temporary_folder.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace velnls::nlsgen::test {
namespace {

file::Collation collationOf(const std::string &page) {
    for (const PlannedEntry &entry : realPlan().entries) {
        if (entry.kind != file::kCollation || entry.name != page || entry.name2 != "basic")
            continue;
        file::Collation collation;
        std::memcpy(&collation, entry.record.data(), sizeof collation);
        return collation;
    }
    ADD_FAILURE() << "no collation of " << page;
    return {};
}

std::string problemWith(const std::string &page, file::Collation collation,
                        const std::set<std::uint32_t> &expanding = {}) {
    const std::string message =
        problemOf([&] { checkCollation(realPage(page), "basic", collation, expanding); });
    const std::size_t byte = message.find("byte ");
    return byte == std::string::npos ? message : message.substr(byte);
}

TEST(Weights, OrderLettersByTheDefaultOrder) { // blank, 0, 9, a, A, b, S, t by their bytes
    const file::Collation weights = collationOf("1252");
    const auto *cs = weights.caseSensitive;
    EXPECT_LT(cs[0x20], cs[0x30]);
    EXPECT_LT(cs[0x39], cs[0x61]);
    EXPECT_LT(cs[0x61], cs[0x41]);
    EXPECT_LT(cs[0x41], cs[0xE4]); // a with diaeresis
    EXPECT_LT(cs[0xC4], cs[0x62]);
    EXPECT_LT(cs[0x53], cs[0xDF]); // sharp s behind all s
    EXPECT_LT(cs[0x8A], cs[0xDF]);
    EXPECT_LT(cs[0xDF], cs[0x74]);
}

TEST(Weights, FormsOfALetterShareTheLowestWeightWhenCaseDoesNotCount) {
    const file::Collation weights = collationOf("1252");
    EXPECT_EQ(weights.caseInsensitive[0x41], weights.caseInsensitive[0x61]);
    EXPECT_EQ(weights.caseInsensitive[0x61], weights.caseSensitive[0x61]);
    EXPECT_NE(weights.caseInsensitive[0xE4], weights.caseInsensitive[0x61]);
    EXPECT_NE(weights.caseInsensitive[1], weights.caseInsensitive[2]);
}

TEST(Weights, CyrillicPagesFollowTheRussianOrder) {
    const file::Collation weights = collationOf("1251");
    EXPECT_LT(weights.caseSensitive[0xE0], weights.caseSensitive[0x61]); // Cyrillic before Latin
    EXPECT_LT(weights.caseSensitive[0xC5], weights.caseSensitive[0xB8]); // io behind ie
    EXPECT_LT(weights.caseSensitive[0xB8], weights.caseSensitive[0xE6]);
}

TEST(Weights, BlankRanksBelowLettersAndDigitsOfEverySingleBytePage) {
    for (const auto &page : realPlan().pages) {
        if (page->isMultibyte())
            continue;
        const file::Collation weights = collationOf(page->name);
        const std::uint32_t blank = page->codeOf(' ');
        for (std::uint32_t c = '0'; c <= 'z'; c++) {
            if (c <= '9' || c >= 'a' || (c >= 'A' && c <= 'Z')) {
                EXPECT_LT(weights.caseSensitive[blank], weights.caseSensitive[page->codeOf(c)]) << page->name;
            }
        }
    }
}

TEST(Weights, AllPagesPassTheirOwnCheck) {
    for (const auto &page : realPlan().pages)
        EXPECT_EQ(problemWith(page->name, collationOf(page->name)), "") << page->name;
}

TEST(Weights, ACheckNamesTheByteThatBreaksARule) {
    file::Collation weights = collationOf("1252");
    weights.caseSensitive[0x62] = weights.caseSensitive[0x61];
    EXPECT_NE(problemWith("1252", weights).find("expected a weight of its own"), std::string::npos);
    weights = collationOf("1252");
    weights.caseSensitive[0xDF] = 0;
    EXPECT_EQ(problemWith("1252", weights), "byte DF: expected a weight above 0");
    weights = collationOf("1252");
    EXPECT_EQ(problemWith("1252", weights, {0xDF}), "byte DF: expected weight 0, which expands to \"ss\"");
    weights.variant = 0;
    EXPECT_NE(problemWith("1252", weights).find("the variant must not be 0"), std::string::npos);
    EXPECT_NE(problemWith("1252", makeBasicCollation()).find("needs weights"), std::string::npos);
}

TEST(Weights, AnExpandingCharacterWeighsNothingInBothTables) {
    const CharacterOrder order = [] {
        std::set<std::uint32_t> characters;
        for (std::uint32_t byte = 0; byte < 256; byte++)
            characters.insert(realPage("ISO8859-1").toUnicode(byte));
        return readDefaultOrder(NLSGEN_UNICODE "/allkeys.txt", characters);
    }();
    const file::Collation weights = makeWeights(realPage("ISO8859-1"), order, {0xDF});
    EXPECT_EQ(weights.caseSensitive[0xDF], 0);
    EXPECT_EQ(weights.caseInsensitive[0xDF], 0);
    EXPECT_EQ(problemWith("ISO8859-1", weights, {0xDF}), "");
}

TEST(ThaiWeights, VowelSignsAndMarksKeepToTheirBits) {
    file::Collation weights = collationOf("620-2533");
    EXPECT_EQ(weights.kind, file::kThai);
    EXPECT_EQ(weights.caseSensitive[0xD1], 0x08);
    EXPECT_EQ(weights.caseSensitive[0xED], 0x40);
    EXPECT_EQ(weights.caseSensitive[0xE7], 3);
    EXPECT_EQ(weights.caseSensitive[0xEB], 7);
    EXPECT_EQ(weights.caseSensitive[0xEC], 7);
    weights.caseSensitive[0xD4] = 0x11;
    EXPECT_NE(
        problemWith("620-2533", weights).find("byte D4: expected a vowel sign's weight within the bits 78"),
        std::string::npos);
    weights = collationOf("620-2533");
    weights.caseSensitive[0xE8] = 2;
    EXPECT_NE(problemWith("620-2533", weights).find("byte E8: expected a mark's weight from 3 to 7"),
              std::string::npos);
    weights = collationOf("620-2533");
    weights.caseInsensitive[0xA1]++;
    EXPECT_EQ(problemWith("620-2533", weights), "byte A1: expected the same weight in both tables");
}

TEST(OrderList, ReadsLettersAccentsAndForms) {
    const TemporaryFolder folder;
    const CharacterOrder order =
        readOrderList(folder.write("x.txt", "# comment\nignorable 0001 0002\n0061 <<< 0041 << 00E1\n0062\n"));
    EXPECT_EQ(order.rankOf(0x61).letter, order.rankOf(0x41).letter);
    EXPECT_NE(order.rankOf(0x61).letter, order.rankOf(0xE1).letter);
    EXPECT_NE(order.rankOf(1).letter, order.rankOf(2).letter);
    EXPECT_LT(order.rankOf(0xE1).order, order.rankOf(0x62).order);
}

TEST(OrderList, BadLinesAreNamedWithTheirNumber) {
    const TemporaryFolder folder;
    const auto problem = [&folder](const std::string &text) {
        const std::string path = folder.write("x.txt", text);
        const std::string message = problemOf([&] { readOrderList(path); });
        return message.starts_with(path) ? message.substr(path.size() - 5) : message;
    };
    EXPECT_EQ(problem("0061 < 0062\n"), "x.txt:1: expected << or <<<, found <");
    EXPECT_EQ(problem("\n0061 <<\n"), "x.txt:2: expected a character at the end of the line");
    EXPECT_EQ(problem("zz\n"), "x.txt:1: expected a character in hexadecimal, found zz");
    EXPECT_EQ(problem("0061\n0061\n"), "x.txt:2: expected each character once, found U+0061 again");
    const std::string path = folder.write("x.txt", "0061\n");
    EXPECT_EQ(problemOf([&] { (void)readOrderList(path).rankOf(0x62); }),
              path + ": expected a place for U+0062 in this order");
}

} // namespace
} // namespace velnls::nlsgen::test
