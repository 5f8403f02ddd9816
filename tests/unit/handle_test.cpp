// The handle: lending memory, the arena's bookkeeping, the busy flag, closing.
#include "library_fixture.hpp"
#include "status_rows.hpp"

#include <algorithm>

namespace {

using fixture::ArenaModel;
using fixture::DataFile;
using fixture::FakeObject;
using fixture::FileServer;
using fixture::gives;
using fixture::LentMemory;
using fixture::Library;
namespace peek = fixture::peek;

DataFile smallFile() {
    DataFile file;
    file.codePage("ASCII", fixture::CharacterTable::singleByte());
    file.codePage("OTHER", fixture::CharacterTable::singleByte());
    file.conversion("ASCII", "OTHER", 3);
    return file;
}

TEST(Handle, BlockOfTheMinimumSizeIsAcceptedAndOneByteLessIsNot) {
    FileServer files(smallFile().image());
    LentMemory enough(25000);
    nlsHandle *handle = nullptr;
    EXPECT_TRUE(
        gives("nlsInit", 0, nlsInit(files.token(), enough.data(), 25000, &FileServer::read, &handle)));
    EXPECT_EQ(static_cast<void *>(handle), static_cast<void *>(enough.data()));
    EXPECT_EQ(nlsClose(handle), NLS_OK);

    LentMemory small(24999);
    handle = nullptr;
    EXPECT_TRUE(gives("nlsInit", 1, nlsInit(files.token(), small.data(), 24999, &FileServer::read, &handle)));
    EXPECT_EQ(handle, nullptr);
    EXPECT_TRUE(std::all_of(small.data(), small.data() + 24999, [](unsigned char b) { return b == 0xCC; }));
    EXPECT_EQ(nlsInit(files.token(), small.data(), -1, &FileServer::read, &handle), NLS_E_NOMEM);
    EXPECT_EQ(nlsInit(files.token(), small.data(), 0, &FileServer::read, &handle), NLS_E_NOMEM);
}

TEST(Handle, SizeIsJudgedBeforeTheFileIsRead) {
    FileServer files(fixture::bytesOf("not a data file"));
    LentMemory small(24999);
    nlsHandle *handle = nullptr;
    EXPECT_EQ(nlsInit(files.token(), small.data(), 24999, &FileServer::read, &handle), NLS_E_NOMEM);
    EXPECT_EQ(files.reads(), 0);
}

TEST(Handle, NullArgumentsOfInitAreRefused) {
    FileServer files(smallFile().image());
    LentMemory memory(30000);
    nlsHandle *handle = nullptr;
    EXPECT_TRUE(gives("nlsInit", 16, nlsInit(files.token(), nullptr, 30000, &FileServer::read, &handle)));
    EXPECT_TRUE(gives("nlsInit", 16, nlsInit(files.token(), memory.data(), 30000, nullptr, &handle)));
    EXPECT_TRUE(
        gives("nlsInit", 16, nlsInit(files.token(), memory.data(), 30000, &FileServer::read, nullptr)));
}

TEST(Handle, LentBlocksAreZeroed) {
    Library library(smallFile(), 30000);
    const std::uint32_t used = 30000 - library.remaining();
    EXPECT_TRUE(std::all_of(library.memory.data() + used, library.memory.data() + 30000,
                            [](unsigned char b) { return b == 0; }));
    ASSERT_EQ(library.lend(), NLS_OK);
    EXPECT_TRUE(std::all_of(library.lent[0]->data() + 24, library.lent[0]->data() + 76000,
                            [](unsigned char b) { return b == 0; }));
}

TEST(Handle, ArenaTakesHandleDescriptorAndDirectoryAtEveryAddress) {
    const DataFile file = smallFile();
    for (std::size_t misalignment = 0; misalignment < 16; ++misalignment) {
        Library library(file, 25000, misalignment);
        ArenaModel model(library.memory.data(), 25000);
        model.open(file.entries());
        EXPECT_EQ(library.remaining(), model.remaining()) << misalignment;
    }
    Library aligned(file, 25000);
    EXPECT_EQ(aligned.remaining(), 25000U - 96 - 24 - 3 * 64); // no padding where none is needed
}

TEST(Handle, ObjectsTakeTheirSizesAtEveryAddress) {
    const DataFile file = smallFile();
    for (std::size_t misalignment = 0; misalignment < 16; ++misalignment) {
        Library library(file, 25000, misalignment);
        ArenaModel model(library.memory.data(), 25000);
        model.open(file.entries());
        nlsLocale *const ascii = library.locale("ASCII");
        model.take(136, 8);
        model.take(792, 1);
        EXPECT_EQ(library.remaining(), model.remaining()) << misalignment;
        nlsLocale *const other = library.locale("OTHER");
        model.take(136, 8);
        model.take(792, 1);
        EXPECT_EQ(library.remaining(), model.remaining()) << misalignment;
        nlsConversion *conversion = nullptr;
        ASSERT_EQ(nlsCreateConversion(library.handle, ascii, other, &conversion), NLS_OK);
        model.take(48, 8);
        model.take(8, 8); // header of an empty body
        EXPECT_EQ(library.remaining(), model.remaining()) << misalignment;
    }
}

TEST(Handle, AllocationMayUseUpExactlyWhatRemains) {
    const int filling = 360;
    for (const bool enough : {true, false}) {
        DataFile file(filling + 8);
        file.codePage("ASCII", fixture::CharacterTable::singleByte());
        for (int i = 1; i < filling; ++i)
            file.conversion("A" + std::to_string(i), "B", 3);
        const std::int32_t fixed = 96 + 24 + filling * 64;
        // Left-over bytes are taken by locales of no known page, which stay in the arena unused.
        const std::int32_t size = fixed + 16 * 136 + 792 + (enough ? 0 : -1);
        ASSERT_GE(size, 25000);
        Library library(file, size);
        for (int i = 0; i < 15; ++i)
            EXPECT_EQ(library.tryLocale("NONE"), NLS_E_NOCHARSET);
        const nlsStatus status = library.tryLocale("ASCII");
        EXPECT_EQ(status, enough ? NLS_OK : NLS_E_NOMEM);
        // The last byte goes with the character table; without it the table is not taken at all.
        EXPECT_EQ(library.remaining(), enough ? 0U : 791U);
        if (enough) {
            EXPECT_EQ(library.tryLocale("NONE"), NLS_E_NOMEM);
        }
    }
}

TEST(Handle, AddBufferCarvesTheNewBlockOnly) {
    for (std::size_t misalignment = 0; misalignment < 16; ++misalignment) {
        Library library(smallFile(), 25000, misalignment);
        EXPECT_TRUE(gives("nlsAddBuffer", 0, library.lend(76000, misalignment)));
        const LentMemory &more = *library.lent[0];
        ArenaModel model(more.data(), 0);
        model.lend(more.data(), 76000);
        EXPECT_EQ(library.remaining(), model.remaining());
        const nlsLocale *const locale = library.locale("ASCII");
        EXPECT_GE(reinterpret_cast<const unsigned char *>(locale), more.data());
        EXPECT_LT(reinterpret_cast<const unsigned char *>(locale), more.data() + 76000);
        model.take(136, 8);
        model.take(792, 1);
        EXPECT_EQ(library.remaining(), model.remaining());
        EXPECT_TRUE(more.intact());
    }
}

TEST(Handle, AddBufferBelowTheMinimumLeavesTheHandleUsable) {
    Library library(smallFile(), 25000);
    const std::uint32_t before = library.remaining();
    LentMemory more(75999);
    EXPECT_TRUE(gives("nlsAddBuffer", 1, nlsAddBuffer(library.handle, more.data(), 75999)));
    EXPECT_EQ(nlsAddBuffer(library.handle, more.data(), -1), NLS_E_NOMEM);
    EXPECT_EQ(nlsAddBuffer(library.handle, more.data(), 0), NLS_E_NOMEM);
    EXPECT_EQ(library.remaining(), before);
    EXPECT_EQ(more.data()[0], 0xCC);
    EXPECT_NE(library.locale("ASCII"), nullptr);
    EXPECT_EQ(library.lend(76000), NLS_OK);
}

TEST(Handle, AddBufferRefusesNullMemoryAndNoHandle) {
    Library library(smallFile(), 25000);
    LentMemory more(76000);
    EXPECT_TRUE(gives("nlsAddBuffer", 16, nlsAddBuffer(library.handle, nullptr, 76000)));
    EXPECT_TRUE(gives("nlsAddBuffer", 13, nlsAddBuffer(nullptr, more.data(), 76000)));
    nlsHandle *const handle = library.handle;
    ASSERT_EQ(nlsClose(handle), NLS_OK);
    library.handle = nullptr;
    EXPECT_TRUE(gives("nlsAddBuffer", 13, nlsAddBuffer(handle, nullptr, 1)));
}

TEST(Handle, ClosingTwiceIsRefused) {
    Library library(smallFile(), 25000);
    nlsHandle *const handle = library.handle;
    library.handle = nullptr;
    EXPECT_TRUE(gives("nlsClose", 0, nlsClose(handle)));
    EXPECT_TRUE(gives("nlsClose", 13, nlsClose(handle)));
    EXPECT_TRUE(gives("nlsClose", 13, nlsClose(nullptr)));
}

TEST(Handle, ReadCallbackCannotReenter) {
    DataFile file = smallFile();
    file.codePage("THIRD", fixture::CharacterTable::singleByte());
    Library library(file, 60000);
    nlsLocale *const ascii = library.locale("ASCII");
    nlsLocale *const other = library.locale("OTHER");
    nlsConversion *const made = library.conversion("ASCII", "OTHER");
    LentMemory more(76000);
    int calls = 0;
    library.files.onRead = [&](std::uint32_t, std::uint32_t) {
        ++calls;
        nlsLocale *locale = nullptr;
        nlsConversion *conversion = nullptr;
        EXPECT_TRUE(gives("nlsClose", 23, nlsClose(library.handle)));
        EXPECT_TRUE(gives("nlsAddBuffer", 23, nlsAddBuffer(library.handle, more.data(), 76000)));
        EXPECT_EQ(nlsAddBuffer(library.handle, more.data(), 1), NLS_E_BUSY) << "busy comes before the size";
        EXPECT_TRUE(gives("nlsCreateLocale", 23,
                          nlsCreateLocale(library.handle, "THIRD", NLS_NO_COLLATION, nullptr, &locale)));
        EXPECT_TRUE(
            gives("nlsCreateConversion", 23, nlsCreateConversion(library.handle, other, ascii, &conversion)));
        // What exists is found all the same.
        EXPECT_EQ(nlsCreateLocale(library.handle, "ascii", NLS_NO_COLLATION, nullptr, &locale), NLS_OK);
        EXPECT_EQ(locale, ascii);
        EXPECT_EQ(nlsCreateConversion(library.handle, ascii, other, &conversion), NLS_OK);
        EXPECT_EQ(conversion, made);
        std::uint32_t value = 0;
        EXPECT_EQ(nlsGetIntNLSProperty(library.handle, 21, &value), NLS_OK);
    };
    EXPECT_NE(library.locale("THIRD"), nullptr);
    EXPECT_GT(calls, 0);
    library.files.onRead = nullptr;
    EXPECT_EQ(library.lend(), NLS_OK);
}

TEST(Handle, IsBusyWhileTheDirectoryIsRead) {
    FileServer files(smallFile().image());
    LentMemory memory(60000);
    LentMemory more(76000);
    auto *const handle = reinterpret_cast<nlsHandle *>(memory.data());
    files.onRead = [&](std::uint32_t, std::uint32_t) {
        EXPECT_EQ(nlsClose(handle), NLS_E_BUSY);
        EXPECT_EQ(nlsAddBuffer(handle, more.data(), 76000), NLS_E_BUSY);
    };
    nlsHandle *opened = nullptr;
    EXPECT_EQ(nlsInit(files.token(), memory.data(), 60000, &FileServer::read, &opened), NLS_OK);
    EXPECT_EQ(opened, handle);
    EXPECT_GT(files.reads(), 0);
    EXPECT_EQ(nlsAddBuffer(handle, more.data(), 76000), NLS_OK) << "no longer busy";
    EXPECT_EQ(nlsClose(handle), NLS_OK);
}

TEST(Handle, BusyEndsWithEveryFailure) {
    Library library(smallFile(), 25000);
    LentMemory more(76000);
    EXPECT_EQ(library.tryLocale("NONE"), NLS_E_NOCHARSET);
    EXPECT_EQ(nlsAddBuffer(library.handle, more.data(), 1), NLS_E_NOMEM);
    EXPECT_EQ(library.tryConversion("OTHER", "ASCII"), NLS_E_ICU);
    EXPECT_EQ(library.tryLocale("ASCII", nullptr), NLS_E_NOCOLLATION);
    EXPECT_EQ(library.lend(), NLS_OK);
}

TEST(Handle, TagThatTheCallbackDestroysIsNoticed) {
    FileServer files(smallFile().image());
    LentMemory memory(30000);
    files.onRead = [&](std::uint32_t, std::uint32_t) { peek::setType(memory.data(), 7); };
    nlsHandle *handle = nullptr;
    EXPECT_TRUE(
        gives("nlsInit", 13, nlsInit(files.token(), memory.data(), 30000, &FileServer::read, &handle)));
    EXPECT_EQ(handle, nullptr);
}

TEST(Handle, ObjectsAreListedNewestFirstWithTheHandleLast) {
    Library library(smallFile(), 25000);
    EXPECT_EQ(peek::newest(library.handle), library.handle);
    EXPECT_EQ(peek::serial(library.handle), 1);
    EXPECT_EQ(peek::type(library.handle), 1);
    const nlsLocale *const ascii = library.locale("ASCII");
    const nlsLocale *const other = library.locale("OTHER");
    const nlsConversion *const conversion = library.conversion("ASCII", "OTHER");
    EXPECT_EQ(peek::newest(library.handle), conversion);
    EXPECT_EQ(peek::next(conversion), other);
    EXPECT_EQ(peek::next(other), ascii);
    EXPECT_EQ(peek::next(ascii), library.handle);
    EXPECT_EQ(peek::next(library.handle), nullptr);
    EXPECT_EQ(peek::previous(other), conversion);
    EXPECT_EQ(peek::previous(ascii), other);
    EXPECT_EQ(peek::serial(ascii), 2);
    EXPECT_EQ(peek::serial(other), 3);
    EXPECT_EQ(peek::serial(conversion), 4);
    EXPECT_EQ(peek::type(other), 2);
    EXPECT_EQ(peek::type(conversion), 3);
    EXPECT_EQ(peek::owner(ascii), library.handle);
}

TEST(Handle, EverythingIsRefusedAfterClosing) {
    Library library(smallFile(), 25000);
    nlsLocale *const ascii = library.locale("ASCII");
    nlsLocale *const other = library.locale("OTHER");
    nlsConversion *const conversion = library.conversion("ASCII", "OTHER");
    nlsHandle *const handle = library.handle;
    ASSERT_EQ(nlsClose(handle), NLS_OK);
    library.handle = nullptr;

    std::uint32_t number = 0;
    std::uint16_t length = 0;
    char buffer[32] = "a";
    char *p = buffer;
    char *out = nullptr;
    nlsStr text = {buffer, sizeof buffer - 1, 1};
    nlsStr result = {buffer, sizeof buffer - 1, 1};
    nlsLocale *locale = nullptr;
    nlsConversion *made = nullptr;
    void *block = nullptr;
    EXPECT_TRUE(gives("nlsGetIntNLSProperty", 13, nlsGetIntNLSProperty(handle, 21, &number)));
    EXPECT_TRUE(
        gives("nlsCreateLocale", 13, nlsCreateLocale(handle, "ASCII", NLS_NO_COLLATION, nullptr, &locale)));
    EXPECT_TRUE(gives("nlsCloseDBLocale", 13, nlsCloseDBLocale(ascii, &block, &number)));
    EXPECT_TRUE(gives("nlsGetIntLocaleProperty", 13, nlsGetIntLocaleProperty(ascii, 3, &number)));
    EXPECT_TRUE(gives("nlsGetStrLocaleProperty", 13, nlsGetStrLocaleProperty(ascii, 18, &text)));
    EXPECT_TRUE(gives("nlsGetNextChar", 13, nlsGetNextChar(ascii, buffer, &out)));
    EXPECT_TRUE(gives("nlsGetPrevChar", 13, nlsGetPrevChar(ascii, buffer + 1, buffer, &out)));
    EXPECT_TRUE(gives("nlsGetCharProperty", 13, nlsGetCharProperty(ascii, buffer, 0, &number)));
    EXPECT_TRUE(gives("nlsCharToLChar", 13, nlsCharToLChar(ascii, &p, &number)));
    EXPECT_TRUE(gives("nlsLCharToChar", 13, nlsLCharToChar(ascii, 'a', &p, &length)));
    EXPECT_TRUE(gives("nlsCreateConversion", 13, nlsCreateConversion(handle, ascii, other, &made)));
    EXPECT_TRUE(
        gives("nlsGetIntConversionProperty", 13, nlsGetIntConversionProperty(conversion, 17, &number)));
    EXPECT_TRUE(gives("nlsGetStrConversionProperty", 13, nlsGetStrConversionProperty(conversion, 15, &text)));
    EXPECT_TRUE(gives("nlsConvertNLS", 13, nlsConvertNLS(conversion, &text, nullptr, &result)));
    EXPECT_TRUE(gives("nlsConvertNLSCheck", 13, nlsConvertNLSCheck(conversion, &text, &result)));
    EXPECT_TRUE(gives("nlsConvertLChar", 13, nlsConvertLChar(conversion, 'a', &number)));
    EXPECT_TRUE(gives("nlsConvertFromUCS2", 13, nlsConvertFromUCS2(conversion, buffer, 1, &result)));
    EXPECT_TRUE(gives("nlsConvertToUCS2", 13, nlsConvertToUCS2(conversion, &text, 8, buffer, &number)));
}

TEST(Handle, NoHandleNoLocaleAndNoConversionGiveThirteen) {
    std::uint32_t number = 0;
    std::uint16_t length = 0;
    char buffer[32] = "a";
    char *p = buffer;
    char *out = nullptr;
    nlsStr text = {buffer, sizeof buffer - 1, 1};
    nlsLocale *locale = nullptr;
    nlsConversion *made = nullptr;
    void *block = nullptr;
    EXPECT_EQ(nlsGetIntNLSProperty(nullptr, 21, &number), NLS_E_HANDLE);
    EXPECT_TRUE(gives("nlsGetStrNLSProperty", 13, nlsGetStrNLSProperty(nullptr, 2, &text)));
    EXPECT_EQ(nlsCreateLocale(nullptr, "ASCII", NLS_NO_COLLATION, nullptr, &locale), NLS_E_HANDLE);
    EXPECT_EQ(nlsCloseDBLocale(nullptr, &block, &number), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetIntLocaleProperty(nullptr, 3, &number), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetStrLocaleProperty(nullptr, 18, &text), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetNextChar(nullptr, buffer, &out), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetPrevChar(nullptr, buffer, buffer, &out), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetCharProperty(nullptr, buffer, 0, &number), NLS_E_HANDLE);
    EXPECT_EQ(nlsCharToLChar(nullptr, &p, &number), NLS_E_HANDLE);
    EXPECT_EQ(nlsLCharToChar(nullptr, 'a', &p, &length), NLS_E_HANDLE);
    EXPECT_EQ(nlsCreateConversion(nullptr, nullptr, nullptr, &made), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetIntConversionProperty(nullptr, 17, &number), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetStrConversionProperty(nullptr, 15, &text), NLS_E_HANDLE);
    EXPECT_EQ(nlsConvertNLS(nullptr, &text, nullptr, &text), NLS_E_HANDLE);
    EXPECT_EQ(nlsConvertNLSCheck(nullptr, &text, &text), NLS_E_HANDLE);
    EXPECT_EQ(nlsConvertLChar(nullptr, 'a', &number), NLS_E_HANDLE);
    EXPECT_EQ(nlsConvertFromUCS2(nullptr, buffer, 1, &text), NLS_E_HANDLE);
    EXPECT_EQ(nlsConvertToUCS2(nullptr, &text, 8, buffer, &number), NLS_E_HANDLE);
}

TEST(Handle, TwoHandlesAreIndependent) {
    Library one(smallFile(), 25000);
    Library two(smallFile(), 25000);
    nlsLocale *const first = one.locale("ASCII");
    nlsLocale *const second = two.locale("ASCII");
    EXPECT_NE(first, second);
    nlsHandle *const handle = one.handle;
    ASSERT_EQ(nlsClose(handle), NLS_OK);
    one.handle = nullptr;
    std::uint32_t value = 0;
    EXPECT_EQ(nlsGetIntLocaleProperty(first, 3, &value), NLS_E_HANDLE);
    EXPECT_EQ(nlsGetIntLocaleProperty(second, 3, &value), NLS_OK);
}

} // namespace
