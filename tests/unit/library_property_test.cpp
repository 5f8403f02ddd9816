// Properties of the library as a whole: what the data file offers, and the arena's free bytes.
#include "library_fixture.hpp"
#include "status_rows.hpp"

#include <cstring>

namespace {

using fixture::DataFile;
using fixture::gives;
using fixture::GuardedBuffer;
using fixture::Library;

const char kCollatorNames[] =
    "ICU-UCA,ICU-ar,ICU-be,ICU-bg,ICU-ca,ICU-cs,ICU-da,ICU-de__PHONEBOOK,ICU-el,ICU-en_BE,ICU-eo,ICU-es,"
    "ICU-es__TRADITIONAL,ICU-et,ICU-fa,ICU-fi,ICU-fr,ICU-gu,ICU-he,ICU-hi,ICU-hi__DIRECT,ICU-hr,ICU-hu,"
    "ICU-is,ICU-ja,ICU-ja__HQ,ICU-kn,ICU-ko,ICU-lt,ICU-lv,ICU-mk,ICU-mr,ICU-mt,ICU-nb,ICU-nn,ICU-pl,"
    "ICU-ro,ICU-ru,ICU-sh,ICU-sk,ICU-sl,ICU-sq,ICU-sr,ICU-sv,ICU-ta,ICU-te,ICU-th,ICU-tr,ICU-uk,ICU-vi,"
    "ICU-zh,ICU-zh_HK,ICU-zh_MO,ICU-zh_TW,ICU-zh__PINYIN";

std::string collatorItems() {
    std::string out;
    std::string names = std::string(kCollatorNames) + ",";
    for (std::size_t at = 0; at < names.size();) {
        const std::size_t comma = names.find(',', at);
        out += ",UTF-8 " + names.substr(at, comma - at);
        at = comma + 1;
    }
    return out;
}

DataFile twoPages() {
    DataFile file;
    file.codePage("ASCII", fixture::CharacterTable::singleByte());
    file.conversion("A", "B", 3);
    file.codePage("LATIN1", fixture::CharacterTable::singleByte());
    file.caseTable("ASCII", "basic", fixture::ByteCase());
    file.collation("ASCII", "german", fixture::CollationTable());
    file.caseTable("LATIN1", "turkish", fixture::ByteCase());
    file.collation("LATIN1", "x", fixture::CollationTable());
    return file;
}

struct Properties {
    explicit Properties(const DataFile &file) : library(file, 100000) {}

    std::uint32_t number(std::int32_t id) {
        std::uint32_t value = 0xDEAD;
        EXPECT_TRUE(gives("nlsGetIntNLSProperty", 0, nlsGetIntNLSProperty(library.handle, id, &value))) << id;
        return value;
    }
    std::string text(std::uint32_t id) {
        char buffer[4000];
        std::memset(buffer, 'x', sizeof buffer);
        nlsStr string = {buffer, sizeof buffer - 1, 17};
        EXPECT_TRUE(gives("nlsGetStrNLSProperty", 0, nlsGetStrNLSProperty(library.handle, id, &string)));
        EXPECT_EQ(std::strlen(buffer), string.length);
        return {string.buffer, string.length};
    }

    Library library;
};

TEST(LibraryProperty, ListsNameTheEntriesInDirectoryOrder) {
    Properties properties(twoPages());
    EXPECT_EQ(properties.text(2), "ASCII,LATIN1");
    EXPECT_EQ(properties.text(7), "ASCII german,LATIN1 x");
    EXPECT_EQ(properties.text(8), "ASCII basic,LATIN1 turkish");
    EXPECT_EQ(properties.text(9), "A -> B");
}

TEST(LibraryProperty, LengthsAreThoseOfTheLists) {
    Properties properties(twoPages());
    EXPECT_EQ(properties.number(1), 12U);
    EXPECT_EQ(properties.number(5), std::strlen("ASCII basic,LATIN1 turkish"));
    EXPECT_EQ(properties.number(6), 6U);
    EXPECT_EQ(properties.number(4), std::strlen("ASCII german,LATIN1 x") + 772)
        << "the collator names are counted although no page of theirs is there";
}

TEST(LibraryProperty, CollatorNamesFollowTheUnicodePage) {
    ASSERT_EQ(std::strlen(kCollatorNames), 441U);
    DataFile file;
    file.collation("ASCII", "x", fixture::CollationTable());
    file.collation("utf-8 ", "basic", fixture::CollationTable::basic());
    file.collation("ASCII", "y", fixture::CollationTable());
    Properties properties(file);
    const std::string expected = "ASCII x,utf-8  basic" + collatorItems() + ",ASCII y";
    EXPECT_EQ(properties.text(7), expected);
    EXPECT_EQ(properties.number(4), std::strlen("ASCII x,utf-8  basic,ASCII y") + 772);
    EXPECT_GE(properties.number(4), expected.size());
}

TEST(LibraryProperty, CollatorNamesAreAppendedOnce) {
    DataFile file;
    file.collation("UTF-8", "basic", fixture::CollationTable::basic());
    file.collation("UTF-8", "other", fixture::CollationTable::basic());
    Properties properties(file);
    EXPECT_EQ(properties.text(7), "UTF-8 basic" + collatorItems() + ",UTF-8 other");
    EXPECT_GE(properties.number(4), properties.text(7).size());
}

TEST(LibraryProperty, EmptyListsAreEmptyTexts) {
    const DataFile empty;
    DataFile conversions;
    conversions.conversion("A", "B", 3);
    for (const DataFile &file : {empty, conversions}) {
        Properties properties(file);
        for (const std::uint32_t id : {2U, 7U, 8U})
            EXPECT_EQ(properties.text(id), "");
        EXPECT_EQ(properties.number(1), 0U);
        EXPECT_EQ(properties.number(5), 0U);
        EXPECT_EQ(properties.number(4), 772U);
    }
}

TEST(LibraryProperty, ConstantsAndFreeBytes) {
    Properties properties(twoPages());
    EXPECT_EQ(properties.number(10), 16U);
    EXPECT_EQ(properties.number(23), 712U);
    const std::uint32_t before = properties.number(21);
    EXPECT_EQ(before, 100000U - 120 - 7 * 64);
    properties.library.locale("ASCII");
    EXPECT_EQ(properties.number(21), before - 136 - 792);
    properties.library.locale("ASCII");
    EXPECT_EQ(properties.number(21), before - 136 - 792) << "the same locale is handed out again";
}

TEST(LibraryProperty, UnknownNumbersGiveTwelve) {
    Library library(twoPages(), 30000);
    std::uint32_t value = 77;
    for (std::int32_t id = -3; id < 40; ++id) {
        const bool known = id == 1 || (id >= 4 && id <= 6) || id == 10 || id == 21 || id == 23;
        if (!known) {
            EXPECT_TRUE(gives("nlsGetIntNLSProperty", 12, nlsGetIntNLSProperty(library.handle, id, &value)))
                << id;
        }
    }
    for (const std::int32_t id : {INT32_MIN, INT32_MAX})
        EXPECT_EQ(nlsGetIntNLSProperty(library.handle, id, &value), NLS_E_BADID);
    EXPECT_EQ(value, 77U);
}

TEST(LibraryProperty, UnknownTextsGiveTwelveAlsoOnAnEmptyDirectory) {
    const DataFile empty;
    for (const DataFile &file : {twoPages(), empty}) {
        Library library(file, 30000);
        char buffer[100];
        nlsStr text = {buffer, sizeof buffer - 1, 0};
        for (std::uint32_t id = 0; id < 40; ++id)
            if (id != 2 && (id < 7 || id > 9)) {
                EXPECT_TRUE(
                    gives("nlsGetStrNLSProperty", 12, nlsGetStrNLSProperty(library.handle, id, &text)))
                    << id;
            }
        EXPECT_EQ(nlsGetStrNLSProperty(library.handle, 0xFFFFFFFF, &text), NLS_E_BADID);
    }
}

TEST(LibraryProperty, FullStringKeepsTheWholePartsThatFitted) {
    Library library(twoPages(), 30000);
    const std::string whole = "ASCII german,LATIN1 x";
    const char *const parts[] = {"",
                                 "ASCII",
                                 "ASCII ",
                                 "ASCII german",
                                 "ASCII german,",
                                 "ASCII german,LATIN1",
                                 "ASCII german,LATIN1 ",
                                 "ASCII german,LATIN1 x"};
    GuardedBuffer guard(64);
    for (std::uint32_t size = 1; size <= whole.size() + 1; ++size) {
        nlsStr text = {reinterpret_cast<char *>(guard.tail(size)), size, 0};
        const nlsStatus status = nlsGetStrNLSProperty(library.handle, 7, &text);
        std::string expected;
        for (const char *const part : parts)
            if (std::strlen(part) < size)
                expected = part;
        EXPECT_TRUE(gives("nlsGetStrNLSProperty", size > whole.size() ? 0 : 2, status)) << size;
        // Parts may be a name and its separator together; what stands is a beginning that ends with a part.
        const std::string got(text.buffer, text.length);
        EXPECT_EQ(got, expected) << size;
        EXPECT_EQ(text.buffer[text.length], '\0');
    }
}

TEST(LibraryProperty, TagComesBeforeTheNumberAndTheNumberBeforeNothing) {
    Library library(twoPages(), 30000);
    EXPECT_EQ(nlsGetIntNLSProperty(nullptr, 99, nullptr), NLS_E_HANDLE);
    EXPECT_TRUE(gives("nlsGetIntNLSProperty", 16, nlsGetIntNLSProperty(library.handle, 10, nullptr)));
    EXPECT_TRUE(gives("nlsGetStrNLSProperty", 16, nlsGetStrNLSProperty(library.handle, 2, nullptr)));
}

TEST(LibraryProperty, TextsAreStillReadableAfterClosing) {
    Library library(twoPages(), 30000);
    nlsHandle *const handle = library.handle;
    ASSERT_EQ(nlsClose(handle), NLS_OK);
    library.handle = nullptr;
    char buffer[100];
    nlsStr text = {buffer, sizeof buffer - 1, 0};
    EXPECT_EQ(nlsGetStrNLSProperty(handle, 2, &text), NLS_OK);
    EXPECT_STREQ(buffer, "ASCII,LATIN1");
}

} // namespace
