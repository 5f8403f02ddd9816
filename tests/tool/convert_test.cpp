// velnls convert: what comes out, what is said and which exit code it has.
#include <gtest/gtest.h>

#include "process.hpp"

namespace velnls::tool {
namespace {

// One conversion from standard input that must go without a word.
std::string converted(const std::vector<std::string> &options, const std::string &input) {
    std::vector<std::string> arguments = {"convert"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Result result = runTool(arguments, input);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

TEST(Convert, APageTurnsIntoAnother) {
    EXPECT_EQ(converted({"-f", "SHIFT-JIS", "-t", "UTF-8"}, "\x93\xFA\x96\x7B\n"),
              "\xE6\x97\xA5\xE6\x9C\xAC\n");
    EXPECT_EQ(converted({"-f", "UTF-8", "-t", "SHIFT-JIS"}, "\xE6\x97\xA5\xE6\x9C\xAC\n"),
              "\x93\xFA\x96\x7B\n");
    EXPECT_EQ(converted({"-f", "1252", "-t", "UTF-16"}, "\x80"), BYTES("\xAC\x20"));
    EXPECT_EQ(converted({"-f", "UTF-16BE", "-t", "1251"}, BYTES("\x04\x16")), "\xC6");
    EXPECT_EQ(converted({"-f", "IBM037", "-t", "1252"}, "\xC8\x85\x93\x93\x96"), "Hello");
}

TEST(Convert, AMissingPageIsUtf8) {
    EXPECT_EQ(converted({"-f", "1252"}, "\xE9"), "\xC3\xA9");
    EXPECT_EQ(converted({"-t", "1252"}, "\xC3\xA9"), "\xE9");
    EXPECT_EQ(converted({}, "\xC3\xA9"), "\xC3\xA9");
}

TEST(Convert, LongOptionsAndAttachedValuesWork) {
    EXPECT_EQ(converted({"--from-code", "1252", "--to-code=UTF-8"}, "\xE9"), "\xC3\xA9");
    EXPECT_EQ(converted({"-f1252", "-tUTF-8"}, "\xE9"), "\xC3\xA9");
}

TEST(Convert, LetterCaseOfAPageNameDoesNotMatter) {
    EXPECT_EQ(converted({"-f", "shift-jis", "-t", "utf-8"}, "\x93\xFA"), "\xE6\x97\xA5");
}

TEST(Convert, OnePageOnBothSidesCopies) {
    EXPECT_EQ(converted({"-f", "1252", "-t", "1252"}, BYTES("a\xE9\x81\0z")), BYTES("a\xE9\x81\0z"));
}

TEST(Convert, EmptyInputGivesEmptyOutput) {
    EXPECT_EQ(converted({"-f", "SHIFT-JIS"}, ""), "");
    EXPECT_EQ(converted({"-f", "UTF-8", "-t", "UTF-32"}, ""), "");
}

TEST(Convert, NulBytesAreTextLikeAnyOther) {
    EXPECT_EQ(converted({"-f", "1252"}, BYTES("a\0\xE9\0\0b")), BYTES("a\0\xC3\xA9\0\0b"));
    EXPECT_EQ(converted({"-f", "UTF-8", "-t", "SHIFT-JIS"}, BYTES("\0\xE6\x97\xA5\0")),
              BYTES("\0\x93\xFA\0"));
    EXPECT_EQ(converted({"-f", "UTF-16", "-t", "UTF-8"}, BYTES("a\0\0\0b\0")), BYTES("a\0b"));
    EXPECT_EQ(converted({"-f", "1252", "-t", "IBM850"}, BYTES("\0\xE9\0")), BYTES("\0\x82\0"));
}

TEST(Convert, AByteOrderMarkIsACharacterLikeAnyOther) {
    EXPECT_EQ(converted({"-f", "UTF-16", "-t", "UTF-8"}, BYTES("\xFF\xFE"
                                                               "A\0")),
              "\xEF\xBB\xBF"
              "A");
    EXPECT_EQ(converted({"-f", "UTF-8", "-t", "UTF-16BE"}, "\xEF\xBB\xBF"
                                                           "A"),
              BYTES("\xFE\xFF\0A"));
    EXPECT_EQ(converted({"-f", "UTF-8", "-t", "UTF-16"}, "A"), BYTES("A\0"));
}

TEST(Convert, PairsThatTheDataFileDoesNotListGoThroughUtf8) {
    EXPECT_EQ(converted({"-f", "SHIFT-JIS", "-t", "CP936"}, "\x93\xFA\x96\x7B"), "\xC8\xD5\xB1\xBE");
    EXPECT_EQ(converted({"-f", "KOI8-R", "-t", "SHIFT-JIS"}, "\xD6"), "\x84\x77");
    EXPECT_EQ(converted({"-f", "1252", "-t", "IBM866"}, "plain"), "plain");
}

TEST(Convert, PairsThatTheLibraryChainsWork) {
    EXPECT_EQ(converted({"-f", "1252", "-t", "UTF-32"}, "\x80"), BYTES("\xAC\x20\0\0"));
    EXPECT_EQ(converted({"-f", "UTF-32BE", "-t", "SHIFT-JIS"}, BYTES("\0\0\x65\xE5")), "\x93\xFA");
    EXPECT_EQ(converted({"-f", "UTF-16", "-t", "UTF-16BE"}, BYTES("\x3D\xD8\0\xDE")),
              BYTES("\xD8\x3D\xDE\0"));
}

TEST(Convert, TheJapanesePagesTurnIntoEachOther) {
    EXPECT_EQ(converted({"-f", "SHIFT-JIS", "-t", "EUCJIS"}, "\x88\x9F\xB1"), "\xB0\xA1\x8E\xB1");
    EXPECT_EQ(converted({"-f", "EUCJIS", "-t", "SHIFT-JIS"}, "\xB0\xA1\x8E\xB1"), "\x88\x9F\xB1");
}

// ICU is bound at run time. A build that found it must reach it, unless the program is of another build.
TEST(Convert, APageOfIcuWorksWhereTheBuildFoundIcuAndElseNamesIcu) {
    const Result result = runTool({"convert", "-f", "GB18030"}, "a\xC8\xD5\x81\x30\x81\x30");
    if (result.exitCode == 0 || (VELNLS_ICU_EXPECTED && !toolIsForWindows())) {
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, "a\xE6\x97\xA5\xC2\x80");
        return;
    }
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "velnls: the conversion from GB18030 to UTF-8 in the built-in data file cannot be used: it "
              "needs ICU, or its table is broken\n");
}

TEST(Convert, FilesAreConvertedOneAfterTheOther) {
    const Folder folder;
    const std::string first = folder.write("first", "\xE9");
    const std::string second = folder.write("second", "\xE8");
    EXPECT_EQ(converted({"-f", "1252", first, "-", second}, "-"), "\xC3\xA9-\xC3\xA8");
    EXPECT_EQ(converted({first, second, "-f", "1252"}, ""), "\xC3\xA9\xC3\xA8");
}

TEST(Convert, DashAloneIsStandardInput) {
    EXPECT_EQ(converted({"-f", "1252", "-"}, "\xE9"), "\xC3\xA9");
}

TEST(Convert, DoubleDashEndsTheOptions) {
    const Folder folder;
    folder.write("-c", "\xE9");
    const Result result = runShell("cd '" + folder.path("") + "' && \"$VELNLS\" convert -f 1252 -- -c");
    EXPECT_EQ(result.out, "\xC3\xA9");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(Substitution, IsCountedAndTheFirstIsPlacedWithExitCode1) {
    const Result result = runTool({"convert", "-t", "1252"}, "one\ntwo \xE6\x97\xA5\xE6\x9C\xAC\n\xD0\x96\n");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "one\ntwo ?\?\n?\n");
    EXPECT_EQ(result.err, "(standard input):2:5: byte 0xE6 0x97 0xA5: no counterpart in 1252, substituted\n"
                          "velnls: 3 characters substituted\n");
}

TEST(Substitution, OfASingleCharacterIsWordedAsOne) {
    const Folder folder;
    const std::string file = folder.write("text", "\xD0\x96");
    const Result result = runTool({"convert", "-t", "1252", file});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, file + ":1:1: byte 0xD0 0x96: no counterpart in 1252, substituted\n"
                                 "velnls: 1 character substituted\n");
}

TEST(Substitution, OfAnUndefinedByteGivesTheReplacementCharacter) {
    const Result result = runTool({"convert", "-f", "ISO8859-8"}, "ab\n\xA1");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "ab\n\xEF\xBF\xBD");
    EXPECT_EQ(result.err, "(standard input):2:1: byte 0xA1: no counterpart in UTF-8, substituted\n"
                          "velnls: 1 character substituted\n");
}

TEST(Substitution, OfAnUndefinedDoubleByteCodeIsNoMalformedInput) {
    const Result result = runTool({"convert", "-f", "SHIFT-JIS"}, "a\x85\x40z");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "a\xEF\xBF\xBDz");
    EXPECT_EQ(result.err, "(standard input):1:2: byte 0x85 0x40: no counterpart in UTF-8, substituted\n"
                          "velnls: 1 character substituted\n");
}

// The library's direct tables put a "?" without a sign.
TEST(Substitution, OfADirectTableIsReportedToo) {
    const Result result = runTool({"convert", "-f", "1252", "-t", "IBM437"}, "a?\xA9z");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "a??z");
    EXPECT_EQ(result.err, "(standard input):1:3: byte 0xA9: no counterpart in IBM437, substituted\n"
                          "velnls: 1 character substituted\n");
}

TEST(Substitution, TakesThePlaceOfCodesThatTheJapaneseArithmeticWouldSpoil) {
    const Result result = runTool({"convert", "-f", "SHIFT-JIS", "-t", "EUCJIS"}, "\x88\x9F\xF0\x40\x88\x9F");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "\xB0\xA1?\xB0\xA1");
    EXPECT_EQ(result.err, "(standard input):1:2: byte 0xF0 0x40: no counterpart in EUCJIS, substituted\n"
                          "velnls: 1 character substituted\n");
}

// The library's chain loses the report of its first step.
TEST(Substitution, InTheFirstStepOfAChainIsReportedToo) {
    const Result result = runTool({"convert", "-f", "ISO8859-8", "-t", "UTF-32"}, "a\xA1");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, BYTES("a\0\0\0\xFD\xFF\0\0"));
    EXPECT_EQ(result.err, "(standard input):1:2: byte 0xA1: no counterpart in UTF-32, substituted\n"
                          "velnls: 1 character substituted\n");
}

TEST(Substitution, IsThePagesOwnCharacterInEbcdic) {
    const Result result = runTool({"convert", "-t", "IBM037"}, "A\xD0\x96");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "\xC1\x6F");
}

TEST(Substitution, IsCountedExactlyInLongInput) {
    const std::string line = repeat("x", 700) + "\xD0\x96" + repeat("y", 300) + "\n";
    const Result result = runTool({"convert", "-t", "1252"}, repeat("plain\n", 100000) + repeat(line, 1000));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out,
              repeat("plain\n", 100000) + repeat(repeat("x", 700) + "?" + repeat("y", 300) + "\n", 1000));
    EXPECT_EQ(result.err, "(standard input):100001:701: byte 0xD0 0x96: no counterpart in 1252, substituted\n"
                          "velnls: 1000 characters substituted\n");
}

TEST(Drop, LeavesOutWhatHasNoCounterpartAndSaysSo) {
    const Result result = runTool({"convert", "-c", "-t", "1252"}, "a\xE6\x97\xA5z\xD0\x96");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "az");
    EXPECT_EQ(result.err, "(standard input):1:2: byte 0xE6 0x97 0xA5: no counterpart in 1252, left out\n"
                          "velnls: 2 characters left out\n");
}

TEST(Drop, LeavesOutMalformedInputToo) {
    const Result result = runTool({"convert", "-c", "-t", "1252"}, "a\xFFz\xC3");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "az");
    EXPECT_EQ(result.err,
              "(standard input):1:2: byte 0xFF: a byte that UTF-8 never has, expected the first byte of a "
              "character\n"
              "velnls: 2 malformed sequences left out\n");
}

TEST(Drop, OfNothingIsSilent) {
    EXPECT_EQ(converted({"-c", "-t", "1252"}, "a\xC3\xA9"), "a\xE9");
}

TEST(Lossy, SubstitutesWithExitCode0AndStillCounts) {
    const Result result = runTool({"convert", "--lossy", "-t", "1252"}, "a\xE6\x97\xA5z");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "a?z");
    EXPECT_EQ(result.err, "(standard input):1:2: byte 0xE6 0x97 0xA5: no counterpart in 1252, substituted\n"
                          "velnls: 1 character substituted\n");
}

TEST(Lossy, TurnsMalformedInputIntoTheSubstitutionCharacter) {
    const Result result = runTool({"convert", "--lossy", "-t", "UTF-16BE"}, "a\xE6\x97z");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, BYTES("\0a\xFF\xFD\0z"));
    EXPECT_EQ(result.err,
              "(standard input):1:2: byte 0xE6 0x97: expected a continuation byte 0x80 to 0xBF, found 0x7A\n"
              "velnls: 1 malformed sequence substituted\n");
    EXPECT_EQ(runTool({"convert", "--lossy", "-t", "IBM037"}, "A\xFF").out, "\xC1\x6F");
    EXPECT_EQ(runTool({"convert", "--lossy", "-f", "SHIFT-JIS", "-t", "1252"}, "\x93").out, "?");
}

TEST(Lossy, WithDropLeavesOutWithExitCode0) {
    const Result result = runTool({"convert", "--lossy", "-c", "-t", "1252"}, "a\xE6\x97\xA5\xFFz");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "az");
    EXPECT_EQ(result.err,
              "(standard input):1:2: byte 0xE6 0x97 0xA5: no counterpart in 1252, left out\n"
              "velnls: 1 character left out\n"
              "(standard input):1:3: byte 0xFF: a byte that UTF-8 never has, expected the first byte of a "
              "character\n"
              "velnls: 1 malformed sequence left out\n");
}

TEST(Usage, AnUnknownOptionHasExitCode2) {
    const Result result = runTool({"convert", "--nothing-like-it"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("--nothing-like-it"), std::string::npos) << result.err;
}

TEST(Usage, NoCommandHasExitCode2) {
    EXPECT_EQ(runTool({}).exitCode, 2);
    EXPECT_EQ(runTool({"transmogrify"}).exitCode, 2);
}

TEST(Usage, VersionIsPrinted) {
    const Result result = runTool({"--version"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "velnls " VELNLS_VERSION "\n");
}

TEST(Usage, EveryCommandHasHelpWithExamples) {
    for (const std::string command : {"convert", "list", "info"}) {
        const Result result = runTool({command, "--help"});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_NE(result.out.find("Examples:\n  velnls " + command), std::string::npos) << result.out;
    }
    EXPECT_NE(runTool({"--help"}).out.find("Examples:"), std::string::npos);
}

} // namespace
} // namespace velnls::tool
