// Properties of locales: what the code page is, and which names belong to it.
#include "library_fixture.hpp"
#include "status_rows.hpp"

#include <cstring>

namespace {

using fixture::ByteCase;
using fixture::CharacterTable;
using fixture::CollationTable;
using fixture::DataFile;
using fixture::FakeObject;
using fixture::gives;
using fixture::Library;
using fixture::UnicodeCase;

std::uint32_t number(nlsLocale *locale, std::int32_t id) {
    std::uint32_t value = 0xDEAD;
    EXPECT_TRUE(gives("nlsGetIntLocaleProperty", 0, nlsGetIntLocaleProperty(locale, id, &value))) << id;
    return value;
}

std::string text(nlsLocale *locale, std::int32_t id) {
    char buffer[3000];
    std::memset(buffer, 'x', sizeof buffer);
    nlsStr string = {buffer, sizeof buffer - 1, 9};
    EXPECT_TRUE(gives("nlsGetStrLocaleProperty", 0, nlsGetStrLocaleProperty(locale, id, &string))) << id;
    EXPECT_EQ(std::strlen(buffer), string.length);
    return {string.buffer, string.length};
}

TEST(LocaleProperty, FlagsGiveTheWidthsAndTheKinds) {
    for (unsigned flags = 0; flags < 256; ++flags) {
        if ((flags & fixture::kThroughShiftJis) != 0 && flags != fixture::kThroughShiftJis)
            continue; // that bit creates a companion; once is enough
        DataFile file;
        file.codePage("shift-jis", CharacterTable::singleByte(fixture::byteOf(flags)));
        Library library(file, 30000);
        nlsLocale *const locale = library.locale("shift-jis");
        const bool multibyte = (flags & 0x02) != 0;
        const bool unicode = (flags & 0x58) != 0;
        EXPECT_EQ(number(locale, 3), unicode ? 4U : multibyte ? 2U : 1U) << flags;
        EXPECT_EQ(number(locale, 11), multibyte ? 1U : 0U) << flags;
        EXPECT_EQ(number(locale, 12), (flags & 0x04) != 0 ? 1U : 0U) << flags;
        EXPECT_EQ(number(locale, 13), (flags & 0x08) != 0 ? 1U : 0U) << flags;
        EXPECT_EQ(number(locale, 14), (flags & 0x10) != 0 ? 1U : 0U) << flags;
        EXPECT_EQ(number(locale, 25), multibyte && !unicode ? 1U : 0U) << flags;
        EXPECT_EQ(number(locale, 26), (flags & 0x40) != 0 ? 1U : 0U) << flags;
        EXPECT_EQ(number(locale, 27), !multibyte ? 3U : (flags & 0x08) != 0 ? 1U : 2U) << flags;
    }
}

TEST(LocaleProperty, UnknownNumbersGiveTwelve) {
    DataFile file;
    file.codePage("P", CharacterTable::singleByte());
    Library library(file, 30000);
    nlsLocale *const locale = library.locale("P");
    std::uint32_t value = 77;
    char buffer[40];
    nlsStr string = {buffer, sizeof buffer - 1, 0};
    for (std::int32_t id = -2; id < 60; ++id) {
        const bool isNumber =
            (id >= 3 && id <= 6) || (id >= 11 && id <= 14) || id == 22 || (id >= 25 && id <= 27);
        const bool isText = (id >= 7 && id <= 9) || (id >= 18 && id <= 20);
        if (!isNumber) {
            EXPECT_TRUE(gives("nlsGetIntLocaleProperty", 12, nlsGetIntLocaleProperty(locale, id, &value)))
                << id;
        }
        if (!isText) {
            EXPECT_TRUE(gives("nlsGetStrLocaleProperty", 12, nlsGetStrLocaleProperty(locale, id, &string)))
                << id;
        }
    }
    EXPECT_EQ(nlsGetIntLocaleProperty(locale, INT32_MIN, &value), NLS_E_BADID);
    EXPECT_EQ(nlsGetStrLocaleProperty(locale, INT32_MAX, &string), NLS_E_BADID);
    EXPECT_EQ(value, 77U);
}

const char kCollators[] = "ICU-UCA,ICU-ar,"; // the beginning of the list of 441 characters

DataFile lists() {
    DataFile file;
    for (const char *const name : {"1252", "EMPTY"})
        file.codePage(name, CharacterTable::singleByte());
    file.codePage("UTF-8", CharacterTable::utf8());
    for (const char *const name : {"UCS2", "UTF-16"})
        file.codePage(name, CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
    file.codePage("UTF-32", CharacterTable::singleByte(fixture::kMultibyte | fixture::kUnits32));
    file.collation("1252", "german", CollationTable());
    file.collation("UTF-8", "basic", CollationTable::basic());
    file.collation("1252 ", "swedish", CollationTable());
    file.collation("UCS2", "wide", CollationTable::basic());
    file.collation("UTF-16", "hidden", CollationTable::basic());
    file.caseTable("1252", "basic", ByteCase());
    file.caseTable("UTF-16", "sixteen", ByteCase());
    file.caseTable("1252", "turkish", ByteCase());
    file.conversion("1252", "UTF-8", 3);
    file.conversion("UTF-8", "1252", 4);
    file.conversion("UTF-8", "UCS2", 22);
    file.conversion("1252", "1252", 3);
    return file;
}

TEST(LocaleProperty, ListsAreThoseOfTheCodePage) {
    Library library(lists(), 60000);
    nlsLocale *const page = library.locale("1252");
    EXPECT_EQ(text(page, 7), "german,swedish");
    EXPECT_EQ(text(page, 8), "basic,turkish");
    EXPECT_EQ(text(page, 9), "1252 -> UTF-8,UTF-8 -> 1252,1252 -> 1252") << "one item when both names match";
    nlsLocale *const empty = library.locale("EMPTY");
    for (const std::int32_t id : {7, 8, 9})
        EXPECT_EQ(text(empty, id), "");
    EXPECT_EQ(text(library.locale("UTF-8"), 9), "1252 -> UTF-8,UTF-8 -> 1252,UTF-8 -> UCS2");
}

TEST(LocaleProperty, UnicodePagesListTheCollators) {
    Library library(lists(), 60000);
    const std::string utf8 = text(library.locale("UTF-8"), 7);
    EXPECT_EQ(utf8.substr(0, 6 + sizeof kCollators - 1), std::string("basic,") + kCollators);
    EXPECT_EQ(utf8.size(), 6U + 441U);
    EXPECT_EQ(text(library.locale("UTF-32"), 7), utf8);
    EXPECT_EQ(text(library.locale("UTF-16"), 7), utf8) << "wide pages but UCS2 answer as UTF-8 does";
    EXPECT_EQ(text(library.locale("UCS2"), 7), "wide");
    EXPECT_EQ(text(library.locale("UTF-16"), 8), "sixteen") << "case tables are the page's own";

    DataFile none;
    none.codePage("UTF-8", CharacterTable::utf8());
    Library bare(none, 30000);
    const std::string list = text(bare.locale("UTF-8"), 7);
    EXPECT_EQ(list.size(), 441U);
    EXPECT_EQ(list.substr(0, sizeof kCollators - 1), kCollators);
    EXPECT_EQ(list.substr(list.size() - 15), ",ICU-zh__PINYIN");
}

TEST(LocaleProperty, LengthsAreThoseOfTheLists) {
    Library library(lists(), 60000);
    for (const char *const page : {"1252", "EMPTY", "UTF-8", "UCS2", "UTF-16", "UTF-32"}) {
        nlsLocale *const locale = library.locale(page);
        EXPECT_EQ(number(locale, 4), text(locale, 7).size()) << page;
        EXPECT_EQ(number(locale, 5), text(locale, 8).size()) << page;
        EXPECT_EQ(number(locale, 6), text(locale, 9).size()) << page;
    }
}

TEST(LocaleProperty, NamesAreAsTheyWereGiven) {
    Library library(lists(), 60000);
    nlsLocale *const full = library.locale("1252 ", "German", "TURKISH");
    EXPECT_EQ(text(full, 18), "1252 ");
    EXPECT_EQ(text(full, 19), "German");
    EXPECT_EQ(text(full, 20), "TURKISH");
    nlsLocale *const plain = library.locale("EMPTY");
    EXPECT_EQ(text(plain, 19), "");
    EXPECT_EQ(text(plain, 20), "");
}

TEST(LocaleProperty, TextsNeedRoom) {
    Library library(lists(), 60000);
    nlsLocale *const locale = library.locale("1252", "german", "basic");
    fixture::GuardedBuffer guard(64);
    // A name is copied by its own length, so a string of exactly that size takes it and its NUL lies behind.
    nlsStr name = {reinterpret_cast<char *>(guard.tail(5)), 4, 0};
    EXPECT_EQ(nlsGetStrLocaleProperty(locale, 18, &name), NLS_OK);
    EXPECT_STREQ(name.buffer, "1252");
    name = {reinterpret_cast<char *>(guard.tail(4)), 3, 0};
    EXPECT_TRUE(gives("nlsGetStrLocaleProperty", 2, nlsGetStrLocaleProperty(locale, 18, &name)));
    nlsStr none = {name.buffer, 0, 0};
    EXPECT_EQ(nlsGetStrLocaleProperty(locale, 18, &none), NLS_E_BUFFER);
    for (std::uint32_t size = 1; size <= 15; ++size) {
        nlsStr list = {reinterpret_cast<char *>(guard.tail(size)), size, 0};
        const nlsStatus status = nlsGetStrLocaleProperty(locale, 7, &list);
        EXPECT_EQ(status, size == 15 ? NLS_OK : NLS_E_BUFFER);
        const std::string got(list.buffer, list.length);
        EXPECT_EQ(got, std::string("german,swedish").substr(0, got.size()));
        EXPECT_EQ(got.size(), size == 15 ? 14U : size > 7 ? 7U : size > 6 ? 6U : 0U) << size;
        EXPECT_EQ(list.buffer[list.length], '\0');
    }
}

TEST(LocaleProperty, StoredSizeDependsOnCollationAndCaseTable) {
    DataFile file = lists();
    CollationTable strange;
    strange.kind = 9;
    file.collation("1252", "strange", strange);
    file.collation("UTF-8", "strange", strange);
    file.caseTable("UTF-8", "basic", UnicodeCase{{{'a', 'A'}}, {}});
    Library library(file, 200000);
    EXPECT_EQ(number(library.locale("1252", "german"), 22), 576U);
    EXPECT_EQ(number(library.locale("1252", "german", "basic"), 22), 576U);
    EXPECT_EQ(number(library.locale("UTF-8", "basic"), 22), 576U);
    EXPECT_EQ(number(library.locale("1252", "strange"), 22), 1368U);
    EXPECT_EQ(number(library.locale("1252", "strange", "basic"), 22), 1884U);
    EXPECT_EQ(number(library.locale("UTF-8", "strange", "basic"), 22), 1368U + 5976U)
        << "plus the case table's first word";
}

TEST(LocaleProperty, HandleComesBeforeTheTagAndTheTagBeforeTheRest) {
    Library library(lists(), 60000);
    unsigned char nothing[96] = {};
    FakeObject orphan(nothing, 0);
    FakeObject other(library.handle, 0);
    EXPECT_TRUE(
        gives("nlsGetIntLocaleProperty", 13, nlsGetIntLocaleProperty(orphan.asLocale(), 99, nullptr)));
    EXPECT_TRUE(
        gives("nlsGetStrLocaleProperty", 13, nlsGetStrLocaleProperty(orphan.asLocale(), 99, nullptr)));
    EXPECT_TRUE(gives("nlsGetIntLocaleProperty", 24, nlsGetIntLocaleProperty(other.asLocale(), 99, nullptr)));
    EXPECT_TRUE(gives("nlsGetStrLocaleProperty", 24, nlsGetStrLocaleProperty(other.asLocale(), 99, nullptr)));
    nlsLocale *const locale = library.locale("1252");
    EXPECT_TRUE(gives("nlsGetIntLocaleProperty", 16, nlsGetIntLocaleProperty(locale, 3, nullptr)));
    EXPECT_TRUE(gives("nlsGetStrLocaleProperty", 16, nlsGetStrLocaleProperty(locale, 18, nullptr)));
    EXPECT_TRUE(gives("nlsGetStrLocaleProperty", 16, nlsGetStrLocaleProperty(locale, 7, nullptr)));
}

} // namespace
