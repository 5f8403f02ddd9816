// Locales: creation, sharing, character and case tables, the Shift_JIS companion, closing.
#include "library_fixture.hpp"
#include "status_rows.hpp"

#include <cstring>
#include <map>

namespace {

using fixture::ArenaModel;
using fixture::ByteCase;
using fixture::CharacterTable;
using fixture::CollationTable;
using fixture::DataFile;
using fixture::FakeObject;
using fixture::gives;
using fixture::Library;
using fixture::UnicodeCase;
namespace peek = fixture::peek;

DataFile pages() {
    DataFile file;
    file.codePage("1252", CharacterTable::singleByte());
    file.codePage("UTF-8", CharacterTable::utf8());
    file.collation("1252", "basic", CollationTable());
    file.collation("1252", "german", CollationTable());
    file.caseTable("1252", "basic", ByteCase::ascii());
    file.caseTable("1252", "turkish", ByteCase());
    file.caseTable("UTF-8", "basic", UnicodeCase{{{'a', 'A'}, {0xE4, 0xC4}}, {{'A', 'a'}}});
    return file;
}

TEST(Locale, SameNamesGiveTheSameLocaleWhateverTheirSpelling) {
    Library library(pages(), 60000);
    nlsLocale *const first = library.locale("1252", "german", "basic");
    EXPECT_EQ(library.locale("1252", "german", "basic"), first);
    EXPECT_EQ(library.locale("1252  ", "GERMAN ", "Basic"), first);
    EXPECT_NE(library.locale("1252", "basic", "basic"), first);
    EXPECT_NE(library.locale("1252", "german", "turkish"), first);
    EXPECT_NE(library.locale("1252", "german"), first);
}

TEST(Locale, NoCollationNameMeansBasic) {
    Library library(pages(), 60000);
    nlsLocale *const basic = library.locale("1252", nullptr);
    EXPECT_EQ(library.locale("1252", "basic"), basic);
    EXPECT_EQ(peek::collationName(basic), "basic");
    EXPECT_NE(peek::collation(basic), nullptr);
}

TEST(Locale, EmptyCollationNameFindsBasicButCreatesALocaleWithoutCollation) {
    Library library(pages(), 60000);
    nlsLocale *const first = library.locale("1252", "");
    EXPECT_EQ(peek::collation(first), nullptr);
    EXPECT_EQ(peek::collationName(first), "");
    nlsLocale *const second = library.locale("1252", "");
    EXPECT_NE(second, first) << "each such call makes another";
    nlsLocale *const basic = library.locale("1252", "basic");
    EXPECT_EQ(library.locale("1252", ""), basic);
}

TEST(Locale, AllOnesFindsAndCreatesLocalesWithoutCollation) {
    Library library(pages(), 60000);
    nlsLocale *const none = library.locale("1252", NLS_NO_COLLATION);
    EXPECT_EQ(peek::collation(none), nullptr);
    EXPECT_EQ(library.locale("1252", NLS_NO_COLLATION), none);
    nlsLocale *const basic = library.locale("1252", nullptr);
    EXPECT_NE(basic, none);
    EXPECT_EQ(library.locale("1252", NLS_NO_COLLATION), none);
    Library other(pages(), 60000);
    nlsLocale *const empty = other.locale("1252", "");
    EXPECT_EQ(other.locale("1252", NLS_NO_COLLATION), empty) << "an empty name leaves no collation either";
}

TEST(Locale, CaseTableNameOfNothingAndEmptyAreTheSame) {
    Library library(pages(), 60000);
    nlsLocale *const none = library.locale("1252", NLS_NO_COLLATION, nullptr);
    EXPECT_EQ(peek::caseTable(none), nullptr);
    EXPECT_EQ(library.locale("1252", NLS_NO_COLLATION, ""), none);
}

TEST(Locale, TablesTakeTheirSizesOnceAndAreShared) {
    for (std::size_t misalignment = 0; misalignment < 16; misalignment += 5) {
        const DataFile file = pages();
        Library library(file, 60000, misalignment);
        ArenaModel model(library.memory.data(), 60000);
        model.open(file.entries());
        nlsLocale *const full = library.locale("1252", "german", "basic");
        model.take(136, 8);
        model.take(792, 1);
        model.take(576, 1);
        model.take(516, 1);
        EXPECT_EQ(library.remaining(), model.remaining());
        library.files.restart();
        nlsLocale *const plain = library.locale("1252");
        model.take(136, 8);
        EXPECT_EQ(library.remaining(), model.remaining()) << "only its own object";
        nlsLocale *const cased = library.locale("1252", NLS_NO_COLLATION, "basic");
        model.take(136, 8);
        EXPECT_EQ(library.remaining(), model.remaining());
        EXPECT_EQ(library.files.reads(), 0);
        EXPECT_EQ(peek::characterTable(plain), peek::characterTable(full));
        EXPECT_EQ(peek::caseTable(cased), peek::caseTable(full));
    }
}

TEST(Locale, EachTableIsReadInOneCall) {
    Library library(pages(), 60000);
    library.files.restart();
    library.locale("1252", "german", "basic");
    ASSERT_EQ(library.files.reads(), 3);
    EXPECT_EQ(library.files.log[0].length, 1552U);
    EXPECT_EQ(library.files.log[1].length, 1040U);
    EXPECT_EQ(library.files.log[2].length, 1040U);
    library.files.restart();
    library.locale("UTF-8", NLS_NO_COLLATION, "basic");
    ASSERT_EQ(library.files.reads(), 2);
    EXPECT_EQ(library.files.log[1].length, 5968U);
}

TEST(Locale, CharacterTableHoldsTheRecordsArraysAndTheEntrysFlags) {
    CharacterTable table = CharacterTable::doubleByte(fixture::kMultibyte | 0x80);
    table.classes[7] = 9;
    DataFile file;
    file.codePage("P", table);
    Library library(file, 60000);
    const auto *const loaded = static_cast<const unsigned char *>(peek::characterTable(library.locale("P")));
    EXPECT_EQ(std::memcmp(loaded, table.classes.data(), 256), 0);
    EXPECT_EQ(std::memcmp(loaded + 256, table.attributes.data(), 256), 0);
    EXPECT_EQ(std::memcmp(loaded + 512, table.trailValid.data(), 256), 0);
    std::uint32_t word = 0;
    std::memcpy(&word, loaded + 768, 4);
    EXPECT_EQ(word, 256U);
    std::memcpy(&word, loaded + 788, 4);
    EXPECT_EQ(word, 0x82U);
}

TEST(Locale, CharacterCountDecidesHowMuchIsCopied) {
    struct Case {
        const char *count;
        std::int32_t stored;
        std::size_t copied;
    };
    for (const Case &one :
         {Case{"256 ", 256, 256}, Case{"16  ", 16, 16}, Case{"  16", 16, 16}, Case{"+16 ", 16, 16},
          Case{"0   ", 0, 0}, Case{"    ", 0, 0}, Case{"-1  ", -1, 0}, Case{"-999", -999, 0},
          Case{"300 ", 300, 256}, Case{"9999", 9999, 256}, Case{"16x2", 16, 16}}) {
        CharacterTable table;
        table.classes.fill(1);
        table.attributes.fill(2);
        table.trailValid.fill(3);
        table.count = one.count;
        DataFile file;
        file.codePage("P", table);
        Library library(file, 60000);
        const auto *const loaded =
            static_cast<const unsigned char *>(peek::characterTable(library.locale("P")));
        std::int32_t stored = 0;
        std::memcpy(&stored, loaded + 768, 4);
        EXPECT_EQ(stored, one.stored) << one.count;
        for (std::size_t i = 0; i < 256; ++i) {
            const unsigned char within = i < one.copied ? 1 : 0;
            ASSERT_EQ(loaded[i], within) << one.count << " " << i;
            ASSERT_EQ(loaded[256 + i], 2 * within) << one.count << " " << i;
            ASSERT_EQ(loaded[512 + i], 3 * within) << one.count << " " << i;
        }
    }
}

TEST(Locale, ByteCaseTableHoldsCountAndMaps) {
    Library library(pages(), 60000);
    const auto *const loaded = static_cast<const unsigned char *>(
        peek::caseTable(library.locale("1252", NLS_NO_COLLATION, "basic")));
    std::uint32_t count = 0;
    std::memcpy(&count, loaded, 4);
    EXPECT_EQ(count, 256U);
    const ByteCase expected = ByteCase::ascii();
    EXPECT_EQ(std::memcmp(loaded + 4, expected.upper.data(), 256), 0);
    EXPECT_EQ(std::memcmp(loaded + 260, expected.lower.data(), 256), 0);
}

TEST(Locale, ByteCaseCountIsBounded) {
    for (const char *const count : {"9999", "-5  ", "0   "}) {
        ByteCase table = ByteCase::ascii();
        table.count = count;
        DataFile file;
        file.codePage("P", CharacterTable::singleByte());
        file.caseTable("P", "c", table);
        Library library(file, 60000);
        const auto *const loaded =
            static_cast<const unsigned char *>(peek::caseTable(library.locale("P", NLS_NO_COLLATION, "c")));
        std::int32_t stored = 0;
        std::memcpy(&stored, loaded, 4);
        EXPECT_EQ(stored, std::atoi(count));
        EXPECT_EQ(loaded[4 + 'a'], count[0] == '9' ? 'A' : 0);
    }
}

// The pages of a Unicode case table, filed by the plain rules.
struct CasePages {
    std::map<unsigned, std::vector<std::uint16_t>> pages;
    std::uint32_t size = 2056;

    static std::uint32_t utf8Number(std::uint16_t unit) {
        if (unit < 0x80)
            return unit;
        if (unit < 0x800)
            return (0xC0U | unit >> 6) << 8 | (0x80U | (unit & 63U));
        return (0xE0U | unit >> 12) << 16 | (0x80U | (unit >> 6 & 63U)) << 8 | (0x80U | (unit & 63U));
    }
    void file(std::uint16_t character, std::uint16_t counterpart, unsigned pass) {
        std::uint32_t number = utf8Number(character);
        switch (number >> 16) {
        case 0xE1:
            number -= 0xE17F80;
            break;
        case 0xE2:
            number -= 0xE23F80;
            break;
        case 0xEF:
            number -= 0xEEFF80;
            break;
        default:
            number &= 0xFFFF;
        }
        const unsigned page = number >> 8 & 0xFF;
        if (pages.find(page) == pages.end()) {
            pages[page].resize(page == 0 ? 256 : 128);
            size += (page == 0 ? 512U : 256U) + 2;
        }
        const unsigned index = (number & 0x7F) + pass * (page == 0 ? 128 : 64);
        if (index < pages[page].size())
            pages[page][index] = fixture::halfOf(utf8Number(counterpart));
    }
};

TEST(Locale, UnicodeCaseTableFilesPairsByTheirUtf8Form) {
    UnicodeCase table;
    for (std::uint16_t i = 0; i < 26; ++i) {
        table.upper.emplace_back('a' + i, 'A' + i);
        table.lower.emplace_back('A' + i, 'a' + i);
    }
    for (std::uint16_t u = 0x100; u < 0x130; u = fixture::halfOf(u + 2)) {
        table.upper.emplace_back(u + 1, u);
        table.lower.emplace_back(u, u + 1);
    }
    for (const std::uint16_t u :
         std::initializer_list<std::uint16_t>{0x1E00, 0x1EA0, 0x2160, 0x2C00, 0xFF21, 0x10A0}) {
        table.upper.emplace_back(u + 1, u);
        table.lower.emplace_back(u, u + 1);
    }
    table.upper.emplace_back('a', 'B'); // the later of two pairs wins
    CasePages expected;
    for (const auto &[character, counterpart] : table.upper)
        expected.file(character, counterpart, 0);
    for (const auto &[character, counterpart] : table.lower)
        expected.file(character, counterpart, 1);

    DataFile file;
    file.codePage("UTF-8", CharacterTable::utf8());
    file.caseTable("UTF-8", "basic", table);
    for (std::size_t misalignment = 0; misalignment < 4; ++misalignment) {
        Library library(file, 60000, misalignment);
        ArenaModel model(library.memory.data(), 60000);
        model.open(file.entries());
        const auto *const loaded = static_cast<const unsigned char *>(
            peek::caseTable(library.locale("UTF-8", NLS_NO_COLLATION, "basic")));
        model.take(136, 8);
        model.take(792, 1);
        model.take(4 + 4 + 5968 + 2048, 2);
        for (const auto &[page, values] : expected.pages)
            model.take(page == 0 ? 512 : 256, 2);
        model.take(1024, 2); // the page of zeros is counted though it lies in the library
        EXPECT_EQ(library.remaining(), model.remaining());
        std::uint32_t word = 0;
        std::memcpy(&word, loaded, 4);
        EXPECT_EQ(word, 5976U);
        std::memcpy(&word, loaded + 4, 4);
        EXPECT_EQ(word, expected.size + 258);
        const fixture::Bytes record = table.record();
        EXPECT_EQ(std::memcmp(loaded + 8, record.data(), record.size()), 0);
        for (unsigned page = 0; page < 256; ++page) {
            const std::uint16_t *values = nullptr;
            std::memcpy(&values, loaded + 5976 + 8 * page, 8);
            ASSERT_NE(values, nullptr);
            const auto found = expected.pages.find(page);
            const std::size_t count = page == 0 ? 256 : 128;
            for (std::size_t i = 0; i < count; ++i) {
                std::uint16_t value = 0;
                std::memcpy(&value, reinterpret_cast<const char *>(values) + 2 * i, 2);
                ASSERT_EQ(value, found == expected.pages.end() ? 0 : found->second[i]) << page << " " << i;
            }
        }
    }
}

TEST(Locale, UnknownPageCaseTableAndCollationHaveTheirOwnStatuses) {
    Library library(pages(), 60000);
    EXPECT_TRUE(gives("nlsCreateLocale", 0, library.tryLocale("1252")));
    EXPECT_TRUE(gives("nlsCreateLocale", 9, library.tryLocale("1253")));
    EXPECT_TRUE(gives("nlsCreateLocale", 10, library.tryLocale("1252", "klingon")));
    EXPECT_TRUE(gives("nlsCreateLocale", 11, library.tryLocale("1252", NLS_NO_COLLATION, "klingon")));
    EXPECT_TRUE(gives("nlsCreateLocale", 11, library.tryLocale("UTF-8", NLS_NO_COLLATION, "turkish")))
        << "a case table of another page does not serve";
    // In this order.
    EXPECT_EQ(library.tryLocale("1253", "klingon", "klingon"), NLS_E_NOCHARSET);
    EXPECT_EQ(library.tryLocale("1252", "klingon", "klingon"), NLS_E_NOCOLLATION);
}

TEST(Locale, ShortRecordsGiveTwentyOne) {
    for (int read = 0; read < 3; ++read)
        for (const std::uint32_t missing : {1U, 500U, fixture::FileServer::kEverything}) {
            Library library(pages(), 60000);
            library.files.restart();
            library.files.failRead(read, missing);
            EXPECT_TRUE(gives("nlsCreateLocale", 21, library.tryLocale("1252", "german", "basic")));
            library.files.heal();
            EXPECT_EQ(library.tryLocale("1252", "german", "basic"), NLS_OK);
        }
    Library library(pages(), 60000);
    library.files.restart();
    library.files.failRead(1, 1);
    EXPECT_TRUE(gives("nlsCreateLocale", 21, library.tryLocale("UTF-8", NLS_NO_COLLATION, "basic")));
}

TEST(Locale, BasicCollationThatDoesNotReadBasicGivesTwentyFive) {
    DataFile file = pages();
    CollationTable wrong = CollationTable::basic();
    wrong.insensitive[0] = 'b';
    file.collation("1252", "wrong", wrong);
    Library library(file, 60000);
    EXPECT_TRUE(gives("nlsCreateLocale", 25, library.tryLocale("1252", "wrong")));
}

TEST(Locale, NullArgumentsAreRefusedAfterTheTag) {
    Library library(pages(), 60000);
    nlsLocale *locale = nullptr;
    EXPECT_TRUE(
        gives("nlsCreateLocale", 16, nlsCreateLocale(library.handle, nullptr, nullptr, nullptr, &locale)));
    EXPECT_TRUE(
        gives("nlsCreateLocale", 16, nlsCreateLocale(library.handle, "1252", nullptr, nullptr, nullptr)));
    EXPECT_EQ(nlsCreateLocale(nullptr, nullptr, nullptr, nullptr, nullptr), NLS_E_HANDLE);
    EXPECT_EQ(nlsCreateLocale(library.handle, nullptr, "x", nullptr, nullptr), NLS_E_NULLARG);
}

TEST(Locale, FailedCreationLeavesNothingOnTheList) {
    Library library(pages(), 60000);
    EXPECT_EQ(library.tryLocale("1252", "klingon"), NLS_E_NOCOLLATION);
    EXPECT_EQ(peek::newest(library.handle), library.handle);
}

TEST(Locale, LongNamesAreCutToNineteenCharacters) {
    DataFile file;
    file.codePage("ABCDEFGHIJKLMNOPQRS", CharacterTable::singleByte());
    Library library(file, 60000);
    nlsLocale *const locale = library.locale("abcdefghijklmnopqrs          ");
    ASSERT_NE(locale, nullptr);
    char buffer[40];
    nlsStr text = {buffer, sizeof buffer - 1, 0};
    EXPECT_EQ(nlsGetStrLocaleProperty(locale, 18, &text), NLS_OK);
    EXPECT_STREQ(buffer, "abcdefghijklmnopqrs") << "as the caller spelled it";
}

// A page that collates through Shift_JIS, and that page itself.
DataFile japanese(bool conversion = true, bool companion = true) {
    DataFile file;
    file.codePage("EUCJIS", CharacterTable::doubleByte(fixture::kMultibyte | fixture::kThroughShiftJis));
    if (companion)
        file.codePage("SHIFT-JIS", CharacterTable::doubleByte());
    for (const char *const page : {"EUCJIS", "SHIFT-JIS"}) {
        file.collation(page, "basic", CollationTable::basic());
        file.caseTable(page, "basic", ByteCase::ascii());
    }
    if (conversion)
        file.conversion("EUCJIS", "SHIFT-JIS", 4);
    return file;
}

TEST(Locale, CollatingThroughShiftJisCreatesThatLocaleAndAConversionToIt) {
    Library library(japanese(), 60000);
    nlsLocale *const euc = library.locale("EUCJIS", "basic", "basic");
    const auto *const conversion = static_cast<const nlsConversion *>(peek::newest(library.handle));
    ASSERT_EQ(peek::type(conversion), 3);
    EXPECT_EQ(peek::source(conversion), euc);
    const auto *const companion = static_cast<const nlsLocale *>(peek::next(conversion));
    ASSERT_EQ(peek::type(companion), 2);
    EXPECT_EQ(peek::next(companion), euc);
    EXPECT_EQ(peek::next(euc), library.handle);
    EXPECT_EQ(library.locale("shift-jis", "basic", "basic"), companion) << "with the same other names";
    EXPECT_EQ(peek::collationName(companion), "basic");
    EXPECT_EQ(library.lend(), NLS_OK) << "not busy any more";
}

TEST(Locale, ShiftJisWithTheFlagConvertsToItself) {
    DataFile file;
    file.codePage("Shift-JIS", CharacterTable::doubleByte(fixture::kMultibyte | fixture::kThroughShiftJis));
    Library library(file, 60000);
    nlsLocale *const locale = library.locale("Shift-JIS");
    const auto *const conversion = static_cast<const nlsConversion *>(peek::newest(library.handle));
    ASSERT_EQ(peek::type(conversion), 3);
    EXPECT_EQ(peek::source(conversion), locale);
    EXPECT_EQ(peek::converter(conversion), nullptr);
    EXPECT_EQ(peek::next(conversion), locale);
}

TEST(Locale, CompanionsFailureIsTheResultButTheLocaleStays) {
    Library noPage(japanese(true, false), 60000);
    EXPECT_TRUE(gives("nlsCreateLocale", 9, noPage.tryLocale("EUCJIS", "basic", "basic")));
    EXPECT_EQ(peek::type(peek::newest(noPage.handle)), 2);
    EXPECT_EQ(noPage.tryLocale("EUCJIS", "basic", "basic"), NLS_OK) << "found on the list now";

    Library noConversion(japanese(false), 60000);
    EXPECT_TRUE(gives("nlsCreateLocale", 8, noConversion.tryLocale("EUCJIS", "basic", "basic")));
    EXPECT_EQ(noConversion.tryLocale("EUCJIS", "basic", "basic"), NLS_OK);
    EXPECT_EQ(noConversion.lend(), NLS_OK) << "not busy any more";
}

TEST(Locale, CompanionsConversionPassesOnThatItsTableCannotBeBuilt) {
    DataFile file = japanese(false);
    const std::vector<std::uint16_t> same(256, 'a'); // all bytes on one slot
    file.conversion("EUCJIS", "SHIFT-JIS", 19, fixture::units16(same), 19);
    file.conversion("SHIFT-JIS", "EUCJIS", 20);
    Library library(file, 60000);
    EXPECT_TRUE(gives("nlsCreateLocale", 22, library.tryLocale("EUCJIS", "basic", "basic")));
}

TEST(Locale, ClosingAnOrdinaryLocaleChangesNothing) {
    Library library(pages(), 60000);
    nlsLocale *const locale = library.locale("1252");
    void *block = &library;
    std::uint32_t size = 77;
    EXPECT_TRUE(gives("nlsCloseDBLocale", 0, nlsCloseDBLocale(locale, &block, &size)));
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(library.locale("1252"), locale);
    EXPECT_EQ(peek::type(locale), 2);
}

TEST(Locale, ClosingADatabaseLocaleTakesItOffTheList) {
    for (int which = 0; which < 3; ++which) {
        Library library(pages(), 60000);
        nlsLocale *const locales[3] = {library.locale("1252"), library.locale("UTF-8"),
                                       library.locale("1252", "german")};
        nlsLocale *const closed = locales[which];
        peek::setBlobSize(closed, 4711); // as a locale rebuilt in a caller's block would have it
        void *block = nullptr;
        std::uint32_t size = 0;
        EXPECT_EQ(nlsCloseDBLocale(closed, &block, &size), NLS_OK);
        EXPECT_EQ(block, closed);
        EXPECT_EQ(size, 4711U);
        std::vector<const void *> left;
        for (const void *object = peek::newest(library.handle); object != nullptr;
             object = peek::next(object))
            left.push_back(object);
        std::vector<const void *> expected;
        for (int i = 2; i >= 0; --i)
            if (i != which)
                expected.push_back(locales[i]);
        expected.push_back(library.handle);
        EXPECT_EQ(left, expected);
        for (std::size_t i = 0; i + 1 < left.size(); ++i)
            EXPECT_EQ(peek::previous(left[i + 1]), left[i]) << "the links back agree";
        EXPECT_TRUE(gives("nlsCloseDBLocale", 24, nlsCloseDBLocale(closed, &block, &size)));
        std::uint32_t value = 0;
        EXPECT_EQ(nlsGetIntLocaleProperty(closed, 3, &value), NLS_E_NOTLOCALE);
        EXPECT_EQ(library.lend(), NLS_OK) << "not busy any more";
    }
}

TEST(Locale, ClosingIsRefusedWhileBusyUnlessNothingWouldChange) {
    Library library(pages(), 60000);
    nlsLocale *const plain = library.locale("1252");
    nlsLocale *const stored = library.locale("1252", "basic");
    peek::setBlobSize(stored, 1000);
    int calls = 0;
    library.files.onRead = [&](std::uint32_t, std::uint32_t) {
        ++calls;
        void *block = nullptr;
        std::uint32_t size = 0;
        EXPECT_TRUE(gives("nlsCloseDBLocale", 23, nlsCloseDBLocale(stored, &block, &size)));
        EXPECT_EQ(nlsCloseDBLocale(plain, &block, &size), NLS_OK);
    };
    library.locale("UTF-8");
    EXPECT_GT(calls, 0);
}

TEST(Locale, ClosingChecksHandleThenTagThenArguments) {
    Library library(pages(), 60000);
    void *block = nullptr;
    std::uint32_t size = 0;
    unsigned char nothing[96] = {};
    FakeObject orphan(nothing, 0);
    FakeObject other(library.handle, 0);
    EXPECT_TRUE(gives("nlsCloseDBLocale", 13, nlsCloseDBLocale(orphan.asLocale(), nullptr, nullptr)));
    EXPECT_TRUE(gives("nlsCloseDBLocale", 24, nlsCloseDBLocale(other.asLocale(), nullptr, nullptr)));
    nlsLocale *const locale = library.locale("1252");
    EXPECT_TRUE(gives("nlsCloseDBLocale", 16, nlsCloseDBLocale(locale, nullptr, &size)));
    EXPECT_TRUE(gives("nlsCloseDBLocale", 16, nlsCloseDBLocale(locale, &block, nullptr)));
}

} // namespace
