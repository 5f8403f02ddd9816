// The counted string: its plain operations, their limits and the one documented byte behind an exactly full
// buffer.
#include "guarded_buffer.hpp"
#include "status_rows.hpp"

#include <cstring>
#include <string>

namespace {

using fixture::gives;
using fixture::GuardedBuffer;

// A string over the last `size` bytes before forbidden memory, with `spare` more bytes behind its stated
// size.
struct Text {
    Text(const std::string &content, std::uint32_t size, std::uint32_t spare = 0) : guard(size + spare + 1) {
        string.buffer = reinterpret_cast<char *>(guard.tail(size + spare));
        string.size = size;
        string.length = static_cast<std::uint32_t>(content.size());
        std::memset(string.buffer, 'x', size + spare);
        if (!content.empty())
            std::memcpy(string.buffer, content.c_str(), std::min<std::size_t>(content.size() + 1, size));
    }
    [[nodiscard]] std::string content() const {
        return {string.buffer, string.length};
    }
    GuardedBuffer guard;
    nlsStr string{};
};

TEST(CountedString, InitStoresTheBufferAndEmptiesIt) {
    Text text("old", 10);
    nlsStr string = {nullptr, 77, 78};
    EXPECT_TRUE(gives("nlsInitString", 0, nlsInitString(text.string.buffer, 10, &string)));
    EXPECT_EQ(string.buffer, text.string.buffer);
    EXPECT_EQ(string.size, 10U);
    EXPECT_EQ(string.length, 0U);
    EXPECT_EQ(string.buffer[0], '\0');
    EXPECT_EQ(string.buffer[1], 'l');
}

TEST(CountedString, SetStoresTheThreeFieldsAndLeavesTheBuffer) {
    GuardedBuffer page(16);
    const unsigned char *const fixed = page.readOnly(fixture::bytesOf("text"));
    char *const buffer = reinterpret_cast<char *>(reinterpret_cast<std::uintptr_t>(fixed));
    nlsStr string = {nullptr, 0, 0};
    EXPECT_TRUE(gives("nlsSetString", 0, nlsSetString(buffer, 4, 99, &string)));
    EXPECT_EQ(string.buffer, buffer);
    EXPECT_EQ(string.size, 4U);
    EXPECT_EQ(string.length, 99U);
}

TEST(CountedString, AppendKeepsOneByteForTheTerminator) {
    Text text("123456789", 10);
    EXPECT_TRUE(gives("nlsAppendString", 0, nlsAppendString("z", 0, &text.string)));
    EXPECT_EQ(text.content(), "123456789");
    EXPECT_TRUE(gives("nlsAppendString", 2, nlsAppendString("z", 1, &text.string)));
    EXPECT_EQ(text.content(), "123456789");
    EXPECT_EQ(text.string.buffer[9], '\0');
}

TEST(CountedString, AppendFillsTheRoomExactly) {
    for (std::uint32_t size = 1; size < 12; ++size) {
        Text text("", size);
        text.string.buffer[0] = '\0';
        const auto room = static_cast<std::int32_t>(size) - 1;
        EXPECT_EQ(nlsAppendString("abcdefghijkl", room + 1, &text.string), NLS_E_BUFFER);
        EXPECT_EQ(text.string.length, 0U);
        EXPECT_EQ(nlsAppendString("abcdefghijkl", room, &text.string), NLS_OK);
        EXPECT_EQ(text.content(), std::string("abcdefghijkl").substr(0, size - 1));
        EXPECT_EQ(text.string.buffer[size - 1], '\0');
    }
}

TEST(CountedString, AppendJudgesTheCountAndNotTheText) {
    Text text("", 4);
    EXPECT_EQ(nlsAppendString("", 4, &text.string), NLS_E_BUFFER);
}

TEST(CountedString, AppendStopsAtTheTextsEnd) {
    Text text("x", 10);
    EXPECT_EQ(nlsAppendString("ab", 5, &text.string), NLS_OK);
    EXPECT_EQ(text.content(), "xab");
    EXPECT_EQ(text.string.buffer[3], '\0');
}

TEST(CountedString, AppendReadsNoFurtherThanItsCount) {
    GuardedBuffer page(16);
    const unsigned char *const unterminated = page.readOnly(fixture::bytesOf("abc"));
    Text text("", 10);
    EXPECT_EQ(nlsAppendString(reinterpret_cast<const char *>(unterminated), 3, &text.string), NLS_OK);
    EXPECT_EQ(text.content(), "abc");
}

TEST(CountedString, AppendOfNegativeCountCopiesNothing) {
    Text text("ab", 10);
    EXPECT_EQ(nlsAppendString("zzz", -1, &text.string), NLS_OK);
    EXPECT_EQ(nlsAppendString("zzz", INT32_MIN, &text.string), NLS_OK);
    EXPECT_EQ(text.content(), "ab");
}

TEST(CountedString, AppendNeverFitsAStringWithoutRoomForItsTerminator) {
    Text text("abcd", 4);
    EXPECT_EQ(nlsAppendString("", 0, &text.string), NLS_E_BUFFER);
    EXPECT_EQ(nlsAppendString("z", 1, &text.string), NLS_E_BUFFER);
    EXPECT_EQ(text.string.length, 4U);
}

TEST(CountedString, AppendGoesToTheStatedLength) {
    Text text("ab", 10);
    ASSERT_EQ(nlsSetString(text.string.buffer, 10, 5, &text.string), NLS_OK);
    EXPECT_EQ(nlsAppendString("Z", 1, &text.string), NLS_OK);
    EXPECT_EQ(text.string.length, 6U);
    EXPECT_EQ(text.string.buffer[5], 'Z');
    EXPECT_EQ(text.string.buffer[6], '\0');
    EXPECT_STREQ(text.string.buffer, "ab");
}

TEST(CountedString, AppendRefusesNullBeforeItLooksAtTheRoom) {
    Text full("abc", 4);
    EXPECT_TRUE(gives("nlsAppendString", 16, nlsAppendString(nullptr, 100, &full.string)));
    EXPECT_TRUE(gives("nlsAppendString", 16, nlsAppendString("a", 1, nullptr)));
    EXPECT_EQ(full.content(), "abc");
}

TEST(CountedString, GettersReadTheFields) {
    Text text("abc", 8);
    char *buffer = nullptr;
    std::uint32_t number = 0;
    EXPECT_TRUE(gives("nlsGetBufOfnlsStr", 0, nlsGetBufOfnlsStr(&text.string, &buffer)));
    EXPECT_EQ(buffer, text.string.buffer);
    EXPECT_TRUE(gives("nlsGetBufSizeOfnlsStr", 0, nlsGetBufSizeOfnlsStr(&text.string, &number)));
    EXPECT_EQ(number, 8U);
    EXPECT_TRUE(gives("nlsGetStrLengthOfnlsStr", 0, nlsGetStrLengthOfnlsStr(&text.string, &number)));
    EXPECT_EQ(number, 3U);
}

TEST(CountedString, GettersRefuseNull) {
    Text text("abc", 8);
    char *buffer = nullptr;
    std::uint32_t number = 0;
    EXPECT_TRUE(gives("nlsGetBufOfnlsStr", 16, nlsGetBufOfnlsStr(nullptr, &buffer)));
    EXPECT_TRUE(gives("nlsGetBufSizeOfnlsStr", 16, nlsGetBufSizeOfnlsStr(nullptr, &number)));
    EXPECT_TRUE(gives("nlsGetStrLengthOfnlsStr", 16, nlsGetStrLengthOfnlsStr(nullptr, &number)));
    EXPECT_EQ(nlsGetBufOfnlsStr(&text.string, nullptr), NLS_E_NULLARG);
    EXPECT_EQ(nlsGetBufSizeOfnlsStr(&text.string, nullptr), NLS_E_NULLARG);
    EXPECT_EQ(nlsGetStrLengthOfnlsStr(&text.string, nullptr), NLS_E_NULLARG);
}

TEST(CountedString, CopyOfExactlyTheSizePutsTheTerminatorBehindIt) {
    Text text("", 8, 1);
    EXPECT_TRUE(gives("nlsCopyString", 0, nlsCopyString("12345678", 8, &text.string)));
    EXPECT_EQ(text.content(), "12345678");
    EXPECT_EQ(text.string.buffer[8], '\0');
}

TEST(CountedString, CopyWritesNoByteBehindTheSizeOtherwise) {
    for (std::int32_t count = 0; count < 8; ++count) {
        Text text("", 8);
        EXPECT_EQ(nlsCopyString("12345678", count, &text.string), NLS_OK);
        EXPECT_EQ(text.content(), std::string("12345678").substr(0, static_cast<std::size_t>(count)));
    }
    Text text("", 8);
    EXPECT_EQ(nlsCopyString("1234567", 8, &text.string), NLS_OK); // the text is shorter than the count
    EXPECT_EQ(text.content(), "1234567");
}

TEST(CountedString, CopyRefusesTooLongCountsAndSizeZero) {
    Text text("old", 8);
    EXPECT_TRUE(gives("nlsCopyString", 2, nlsCopyString("a", 9, &text.string)));
    EXPECT_EQ(text.content(), "old");
    Text none("", 0, 4);
    EXPECT_EQ(nlsCopyString("a", 0, &none.string), NLS_E_BUFFER);
    EXPECT_EQ(none.string.buffer[0], 'x');
}

TEST(CountedString, CopyReplacesTheContentFromItsStart) {
    Text text("old text", 20);
    EXPECT_EQ(nlsCopyString("new", 3, &text.string), NLS_OK);
    EXPECT_EQ(text.content(), "new");
    EXPECT_EQ(nlsCopyString("zzz", -5, &text.string), NLS_OK);
    EXPECT_EQ(text.string.length, 0U);
    EXPECT_EQ(text.string.buffer[0], '\0');
}

TEST(CountedString, CopyRefusesNullTextBeforeItLooksAtTheSize) {
    Text none("", 0, 1);
    EXPECT_TRUE(gives("nlsCopyString", 16, nlsCopyString(nullptr, 5, &none.string)));
}

TEST(CountedString, CopyOfAStringTakesItsText) {
    Text source("hello", 10);
    Text target("other", 6);
    EXPECT_TRUE(gives("nlsCopynlsStr", 0, nlsCopynlsStr(&source.string, &target.string)));
    EXPECT_EQ(target.content(), "hello");
    EXPECT_EQ(target.string.size, 6U);
    EXPECT_EQ(target.string.buffer[5], '\0');
}

TEST(CountedString, CopyOfAStringOfExactlyTheSizePutsTheTerminatorBehindIt) {
    Text source("hello", 10);
    Text target("", 5, 1);
    EXPECT_EQ(nlsCopynlsStr(&source.string, &target.string), NLS_OK);
    EXPECT_EQ(target.content(), "hello");
    EXPECT_EQ(target.string.buffer[5], '\0');
}

TEST(CountedString, CopyOfAStringStopsAtANul) {
    Text source("he", 10);
    source.string.length = 5;
    Text target("", 10);
    EXPECT_EQ(nlsCopynlsStr(&source.string, &target.string), NLS_OK);
    EXPECT_EQ(target.content(), "he");
}

TEST(CountedString, CopyOfAStringReadsNoFurtherThanItsLength) {
    GuardedBuffer page(16);
    const unsigned char *const unterminated = page.readOnly(fixture::bytesOf("abc"));
    const nlsStr source = {reinterpret_cast<char *>(reinterpret_cast<std::uintptr_t>(unterminated)), 3, 3};
    Text target("", 10);
    EXPECT_EQ(nlsCopynlsStr(&source, &target.string), NLS_OK);
    EXPECT_EQ(target.content(), "abc");
}

TEST(CountedString, CopyOfAStringNeedsRoom) {
    Text source("hello", 10);
    Text small("abc", 4);
    EXPECT_TRUE(gives("nlsCopynlsStr", 2, nlsCopynlsStr(&source.string, &small.string)));
    EXPECT_EQ(small.content(), "abc");
    Text empty("", 10);
    empty.string.buffer[0] = '\0';
    Text none("", 0, 2);
    EXPECT_EQ(nlsCopynlsStr(&empty.string, &none.string), NLS_E_BUFFER);
    EXPECT_EQ(none.string.buffer[0], 'x');
}

} // namespace
