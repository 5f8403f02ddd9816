// velnls key and velnls compare, and the keys of long texts.
#include <gtest/gtest.h>

#include <random>

#include "key_maker.hpp"
#include "process.hpp"

namespace velnls::tool {
namespace {

std::string keys(const std::vector<std::string> &options, const std::string &input) {
    std::vector<std::string> arguments = {"key"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Result result = runTool(arguments, input);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

TEST(Key, IsPrintedInHexadecimal) {
    EXPECT_EQ(keys({}, "Ab\n\xC3\xA9\n\n"), "4162\nC3A9\n\n");
    EXPECT_EQ(keys({"-i"}, "Ab\n\xC3\x89"), "6162\nC3A9\n");
}

TEST(Key, LeavesOutBlanksAtTheEnd) {
    EXPECT_EQ(keys({}, "a  \n   \n"), "61\n\n");
}

TEST(Key, OfANulByteIsZeroAndOne) {
    EXPECT_EQ(keys({}, BYTES("a\0b\n\0\n")), "61000162\n0001\n");
}

TEST(Key, RawEndsWithTwoZeroBytes) {
    EXPECT_EQ(keys({"--raw"}, BYTES("Ab\n\na\0b")), BYTES("Ab\0\0\0\0a\0\1b\0\0"));
}

TEST(Key, OfWeightsDiffersInCaseOnlyWhereCaseCounts) {
    const std::string exact = keys({"-p", "1252"}, "a\nA\n");
    const std::string folded = keys({"-p", "1252", "-i"}, "a\nA\n");
    EXPECT_EQ(exact.size(), 6u);
    EXPECT_NE(exact.substr(0, 2), exact.substr(3, 2));
    EXPECT_EQ(folded.substr(0, 2), folded.substr(3, 2));
}

// Cut small, the keys of pieces together must be the key that one call of the library makes.
TEST(KeyMaker, PiecesGiveTheKeyOfTheWhole) {
    const struct {
        const char *page;
        std::vector<std::string> characters;
    } kPages[] = {
        {"1252", {"a", "B", " ", "\xDF", "\xE9", "z"}},
        {"620-2533", {"\xE0", "\xE4", "\xA1", "\xCE", "\xD1", "\xD4", "\xE8", "\xE9", "a", " "}},
        {"SHIFT-JIS", {"\x83\x5C", "\x93\xFA", "\xB1", "a", "\\"}},
        {"EUCJIS", {"\xC6\xFC", "\x8E\xB1", "a", "B"}},
        {"UTF-8", {"a", "B", "\xC3\x89", "\xE6\x97\xA5", "\xE1\xBB\x86"}},
    };
    std::mt19937 random(11);
    for (const auto &item : kPages) {
        for (const bool ignoreCase : {false, true}) {
            OrderOptions options;
            options.page = item.page;
            options.ignoreCase = ignoreCase;
            const OrderedPage page(options);
            KeyMaker whole(page);
            KeyMaker pieces(page, 40);
            for (int round = 0; round < 300; ++round) {
                std::string text;
                for (std::size_t i = random() % 200; i != 0; --i) {
                    text += item.characters[random() % item.characters.size()];
                }
                std::string expected;
                std::string key;
                whole.append(text, expected);
                pieces.append(text, key);
                ASSERT_EQ(key, expected) << item.page << " " << text;
            }
        }
    }
}

Result compared(const std::vector<std::string> &arguments) {
    std::vector<std::string> all = {"compare"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all);
}

TEST(Compare, PrintsTheOrderAndExitsWith0ForEqualTexts) {
    const struct {
        std::vector<std::string> arguments;
        std::string out;
        int exitCode;
    } kCases[] = {
        {{"a", "b"}, "<\n", 1},
        {{"b", "a"}, ">\n", 1},
        {{"a", "a"}, "=\n", 0},
        {{"a", "a  "}, "=\n", 0},
        {{"", " "}, "=\n", 0},
        {{"B", "a"}, "<\n", 1},
        {{"-i", "B", "a"}, ">\n", 1},
        {{"-i", "Moon", "mOON"}, "=\n", 0},
        {{"-p", "1252", "B", "a"}, ">\n", 1},
        {{"-p", "1252", "f", "\xC3\xA9"}, ">\n", 1},
        {{"-p", "1252", "-i", "\xC3\x89", "\xC3\xA9"}, "=\n", 0},
        {{"--", "-a", "-b"}, "<\n", 1},
    };
    for (const auto &item : kCases) {
        const Result result = compared(item.arguments);
        EXPECT_EQ(result.out, item.out) << item.arguments.front();
        EXPECT_EQ(result.exitCode, item.exitCode) << item.arguments.front();
        EXPECT_EQ(result.err, "");
    }
}

TEST(Compare, RefusesWhatThePageCannotHold) {
    const Result missing = compared({"-p", "1252", "\xD0\x96", "a"});
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "velnls: the first text holds a character that 1252 does not have\n");
    EXPECT_EQ(compared({"a"}).exitCode, 2);
}

TEST(Compare, RefusesMalformedText) {
    NEEDS_POSIX("arguments of any bytes");
    const Result malformed = compared({"a", "\xFF"});
    EXPECT_EQ(malformed.exitCode, 2);
    EXPECT_EQ(malformed.err, "velnls: the second text is not UTF-8\n");
}

} // namespace
} // namespace velnls::tool
