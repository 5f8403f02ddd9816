// The data file's header and directory: numbers, names, limits, what is refused.
#include "library_fixture.hpp"
#include "status_rows.hpp"

#include <gtest/gtest.h>

namespace {

using fixture::Bytes;
using fixture::bytesOf;
using fixture::DataFile;
using fixture::FileServer;
using fixture::gives;
using fixture::LentMemory;
using fixture::Library;

// Opens a file and closes it again.
nlsStatus open(const Bytes &image, std::int32_t size = 100000) {
    FileServer files(image);
    LentMemory memory(static_cast<std::size_t>(size));
    nlsHandle *handle = nullptr;
    const nlsStatus status = nlsInit(files.token(), memory.data(), size, &FileServer::read, &handle);
    if (status == NLS_OK)
        nlsClose(handle);
    else {
        EXPECT_EQ(handle, nullptr) << "a failed opening hands out nothing";
    }
    EXPECT_TRUE(memory.intact());
    return status;
}

DataFile fiveEntries() {
    DataFile file;
    file.codePage("ASCII", fixture::CharacterTable::singleByte());
    file.codePage("LATIN1", fixture::CharacterTable::singleByte());
    file.caseTable("ASCII", "basic", fixture::ByteCase::ascii());
    file.collation("ASCII", "basic", fixture::CollationTable());
    file.conversion("ASCII", "LATIN1", 3);
    return file;
}

// The text of a property of a freshly opened file.
std::string property(const Bytes &image, std::uint32_t id) {
    FileServer files(image);
    LentMemory memory(100000);
    nlsHandle *handle = nullptr;
    EXPECT_EQ(nlsInit(files.token(), memory.data(), 100000, &FileServer::read, &handle), NLS_OK);
    if (handle == nullptr)
        return "not opened";
    char buffer[2000];
    nlsStr text = {buffer, sizeof buffer - 1, 0};
    EXPECT_EQ(nlsGetStrNLSProperty(handle, id, &text), NLS_OK);
    nlsClose(handle);
    return {text.buffer, text.length};
}

std::string property(const DataFile &file, std::uint32_t id) {
    return property(file.image(), id);
}

TEST(Directory, HeaderWrittenBackToBackIsRead) {
    const Bytes image = fiveEntries().image();
    EXPECT_EQ(std::string(image.begin(), image.begin() + 11), "42421605005");
    EXPECT_EQ(open(image), NLS_OK);
    EXPECT_EQ(property(fiveEntries(), 2), "ASCII,LATIN1");
    EXPECT_EQ(property(fiveEntries(), 7), "ASCII basic");
    EXPECT_EQ(property(fiveEntries(), 8), "ASCII basic");
    EXPECT_EQ(property(fiveEntries(), 9), "ASCII -> LATIN1");
}

TEST(Directory, MagicMustReadFourTwoFourTwo) {
    for (const char *const magic : {"4243", "0000", " 424", "424 ", "+424", "-424", "abcd", "4 42", "    "}) {
        DataFile file = fiveEntries();
        file.magic = magic;
        EXPECT_TRUE(gives("nlsInit", 5, nlsStatus(open(file.image())))) << magic;
    }
}

TEST(Directory, ShortHeaderGivesFive) {
    for (std::size_t length = 0; length < 16; ++length) {
        Bytes image = fiveEntries().image();
        image.resize(length);
        EXPECT_TRUE(gives("nlsInit", 5, open(image))) << length;
    }
}

TEST(Directory, VersionFourAndFiveAreRead) {
    for (const char *const version : {"04", "05", "4 ", " 5", "+5", "5x", "\n4", "\t5"}) {
        DataFile file = fiveEntries();
        file.version = version;
        EXPECT_EQ(open(file.image()), NLS_OK) << version;
    }
    for (const char *const version : {"03", "06", "-5", "  ", "x5", "50", "00", "++", "\r5"}) {
        DataFile file = fiveEntries();
        file.version = version;
        EXPECT_TRUE(gives("nlsInit", 6, open(file.image()))) << version;
    }
}

TEST(Directory, MagicIsJudgedBeforeTheVersionAndTheVersionBeforeTheEntries) {
    DataFile file = fiveEntries();
    file.magic = "9999";
    file.version = "03";
    EXPECT_EQ(open(file.image()), NLS_E_MAGIC);
    file = fiveEntries();
    file.version = "03";
    file.count = "999"; // more than there are
    EXPECT_EQ(open(file.image(), 25000), NLS_E_VERSION);
}

TEST(Directory, CountIsReadWithBlanksSignAndTrailingText) {
    struct Case {
        const char *field;
        const char *names;
    };
    for (const Case &one :
         {Case{"2  ", "ASCII,LATIN1"}, Case{"  2", "ASCII,LATIN1"}, Case{" 2x", "ASCII,LATIN1"},
          Case{"+2 ", "ASCII,LATIN1"}, Case{"\t\n2", "ASCII,LATIN1"}, Case{"1x9", "ASCII"}, Case{"   ", ""},
          Case{"  +", ""}, Case{"abc", ""}, Case{"000", ""}, Case{"+ 2", ""}, Case{"-0 ", ""}}) {
        DataFile file = fiveEntries();
        file.count = one.field;
        EXPECT_EQ(property(file, 2), one.names) << "'" << one.field << "'";
    }
}

TEST(Directory, NegativeCountIsRefused) {
    for (const char *const count : {"-1 ", "-99", " -1"}) {
        DataFile file = fiveEntries();
        file.count = count;
        EXPECT_TRUE(gives("nlsInit", 1, open(file.image()))) << count;
    }
}

TEST(Directory, EmptyDirectoryOpensAndFindsNothing) {
    DataFile file;
    Library library(file, 25000);
    EXPECT_EQ(library.remaining(), 25000U - 120);
    EXPECT_TRUE(gives("nlsCreateLocale", 9, library.tryLocale("ASCII")));
    EXPECT_EQ(property(file, 2), "");
}

TEST(Directory, NineHundredNinetyNineEntriesAreRead) {
    DataFile file(999);
    for (int i = 0; i < 999; ++i)
        file.codePage("P" + std::to_string(i), fixture::CharacterTable::singleByte());
    const std::int32_t needed = 96 + 24 + 999 * 64;
    Library library(file, needed + 136 + 792);
    EXPECT_EQ(library.remaining(), 136U + 792U);
    EXPECT_NE(library.locale("p998"), nullptr);
    EXPECT_EQ(library.remaining(), 0U);
}

TEST(Directory, LargerThanTheBlockGivesOne) {
    DataFile file(999);
    for (int i = 0; i < 999; ++i)
        file.conversion("P" + std::to_string(i), "Q", 3);
    const std::int32_t needed = 96 + 24 + 999 * 64;
    EXPECT_EQ(open(file.image(), needed), NLS_OK);
    EXPECT_TRUE(gives("nlsInit", 1, open(file.image(), needed - 1)));
    EXPECT_TRUE(gives("nlsInit", 1, open(file.image(), 25000)));
}

TEST(Directory, StartsWhereTheHeaderSays) {
    for (const int offset : {16, 17, 40, 99}) {
        const Bytes plain = fiveEntries().image();
        Bytes image(plain.begin(), plain.begin() + 16);
        const std::string field = std::to_string(offset);
        image[4] = static_cast<unsigned char>(field[0]);
        image[5] = static_cast<unsigned char>(field[1]);
        image.resize(static_cast<std::size_t>(offset), '?');
        image.insert(image.end(), plain.begin() + 16, plain.begin() + 16 + 5 * 64);
        image.resize(20000);
        FileServer files(image);
        LentMemory memory(30000);
        nlsHandle *handle = nullptr;
        ASSERT_EQ(nlsInit(files.token(), memory.data(), 30000, &FileServer::read, &handle), NLS_OK) << offset;
        std::uint32_t length = 0;
        EXPECT_EQ(nlsGetIntNLSProperty(handle, 1, &length), NLS_OK);
        EXPECT_EQ(length, 12U) << offset;
        nlsClose(handle);
    }
}

TEST(Directory, ShortEntryGivesFour) {
    const Bytes whole = fiveEntries().image();
    for (std::size_t length = 16; length < 16 + 5 * 64; ++length) {
        const Bytes image(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_TRUE(gives("nlsInit", 4, open(image))) << length;
    }
    const Bytes image(whole.begin(), whole.begin() + 16 + 5 * 64);
    EXPECT_EQ(open(image), NLS_OK) << "tables are not read at opening";
}

TEST(Directory, OnlyConversionsMayLackAnOffset) {
    for (int kind = 0; kind <= 9; ++kind) {
        DataFile file;
        file.add({"A", "B", 0, 0, 3, kind});
        const nlsStatus status = open(file.image());
        if (kind == 1) {
            EXPECT_EQ(status, NLS_OK);
        } else {
            EXPECT_TRUE(gives("nlsInit", 4, status)) << kind;
        }
    }
}

TEST(Directory, OffsetIsANumberOfSevenCharacters) {
    DataFile file;
    file.codePage("ASCII", fixture::CharacterTable::singleByte());
    const Bytes image = file.image();
    const std::size_t field = 16 + 40;
    const std::string plain(image.begin() + field, image.begin() + field + 7); // 0003200
    const std::string digits = plain.substr(plain.find_first_not_of('0'));
    for (const std::string &text : {std::string(7 - digits.size(), ' ') + digits, digits + "       ",
                                    "+" + digits + "      ", "\n\t" + digits + "x12345"}) {
        Bytes changed = image;
        std::copy_n(text.begin(), 7, changed.begin() + field);
        FileServer files(changed);
        LentMemory memory(30000);
        nlsHandle *handle = nullptr;
        ASSERT_EQ(nlsInit(files.token(), memory.data(), 30000, &FileServer::read, &handle), NLS_OK);
        files.restart();
        nlsLocale *locale = nullptr;
        EXPECT_EQ(nlsCreateLocale(handle, "ASCII", NLS_NO_COLLATION, nullptr, &locale), NLS_OK) << text;
        ASSERT_EQ(files.reads(), 1);
        EXPECT_EQ(files.log[0].offset, std::stoul(plain)) << text;
        EXPECT_EQ(files.log[0].length, 1552U);
        nlsClose(handle);
    }
}

TEST(Directory, NothingOfTheLastSevenDigitsIsLost) {
    DataFile file;
    file.add({"A", "", 9999999, 0, 0, 2});
    Library library(file, 30000);
    library.files.restart();
    EXPECT_EQ(library.tryLocale("A"), NLS_E_TABLE);
    ASSERT_EQ(library.files.reads(), 1);
    EXPECT_EQ(library.files.log[0].offset, 9999999U);
}

TEST(Directory, NamesCompareWithoutCaseAndTrailingBlanks) {
    DataFile file;
    file.codePage("UTF-8", fixture::CharacterTable::utf8());
    file.codePage("Page One  ", fixture::CharacterTable::singleByte());
    Library library(file, 30000);
    nlsLocale *const locale = library.locale("UTF-8");
    for (const char *const name : {"utf-8", "Utf-8  ", "UTF-8 ", "utf-8      "})
        EXPECT_EQ(library.locale(name), locale) << name;
    for (const char *const name : {"UTF-", "UTF-88", "UTF-8 x", " UTF-8", "UTF_8", "", " "})
        EXPECT_EQ(library.tryLocale(name), NLS_E_NOCHARSET) << name;
    EXPECT_NE(library.locale("PAGE ONE"), nullptr);
    EXPECT_NE(library.locale("page one   "), nullptr);
}

TEST(Directory, FirstEntryOfANameWins) {
    DataFile file;
    file.codePage("P", fixture::CharacterTable::singleByte(fixture::kWide));
    file.codePage("p ", fixture::CharacterTable::singleByte());
    Library library(file, 30000);
    std::uint32_t wide = 0;
    ASSERT_EQ(nlsGetIntLocaleProperty(library.locale("P"), 14, &wide), NLS_OK);
    EXPECT_EQ(wide, 1U);
}

TEST(Directory, NamesEndAtTheirNul) {
    DataFile file;
    file.codePage("SHORT", fixture::CharacterTable::singleByte());
    file.codePage("NINETEEN-CHARACTERS", fixture::CharacterTable::singleByte());
    Bytes image = file.image();
    std::copy_n("junk", 4, image.begin() + 16 + 6); // behind the NUL
    EXPECT_EQ(property(image, 2), "SHORT,NINETEEN-CHARACTERS");
}

// The conversions that a file has, whose first entry's names are followed by junk from these places on.
std::string conversionsWithJunk(std::size_t behindName, std::size_t behindName2) {
    DataFile file;
    file.add({"TWELVE-CHARS", "NINETEEN-CHARACTERS", 0, 0, 3, 1});
    file.add({"B", "C", 0, 0, 3, 1});
    Bytes image = file.image();
    const auto first = image.begin() + 16;
    std::fill(first + static_cast<std::ptrdiff_t>(behindName), first + 20, 'x');
    std::fill(first + 20 + static_cast<std::ptrdiff_t>(behindName2), first + 40, 'y');
    return property(image, 9);
}

TEST(Directory, WhatStandsBehindANulIsNoPartOfANameAndTheTwentiethCharacterIsNone) {
    const std::string plain = "TWELVE-CHARS -> NINETEEN-CHARACTERS,B -> C";
    for (std::size_t behindName = 13; behindName <= 20; ++behindName)
        for (std::size_t behindName2 = 19; behindName2 <= 20; ++behindName2)
            EXPECT_EQ(conversionsWithJunk(behindName, behindName2), plain)
                << behindName << " " << behindName2;
    EXPECT_EQ(conversionsWithJunk(12, 20), "TWELVE-CHARSxxxxxxx -> NINETEEN-CHARACTERS,B -> C");
    EXPECT_EQ(conversionsWithJunk(12, 7), "TWELVE-CHARSxxxxxxx -> NINETEEyyyyyyyyyyyy,B -> C");
    EXPECT_EQ(conversionsWithJunk(20, 0), "TWELVE-CHARS -> yyyyyyyyyyyyyyyyyyy,B -> C");
}

TEST(Directory, KindIsOneDigitAndAnythingElseIsNoKind) {
    for (int byte = 0; byte < 256; ++byte) {
        DataFile file;
        file.codePage("A", fixture::CharacterTable::singleByte());
        Bytes image = file.image();
        image[16 + 49] = static_cast<unsigned char>(byte);
        FileServer files(image);
        LentMemory memory(30000);
        nlsHandle *handle = nullptr;
        ASSERT_EQ(nlsInit(files.token(), memory.data(), 30000, &FileServer::read, &handle), NLS_OK);
        nlsLocale *locale = nullptr;
        EXPECT_EQ(nlsCreateLocale(handle, "A", NLS_NO_COLLATION, nullptr, &locale),
                  byte == '2' ? NLS_OK : NLS_E_NOCHARSET)
            << byte;
        nlsClose(handle);
    }
}

TEST(Directory, EveryReadUsesTheCallersToken) {
    Library library(fiveEntries(), 30000);
    // The server is found by its token alone.
    EXPECT_GT(library.files.reads(), 0);
    EXPECT_EQ(library.files.log[0].offset, 0U);
    EXPECT_EQ(library.files.log[0].length, 16U);
}

} // namespace
