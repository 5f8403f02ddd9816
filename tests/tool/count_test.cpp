// velnls count and velnls check.
#include <gtest/gtest.h>

#include "process.hpp"

namespace velnls::tool {
namespace {

Result counted(const std::vector<std::string> &arguments, const std::string &input) {
    std::vector<std::string> all = {"count"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, input);
}

TEST(Count, BytesCharactersAndColumns) {
    const Result result = counted({}, "a\xC3\xA9\xE6\x97\xA5\n");
    EXPECT_EQ(result.out, "         7          4          4\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(counted({"-p", "SHIFT-JIS"}, "\x93\xFA\xB1\n").out, "         4          3          3\n");
    EXPECT_EQ(counted({"-p", "1252"}, "\xE9\n").out, "         2          2          1\n");
    EXPECT_EQ(counted({}, "").out, "         0          0          0\n");
}

TEST(Count, NulBytesAreCharactersWithoutColumns) {
    EXPECT_EQ(counted({}, BYTES("a\0b\0\0\xE6\x97\xA5")).out, "         8          6          4\n");
}

TEST(Count, FilesAndTheirTotal) {
    const Folder folder;
    const std::string one = folder.write("one", "ab");
    const std::string two = folder.write("two", repeat("\xE6\x97\xA5", 100000));
    EXPECT_EQ(counted({one}, "").out, "         2          2          2 " + one + "\n");
    EXPECT_EQ(counted({one, two}, "").out, "         2          2          2 " + one +
                                               "\n    300000     100000     200000 " + two +
                                               "\n    300002     100002     200002 total\n");
}

TEST(Count, AMalformedFileIsNamedAndLeftOut) {
    const Folder folder;
    const std::string bad = folder.write("bad", "ab\n\xE6\x97");
    const std::string good = folder.write("good", "ab");
    const Result result = counted({bad, good}, "");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out,
              "         2          2          2 " + good + "\n         2          2          2 total\n");
    EXPECT_EQ(result.err,
              bad + ":2:1: byte 0xE6 0x97: expected the rest of the character, found the end of the input\n");
}

TEST(Count, RefusesTextInWideUnits) {
    const Result result = counted({"-p", "UTF-16"}, BYTES("a\0"));
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err,
              "velnls: text in UTF-16 cannot be processed as it stands; convert it to UTF-8 first\n");
}

TEST(Check, SoundTextGoesWithoutAWord) {
    const Folder folder;
    for (const auto &[page, text] : {std::pair<const char *, std::string>{"UTF-8", BYTES("a\0\xC3\xA9\n")},
                                     {"1252", "\x81\xFF"},
                                     {"SHIFT-JIS", "\x93\xFA"},
                                     {"UTF-16", BYTES("\x3D\xD8\0\xDE")},
                                     {"UTF-8", ""}}) {
        const Result result = runTool({"check", "-p", page}, text);
        EXPECT_EQ(result.exitCode, 0) << page;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "");
    }
}

TEST(Check, TheFirstMalformedPlaceOfEachFileIsNamed) {
    const Folder folder;
    const std::string one = folder.write("one", "a\nb\xC3\xA9\xE2\x28 \xFF\n");
    const std::string two = folder.write("two", "sound\n");
    const std::string three = folder.write("three", repeat("0123456789\n", 100000) + "\xED\xA0\x80");
    const Result result = runTool({"check", one, two, three});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              one + ":2:3: byte 0xE2: expected a continuation byte 0x80 to 0xBF, found 0x28\n" + three +
                  ":100001:1: byte 0xED: expected a continuation byte 0x80 to 0x9F, found 0xA0\n");
}

TEST(Check, TextInWideUnitsIsCheckedToo) {
    const Result result = runTool({"check", "-p", "UTF-16"}, BYTES("a\0\n\0b\0\0\xDC"));
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.err, "(standard input):2:2: byte 0x00 0xDC: low surrogate 0xDC00, expected a high "
                          "surrogate before it\n");
}

TEST(Check, AFileThatIsNotThereIsNamedWithExitCode2) {
    const Result result = runTool({"check", "/nowhere/file"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: /nowhere/file: No such file or directory\n");
}

} // namespace
} // namespace velnls::tool
