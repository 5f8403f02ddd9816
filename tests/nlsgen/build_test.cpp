// The default data files as a whole: counts, sizes, the same bytes every time, and nothing written after a
// problem.
#include "build.hpp"

#include "checker.hpp"
#include "file_view.hpp"
#include "mapping_figures.hpp"
#include "real_files.hpp"
#include "temporary_folder.hpp"
#include "text_file.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <sstream>

namespace velnls::nlsgen::test {
namespace {

namespace fs = std::filesystem;

Bytes bytesOfFile(const fs::path &path) {
    const std::string text = readText(path);
    return {text.begin(), text.end()};
}

TEST(Build, IsTheSameToTheByteEveryTime) {
    const TemporaryFolder one;
    const TemporaryFolder other;
    std::ostringstream report;
    build(realSources(), one.path().string(), report);
    build(realSources(), other.path().string(), report);
    for (const char *name : {"velnls.dat", "velnls-small.dat"}) {
        const std::string bytes = readText(one.path() / name);
        EXPECT_FALSE(bytes.empty());
        EXPECT_EQ(bytes == readText(other.path() / name), true) << name;
    }
}

TEST(Build, ReportsTheCountsOfBothFiles) {
    const TemporaryFolder folder;
    std::ostringstream report;
    build(realSources(), folder.path().string(), report);
    EXPECT_NE(
        report.str().find("velnls.dat: 774 entries (53 character sets, 51 case tables, 142 collations, 528 "
                          "conversions), "),
        std::string::npos);
    EXPECT_NE(
        report.str().find("velnls-small.dat: 352 entries (53 character sets, 51 case tables, 142 collations, "
                          "106 conversions), "),
        std::string::npos);
    for (const char *name : {"velnls.dat", "velnls-small.dat"})
        EXPECT_FALSE(firstFault(bytesOfFile(folder.path() / name)).has_value()) << name;
}

TEST(Build, FilesKeepToTheirSizes) {
    EXPECT_LT(layOut(realPlan().entries).size(), 1'500'000U);
    // The first block of the smallest size: handle and descriptor, the directory, then a locale with its
    // character table, collation and byte case table.
    constexpr std::size_t kSmallestFirstBlock = 25000;
    constexpr std::size_t kHandle = 96 + 24;
    constexpr std::size_t kFirstLocale = 136 + 792 + 576 + 516;
    EXPECT_LE(kHandle + smallEntries(realPlan().entries).size() * sizeof(file::Entry) + kFirstLocale,
              kSmallestFirstBlock);
}

struct Count {
    const char *page;
    std::size_t codes, reversible;
};

class PageCounts : public testing::TestWithParam<Count> {};

TEST_P(PageCounts, AreThoseOfThePublicTables) {
    const Page &page = realPage(GetParam().page);
    EXPECT_EQ(page.codeCount(), GetParam().codes);
    EXPECT_EQ(page.fromUnicode().size(), GetParam().reversible);
}

INSTANTIATE_TEST_SUITE_P(Pages, PageCounts,
                         testing::Values(Count{"SHIFT-JIS", 9795, 9397}, Count{"EUCJIS", 7527, 7517},
                                         Count{"KSC5601", 8387, 8387}, Count{"CP949", 17366, 17366},
                                         Count{"CP1361", 17177, 17177}, Count{"GB2312", 7573, 7573},
                                         Count{"CP936", 24070, 24070}, Count{"BIG-5", 14040, 14030},
                                         Count{"CP950", 19850, 19840}, Count{"CP950-HKSCS", 18588, 18580},
                                         Count{"ISO6937", 398, 398}, Count{"708", 211, 211},
                                         Count{"720", 248, 248}, Count{"ISO8859-8", 220, 220},
                                         Count{"1252", 256, 256}, Count{"IBM037", 256, 256}),
                         [](const auto &parameter) {
                             std::string name = parameter.param.page;
                             for (char &c : name)
                                 c = c == '-' ? '_' : c;
                             return name;
                         });

TEST(Pages, CorrectionsTakeTheirPlaces) {
    EXPECT_EQ(realPage("MAZOVIA").toUnicode(0x86), 0x0105U);
    EXPECT_EQ(realPage("MAZOVIA").toUnicode(0x9B), 0x00A2U);
    EXPECT_EQ(realPage("IBM851").toUnicode(0xB7), 0x039CU);
    EXPECT_EQ(realPage("IBM851").toUnicode(0xF7), 0x00B8U);
    EXPECT_EQ(realPage("IBM278").toUnicode(0x71), 0x005CU);
    EXPECT_EQ(realPage("IBM278").toUnicode(0xE0), 0x00C9U);
    EXPECT_EQ(realPage("CP1361").toUnicode(0x5C), 0x005CU);
    EXPECT_EQ(realPage("1252").toUnicode(0x81), 0x0081U);
    EXPECT_EQ(realPage("CP949").toUnicode(0xFEFE), 0xE0BBU);
    EXPECT_EQ(realPage("CP950").toUnicode(0xFA40), 0xE000U);
    EXPECT_EQ(realPage("SHIFT-JIS").toUnicode(0xF040), 0xE000U);
}

TEST(Pages, JapaneseByWayOfEucGivesTheSameCharacters) {
    EXPECT_EQ(realPage("EUCJIS").toUnicode(0xA1C1), 0xFF5EU);
    EXPECT_EQ(realPage("EUCJIS").toUnicode(0x8EB1), 0xFF71U);
    EXPECT_EQ(realPage("EUCJIS").codeOf(0x4E9C), 0xB0A1U);
}

TEST(Pages, ClassesMarkSingleByteLettersAtOtherPlacesThanAscii) {
    EXPECT_EQ(realPage("1252").classes[0x41], 0);
    EXPECT_EQ(realPage("1252").classes[0xC4], 1);
    EXPECT_EQ(realPage("1252").classes[0x37], 0);
    EXPECT_EQ(realPage("IBM037").classes[0xC1], 1);
    EXPECT_EQ(realPage("IBM037").classes[0xF7], 0);
    EXPECT_EQ(realPage("SHIFT-JIS").classes[0xB1], 1);
    EXPECT_EQ(realPage("SHIFT-JIS").classes[0x83], 0);
}

// The manual's table of sizes states what the files have: the pages' rows are compared word for word.
TEST(Sizes, AreThoseOfTheManual) {
    const Bytes file = layOut(realPlan().entries);
    int rows = 0;
    for (const std::string &line : readLines(NLSGEN_SOURCE_DIR "/docs/data-file-format.md")) {
        std::vector<std::string> cells;
        std::istringstream row(line);
        for (std::string cell; std::getline(row, cell, '|');) {
            std::erase_if(cell, [](char c) { return c == ' ' || c == ','; });
            cells.push_back(cell);
        }
        if (cells.size() != 7 || cells[2].find('/') == std::string::npos)
            continue;
        rows++;
        SCOPED_TRACE(cells[1]);
        const std::size_t offset = recordOffset(file, entryNumber(file, '1', cells[1], "UTF-8"));
        const MappingFigures figures = measureMapping(FileView(file), offset);
        char steps[16];
        std::snprintf(steps, sizeof steps, "%.2f", figures.averageSteps);
        EXPECT_EQ(std::to_string(figures.codes) + "/" + std::to_string(figures.characters), cells[2]);
        EXPECT_EQ(std::to_string(figures.fileBytes), cells[3]);
        EXPECT_EQ(std::to_string(figures.arenaBytes), cells[4]);
        EXPECT_EQ(std::to_string(figures.largestRequest), cells[5]);
        EXPECT_EQ(steps, cells[6]);
    }
    EXPECT_EQ(rows, 11);
}

// Pages that fit a block of the smallest size together with their character table, and alignment.
TEST(Sizes, SixMultibytePagesFitTheSmallestAddedBlock) {
    constexpr std::size_t kSmallestBlock = 76000;
    constexpr std::size_t kDescriptorTableAndAlignment = 24 + 792 + 32;
    const Bytes file = layOut(realPlan().entries);
    for (const char *page : {"SHIFT-JIS", "EUCJIS", "KSC5601", "GB2312", "BIG-5", "ISO6937"}) {
        const std::size_t offset = recordOffset(file, entryNumber(file, '1', page, "UTF-8"));
        EXPECT_LE(measureMapping(FileView(file), offset).arenaBytes + kDescriptorTableAndAlignment,
                  kSmallestBlock)
            << page;
    }
}

// Ordinary text costs one look-up a character; the usual punctuation of a single-byte page few steps.
TEST(Sizes, SingleBytePagesNeedAtMostSixteenSteps) {
    const Bytes file = layOut(realPlan().entries);
    for (const auto &page : realPlan().pages) {
        if (page->isMultibyte())
            continue;
        const std::size_t offset = recordOffset(file, entryNumber(file, '1', page->name, "UTF-8"));
        const MappingFigures figures = measureMapping(FileView(file), offset);
        EXPECT_LE(figures.mostSteps, 16U) << page->name;
        EXPECT_LE(figures.arenaBytes, 2600U) << page->name;
    }
}

// The charmaps' folder with one file replaced.
class BrokenSource : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(folder_.path() / "charmaps");
        for (const auto &file : fs::directory_iterator(NLSGEN_CHARMAPS))
            fs::create_symlink(file.path(), folder_.path() / "charmaps" / file.path().filename());
    }
    // Exit code and standard error of `nlsgen build`.
    std::pair<int, std::string> run(const std::string &more = "") {
        const std::string base = folder_.path().string();
        const std::string command = NLSGEN_PROGRAM " build --charmaps " + base +
                                    "/charmaps --unicode " NLSGEN_UNICODE " --data " NLSGEN_SOURCE_DIR
                                    "/data -o " +
                                    base + "/out " + more + " >" + base + "/stdout 2>" + base + "/stderr";
        const int status = std::system(command.c_str());
        return {WEXITSTATUS(status), readText(folder_.path() / "stderr")};
    }
    TemporaryFolder folder_;
};

TEST_F(BrokenSource, IsNamedWithFileAndLineAndNothingIsWritten) {
    fs::remove(folder_.path() / "charmaps/CP1252.gz");
    const std::string path =
        folder_.write("charmaps/CP1252.gz", "<escape_char> /\n<comment_char> %\nCHARMAP\n"
                                            "<U0041> /x41\n<U0042> x42\nEND CHARMAP\n");
    const auto [code, message] = run();
    EXPECT_EQ(code, 1);
    EXPECT_EQ(message,
              "nlsgen: " + path + ":5: expected the escape character / before each byte, found x42\n");
    EXPECT_FALSE(fs::exists(folder_.path() / "out"));
}

TEST_F(BrokenSource, LeavesEarlierFilesAsTheyWere) {
    EXPECT_EQ(run().first, 0);
    const std::string before = readText(folder_.path() / "out/velnls.dat");
    const std::string path = folder_.write("site/OWN.map", "00..7F 0000\n80 00E9\n81 00E9\n");
    const auto [code, message] = run("--site " + (folder_.path() / "site").string());
    EXPECT_EQ(code, 1);
    EXPECT_EQ(message.starts_with("nlsgen: " + path + ":3: "), true) << message;
    EXPECT_EQ(readText(folder_.path() / "out/velnls.dat") == before, true);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path() / "out"), fs::directory_iterator()), 2);
}

TEST_F(BrokenSource, APageOfTheUsersOwnIsCompiledIn) {
    (void)folder_.write("site/710.map", "window 0621 063A\n00..7F 0000\nC1..DA 0621\n");
    EXPECT_EQ(run("--site " + (folder_.path() / "site").string()).first, 0);
    const Bytes file = bytesOfFile(folder_.path() / "out/velnls.dat");
    EXPECT_FALSE(firstFault(file).has_value());
    EXPECT_NO_THROW(entryNumber(file, '2', "710", ""));
    EXPECT_NO_THROW(entryNumber(file, '3', "710", "basic"));
    EXPECT_NO_THROW(entryNumber(file, '4', "710", "basic"));
    for (const char *other : {"UTF-8", "UTF-16", "UTF-16BE", "UCS2"}) {
        EXPECT_NO_THROW(entryNumber(file, '1', "710", other));
        EXPECT_NO_THROW(entryNumber(file, '1', other, "710"));
    }
    const std::string dump = std::string(NLSGEN_PROGRAM " dump ") +
                             (folder_.path() / "out/velnls.dat").string() + " --entry 710/UTF-8 >" +
                             (folder_.path() / "dump").string();
    EXPECT_EQ(std::system(dump.c_str()), 0);
    EXPECT_NE(readText(folder_.path() / "dump").find("U+0621 to U+063A, direct"), std::string::npos);
}

TEST_F(BrokenSource, CollationsOfTheUserSortExitAreCompiledIn) {
    (void)folder_.write("site/exits.txt",
                        "# what the exit serves\n1252 house\n\nSHIFT-JIS house # both\neucjis house\n");
    EXPECT_EQ(run("--site " + (folder_.path() / "site").string()).first, 0);
    const Bytes file = bytesOfFile(folder_.path() / "out/velnls.dat");
    EXPECT_FALSE(firstFault(file).has_value());
    for (const char *page : {"1252", "SHIFT-JIS", "EUCJIS"})
        EXPECT_NO_THROW(entryNumber(file, '4', page, "house"));
    const std::string dump = std::string(NLSGEN_PROGRAM " dump ") +
                             (folder_.path() / "out/velnls.dat").string() + " --entry 1252/house >" +
                             (folder_.path() / "dump").string();
    EXPECT_EQ(std::system(dump.c_str()), 0);
    EXPECT_NE(readText(folder_.path() / "dump").find("kind 2"), std::string::npos)
        << readText(folder_.path() / "dump");
}

TEST_F(BrokenSource, AnExitCollationThatCannotBeUsedIsRefused) {
    const struct {
        const char *line;
        const char *message;
    } cases[] = {
        {"1252", "expected a page and a collation"},
        {"1252 a b", "expected a page and a collation"},
        {"4711 house", "expected the name of a page, found 4711"},
        {"1252 ICU-house", "expected a name that does not ask for ICU"},
        {"1252 german", "expected names of its own"},
        {"UTF-8 house", "expected one collation of UTF-8"},
        {"EUCJIS house", "for SHIFT-JIS too"},
        {"1252 a-name-of-twenty-byte", "expected names of at most 19 bytes"},
    };
    for (const auto &wrong : cases) {
        const std::string path = folder_.write("site/exits.txt", std::string("# one\n") + wrong.line + "\n");
        const auto [code, message] = run("--site " + (folder_.path() / "site").string());
        EXPECT_EQ(code, 1) << wrong.line;
        EXPECT_NE(message.find(wrong.message), std::string::npos) << message;
    }
}

TEST_F(BrokenSource, ASiteNameThatIsTakenIsRefused) {
    (void)folder_.write("site/koi8-r.map", "00..7F 0000\n");
    const auto [code, message] = run("--site " + (folder_.path() / "site").string());
    EXPECT_EQ(code, 1);
    EXPECT_NE(message.find("expected names of its own"), std::string::npos) << message;
}

TEST(CheckCommand, ExitsWithOneAndNamesTheFault) {
    const TemporaryFolder folder;
    const Bytes &sample = smallSample();
    std::string text(sample.begin(), sample.end());
    const std::string good = folder.write("good.dat", text);
    text[7] = '9';
    const std::string bad = folder.write("bad.dat", text);
    const std::string out = (folder.path() / "out").string();
    EXPECT_EQ(std::system((NLSGEN_PROGRAM " check " + good + " >" + out).c_str()), 0);
    EXPECT_EQ(readText(out), good + ": " + std::to_string(text.size()) + " bytes, no fault\n");
    EXPECT_EQ(WEXITSTATUS(std::system((NLSGEN_PROGRAM " check " + bad + " >" + out).c_str())), 1);
    EXPECT_EQ(readText(out), bad + ": byte 6: expected version 4 or 5\n");
    EXPECT_EQ(WEXITSTATUS(std::system((NLSGEN_PROGRAM " check /nowhere 2>" + out).c_str())), 1);
    EXPECT_EQ(readText(out), "nlsgen: /nowhere: cannot be opened for reading\n");
}

} // namespace
} // namespace velnls::nlsgen::test
