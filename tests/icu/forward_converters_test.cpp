// The converter functions of the forwarding library beside ICU's own: the same answers, whatever was called
// before, from any number of converters and threads.
#include <gtest/gtest.h>

#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <unistd.h>

#include <unicode/ucnv.h>

extern "C" {
#include "utf8.h"
}

namespace {

constexpr char kLibrary[] = VELNLS_ICU_HOME "/bin/icuuc-qmx.so";

// What velnls looks up.
struct Functions {
    explicit Functions(const char *path) : library(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(library, nullptr) << dlerror();
        find("ucnv_open", open);
        find("ucnv_close", close);
        find("ucnv_toUChars", toUChars);
        find("ucnv_fromUChars", fromUChars);
        find("ucnv_toUnicode", toUnicode);
        find("ucnv_reset", reset);
        find("ucnv_resetToUnicode", resetToUnicode);
    }
    template <typename Function>
    void find(const char *name, Function &function) const {
        function =
            reinterpret_cast<Function>(dlsym(library, (std::string(name) + VELNLS_ICU_SUFFIX).c_str()));
        EXPECT_NE(function, nullptr) << name;
    }

    void *library;
    decltype(&::ucnv_open) open = nullptr;
    decltype(&::ucnv_close) close = nullptr;
    decltype(&::ucnv_toUChars) toUChars = nullptr;
    decltype(&::ucnv_fromUChars) fromUChars = nullptr;
    decltype(&::ucnv_toUnicode) toUnicode = nullptr;
    decltype(&::ucnv_reset) reset = nullptr;
    decltype(&::ucnv_resetToUnicode) resetToUnicode = nullptr;
};
const Functions &forwarded() {
    static const Functions functions(kLibrary);
    return functions;
}

using Converter = std::unique_ptr<UConverter, void (*)(UConverter *)>;
Converter openForwarded(const char *name = "utf8") {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(forwarded().open(name, &error), forwarded().close);
    EXPECT_TRUE(converter != nullptr && error == U_ZERO_ERROR);
    return converter;
}
Converter openDirectly(const char *name = "utf8") {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error), ucnv_close);
    EXPECT_TRUE(U_SUCCESS(error));
    return converter;
}

// An answer, and as much of the buffer as it speaks of.
struct Answer {
    int32_t count;
    UErrorCode error;
    std::u16string units;

    bool operator==(const Answer &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Answer &answer) {
    out << answer.count << " error " << answer.error << ":" << std::hex;
    for (const char16_t unit : answer.units)
        out << ' ' << static_cast<unsigned>(unit);
    return out << std::dec;
}

constexpr char16_t kUntouched = 0xEEEE;

Answer toUChars(decltype(&::ucnv_toUChars) function, UConverter *converter, const char *text, int32_t length,
                int32_t capacity, UErrorCode before = U_ZERO_ERROR) {
    // Exactly as much as it is told of, so that a sanitizer sees what goes further.
    const std::unique_ptr<char16_t[]> room(new char16_t[static_cast<std::size_t>(capacity)]);
    std::fill_n(room.get(), capacity, kUntouched);
    Answer answer{0, before, {}};
    answer.count = function(converter, room.get(), capacity, text, length, &answer.error);
    const int32_t written = std::min(answer.count + 1, capacity); // with the terminator
    answer.units.assign(room.get(), room.get() + std::max(written, 0));
    return answer;
}

class ForwardedConverter : public testing::Test {
protected:
    // The same text of the same converters, in buffers of several sizes.
    void expectSame(const std::string &text) {
        const std::unique_ptr<char[]> exact(new char[text.size()]);
        std::memcpy(exact.get(), text.data(), text.size());
        const auto length = static_cast<int32_t>(text.size());
        for (const int32_t capacity : {length, length + 1, length + 40, length / 2, length - 1, 0}) {
            if (capacity < 0)
                continue;
            const Answer expected = toUChars(ucnv_toUChars, direct_.get(), exact.get(), length, capacity);
            const Converter converter = openForwarded();
            // Twice: what the first leaves behind is no matter to the second.
            for (int i = 0; i < 2; ++i)
                ASSERT_EQ(toUChars(forwarded().toUChars, converter.get(), exact.get(), length, capacity),
                          expected)
                    << testing::PrintToString(text) << " capacity " << capacity;
        }
        ASSERT_EQ(toUChars(forwarded().toUChars, openForwarded().get(), text.c_str(), -1, length + 5),
                  toUChars(ucnv_toUChars, direct_.get(), text.c_str(), -1, length + 5));
        expectNarrow(exact.get(), length);
    }
    // What processors without AVX-512 run: all of a well-formed text, or nothing.
    void expectNarrow(const char *text, int32_t length) {
        const std::unique_ptr<char16_t[]> room(new char16_t[static_cast<std::size_t>(length)]);
        const auto size = static_cast<std::size_t>(length);
        const std::ptrdiff_t count =
            decodeUtf8(reinterpret_cast<const unsigned char *>(text), size, room.get(), size);
        const Answer expected = toUChars(ucnv_toUChars, direct_.get(), text, length, length + 1);
        if (count >= 0)
            ASSERT_EQ(std::u16string(room.get(), room.get() + count),
                      expected.units.substr(0, expected.units.size() - 1));
        else
            ASSERT_NE(expected.units.find(u'\uFFFD'), std::u16string::npos);
    }

    Converter direct_ = openDirectly();
};

std::string encoded(std::uint32_t point) {
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    if (point < 0x80)
        return {byte(point)};
    if (point < 0x800)
        return {byte(0xC0 | point >> 6), byte(0x80 | (point & 0x3F))};
    if (point < 0x10000)
        return {byte(0xE0 | point >> 12), byte(0x80 | (point >> 6 & 0x3F)), byte(0x80 | (point & 0x3F))};
    return {byte(0xF0 | point >> 18), byte(0x80 | (point >> 12 & 0x3F)), byte(0x80 | (point >> 6 & 0x3F)),
            byte(0x80 | (point & 0x3F))};
}

TEST_F(ForwardedConverter, EveryCodePointIsDecodedAsByIcuSurrogatesAndOverlongFormsToo) {
    std::string run;
    for (std::uint32_t point = 0; point < 0x120000; ++point) {
        run += encoded(point);
        if (point % 64 == 63) {
            expectSame(run);
            run.clear();
        }
        if (HasFatalFailure())
            return;
    }
    for (std::uint32_t point = 0xD7F0; point < 0xE010; ++point)
        expectSame(encoded(point));
    for (unsigned lead = 0xC0; lead <= 0xFF; ++lead)
        for (unsigned second = 0x70; second <= 0xCF; ++second)
            for (const char *const rest : {"", "\x80", "\xBF", "\x80\x80", "\xBF\xBF", "a",
                                           "\xBF"
                                           "a"})
                expectSame(std::string{static_cast<char>(lead), static_cast<char>(second)} + rest);
}

TEST_F(ForwardedConverter, TextsOfEveryLengthAreDecodedAsByIcuBrokenOnesToo) {
    std::mt19937 random(20);
    constexpr std::uint32_t kHighest[] = {0x7F, 0x7F, 0x7F, 0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
    for (int i = 0; i < 12000; ++i) {
        const std::size_t wanted = random() % 70;
        // From all ASCII to none of it.
        const std::size_t kinds = 1 + random() % std::size(kHighest);
        std::string text;
        while (text.size() < wanted)
            text += encoded(static_cast<std::uint32_t>(random() % (kHighest[random() % kinds] + 1)));
        if (i % 3 == 0 && !text.empty())
            text[random() % text.size()] = static_cast<char>(random());
        if (i % 5 == 0)
            text.resize(text.size() - std::min<std::size_t>(text.size(), random() % 4));
        if (i % 7 == 0)
            text.insert(0, "\xEF\xBB\xBF"); // a byte order mark is a character
        expectSame(text);
        if (HasFatalFailure())
            return;
    }
}

TEST_F(ForwardedConverter, ArgumentsThatIcuRefusesAreRefused) {
    const Converter converter = openForwarded();
    char16_t room[8];
    struct Sizes {
        int32_t length;
        int32_t capacity;
    };
    for (const Sizes sizes : {Sizes{-2, 8}, Sizes{3, -1}, Sizes{3, 8}}) {
        for (const UErrorCode before : {U_ZERO_ERROR, U_USING_DEFAULT_WARNING, U_MEMORY_ALLOCATION_ERROR}) {
            const auto ask = [&](auto function, UConverter *of, char16_t *target, const char *text) {
                UErrorCode error = before;
                const int32_t count = function(of, target, sizes.capacity, text, sizes.length, &error);
                return std::pair(count, error);
            };
            for (char16_t *const target : {room, static_cast<char16_t *>(nullptr)})
                for (const char *const text : {"abc", static_cast<const char *>(nullptr)})
                    EXPECT_EQ(ask(forwarded().toUChars, converter.get(), target, text),
                              ask(ucnv_toUChars, direct_.get(), target, text));
            EXPECT_EQ(ask(forwarded().toUChars, nullptr, room, "abc"),
                      ask(ucnv_toUChars, nullptr, room, "abc"));
        }
    }
    EXPECT_EQ(forwarded().toUChars(converter.get(), room, 8, "abc", 3, nullptr), 0);
    EXPECT_EQ(forwarded().open("utf8", nullptr), nullptr);
    UErrorCode error = U_MEMORY_ALLOCATION_ERROR;
    EXPECT_EQ(forwarded().open("utf8", &error), nullptr);
    error = U_ZERO_ERROR;
    EXPECT_EQ(forwarded().open("no such page", &error), nullptr);
    EXPECT_EQ(error, U_FILE_ACCESS_ERROR);
    forwarded().close(nullptr);
}

// What becomes of the bytes, behind those that the converter already holds.
std::u16string feed(UConverter *converter, std::string_view bytes) {
    const char *source = bytes.data();
    const char *const end = source + bytes.size();
    char16_t room[4];
    char16_t *target = room;
    UErrorCode error = U_ZERO_ERROR;
    forwarded().toUnicode(converter, &target, room + 4, &source, end, nullptr, 0, &error);
    EXPECT_EQ(error, U_ZERO_ERROR);
    EXPECT_EQ(source, end);
    return {room, target};
}

// Half a character stays in the converter until something resets it.
void feedHalf(UConverter *converter) {
    EXPECT_EQ(feed(converter, "\xE6\x97"), u"");
}

std::u16string feedRest(UConverter *converter) {
    return feed(converter, "\xA5");
}

TEST_F(ForwardedConverter, StateLastsUntilItIsReset) {
    Converter converter = openForwarded();
    feedHalf(converter.get());
    EXPECT_EQ(feedRest(converter.get()), u"\u65E5");
    feedHalf(converter.get());
    forwarded().resetToUnicode(converter.get());
    EXPECT_EQ(feedRest(converter.get()), u"\uFFFD");
    forwarded().reset(converter.get());
    feedHalf(converter.get());
    // A whole text resets before it and after it.
    EXPECT_EQ(toUChars(forwarded().toUChars, converter.get(), "abc", 3, 8).units,
              std::u16string(u"abc\0", 4));
    EXPECT_EQ(feedRest(converter.get()), u"\uFFFD");
}

TEST_F(ForwardedConverter, StateEndsWithClosing) {
    for (int i = 0; i < 40; ++i) {
        Converter converter = openForwarded();
        EXPECT_EQ(feedRest(converter.get()), u"\uFFFD");
        feedHalf(converter.get());
    }
}

TEST_F(ForwardedConverter, AnyNumberMayBeOpenAtOnce) {
    std::vector<Converter> all;
    for (int i = 0; i < 100; ++i) {
        all.push_back(openForwarded());
        feedHalf(all.back().get());
    }
    for (const Converter &converter : all)
        EXPECT_EQ(feedRest(converter.get()), u"\u65E5") << "each has a state of its own";
    for (const Converter &converter : all)
        EXPECT_EQ(toUChars(forwarded().toUChars, converter.get(), "a\xC3\xA4", 3, 8).units,
                  std::u16string(u"a\u00E4\0", 3));
}

TEST_F(ForwardedConverter, OtherPagesAreIcus) {
    const Converter converter = openForwarded("gb18030");
    char out[8] = {};
    UErrorCode error = U_ZERO_ERROR;
    EXPECT_EQ(forwarded().fromUChars(converter.get(), out, sizeof out, u"\u4E2D", 1, &error), 2);
    EXPECT_STREQ(out, "\xD6\xD0");
    EXPECT_EQ(toUChars(forwarded().toUChars, converter.get(), "\xD6\xD0", 2, 8).units,
              std::u16string(u"\u4E2D\0", 2));
}

TEST_F(ForwardedConverter, Utf8IsWrittenToo) {
    const Converter converter = openForwarded();
    char out[8] = {};
    UErrorCode error = U_ZERO_ERROR;
    EXPECT_EQ(forwarded().fromUChars(converter.get(), out, sizeof out, u"\u4E2D", 1, &error), 3);
    EXPECT_STREQ(out, "\xE4\xB8\xAD");
}

TEST_F(ForwardedConverter, ThreadsHaveEachTheirOwn) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(12);
    for (std::size_t t = 0; t < wrong.size(); ++t)
        threads.emplace_back([&wrong, t] {
            const std::string text = std::string(t, 'x') + "\xC3\xA4";
            for (int i = 0; i < 3000; ++i) {
                UErrorCode error = U_ZERO_ERROR;
                UConverter *const outer = forwarded().open("utf8", &error);
                UConverter *const inner = forwarded().open("utf8", &error);
                char16_t room[40];
                const auto length = static_cast<int32_t>(text.size());
                const int32_t count =
                    forwarded().toUChars(i % 2 != 0 ? outer : inner, room, 40, text.data(), length, &error);
                char out[80];
                const int32_t back =
                    forwarded().fromUChars(i % 3 != 0 ? outer : inner, out, sizeof out, room, count, &error);
                wrong[t] += U_FAILURE(error) || outer == inner || back != length ||
                            std::memcmp(out, text.data(), text.size()) != 0;
                forwarded().close(outer);
                forwarded().close(inner);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(wrong.size()));
}

// Leak checkers see what an unloaded library forgot.
TEST_F(ForwardedConverter, TheLibraryCanBeUnloaded) {
    const std::filesystem::path copy =
        std::filesystem::temp_directory_path() / ("velnls-unload-" + std::to_string(getpid()) + ".so");
    std::filesystem::copy_file(kLibrary, copy);
    {
        const Functions own(copy.c_str());
        UErrorCode error = U_ZERO_ERROR;
        UConverter *const converter = own.open("utf8", &error);
        UConverter *const other = own.open("utf8", &error);
        own.close(converter);
        own.close(other);
        EXPECT_EQ(dlclose(own.library), 0);
    }
    EXPECT_EQ(dlopen(copy.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr) << "it is gone";
    std::filesystem::remove(copy);
}

} // namespace
