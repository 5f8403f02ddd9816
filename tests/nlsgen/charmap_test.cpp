// The charmap reader: what it honours, what it skips, and that it names the file and line of what it cannot
// read.
#include "charmap.hpp"

#include "real_files.hpp"
#include "temporary_folder.hpp"

#include <gtest/gtest.h>

#include <zlib.h>

namespace velnls::nlsgen::test {
namespace {

class Charmap : public testing::Test {
protected:
    std::vector<CodeLine> read(const std::string &text) {
        return readCharmap(folder_.write("map", text)).lines;
    }
    // The problem's text without the folder's name.
    std::string problem(const std::string &text) {
        const std::string path = folder_.write("map", text);
        std::string message = problemOf([&] { readCharmap(path); });
        if (message.starts_with(path))
            message.erase(0, path.size() - 3);
        return message;
    }
    TemporaryFolder folder_;
};

constexpr const char *kHead = "<escape_char> /\n<comment_char> %\nCHARMAP\n";
constexpr const char *kEnd = "END CHARMAP\n";

TEST_F(Charmap, ReadsCodesOfOneAndTwoBytes) {
    const auto lines = read(std::string(kHead) + "<U20AC> /x80 EURO SIGN\n<U3042>\t/x82/xa0\n" + kEnd);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].code, 0x80U);
    EXPECT_EQ(lines[0].bytes, 1);
    EXPECT_EQ(lines[0].unicode, 0x20ACU);
    EXPECT_EQ(lines[0].line, 4);
    EXPECT_FALSE(lines[0].oneWay);
    EXPECT_EQ(lines[1].code, 0x82A0U);
    EXPECT_EQ(lines[1].bytes, 2);
}

TEST_F(Charmap, HonoursEscapeAndCommentCharacters) {
    const auto lines = read("<comment_char> #\n<escape_char> !\nCHARMAP\n# <U0041> !x41\n<U0042> !x42\n"
                            "END CHARMAP\n");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].code, 0x42U);
}

TEST_F(Charmap, WithoutSettingsTheStandardCharactersHold) {
    const auto lines = read("CHARMAP\n# comment\n<U0042> \\x42\nEND CHARMAP\n");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].unicode, 0x42U);
}

TEST_F(Charmap, ReadsDecimalAndOctalBytes) {
    const auto lines = read(std::string(kHead) + "<U0041> /d065\n<U0042> /102\n" + kEnd);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].code, 65U);
    EXPECT_EQ(lines[1].code, 0102U);
}

TEST_F(Charmap, ARangeCountsTheLastByteUp) {
    const auto lines = read(std::string(kHead) + "<U3400>..<U3402> /x81/xfd\n" + kEnd);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[2].code, 0x81FFU);
    EXPECT_EQ(lines[2].unicode, 0x3402U);
}

TEST_F(Charmap, TheIrreversibleMarkIsNoComment) {
    const auto lines =
        read(std::string(kHead) + "%IRREVERSIBLE%<U2252> /x87/x90\n%<U2252> /x87/x91\n" + kEnd);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].oneWay);
    EXPECT_EQ(lines[0].code, 0x8790U);
}

TEST_F(Charmap, CodesOfThreeBytesAreSkipped) {
    EXPECT_TRUE(read(std::string(kHead) + "<U4E02> /x8f/xb0/xa1\n" + kEnd).empty());
}

TEST_F(Charmap, CharactersBeyondTheBasicPlaneAreRead) {
    const auto lines = read(std::string(kHead) + "<U00020547> /x87/x40\n" + kEnd);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].unicode, 0x20547U);
}

TEST_F(Charmap, WhatFollowsTheBodyIsNotRead) {
    EXPECT_EQ(read(std::string(kHead) + "<U0041> /x41\n" + kEnd + "WIDTH\n<U3000>...<U8A70> 2\n").size(), 1U);
}

TEST_F(Charmap, CompressedFilesAreRead) {
    const std::string path = (folder_.path() / "map.gz").string();
    const std::string text = std::string(kHead) + "<U0041> /x41\n" + kEnd;
    gzFile file = gzopen(path.c_str(), "wb");
    gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
    gzclose(file);
    EXPECT_EQ(readCharmap(path).lines.size(), 1U);
}

TEST_F(Charmap, ACutCompressedFileIsAProblem) {
    const std::string whole = readText(NLSGEN_CHARMAPS "/CP1252.gz");
    const std::string path = folder_.write("cut.gz", std::string_view(whole).substr(0, whole.size() / 2));
    EXPECT_NE(problemOf([&] { readCharmap(path); }).find("cut.gz:"), std::string::npos);
}

TEST_F(Charmap, AMissingFileIsNamed) {
    EXPECT_EQ(problemOf([] { readCharmap("/nowhere/X.gz"); }), "/nowhere/X.gz: cannot be opened for reading");
}

TEST_F(Charmap, BadLinesAreNamedWithTheirNumber) {
    const auto bad = [this](const std::string &line) {
        return problem(std::string(kHead) + line + "\n" + kEnd);
    };
    EXPECT_EQ(bad("<U0041>"), "map:4: expected a character and the bytes of its code");
    EXPECT_EQ(bad("<A> /x41"), "map:4: expected a character as <Uxxxx>, found <A>");
    EXPECT_EQ(bad("<U110000> /x41"), "map:4: expected a character as <Uxxxx>, found <U110000>");
    EXPECT_EQ(bad("<U0041> x41"), "map:4: expected the escape character / before each byte, found x41");
    EXPECT_EQ(bad("<U0041> /x4g"), "map:4: expected a byte from 00 to FF, found /x4g");
    EXPECT_EQ(bad("<U0041> /d256"), "map:4: expected a byte from 00 to FF, found /d256");
    EXPECT_EQ(bad("<U0041> /x"), "map:4: expected a byte from 00 to FF, found /x");
    EXPECT_EQ(bad("<U0041>+<U0042> /x41"),
              "map:4: expected .. and a second character behind the first, found +<U0042>");
    EXPECT_EQ(bad("<U0042>..<U0041> /x41"), "map:4: expected the last character of the range, found <U0041>");
    EXPECT_EQ(bad("<U0041>..<U0045> /xfe"), "map:4: the last byte of the range counts beyond FF");
    EXPECT_EQ(problem("<escape_char>\nCHARMAP\n"), "map:1: expected one character behind <escape_char>");
    EXPECT_EQ(problem("<escape_char> /\n"), "map:1: expected a line CHARMAP, found the end of the file");
    EXPECT_EQ(problem(std::string(kHead) + "<U0041> /x41\n"),
              "map:4: expected a line END CHARMAP, found the end of the file");
}

} // namespace
} // namespace velnls::nlsgen::test
