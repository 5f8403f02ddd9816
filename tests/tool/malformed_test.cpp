// Malformed input: exit code 3, what was converted before it, and a message with the place of the first
// fault.
#include <gtest/gtest.h>

#include <ostream>

#include "process.hpp"

namespace velnls::tool {
namespace {

struct Case {
    const char *name; // the rule
    const char *page;
    std::string input;
    std::string out; // in UTF-8
    std::string message;
};

// Names the test; the default would print its bytes.
void PrintTo(const Case &malformed, std::ostream *out) {
    *out << malformed.name;
}

class Malformed : public testing::TestWithParam<Case> {};

TEST_P(Malformed, StopsAtTheFirstFault) {
    const Folder folder;
    const std::string file = folder.write("text", GetParam().input);
    // UTF-8 to itself checks and copies, so that every page shows its text in UTF-8.
    const Result result = runTool({"convert", "-f", GetParam().page, "-t", "UTF-8", file});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out, GetParam().out);
    EXPECT_EQ(result.err, file + ":" + GetParam().message + "\n");
}

const std::string kRest = "expected the rest of the character, found the end of the input";
const std::string kFirst = ", expected the first byte of a character";
const std::string kSjisTrail = "expected a trail byte 0x40 to 0x7E, 0x80 to 0xFC";

const Case kCases[] = {
    {"Utf8LoneContinuationByte", "UTF-8", "ab\n\x80", "ab\n",
     "2:1: byte 0x80: a continuation byte without a lead byte" + kFirst},
    {"Utf8LoneContinuationBehindACharacter", "UTF-8", "\xC3\xA9\xBF", "\xC3\xA9",
     "1:2: byte 0xBF: a continuation byte without a lead byte" + kFirst},
    {"Utf8ByteC0", "UTF-8", "a\xC0\x80", "a", "1:2: byte 0xC0: a byte that UTF-8 never has" + kFirst},
    {"Utf8ByteC1", "UTF-8", "\xC1\xBF", "", "1:1: byte 0xC1: a byte that UTF-8 never has" + kFirst},
    {"Utf8ByteF5", "UTF-8", "\xF5\x80\x80\x80", "", "1:1: byte 0xF5: a byte that UTF-8 never has" + kFirst},
    {"Utf8ByteFF", "UTF-8", "a\n\n\xFF", "a\n\n", "3:1: byte 0xFF: a byte that UTF-8 never has" + kFirst},
    {"Utf8SecondByteOfTwo", "UTF-8", "x\xC3(", "x",
     "1:2: byte 0xC3: expected a continuation byte 0x80 to 0xBF, found 0x28"},
    {"Utf8ThirdByteOfThree", "UTF-8", "\xE6\x97(", "",
     "1:1: byte 0xE6 0x97: expected a continuation byte 0x80 to 0xBF, found 0x28"},
    {"Utf8FourthByteOfFour", "UTF-8", "\xF0\x9F\x98\xC3\xA9", "",
     "1:1: byte 0xF0 0x9F 0x98: expected a continuation byte 0x80 to 0xBF, found 0xC3"},
    {"Utf8OverlongThreeBytes", "UTF-8", "\xE0\x9F\xBF", "",
     "1:1: byte 0xE0: expected a continuation byte 0xA0 to 0xBF, found 0x9F"},
    {"Utf8OverlongFourBytes", "UTF-8", "\xF0\x8F\xBF\xBF", "",
     "1:1: byte 0xF0: expected a continuation byte 0x90 to 0xBF, found 0x8F"},
    {"Utf8Surrogate", "UTF-8", "\xED\xA0\x80", "",
     "1:1: byte 0xED: expected a continuation byte 0x80 to 0x9F, found 0xA0"},
    {"Utf8AboveTheLastCodePoint", "UTF-8", "\xF4\x90\x80\x80", "",
     "1:1: byte 0xF4: expected a continuation byte 0x80 to 0x8F, found 0x90"},
    {"Utf8CutBehindTheLeadByte", "UTF-8", "ab\xC3", "ab", "1:3: byte 0xC3: " + kRest},
    {"Utf8CutBehindTheThirdByte", "UTF-8", "\xF0\x9F\x98", "", "1:1: byte 0xF0 0x9F 0x98: " + kRest},
    {"Utf8NulInsideACharacter", "UTF-8", BYTES("\xC3\0a"), "",
     "1:1: byte 0xC3: expected a continuation byte 0x80 to 0xBF, found 0x00"},
    {"Utf8FarIntoTheText", "UTF-8", repeat("0123456789\n", 60000) + "\xC3\xA9\xFF",
     repeat("0123456789\n", 60000) + "\xC3\xA9", "60001:2: byte 0xFF: a byte that UTF-8 never has" + kFirst},
    {"Utf16LowSurrogateAlone", "UTF-16", BYTES("a\0\n\0b\0\0\xDC"), "a\nb",
     "2:2: byte 0x00 0xDC: low surrogate 0xDC00, expected a high surrogate before it"},
    {"Utf16HighSurrogateBeforeALetter", "UTF-16", BYTES("\x3D\xD8z\0"), "",
     "1:1: byte 0x3D 0xD8: high surrogate 0xD83D, expected a low surrogate behind it"},
    {"Utf16HighSurrogateTwice", "UTF-16BE", BYTES("\xD8\x3D\xD8\x3D\xDE\0"), "",
     "1:1: byte 0xD8 0x3D: high surrogate 0xD83D, expected a low surrogate behind it"},
    {"Utf16HighSurrogateAtTheEnd", "UTF-16", BYTES("a\0\x3D\xD8"), "a", "1:2: byte 0x3D 0xD8: " + kRest},
    {"Utf16OddByteAtTheEnd", "UTF-16BE", BYTES("\0a\0"), "a", "1:2: byte 0x00: " + kRest},
    {"Ucs2LowSurrogateAlone", "UCS2", BYTES("\xFF\xDF"), "",
     "1:1: byte 0xFF 0xDF: low surrogate 0xDFFF, expected a high surrogate before it"},
    {"Utf32AboveTheLastCodePoint", "UTF-32", BYTES("a\0\0\0\0\0\x11\0"), "a",
     "1:2: byte 0x00 0x00 0x11 0x00: value 0x00110000, expected at most 0x10FFFF"},
    {"Utf32Surrogate", "UTF-32BE", BYTES("\0\0\xD8\0"), "",
     "1:1: byte 0x00 0x00 0xD8 0x00: surrogate 0xD800, expected a character"},
    {"Utf32CutUnit", "UTF-32", BYTES("a\0\0\0b\0\0"), "a", "1:2: byte 0x62 0x00 0x00: " + kRest},
    {"ShiftJisLeadByteBeforeAControl", "SHIFT-JIS", "\x93\xFA\n\x93\n", "\xE6\x97\xA5\n",
     "2:1: byte 0x93: " + kSjisTrail + ", found 0x0A"},
    {"ShiftJisLeadByteBeforeDelete", "SHIFT-JIS", "\x93\x7F", "",
     "1:1: byte 0x93: " + kSjisTrail + ", found 0x7F"},
    {"ShiftJisLeadByteAtTheEnd", "SHIFT-JIS", "a\x93", "a", "1:2: byte 0x93: " + kRest},
    {"ShiftJisLeadByteBeforeNul", "SHIFT-JIS", BYTES("\x93\0"), "",
     "1:1: byte 0x93: " + kSjisTrail + ", found 0x00"},
    {"EucJisLeadByteBeforeALetter", "EUCJIS", "\xB0\x41", "",
     "1:1: byte 0xB0: expected a trail byte 0xA1 to 0xFE, found 0x41"},
    {"Cp949TrailByteInAGap", "CP949", "\xB0\x5B", "",
     "1:1: byte 0xB0: expected a trail byte 0x41 to 0x5A, 0x61 to 0x7A, 0x81 to 0xFE, found 0x5B"},
    {"Cp936LeadByteAtTheEnd", "CP936", "\xC8\xD5\xB1", "\xE6\x97\xA5", "1:2: byte 0xB1: " + kRest},
    {"Cp950TrailByteInAGap", "CP950", "\xA4\x7F", "",
     "1:1: byte 0xA4: expected a trail byte 0x40 to 0x7E, 0xA1 to 0xFE, found 0x7F"},
};

INSTANTIATE_TEST_SUITE_P(Input, Malformed, testing::ValuesIn(kCases),
                         [](const auto &made) { return std::string(made.param.name); });

TEST(MalformedInput, InTheSecondFileIsPlacedThere) {
    const Folder folder;
    const std::string first = folder.write("first", "a\nb\n");
    const std::string second = folder.write("second", "\nc\xFF");
    const Result result = runTool({"convert", first, second});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out, "a\nb\n\nc");
    EXPECT_EQ(result.err, second +
                              ":2:2: byte 0xFF: a byte that UTF-8 never has, expected the first byte of a "
                              "character\n");
}

// Each file is a text of its own.
TEST(MalformedInput, ACharacterDoesNotGoOnInTheNextFile) {
    const Folder folder;
    const std::string first = folder.write("first", "a\xC3");
    const std::string second = folder.write("second", "\xA9");
    const Result result = runTool({"convert", first, second});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.err,
              first + ":1:2: byte 0xC3: expected the rest of the character, found the end of the input\n");
}

TEST(MalformedInput, OutranksSubstitutions) {
    const Result result = runTool({"convert", "-t", "1252"}, "\xD0\x96\xFF");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out, "?");
    EXPECT_EQ(result.err,
              "(standard input):1:1: byte 0xD0 0x96: no counterpart in 1252, substituted\n"
              "velnls: 1 character substituted\n"
              "(standard input):1:2: byte 0xFF: a byte that UTF-8 never has, expected the first byte of a "
              "character\n");
}

// EBCDIC texts end their lines with another byte.
TEST(MalformedInput, LinesAreCountedByThePagesOwnLineFeed) {
    const Result result = runTool({"convert", "-f", "IBM037", "-t", "KOI8-R"}, "\xC1\x25\xC1\xFE");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "(standard input):2:2: byte 0xFE: no counterpart in KOI8-R, substituted\n"
                          "velnls: 1 character substituted\n");
}

} // namespace
} // namespace velnls::tool
