// velnls words.
#include <gtest/gtest.h>

#include "process.hpp"

namespace velnls::tool {
namespace {

std::string words(const std::vector<std::string> &arguments, const std::string &input) {
    std::vector<std::string> all = {"words"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Result result = runTool(all, input);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
    return result.out;
}

TEST(Words, LettersAndDigitsOfEveryPageFormWords) {
    EXPECT_EQ(words({}, "Over the hills, 42 times\n"), "Over\nthe\nhills\n42\ntimes\n");
    EXPECT_EQ(words({"-p", "1252"}, "Gr\xFC\xDF Gott! \xABmot\xBB\n"), "Gr\xFC\xDF\nGott\nmot\n");
    EXPECT_EQ(words({"-p", "1251"}, "\xEC\xE8\xF0, \xEC\xE8\xF0\n"), "\xEC\xE8\xF0\n\xEC\xE8\xF0\n");
    EXPECT_EQ(words({}, "Gr\xC3\xBC\xC3\x9F Gott! \xC2\xABmot\xC2\xBB\n"), "Gr\xC3\xBC\xC3\x9F\nGott\nmot\n");
}

TEST(Words, AnApostropheJoinsLettersAndAPointOrCommaDigits) {
    for (const char *page : {"UTF-8", "1252"}) {
        EXPECT_EQ(words({"-p", page}, "it's 'so' dogs' 3.14 1,000. end.Next\n"),
                  "it's\nso\ndogs\n3.14\n1,000\nend\nNext\n")
            << page;
    }
}

TEST(Words, CharactersOfThreeBytesAreWordsByThemselves) {
    EXPECT_EQ(words({}, "\xE6\x97\xA5\xE6\x9C\xAC"
                        "abc\xF0\x9F\x98\x80"
                        "d\n"),
              "\xE6\x97\xA5\n\xE6\x9C\xAC\nabc\n\xF0\x9F\x98\x80\nd\n");
}

TEST(Words, CharactersOfTwoBytesInADoubleBytePageAreWordsByThemselves) {
    EXPECT_EQ(words({"-p", "SHIFT-JIS"}, "\x93\xFA\x96{abc\n"), "\x93\xFA\n\x96{\nabc\n");
}

TEST(Words, PunctuationBeyondAsciiSeparates) {
    EXPECT_EQ(words({}, "so\xE2\x80\x94yes\xE2\x80\xA6 \xE3\x80\x81\n"), "so\nyes\n");
    EXPECT_EQ(words({"-p", "SHIFT-JIS"}, "\x93\xFA\x81\x41\x96{\x81\x42\n"), "\x93\xFA\n\x96{\n");
}

TEST(Words, NulBytesAndEmptyLinesHoldNoWords) {
    EXPECT_EQ(words({}, BYTES("a\0b\n\n \n\0\nc")), "a\nb\nc\n");
    EXPECT_EQ(words({}, ""), "");
}

TEST(Words, ALeadByteAtTheEndStaysWithinTheLine) {
    EXPECT_EQ(words({}, "ab \xE6\n"), "ab\n\xE6\n");
    EXPECT_EQ(words({"-p", "SHIFT-JIS"}, "ab \x93"), "ab\n\x93\n");
}

TEST(Words, ALongWordIsPrintedWhole) {
    for (const char *page : {"UTF-8", "1252", "SHIFT-JIS"}) {
        const std::string word(1000, 'x');
        EXPECT_EQ(words({"-p", page}, "short " + word + " next\n"), "short\n" + word + "\nnext\n") << page;
    }
}

TEST(Words, EbcdicTextHasItsOwnLettersAndDigits) {
    EXPECT_EQ(words({"-p", "IBM037"}, "\xC1\x82\x6B\x40\xF4\xF2\x25"), "\xC1\x82\x25\xF4\xF2\x25");
}

TEST(Words, RefusesTextInWideUnits) {
    const Result result = runTool({"words", "-p", "UTF-16"}, BYTES("a\0"));
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err,
              "velnls: text in UTF-16 cannot be processed as it stands; convert it to UTF-8 first\n");
}

} // namespace
} // namespace velnls::tool
