// velnls record: what is kept, and what is said when the data file orders otherwise.
#include <gtest/gtest.h>

#include <algorithm>

#include "process.hpp"

namespace velnls::tool {
namespace {

// The head of a record in a file, before its tables.
constexpr std::size_t kHead = 84;

std::string made(const Folder &folder, const std::string &page) {
    const std::string file = folder.path("record");
    const Result result = runTool({"record", "make", "-p", page, file});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
    return file;
}

// A data file in which two bytes have each other's weights in one of the tables of 1252.
std::string changedData(const Folder &folder, const std::string &record, std::size_t table, unsigned char a,
                        unsigned char b) {
    std::string data = readFile(VELNLS_DATA);
    const std::string weights = readFile(record).substr(kHead + table * 256, 256);
    std::size_t changed = 0;
    for (std::size_t at = data.find(weights); at != std::string::npos; at = data.find(weights, at + 1)) {
        std::swap(data[at + a], data[at + b]);
        ++changed;
    }
    EXPECT_NE(changed, 0u);
    return folder.write("changed.dat", data);
}

TEST(Record, ShowsWhatItHolds) {
    const Folder folder;
    const Result single = runTool({"record", "show", made(folder, "1252")});
    EXPECT_EQ(single.exitCode, 0);
    EXPECT_EQ(single.out, "page        1252\ncollation   basic\ncase table  basic\norder by    weights\n"
                          "data        1884 bytes\n");
    const Result utf8 = runTool({"record", "show", made(folder, "utf-8")});
    EXPECT_EQ(utf8.out.find("page        UTF-8\ncollation   basic\ncase table  basic\norder by    bytes\n"),
              0u);
}

TEST(Record, OfTodayHasTodaysOrder) {
    const Folder folder;
    for (const char *page : {"1252", "SHIFT-JIS", "620-2533", "UTF-8"}) {
        const Result result = runTool({"record", "verify", made(folder, page)});
        EXPECT_EQ(result.exitCode, 0) << page;
        EXPECT_EQ(result.out, "the same order: no table has changed\n") << page;
        EXPECT_EQ(result.err, "");
    }
}

TEST(Record, CharactersThatMovedAreNamed) {
    const Folder folder;
    const std::string record = made(folder, "1252");
    const std::string data = changedData(folder, record, 0, 'a', 'z');
    const Result result = runTool({"record", "verify", record, "--data", data});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "moved, letter case counts:\n  0x61 a\n  0x7A z\n");
    EXPECT_EQ(result.err, "");
}

TEST(Record, CharactersThatMoveWhenCaseIsIgnoredAreNamedByThemselves) {
    const Folder folder;
    const std::string record = made(folder, "1252");
    // The letter and the sign are unlike all others, so nothing shares their weights.
    const std::string data = changedData(folder, record, 1, 0xDF, 0xA7);
    const Result result = runTool({"record", "verify", record, "--data", data});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "moved, letter case ignored:\n  0xA7 \xC2\xA7\n  0xDF \xC3\x9F\n");
}

TEST(Record, WeightsThatShiftTogetherAreTheSameOrder) {
    const Folder folder;
    std::string bytes = readFile(made(folder, "1252"));
    // Where case is ignored, "A" has the weight of "a", and the next number is free.
    const auto begin = bytes.begin() + kHead + 256;
    const char weight = begin['a'];
    const char next = static_cast<char>(weight + 1);
    ASSERT_EQ(begin['A'], weight);
    ASSERT_EQ(std::count(begin, begin + 256, next), 0);
    std::replace(begin, begin + 256, weight, next);
    const Result result = runTool({"record", "verify", folder.write("shifted", bytes)});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "the same order: tables have changed, but no character has moved\n");
}

TEST(Record, AFileThatIsNoneIsRefused) {
    const Folder folder;
    const std::string record = readFile(made(folder, "1252"));
    const std::string text = folder.write("text", "Dear Sir or Madam");
    EXPECT_EQ(runTool({"record", "show", text}).err, "velnls: " + text + ": not a collation record\n");
    const std::string cut = folder.write("cut", record.substr(0, record.size() - 1));
    const Result result = runTool({"record", "verify", cut});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: " + cut + ": a collation record of another size than it says\n");
    EXPECT_EQ(runTool({"record", "verify", "/nowhere/record"}).exitCode, 2);
    EXPECT_EQ(runTool({"record", "burn", cut}).exitCode, 2);
}

TEST(Record, OfACollationThatTheDataFileLacksIsRefused) {
    const Folder folder;
    std::string record = readFile(made(folder, "1252"));
    record.replace(28, 5, "gone\0", 5);
    const Result result = runTool({"record", "verify", folder.write("gone", record)});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: collation gone of 1252: no such collation (status 10)\n");
}

} // namespace
} // namespace velnls::tool
