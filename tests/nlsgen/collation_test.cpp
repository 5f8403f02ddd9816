// Orders, weights and the rules that the weights keep to.
#include "collation_table.hpp"

#include "real_files.hpp"
#include "temporary_folder.hpp"
#include "verifier.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace velnls::nlsgen::test {
namespace {

file::Collation collationOf(const PlannedEntry &entry) {
    file::Collation collation;
    std::memcpy(&collation, entry.record.data(), sizeof collation);
    return collation;
}

file::Collation collationOf(const std::string &page, const std::string &name = "basic") {
    for (const PlannedEntry &entry : realPlan().entries)
        if (entry.kind == file::kCollation && entry.name == page && entry.name2 == name)
            return collationOf(entry);
    ADD_FAILURE() << "no collation " << name << " of " << page;
    return {};
}

// The characters by their weights, those of one weight and of bytes that they have not left out.
std::u32string inOrder(const std::string &page, const std::string &name, std::u32string characters,
                       bool sensitive = true) {
    const file::Collation collation = collationOf(page, name);
    const std::uint8_t *weights = sensitive ? collation.caseSensitive : collation.caseInsensitive;
    std::map<std::uint8_t, char32_t> byWeight;
    for (const char32_t character : characters)
        byWeight.emplace(weights[realPage(page).codeOf(character)], character);
    std::u32string result;
    for (const auto &[weight, character] : byWeight)
        result += character;
    return result;
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

TEST(Weights, AllCollationsPassTheirOwnCheck) {
    for (const PlannedCollation &planned : realPlan().collations)
        EXPECT_EQ(problemOf([&] {
                      checkCollation(*planned.page, planned.name,
                                     collationOf(planned.page->name, planned.name), planned.expanding);
                  }),
                  "")
            << planned.page->name << ", " << planned.name;
}

TEST(Weights, ABlankAboveALetterOrADigitIsAFault) {
    for (const int byte : {0x7A, 0x39, 0xE9}) {
        file::Collation weights = collationOf("1252");
        std::swap(weights.caseSensitive[0x20], weights.caseSensitive[byte]);
        EXPECT_NE(problemWith("1252", weights).find("to weigh more than the blank"), std::string::npos);
        weights = collationOf("1252");
        std::swap(weights.caseInsensitive[0x20], weights.caseInsensitive[byte]);
        EXPECT_NE(problemWith("1252", weights).find("to weigh more than the blank"), std::string::npos);
    }
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

// What each page offers beside "basic".
const std::map<std::string, std::vector<std::string>> kOffered = [] {
    const std::vector<std::string> western = {"german",    "phonebook", "swedish",  "finnish",  "danish",
                                              "norwegian", "icelandic", "estonian", "noaccents"};
    const std::vector<std::string> central = {"czech",    "slovak",   "polish",
                                              "croatian", "romanian", "noaccents"};
    return std::map<std::string, std::vector<std::string>>{
        {"1252", western},
        {"ISO8859-1", western},
        {"ISO8859-15", western},
        {"IBM850", western},
        {"IBM858", western},
        {"IBM437", {"german", "swedish", "finnish", "noaccents"}},
        {"IBM861", {"icelandic", "noaccents"}},
        {"ROMAN-8", {"noaccents"}},
        {"IBM273", {"german"}},
        {"IBM277", {"danish", "norwegian"}},
        {"IBM278", {"swedish", "finnish"}},
        {"1250", central},
        {"ISO8859-2", central},
        {"IBM852", central},
        {"MAZOVIA", {"polish", "noaccents"}},
        {"1251", {"serbian", "macedonian"}},
        {"ISO8859-5", {"serbian", "macedonian"}},
        {"1257", {"lithuanian", "latvian", "estonian", "noaccents"}},
        {"1254", {"turkish", "noaccents"}},
        {"IBM857", {"turkish", "noaccents"}},
    };
}();

TEST(Languages, AreOfferedByThePagesThatHaveTheirLetters) {
    std::map<std::string, std::vector<std::string>> found;
    std::size_t languages = 0;
    std::size_t all = 0;
    for (const PlannedEntry &entry : realPlan().entries) {
        if (entry.kind != file::kCollation)
            continue;
        all++;
        if (entry.name2 == "basic")
            continue;
        found[entry.name].push_back(entry.name2);
        languages += entry.name2 == "noaccents" ? 0 : 1;
    }
    EXPECT_EQ(languages, 74U);
    EXPECT_EQ(all, 53U + 74 + 15);
    for (auto &[page, names] : found)
        std::sort(names.begin(), names.end());
    for (auto [page, names] : kOffered) {
        std::sort(names.begin(), names.end());
        EXPECT_EQ(found[page], names) << page;
    }
    EXPECT_EQ(found.size(), kOffered.size());
}

TEST(Languages, WeightZeroIsASharpSOfTheGermanOrdersOnAsciiPages) {
    for (const PlannedEntry &entry : realPlan().entries) {
        if (entry.kind != file::kCollation || collationOf(entry).kind != file::kWeights)
            continue;
        const bool german = entry.name2 == "german" || entry.name2 == "phonebook";
        const file::Collation weights = collationOf(entry);
        for (std::uint32_t byte = 1; byte < 256; byte++) {
            const bool expands =
                german && entry.name != "IBM273" && realPage(entry.name).toUnicode(byte) == 0x00DF;
            EXPECT_EQ(weights.caseSensitive[byte] == 0, expands) << entry.name << ", " << entry.name2;
            EXPECT_EQ(weights.caseInsensitive[byte] == 0, expands) << entry.name << ", " << entry.name2;
        }
    }
}

TEST(Languages, GermanIsTheDefaultOrderButForSharpS) {
    const file::Collation basic = collationOf("1252");
    file::Collation german = collationOf("1252", "german");
    EXPECT_EQ(german.caseSensitive[0xDF], 0);
    german.caseSensitive[0xDF] = basic.caseSensitive[0xDF];
    german.caseInsensitive[0xDF] = basic.caseInsensitive[0xDF];
    EXPECT_EQ(std::memcmp(&german, &basic, sizeof german), 0);
    const file::Collation ebcdic = collationOf("IBM273", "german");
    const file::Collation ebcdicBasic = collationOf("IBM273");
    EXPECT_EQ(std::memcmp(&ebcdic, &ebcdicBasic, sizeof ebcdic), 0);
}

// The letters that each language is known by, among their neighbours of the alphabet.
TEST(Languages, HaveTheirLettersInTheirPlaces) {
    EXPECT_EQ(inOrder("1252", "phonebook", U"az\u00E4\u00E1b"), U"a\u00E1\u00E4bz");
    EXPECT_EQ(inOrder("1252", "swedish", U"a\u00F6\u00E4\u00E5z"), U"az\u00E5\u00E4\u00F6");
    EXPECT_EQ(inOrder("IBM278", "finnish", U"a\u00F6\u00E4\u00E5z"), U"az\u00E5\u00E4\u00F6");
    EXPECT_EQ(inOrder("1252", "danish", U"aA\u00F8\u00E6\u00E5z"), U"Aaz\u00E6\u00F8\u00E5");
    EXPECT_EQ(inOrder("IBM277", "norwegian", U"a\u00F8\u00E6\u00E5z"), U"az\u00E6\u00F8\u00E5");
    EXPECT_EQ(inOrder("IBM861", "icelandic", U"a\u00E1bde\u00F0z\u00FE\u00E6\u00F6"),
              U"a\u00E1bd\u00F0ez\u00FE\u00E6\u00F6");
    EXPECT_EQ(inOrder("1252", "estonian", U"stuvwxyz\u0161\u017E\u00F5\u00E4\u00F6\u00FC"),
              U"s\u0161z\u017Etuvw\u00F5\u00E4\u00F6\u00FCxy");
    EXPECT_EQ(inOrder("1250", "czech", U"czs\u010D\u0161\u017Er\u0159d"), U"c\u010Ddr\u0159s\u0161z\u017E");
    EXPECT_EQ(inOrder("ISO8859-2", "slovak", U"ab\u00E4o\u00F4p\u010Dcd"), U"a\u00E4bc\u010Ddo\u00F4p");
    EXPECT_EQ(inOrder("MAZOVIA", "polish", U"lmn\u0142\u0144o\u00F3pz\u017A\u017Ca\u0105b"),
              U"a\u0105bl\u0142mn\u0144o\u00F3pz\u017A\u017C");
    EXPECT_EQ(inOrder("IBM852", "croatian", U"c\u010D\u0107d\u0111e"), U"c\u010D\u0107d\u0111e");
    EXPECT_EQ(inOrder("1250", "romanian", U"a\u0103\u00E2bi\u00EEjs\u015Ft\u0163"),
              U"a\u0103\u00E2bi\u00EEjs\u015Ft\u0163");
    EXPECT_EQ(inOrder("1251", "serbian", U"\u0434\u0452\u0435\u043B\u0459\u043C"),
              U"\u0434\u0452\u0435\u043B\u0459\u043C");
    EXPECT_EQ(inOrder("ISO8859-5", "macedonian", U"\u0433\u0453\u0434\u043A\u045C\u043B"),
              U"\u0433\u0434\u0453\u043A\u043B\u045C");
    EXPECT_EQ(inOrder("1257", "lithuanian", U"iyjk\u010Dcd"), U"c\u010Ddiyjk");
    EXPECT_EQ(inOrder("1257", "latvian", U"g\u0123hiyjk\u0137l"), U"g\u0123hiyjk\u0137l");
    EXPECT_EQ(inOrder("1254", "turkish", U"h\u0131ijs\u015Fto\u00F6pg\u011Fh"),
              U"g\u011Fh\u0131ijo\u00F6ps\u015Ft");
}

TEST(Languages, WithoutAccentsFormsShareAWeightAndLettersAllOfThem) {
    const std::u32string letters = U"aA\u00E0\u00C0\u00E5bBo\u00D8";
    EXPECT_EQ(inOrder("1252", "noaccents", letters), U"aAbBo\u00D8");
    EXPECT_EQ(inOrder("1252", "noaccents", letters, false), U"abo");
    EXPECT_EQ(inOrder("1250", "noaccents", U"l\u0142\u0141mz\u017C"), U"l\u0141mz");
    EXPECT_EQ(inOrder("1252", "noaccents", U"s\u00DFt\u00E6b", false), U"\u00E6bs\u00DFt");
}

class FinishedWeights : public testing::Test {
protected:
    // The problem of the finished file after `change`; its place left out.
    template <typename Change>
    std::string problemAfter(const std::string &page, const std::string &name, Change change) {
        Bytes bytes = file_;
        const std::size_t offset = recordOffset(bytes, entryNumber(bytes, '4', page, name));
        file::Collation collation;
        std::memcpy(&collation, bytes.data() + offset, sizeof collation);
        change(collation);
        std::memcpy(bytes.data() + offset, &collation, sizeof collation);
        const std::string message = problemOf([&] { verifyCollations(bytes, realPlan().collations); });
        const std::size_t at = message.find("collation ");
        return at == std::string::npos ? message : message.substr(at);
    }
    Bytes file_ = layOut(realPlan().entries);
};

TEST_F(FinishedWeights, HasTheWeightsOfItsOrders) {
    EXPECT_EQ(problemAfter("1252", "swedish", [](file::Collation &) {}), "");
}

TEST_F(FinishedWeights, IsNotWrittenWhenItsWeightsDoNotFollowTheOrder) {
    EXPECT_EQ(
        problemAfter("1252", "swedish",
                     [](file::Collation &c) { std::swap(c.caseSensitive[0x78], c.caseSensitive[0x58]); }),
        "collation \"swedish\" of page 1252, bytes 78 and 58: expected the first to weigh less than the "
        "second in the finished file");
    EXPECT_EQ(
        problemAfter("1252", "swedish", [](file::Collation &c) { c.caseInsensitive[0x58]++; }),
        "collation \"swedish\" of page 1252, bytes 78 and 58: expected the first to weigh the same as the "
        "second in the finished file");
    EXPECT_EQ(problemAfter("1252", "german", [](file::Collation &c) { c.caseSensitive[0xDF] = 200; }),
              "collation \"german\" of page 1252, bytes DF and DF: expected weight 0 in the finished file");
    EXPECT_EQ(
        problemAfter("1250", "noaccents", [](file::Collation &c) { c.caseSensitive[0xE1]++; }),
        "collation \"noaccents\" of page 1250, bytes 61 and E1: expected the first to weigh the same as "
        "the second in the finished file");
    EXPECT_NE(
        problemAfter("620-2533", "basic",
                     [](file::Collation &c) { std::swap(c.caseSensitive[0xA1], c.caseSensitive[0xA2]); }),
        "");
    EXPECT_NE(problemAfter("708", "basic", [](file::Collation &c) { c.caseSensitive[0xFF] = 1; }), "");
}

TEST_F(FinishedWeights, MustHaveEveryPlannedCollation) {
    std::vector<PlannedEntry> entries = realPlan().entries;
    std::erase_if(entries, [](const PlannedEntry &entry) { return entry.name2 == "swedish"; });
    EXPECT_NE(problemOf([&] {
                  verifyCollations(layOut(entries), realPlan().collations);
              }).find("expected it in the finished file"),
              std::string::npos);
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
    EXPECT_EQ(order.rankOf(0x61).base, order.rankOf(0xE1).base);
    EXPECT_NE(order.rankOf(0x61).base, order.rankOf(0x62).base);
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
