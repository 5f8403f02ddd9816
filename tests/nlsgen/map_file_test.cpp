// This system's own map files, and the pages of the user's own that are made from them.
#include "map_file.hpp"

#include "data_file.hpp"
#include "real_files.hpp"
#include "site_page.hpp"
#include "temporary_folder.hpp"
#include "verifier.hpp"

#include <gtest/gtest.h>

namespace velnls::nlsgen::test {
namespace {

class OwnMap : public testing::Test {
protected:
    std::string problem(const std::string &text) {
        const std::string path = folder_.write("own.map", text);
        const std::string message = problemOf([&] { makeSitePage("OWN", path, unicode_); });
        return message.starts_with(path) ? message.substr(path.size() - 7) : message;
    }
    // Both look-ups of the page's mapping agree with its codes.
    void prove(const std::string &text) {
        auto [page, mapping] = makeSitePage("OWN", folder_.write("own.map", text), unicode_);
        PlannedEntry entry;
        entry.name = "OWN";
        entry.name2 = "UTF-8";
        entry.kind = file::kConversion;
        entry.mapping = std::make_shared<const MappingData>(mapping);
        const Bytes bytes = layOut({entry});
        EXPECT_NO_THROW(verifyMappings(bytes, {std::make_shared<const Page>(page)}));
    }
    TemporaryFolder folder_;
    UnicodeData unicode_{NLSGEN_UNICODE "/UnicodeData.txt"};
};

TEST_F(OwnMap, ReadsCodesRangesWindowsAndComments) {
    const MapFile map = readMapFile(folder_.write("a.map", "# head\nwindow 0600 06FF\n00..7F 0000\n"
                                                           "C1 0621 # hamza\n8140 4E00 one-way\n"));
    ASSERT_EQ(map.codes.lines.size(), 130U);
    EXPECT_EQ(map.codes.lines[127].unicode, 0x7FU);
    EXPECT_EQ(map.codes.lines[128].code, 0xC1U);
    EXPECT_EQ(map.codes.lines[129].bytes, 2);
    EXPECT_TRUE(map.codes.lines[129].oneWay);
    ASSERT_TRUE(map.window.has_value());
    EXPECT_EQ(map.window->second, 0x6FFU);
}

TEST_F(OwnMap, BadLinesAreNamedWithTheirNumber) {
    EXPECT_EQ(problem("\nXY 0041\n"),
              "own.map:2: expected a code of two or four hexadecimal digits, found XY");
    EXPECT_EQ(problem("411 0041\n"),
              "own.map:1: expected a code of two or four hexadecimal digits, found 411");
    EXPECT_EQ(problem("41\n"), "own.map:1: expected a Unicode value of at most 10FFFF behind the code");
    EXPECT_EQ(problem("41 110000\n"),
              "own.map:1: expected a Unicode value of at most 10FFFF behind the code");
    EXPECT_EQ(problem("8140..8240 4E00\n"),
              "own.map:1: expected a range that only counts the last byte up, found 8140..8240");
    EXPECT_EQ(problem("41 0041 maybe\n"), "own.map:1: expected nothing more or one-way, found maybe");
    EXPECT_EQ(problem("window 0600\n"),
              "own.map:1: expected window, a low and a high Unicode value up to FFFF");
    EXPECT_EQ(problem("# nothing\n"), "own.map: expected the codes of a page, found none");
}

TEST_F(OwnMap, TwoCodesOfOneCharacterAreRefusedUnlessOneIsOneWay) {
    EXPECT_EQ(problem("00..7F 0000\n80 00E9\n81 00E9\n"),
              "own.map:3: page OWN: expected one code for U+00E9, but 80 and 81 both turn back to it");
    prove("00..7F 0000\n80 00E9\n81 00E9 one-way\n");
}

TEST_F(OwnMap, TheCharacterOfAOneWayCodeTurnsBackToAnother) {
    EXPECT_EQ(
        problem("00..7F 0000\n80 00E9 one-way\n"),
        "own.map:2: page OWN: expected another code of U+00E9, to which the one-way code 80 turns back");
}

TEST_F(OwnMap, ALeadByteIsNoCodeOfItsOwn) {
    EXPECT_EQ(problem("00..7F 0000\n81 00E9\n8140 4E00\n"),
              "own.map:2: expected a lead byte of other codes not to be a code of its own");
    EXPECT_EQ(problem("00..7F 0000\n0041 4E00\n"), "own.map:2: expected a lead byte above 00");
}

TEST_F(OwnMap, PagesOfEveryLayoutTurnBack) {
    prove("00..7F 0000\n80 20AC\nC1..DA 0621\n");
    prove("window 0621 063A\n00..7F 0000\n80 20AC\nC1..DA 0621\n");
    prove("00..7F 0000\n");                                                          // nothing but ASCII
    prove("00..1F 0000\n20..2F 0080\n40 0020\nC1..C9 0041\n81..89 0061\nFF 009F\n"); // not ASCII at all
    prove("00..7F 0000\n80 20AC\n8140..817E 4E00\n9FA1..9FFE 4E80\nE040..E07E F000\n");
    prove("00..7F 0000\n8140..817E 4E00\n8240 20000\n8241 2A6D6\n");
}

} // namespace
} // namespace velnls::nlsgen::test
