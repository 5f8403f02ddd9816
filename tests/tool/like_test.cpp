// velnls like: what is printed and which exit code it has.
#include <gtest/gtest.h>

#include "process.hpp"

namespace velnls::tool {
namespace {

Result like(const std::vector<std::string> &arguments, const std::string &input) {
    std::vector<std::string> all = {"like"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, input);
}

TEST(Like, PrintsTheLinesThatMatch) {
    const Result result = like({"%oo_"}, "moon\nmood\nmooing\nxoox\nsun\n");
    EXPECT_EQ(result.out, "moon\nmood\nxoox\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(Like, ExitsWith1WhenNothingMatches) {
    const Result result = like({"%x%"}, "moon\nsun\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(like({"%x%"}, "").exitCode, 1);
}

TEST(Like, AWildcardTakesAWholeCharacter) {
    EXPECT_EQ(like({"a_c"}, "a\xC3\xA9\x63\na\xE6\x97\xA5\x63\nac\n").out,
              "a\xC3\xA9\x63\na\xE6\x97\xA5\x63\n");
    EXPECT_EQ(like({"-p", "SHIFT-JIS", "a_c"}, "a\x83\x5Cz\na\x83\x5C\x63\n").out, "a\x83\x5C\x63\n");
}

TEST(Like, ThePatternIsUtf8WhateverThePage) {
    EXPECT_EQ(like({"-p", "1252", "%\xC3\xA9"}, "caf\xE9\ncafe\n").out, "caf\xE9\n");
    EXPECT_EQ(like({"-p", "IBM037", "%b"}, "\x81\x82\x25\x82\x81\x25").out, "\x81\x82\x25");
}

TEST(Like, IgnoresCaseOnRequest) {
    EXPECT_EQ(like({"mo%"}, "Moon\nmoon\n").out, "moon\n");
    EXPECT_EQ(like({"-i", "mo%"}, "Moon\nmoon\n").out, "Moon\nmoon\n");
}

TEST(Like, AnEscapedWildcardIsALiteral) {
    EXPECT_EQ(like({"--escape", "!", "1!%"}, "1%\n10\n").out, "1%\n");
    EXPECT_EQ(like({"--escape", "!", "a!!b"}, "a!b\na!!b\n").out, "a!b\n");
}

TEST(Like, AMisplacedEscapeCharacterIsRefusedBeforeAnythingIsMatched) {
    for (const char *pattern : {"a!b", "a!", "x%!b", "!!!"}) {
        const Result result = like({"--escape", "!", pattern}, "q\n");
        EXPECT_EQ(result.exitCode, 2) << pattern;
        EXPECT_EQ(result.err,
                  "velnls: in the pattern, the escape character stands before none of _, % and itself\n");
    }
    EXPECT_EQ(like({"--escape", "ab", "x"}, "q\n").err,
              "velnls: the escape character must be one character\n");
}

TEST(Like, InvertsAndCounts) {
    EXPECT_EQ(like({"-v", "m%"}, "moon\nsun\n").out, "sun\n");
    EXPECT_EQ(like({"-c", "%n"}, "moon\nsun\nsea\n").out, "2\n");
    const Result none = like({"-c", "x"}, "moon\n");
    EXPECT_EQ(none.out, "0\n");
    EXPECT_EQ(none.exitCode, 1);
}

TEST(Like, ALineWithANulIsNamedAndNotMatched) {
    const Folder folder;
    const std::string file = folder.write("lines", BYTES("a\na\0b\nab\n"));
    const Result result = like({"a%", file}, "");
    EXPECT_EQ(result.out, "a\nab\n");
    EXPECT_EQ(result.err, file + ":2: the line holds a NUL byte, not matched\n");
    EXPECT_EQ(result.exitCode, 2);
}

TEST(Like, ReadsLongLines) {
    const std::string line = repeat("abc ", 500000);
    EXPECT_EQ(like({"%c x%", "-"}, line + "x\n" + line + "y\n").out, line + "x\n");
}

} // namespace
} // namespace velnls::tool
