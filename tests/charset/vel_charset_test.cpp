// nlsGetVelCharset: the library's name for a code page of the system.
#include "pretended_system.hpp"

#include "library_fixture.hpp"
#include "status_rows.hpp"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

using charset::pretendedSystem;
using fixture::CharacterTable;
using fixture::CollationTable;
using fixture::DataFile;
using fixture::gives;
using fixture::Library;

const std::vector<std::pair<std::string, std::string>> kNumbers = {
    {"1252", "1252"}, {"1250", "1250"}, {"1251", "1251"},      {"1253", "1253"},     {"1254", "1254"},
    {"1256", "1256"}, {"1257", "1257"}, {"1255", "ISO8859-8"}, {"932", "SHIFT-JIS"}, {"1361", "CP1361"},
    {"949", "CP949"}, {"936", "CP936"}, {"CP950", "CP950"},    {"874", "620-2533"},
};

const std::vector<std::string> kNames = {
    "709",     "708",         "721",       "711",       "786",       "714",        "710",     "720",
    "ISO6937", "ISO8859-1",   "ISO8859-2", "ISO8859-5", "ISO8859-8", "ISO8859-15", "ROMAN-8", "MAZOVIA",
    "KOI8-R",  "IBM850",      "IBM851",    "IBM852",    "IBM857",    "IBM858",     "IBM861",  "IBM862",
    "IBM866",  "IBM437",      "IBM037",    "IBM278",    "IBM280",    "IBM500",     "IBM297",  "IBM273",
    "IBM277",  "IBM284",      "1250",      "1251",      "1252",      "1253",       "1254",    "1256",
    "1257",    "SHIFT-JIS",   "EUCJIS",    "KSC5601",   "BIG-5",     "GB2312",     "CP949",   "CP1361",
    "CP950",   "CP950-HKSCS", "CP936",     "620-2533",  "UTF-8",     "UTF-16",     "UTF-32",  "UCS2",
};

// Weights by ASCII letter case, and byte for byte.
CollationTable asciiWeights() {
    CollationTable table;
    for (int c = 'a'; c <= 'z'; ++c)
        table.insensitive[static_cast<std::size_t>(c)] = static_cast<unsigned char>(c - 'a' + 'A');
    return table;
}

DataFile pages(const std::vector<std::string> &names = {"1252"}) {
    DataFile file;
    for (const std::string &name : names)
        file.codePage(name, CharacterTable::singleByte());
    file.collation("1252", "basic", asciiWeights());
    return file;
}

class VelCharset : public testing::Test {
protected:
    VelCharset() {
        charset::newPretendedSystem();
    }
    // What stands in a buffer of the promised 12 bytes, with forbidden memory behind it.
    std::string ask(std::int32_t expected, const std::string &name, nlsHandle *handle = nullptr,
                    nlsLocale *locale = nullptr) {
        char *const out = reinterpret_cast<char *>(guard_.tail(12));
        std::fill(out, out + 12, 'x');
        fixture::GuardedBuffer asked(name.size() + 1);
        const char *const osName = reinterpret_cast<const char *>(
            asked.readOnly(fixture::Bytes(name.c_str(), name.c_str() + name.size() + 1)));
        EXPECT_TRUE(gives("nlsGetVelCharset", expected, nlsGetVelCharset(handle, locale, osName, out)))
            << name;
        return expected == 0 ? std::string(out) : std::string();
    }
    // A name that is looked for with a library of its own.
    std::string askWithLocale(std::int32_t expected, const std::string &name) {
        Library library(pages());
        return ask(expected, name, library.handle, library.locale("1252", nullptr));
    }
    void inHongKong() {
        pretendedSystem().country = "Hong Kong";
    }

private:
    fixture::GuardedBuffer guard_{12};
};

// ---- Statuses -------------------------------------------------------------------------------------------

TEST_F(VelCharset, NullArgumentsGive16BeforeAnythingElse) {
    char out[12] = "untouched";
    Library library(pages());
    nlsHandle *const handle = library.handle;
    EXPECT_TRUE(gives("nlsGetVelCharset", 16, nlsGetVelCharset(nullptr, nullptr, nullptr, out)));
    EXPECT_TRUE(gives("nlsGetVelCharset", 16, nlsGetVelCharset(nullptr, nullptr, "950", nullptr)));
    EXPECT_TRUE(gives("nlsGetVelCharset", 16, nlsGetVelCharset(handle, nullptr, nullptr, out)));
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(pretendedSystem().countryQueries, 0);
}

TEST_F(VelCharset, LocaleOfAClosedHandleGives13) {
    Library library(pages());
    nlsLocale *const locale = library.locale("1252", nullptr);
    nlsHandle *const handle = library.handle;
    ask(13, "1252", handle, nullptr);
    ASSERT_EQ(nlsClose(handle), NLS_OK);
    library.handle = nullptr;
    ask(13, "1252", handle, locale);
}

TEST_F(VelCharset, OnlyTheLocalesHandleIsChecked) {
    Library library(pages());
    nlsLocale *const locale = library.locale("1252", nullptr);
    Library other(pages());
    nlsHandle *const closed = other.handle;
    ASSERT_EQ(nlsClose(closed), NLS_OK);
    other.handle = nullptr;
    EXPECT_EQ(ask(0, "1255", closed, locale), "ISO8859-8");
}

TEST_F(VelCharset, ObjectThatIsNoLocaleGives24) {
    Library library(pages());
    for (const std::uint16_t type : {std::uint16_t{0}, std::uint16_t{7}}) {
        fixture::FakeObject object(library.handle, type);
        ask(24, "1252", library.handle, object.asLocale());
        ask(24, "no such page", library.handle, object.asLocale());
    }
}

TEST_F(VelCharset, LocaleIsNotReadWithoutAHandle) {
    fixture::FakeObject object(nullptr, 0);
    EXPECT_EQ(ask(0, "1255", nullptr, object.asLocale()), "ISO8859-8");
}

TEST_F(VelCharset, NameInNeitherListGives20) {
    for (const char *const name : {"1258", "1255x", "0", "", "65001", "125", "IBM", "ISO8859-9", "CP874"}) {
        ask(20, name);
        askWithLocale(20, name);
    }
}

TEST_F(VelCharset, StatusOfTheCompareIsPassedOn) {
    DataFile file = pages();
    file.codePage("EUCJIS", CharacterTable::doubleByte(fixture::kMultibyte | fixture::kThroughShiftJis));
    file.collation("EUCJIS", "basic", asciiWeights());
    Library library(file);
    ask(25, "1252", library.handle, library.locale("1252"));
    nlsLocale *noTable = library.locale("1252", nullptr);
    const void *const table = fixture::peek::characterTable(noTable);
    fixture::peek::setCharacterTable(noTable, nullptr);
    ask(27, "1252", library.handle, noTable);
    fixture::peek::setCharacterTable(noTable, table);
    // Its companion is missing, the locale itself is handed out.
    nlsLocale *eucjis = nullptr;
    ASSERT_NE(library.tryLocale("EUCJIS", nullptr, nullptr, &eucjis), NLS_OK);
    ASSERT_NE(eucjis, nullptr);
    ask(7, "1252", library.handle, eucjis);
}

// ---- Names ----------------------------------------------------------------------------------------------

TEST_F(VelCharset, NumbersOfTheSystemGiveTheirPage) {
    for (const auto &[number, page] : kNumbers) {
        EXPECT_EQ(ask(0, number), page);
        EXPECT_EQ(askWithLocale(0, number), page);
    }
}

TEST_F(VelCharset, NamesOfTheLibraryGiveThemselves) {
    ASSERT_EQ(kNames.size(), 56U);
    for (const std::string &name : kNames) {
        EXPECT_EQ(ask(0, name), name);
        EXPECT_EQ(askWithLocale(0, name), name);
    }
}

TEST_F(VelCharset, PageNeedNotBeInTheDataFile) {
    EXPECT_EQ(askWithLocale(0, "IBM037"), "IBM037");
}

TEST_F(VelCharset, SpellingIsThatOfTheList) {
    EXPECT_EQ(ask(0, "ibm850"), "IBM850");
    EXPECT_EQ(ask(0, "cp950"), "CP950");
    EXPECT_EQ(ask(0, "Shift-JIS"), "SHIFT-JIS");
    EXPECT_EQ(ask(0, "utf-8"), "UTF-8");
}

TEST_F(VelCharset, BlanksAtTheEndDoNotCount) {
    EXPECT_EQ(ask(0, "932   "), "SHIFT-JIS");
    EXPECT_EQ(askWithLocale(0, "932   "), "SHIFT-JIS");
    ask(20, " 932");
    askWithLocale(20, " 932");
}

TEST_F(VelCharset, LocaleComparesWithoutLetterCase) {
    EXPECT_EQ(askWithLocale(0, "ibm850"), "IBM850");
    EXPECT_EQ(askWithLocale(0, "cp950"), "CP950");
}

TEST_F(VelCharset, TheCollationDecidesWhatIsEqual) {
    // An order in which the figures 3 and 5 are one letter: 1253 stands before 1255 in the list.
    CollationTable table = asciiWeights();
    table.insensitive['5'] = '3';
    table.sensitive['5'] = '3';
    DataFile file;
    file.codePage("1252", CharacterTable::singleByte());
    file.collation("1252", "figures", table);
    Library library(file);
    nlsLocale *const locale = library.locale("1252", "figures");
    EXPECT_EQ(ask(0, "1255", library.handle, locale), "1253");
    EXPECT_EQ(ask(0, "1255"), "ISO8859-8");
    EXPECT_EQ(ask(0, "IBM830", library.handle, locale), "IBM850");
    ask(20, "IBM830");
}

TEST_F(VelCharset, NumbersAreSearchedBeforeNames) {
    // 1256 is in both lists; an order that cannot tell it from 1255, which is in the first alone.
    CollationTable table = asciiWeights();
    table.insensitive['6'] = '5';
    DataFile file;
    file.codePage("1252", CharacterTable::singleByte());
    file.collation("1252", "basic", table);
    Library library(file);
    EXPECT_EQ(ask(0, "1255", library.handle, library.locale("1252", nullptr)), "1256")
        << "the first of the list, not the closest";
    EXPECT_EQ(ask(0, "cp950"), "CP950");
}

TEST_F(VelCharset, OutMayBeTheName) {
    char text[12] = "932";
    EXPECT_EQ(nlsGetVelCharset(nullptr, nullptr, text, text), NLS_OK);
    EXPECT_STREQ(text, "SHIFT-JIS");
}

TEST_F(VelCharset, OtherNamesDoNotAskTheSystem) {
    inHongKong();
    EXPECT_EQ(ask(0, "CP950"), "CP950");
    EXPECT_EQ(ask(0, "BIG-5"), "BIG-5");
    EXPECT_EQ(pretendedSystem().countryQueries, 0);
    EXPECT_EQ(pretendedSystem().pageQueries, 0);
}

// ---- 950 ------------------------------------------------------------------------------------------------

TEST_F(VelCharset, Page950IsThatOfTaiwanElsewhere) {
    for (const char *const country :
         {"Taiwan", "", "Macao SAR China", "Hong", "Hong Kon", "Hongkong", "XHong Kong"}) {
        pretendedSystem().country = country;
        EXPECT_EQ(ask(0, "950"), "CP950") << country;
    }
    EXPECT_EQ(pretendedSystem().countryRoom, 40U);
}

TEST_F(VelCharset, Page950OfHongKong) {
    for (const char *const country :
         {"Hong Kong", "Hong Kong SAR", "Hong Kong S.A.R.", "hong kong", "HONG KONGs"}) {
        pretendedSystem().country = country;
        EXPECT_EQ(ask(0, "950"), "CP950-HKSCS") << country;
    }
    inHongKong();
    EXPECT_EQ(ask(0, "950  "), "CP950-HKSCS") << "compared as names are";
}

TEST_F(VelCharset, CountryOfNineCharactersNeedsNoNul) {
    inHongKong();
    pretendedSystem().terminated = false;
    EXPECT_EQ(ask(0, "950"), "CP950-HKSCS");
}

TEST_F(VelCharset, NoCountryGivesThePageOfTaiwan) {
    inHongKong();
    pretendedSystem().silent = true;
    EXPECT_EQ(ask(0, "950"), "CP950");
    pretendedSystem().silent = false;
    pretendedSystem().country = "Hong Kong" + std::string(40, '.');
    EXPECT_EQ(ask(0, "950"), "CP950") << "a name that does not fit is no answer";
}

TEST_F(VelCharset, Page950OfHongKongNeedsThePageInTheDataFile) {
    inHongKong();
    Library without(pages({"1252", "CP950"}));
    EXPECT_EQ(ask(0, "950", without.handle, without.locale("1252", nullptr)), "CP950");
    Library with(pages({"1252", "CP950-HKSCS"}));
    EXPECT_EQ(ask(0, "950", with.handle, with.locale("1252", nullptr)), "CP950-HKSCS");
    pretendedSystem().country = "Taiwan";
    EXPECT_EQ(ask(0, "950", with.handle, with.locale("1252", nullptr)), "CP950");
}

TEST_F(VelCharset, AnyNameThatHoldsThePagesNameWillDo) {
    inHongKong();
    Library library(pages({"1252", "X-CP950-HKSCS-2001"}));
    EXPECT_EQ(ask(0, "950", library.handle), "CP950-HKSCS");
    Library lower(pages({"1252", "cp950-hkscs"}));
    EXPECT_EQ(ask(0, "950", lower.handle), "CP950") << "letter by letter";
}

TEST_F(VelCharset, Page950NeverFails) {
    inHongKong();
    Library library(pages({"1252", "CP950-HKSCS"}));
    nlsHandle *const handle = library.handle;
    fixture::FakeObject object(handle, 0);
    EXPECT_EQ(ask(0, "950", handle, nullptr), "CP950-HKSCS") << "the locale is not looked at";
    EXPECT_EQ(ask(0, "950", handle, object.asLocale()), "CP950-HKSCS");
    ASSERT_EQ(nlsClose(handle), NLS_OK);
    library.handle = nullptr;
    EXPECT_EQ(ask(0, "950", handle, nullptr), "CP950") << "a closed handle";
}

TEST_F(VelCharset, ListOf699CharactersIsLookedThroughAndOf700Not) {
    inHongKong();
    for (const std::size_t length : {699U, 700U}) {
        // Names of 19 characters and their separators, the wanted one, and a last one that makes up the
        // length.
        std::vector<std::string> names = {"CP950-HKSCS"};
        std::size_t written = names[0].size();
        while (written + 20 + 20 < length) {
            names.push_back(std::to_string(names.size() + 100) + std::string(16, 'x'));
            written += 20;
        }
        names.push_back(std::string((length - written - 1) / 2, 'y'));
        written += names.back().size() + 1;
        names.push_back(std::string(length - written - 1, 'z'));
        DataFile file(60);
        for (const std::string &name : names)
            file.codePage(name, CharacterTable::singleByte());
        Library library(file);
        std::uint32_t value = 0;
        ASSERT_EQ(nlsGetIntNLSProperty(library.handle, 1, &value), NLS_OK);
        ASSERT_EQ(value, length);
        EXPECT_EQ(ask(0, "950", library.handle), length < 700 ? "CP950-HKSCS" : "CP950");
    }
}

} // namespace
