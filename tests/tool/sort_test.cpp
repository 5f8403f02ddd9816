// velnls sort: order, fields, equal lines, and input that is larger than the memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "process.hpp"
#include "sort_fields.hpp"
#include "sorter.hpp"

namespace velnls::tool {
namespace {

std::string sorted(const std::vector<std::string> &options, const std::string &input) {
    std::vector<std::string> arguments = {"sort"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Result result = runTool(arguments, input);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

TEST(Sort, ByWeightsLettersStandTogetherWhateverTheirCase) {
    EXPECT_EQ(sorted({"-p", "1252"}, "zoo\nApe\nape\nBee\n\xE4lg\nbee\n"),
              "ape\nApe\n\xE4lg\nbee\nBee\nzoo\n");
}

TEST(Sort, BasicOfUtf8IsTheOrderOfItsBytes) {
    EXPECT_EQ(sorted({}, "b\n\xC3\xA9\na\nB\n"), "B\na\nb\n\xC3\xA9\n");
}

TEST(Sort, IgnoringCaseKeepsEqualLinesInTheirOrder) {
    EXPECT_EQ(sorted({"-i"}, "b\nA\nB\na\n\xC3\x89\n\xC3\xA9\n"), "A\na\nb\nB\n\xC3\x89\n\xC3\xA9\n");
    EXPECT_EQ(sorted({"-i", "-r"}, "b\nA\nB\na\n"), "b\nB\nA\na\n");
}

TEST(Sort, UniqueKeepsTheFirstOfEqualLines) {
    EXPECT_EQ(sorted({"-i", "-u"}, "b\nA\nB\na\nb  \n"), "A\nb\n");
    EXPECT_EQ(sorted({"-u"}, "b\nA\nB\na\nb\n"), "A\nB\na\nb\n");
}

TEST(Sort, FourByteCharactersStayApartWhenCaseIsIgnored) {
    const std::string lines = "?\n\xF0\x9F\x98\x80\n\xF0\x9F\x98\x81\nA\xF0\x9F\x98\x80z\n";
    EXPECT_EQ(sorted({"-i", "-u"}, lines), "?\nA\xF0\x9F\x98\x80z\n\xF0\x9F\x98\x80\n\xF0\x9F\x98\x81\n");
}

TEST(Sort, ReverseTurnsTheOrder) {
    EXPECT_EQ(sorted({"-r"}, "a\nc\nb\n"), "c\nb\na\n");
}

TEST(Sort, AMissingLineFeedAtTheEndIsAdded) {
    EXPECT_EQ(sorted({}, "b\na"), "a\nb\n");
    EXPECT_EQ(sorted({}, ""), "");
    EXPECT_EQ(sorted({}, "\n"), "\n");
}

TEST(Sort, LinesOfEbcdicEndAtTheirOwnLineFeed) {
    EXPECT_EQ(sorted({"-p", "IBM037"}, "\x82\x25\x81\x25"), "\x81\x25\x82\x25");
}

TEST(Sort, NulBytesComeFirstAndAreKept) {
    EXPECT_EQ(sorted({}, BYTES("a\0c\na\0b\nab\na\n\0\n")), BYTES("\0\na\na\0b\na\0c\nab\n"));
    EXPECT_EQ(sorted({"-u"}, BYTES("a\0b\na\0c\na\na\0b\n")), BYTES("a\na\0b\na\0c\n"));
    EXPECT_EQ(sorted({"-p", "1252"}, BYTES("a\0c\na\0b\na\001\n")), BYTES("a\0b\na\0c\na\001\n"));
}

TEST(Sort, FilesAreSortedTogetherAndTheOutputMayBeOneOfThem) {
    const Folder folder;
    const std::string one = folder.write("one", "c\na\n");
    const std::string two = folder.write("two", "b");
    EXPECT_EQ(sorted({one, two}, ""), "a\nb\nc\n");
    EXPECT_EQ(sorted({one, two, "-o", one}, ""), "");
    EXPECT_EQ(readFile(one), "a\nb\nc\n");
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"one", "two"}));
}

TEST(Sort, KeysAreFields) {
    const std::string table = "2;x;b\n1;y;a\n3;x;a\n";
    EXPECT_EQ(sorted({"-t", ";", "-k", "2,2"}, table), "2;x;b\n3;x;a\n1;y;a\n");
    EXPECT_EQ(sorted({"-t", ";", "-k", "2"}, table), "3;x;a\n2;x;b\n1;y;a\n");
    EXPECT_EQ(sorted({"-t", ";", "-k", "3,3", "-k", "1,1"}, table), "1;y;a\n3;x;a\n2;x;b\n");
    EXPECT_EQ(sorted({"-t", ";", "-k", "2,2", "-u"}, table), "2;x;b\n1;y;a\n");
    EXPECT_EQ(sorted({"-k", "2"}, "1   b\n  2\ta\n3\n"), "3\n  2\ta\n1   b\n");
    EXPECT_EQ(sorted({"-t", "\\t", "-k", "2"}, "1\tb\n2\ta\n"), "2\ta\n1\tb\n");
}

TEST(Sort, AFieldEndsBeforeWhatFollowsIt) {
    EXPECT_EQ(sorted({"-t", ";", "-k", "1,1", "-k", "2,2"}, "ab;a\na;z\n"), "a;z\nab;a\n");
}

TEST(Sort, ASeparatorIsNotFoundWithinACharacter) {
    // The trail byte 7C of the first character is the code of the separator.
    EXPECT_EQ(sorted({"-p", "SHIFT-JIS", "-t", "|", "-k", "2"}, "\x83\x7C|b\n\x83\x7C|a\n"),
              "\x83\x7C|a\n\x83\x7C|b\n");
}

TEST(Sort, LinesLongerThanAKeyCanBeAreOrderedByTheirEnds) {
    const std::string stem = repeat("abcdefg ", 20000);
    const std::string input = stem + "b\n" + stem + "\n" + stem + "a\n" + stem + "a   \n";
    EXPECT_EQ(sorted({"-p", "1252"}, input), stem + "\n" + stem + "a\n" + stem + "a   \n" + stem + "b\n");
    EXPECT_EQ(sorted({"-p", "1252", "-u"}, input), stem + "\n" + stem + "a\n" + stem + "b\n");
    EXPECT_EQ(sorted({"-i"}, input), stem + "\n" + stem + "a\n" + stem + "a   \n" + stem + "b\n");
}

TEST(Sort, InputLargerThanTheMemoryComesOutTheSame) {
    std::mt19937 random(20240917);
    std::string input;
    for (int i = 0; i < 30000; ++i) {
        const std::size_t size = random() % 12;
        for (std::size_t j = 0; j < size; ++j) {
            input += static_cast<char>("aAbB zZ\xE9\xE8"[random() % 9]);
        }
        input += '\n';
    }
    input += repeat("long ", 5000) + "\n";
    for (const std::vector<std::string> &options :
         {std::vector<std::string>{}, {"-u"}, {"-r"}, {"-i"}, {"-i", "-u", "-r"}}) {
        std::vector<std::string> large = {"-p", "1252"};
        large.insert(large.end(), options.begin(), options.end());
        std::vector<std::string> small = large;
        small.insert(small.end(), {"--memory", "9K"});
        const std::string expected = sorted(large, input);
        EXPECT_EQ(sorted(small, input), expected);
        EXPECT_FALSE(expected.empty());
    }
}

TEST(Sort, TemporaryFilesAreGoneAfterwards) {
    const Folder folder;
    EXPECT_EQ(sorted({"-T", folder.path("."), "--memory", "100"}, "c\nb\na\n"), "a\nb\nc\n");
    EXPECT_EQ(folder.names(), std::vector<std::string>());
}

TEST(Sort, AFolderThatIsNotThereIsNamed) {
    const Result result = runTool({"sort", "-T", "/nowhere", "--memory", "10"}, "b\na\n");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "velnls: temporary file in /nowhere: No such file or directory\n");
}

TEST(Sort, WhatCannotBeUnderstoodIsNamedWithExitCode2) {
    const struct {
        std::vector<std::string> arguments;
        std::string message;
    } kCases[] = {
        {{"-k", "0"}, "velnls: '0' is no sort key: expected N or N,M, from 1, M not below N\n"},
        {{"-k", "2,1"}, "velnls: '2,1' is no sort key: expected N or N,M, from 1, M not below N\n"},
        {{"-k", "1n"}, "velnls: '1n' is no sort key: expected N or N,M, from 1, M not below N\n"},
        {{"--memory", "1X"}, "velnls: '1X' is no size: expected a number of bytes, or one with K, M or G\n"},
        {{"-t", "ab"}, "velnls: the separator must be one character\n"},
        {{"-p", "UTF-16"},
         "velnls: text in UTF-16 cannot be processed as it stands; convert it to UTF-8 first\n"},
        {{"-p", "IBM850", "--collation", "klingon", "--data", VELNLS_SMALL_DATA}, ""},
        {{"/nowhere/file"}, "velnls: /nowhere/file: No such file or directory\n"},
    };
    for (const auto &item : kCases) {
        std::vector<std::string> arguments = {"sort"};
        arguments.insert(arguments.end(), item.arguments.begin(), item.arguments.end());
        const Result result = runTool(arguments, "b\na\n");
        EXPECT_EQ(result.exitCode, 2) << item.message;
        EXPECT_EQ(result.out, "");
        if (!item.message.empty()) {
            EXPECT_EQ(result.err, item.message);
        } else {
            EXPECT_EQ(result.err.find("velnls: IBM850 has no collation 'klingon'; it has basic"), 0u)
                << result.err;
        }
    }
}

// The order of arrival stands in for std::stable_sort's.
TEST(Sorter, ManyRunsInManyLevelsKeepTheOrderOfArrival) {
    std::mt19937 random(7);
    for (const bool reverse : {false, true}) {
        SorterOptions options;
        options.memory = 100; // two records at most
        options.reverse = reverse;
        Sorter sorter(options);
        std::vector<std::pair<std::string, std::string>> records;
        for (int i = 0; i < 9000; ++i) {
            records.emplace_back(std::to_string(random() % 50), std::to_string(i));
            sorter.add(records.back().first, records.back().second);
        }
        std::stable_sort(records.begin(), records.end(), [&](const auto &a, const auto &b) {
            return reverse ? b.first < a.first : a.first < b.first;
        });
        std::vector<std::string> expected;
        for (const auto &record : records) {
            expected.push_back(record.second);
        }
        EXPECT_GT(sorter.spills(), 64u * 64u);
        std::vector<std::string> lines;
        sorter.finish([&](std::string_view line) { lines.emplace_back(line); });
        EXPECT_EQ(lines, expected);
    }
}

TEST(Sorter, KeysThatDifferInZeroBytesOnlyAreDifferent) {
    SorterOptions options;
    options.unique = true;
    Sorter sorter(options);
    sorter.add(BYTES("a\0\0"), "3");
    sorter.add("a", "1");
    sorter.add(BYTES("a\0"), "2");
    std::string all;
    sorter.finish([&](std::string_view line) { all += line; });
    EXPECT_EQ(all, "123");
}

TEST(SortFields, AreCutAtEverySeparator) {
    const FieldCutter cutter(";", " ", "\t", std::vector<std::size_t>(256, 1));
    EXPECT_EQ(cutter.cut("a;b;;d", {1, 1}), "a");
    EXPECT_EQ(cutter.cut("a;b;;d", {2, 2}), "b");
    EXPECT_EQ(cutter.cut("a;b;;d", {3, 3}), "");
    EXPECT_EQ(cutter.cut("a;b;;d", {2, 3}), "b;");
    EXPECT_EQ(cutter.cut("a;b;;d", {2, 0}), "b;;d");
    EXPECT_EQ(cutter.cut("a;b;;d", {4, 9}), "d");
    EXPECT_EQ(cutter.cut("a;b;;d", {5, 0}), "");
    EXPECT_EQ(cutter.cut("", {1, 0}), "");
}

TEST(SortFields, AreCutAtRunsOfBlanks) {
    const FieldCutter cutter("", " ", "\t", std::vector<std::size_t>(256, 1));
    EXPECT_EQ(cutter.cut("  a \t b  c", {1, 1}), "a");
    EXPECT_EQ(cutter.cut("  a \t b  c", {2, 2}), "b");
    EXPECT_EQ(cutter.cut("  a \t b  c", {2, 0}), "b  c");
    EXPECT_EQ(cutter.cut("  a \t b  c", {1, 2}), "a \t b");
    EXPECT_EQ(cutter.cut("a  ", {2, 0}), "");
}

TEST(Sort, MoreMemoryThanThereIsIsRefused) {
#if defined(VELNLS_SANITIZED)
    GTEST_SKIP() << "sanitizers end a program that asks for so much";
#endif
    const Result result = runTool({"sort", "--memory", "900000G"}, "a\n");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: there is no memory of 966367641600000 bytes to sort in\n");
}

TEST(Sort, AnIcuCollationIsNoneOfAPageThatIsNotUtf8) {
    const Result result = runTool({"sort", "-p", "1252", "--collation", "ICU-de"}, "a\n");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err.rfind("velnls: 1252 has no collation 'ICU-de'; it has ", 0), 0U) << result.err;
}

} // namespace
} // namespace velnls::tool
