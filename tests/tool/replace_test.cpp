// velnls replace.
#include <gtest/gtest.h>

#include <random>

#include "process.hpp"
#include "replacer.hpp"

namespace velnls::tool {
namespace {

Result replaced(const std::vector<std::string> &arguments, const std::string &input) {
    std::vector<std::string> all = {"replace"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, input);
}

TEST(Replace, EveryOccurrence) {
    const Result result = replaced({"a", "xy"}, "banana\n\nsun\na");
    EXPECT_EQ(result.out, "bxynxynxy\n\nsun\nxy");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(Replace, OccurrencesDoNotOverlap) {
    EXPECT_EQ(replaced({"aa", "b"}, "aaaaa\n").out, "bba\n");
    EXPECT_EQ(replaced({"ab", ""}, "aabb\n").out, "ab\n");
}

TEST(Replace, IgnoresCaseOnRequest) {
    EXPECT_EQ(replaced({"moon", "sun"}, "Moon moon\n").out, "Moon sun\n");
    EXPECT_EQ(replaced({"-i", "moon", "sun"}, "Moon moon\n").out, "sun sun\n");
    EXPECT_EQ(replaced({"-i", "\xC3\xA9", "e"}, "\xC3\x89t\xC3\xA9\n").out, "ete\n");
}

TEST(Replace, WordsAreUtf8WhateverThePage) {
    EXPECT_EQ(replaced({"-p", "1252", "\xC3\xA9", "\xC3\xA8"}, "\xE9t\xE9\n").out, "\xE8t\xE8\n");
}

TEST(Replace, ATrailByteIsNoOccurrence) {
    EXPECT_EQ(replaced({"-p", "SHIFT-JIS", "\\", "/"}, "\x83\x5C\\\n").out, "\x83\x5C/\n");
}

TEST(Replace, NulBytesAreKept) {
    EXPECT_EQ(replaced({"a", "b"}, BYTES("a\0a\0\0ca\n\0a")).out, BYTES("b\0b\0\0cb\n\0b"));
}

TEST(Replace, CountsOnStandardErrorOnRequest) {
    const Result result = replaced({"--count", "a", "b"}, "banana\na\n");
    EXPECT_EQ(result.out, "bbnbnb\nb\n");
    EXPECT_EQ(result.err, "velnls: 4 replaced\n");
}

TEST(Replace, WritesInPlace) {
    const Folder folder;
    const std::string file = folder.write("file", "aba");
    EXPECT_EQ(replaced({"b", "c", file, "-o", file}, "").exitCode, 0);
    EXPECT_EQ(readFile(file), "aca");
}

TEST(Replace, MalformedTextEndsItWithItsPlace) {
    const Folder folder;
    const std::string file = folder.write("file", "a\nbca\xC3(\n");
    const Result result = replaced({"a", "x", file}, "");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out, "x\n");
    EXPECT_EQ(result.err, file + ":2:4: byte 0xC3: expected a continuation byte 0x80 to 0xBF, found 0x28\n");
    EXPECT_EQ(replaced({"a", "x", file, "-o", file}, "").exitCode, 3);
    EXPECT_EQ(readFile(file), "a\nbca\xC3(\n");
}

TEST(Replace, RefusesPatternsThatCannotStandInALine) {
    EXPECT_EQ(replaced({"", "x"}, "a").err, "velnls: the pattern is empty\n");
    const Result result = replaced({"a\nb", "x"}, "a\nb");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: the pattern holds a line feed; text is replaced line by line\n");
}

// A small window must not change the result. The twin looks for bytes, which is the same in these pages.
TEST(Replacer, WindowsDoNotSplitOccurrences) {
    std::mt19937 random(5);
    for (const char *name : {"1252", "UTF-8"}) {
        OrderOptions options;
        options.page = name;
        const OrderedPage page(options);
        for (int round = 0; round < 500; ++round) {
            const auto word = [&](std::size_t size) {
                std::string text;
                for (std::size_t i = 0; i < size; ++i) {
                    text += "ab"[random() % 2];
                }
                return text;
            };
            const std::string pattern = word(1 + random() % 4);
            const std::string text = word(random() % 300);
            std::string expected;
            std::size_t count = 0;
            std::size_t at = 0;
            for (std::size_t next = text.find(pattern); next != std::string::npos;
                 next = text.find(pattern, at)) {
                expected += text.substr(at, next - at) + "-";
                at = next + pattern.size();
                ++count;
            }
            expected += text.substr(at);
            Replacer replacer(page, pattern, "-", 8);
            std::string result;
            replacer.append(text, result);
            ASSERT_EQ(result, expected) << pattern << " in " << text;
            ASSERT_EQ(replacer.count(), count);
        }
    }
}

TEST(Replacer, LongLinesTakeTimeByTheirLength) {
    const Result result = replaced({"a", "bc"}, repeat("a", 4000000) + "\n");
    EXPECT_EQ(result.out, repeat("bc", 4000000) + "\n");
}

} // namespace
} // namespace velnls::tool
