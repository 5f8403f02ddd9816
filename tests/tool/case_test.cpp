// velnls case.
#include <gtest/gtest.h>

#include "process.hpp"

namespace velnls::tool {
namespace {

Result mapped(const std::vector<std::string> &arguments, const std::string &input) {
    std::vector<std::string> all = {"case"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, input);
}

TEST(CaseCommand, UpperAndLower) {
    const Result upper = mapped({"upper"}, "Moon \xC3\xA9 \xD0\xB6\n");
    EXPECT_EQ(upper.out, "MOON \xC3\x89 \xD0\x96\n");
    EXPECT_EQ(upper.err, "");
    EXPECT_EQ(upper.exitCode, 0);
    EXPECT_EQ(mapped({"lower"}, "MOON \xC3\x89").out, "moon \xC3\xA9");
    EXPECT_EQ(mapped({"upper", "-p", "1252"}, "\xE9t\xE9").out, "\xC9T\xC9");
    EXPECT_EQ(mapped({"upper"}, "").out, "");
}

TEST(CaseCommand, TheTableDecides) {
    EXPECT_EQ(mapped({"upper", "--table", "turkish"}, "i\xC4\xB1").out, "\xC4\xB0I");
    EXPECT_EQ(mapped({"upper", "-p", "1254", "--table", "turkish"}, "i\xFD").out, "\xDDI");
    EXPECT_EQ(mapped({"upper", "-p", "1254"}, "i").out, "I");
}

TEST(CaseCommand, NulBytesAndTheLongestCharactersAreKept) {
    EXPECT_EQ(mapped({"upper"}, BYTES("a\0b\xF0\x9F\x98\x80\x63\0\0")).out,
              BYTES("A\0B\xF0\x9F\x98\x80\x43\0\0"));
    EXPECT_EQ(mapped({"upper", "-p", "EUCJIS"}, "\x8F\xA2\xAF\x61\x62").out, "\x8F\xA2\xAF\x41\x42");
    EXPECT_EQ(mapped({"upper", "-p", "GB18030"}, "a\x81\x30\x81\x30z").out, "A\x81\x30\x81\x30Z");
}

TEST(CaseCommand, TrailBytesAreNoLetters) {
    EXPECT_EQ(mapped({"upper", "-p", "SHIFT-JIS"}, "\x83\x61\x61").out, "\x83\x61\x41");
}

TEST(CaseCommand, CharactersAcrossTheEdgesOfBlocksAreMapped) {
    EXPECT_EQ(mapped({"upper"}, repeat("a\xC3\xA9", 70000)).out, repeat("A\xC3\x89", 70000));
}

TEST(CaseCommand, MalformedTextEndsItWithItsPlace) {
    const Result result = mapped({"upper"}, "ab\nc\xFF"
                                            "d");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out, "AB\nC");
    EXPECT_EQ(result.err, "(standard input):2:2: byte 0xFF: a byte that UTF-8 never has, expected the first "
                          "byte of a character\n");
}

TEST(CaseCommand, WritesInPlace) {
    const Folder folder;
    const std::string file = folder.write("file", "abc");
    EXPECT_EQ(mapped({"upper", file, "-o", file}, "").exitCode, 0);
    EXPECT_EQ(readFile(file), "ABC");
}

TEST(CaseCommand, UnknownWordsAndTablesAreRefused) {
    EXPECT_EQ(mapped({"title"}, "a").exitCode, 2);
    const Result result = mapped({"upper", "-p", "1252", "--table", "turkish"}, "a");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: 1252 has no case table 'turkish'; it has basic\n");
}

} // namespace
} // namespace velnls::tool
