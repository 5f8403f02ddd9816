// velnls list and velnls info, and what is said about unknown names.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "page_names.hpp"
#include "process.hpp"

namespace velnls::tool {
namespace {

std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        result.push_back(line);
    }
    return result;
}

bool holds(const std::vector<std::string> &list, const std::string &item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

std::vector<std::string> listed(const std::string &group) {
    const Result result = runTool({"list", group});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return lines(result.out);
}

// One line of info by its label.
std::string infoLine(const std::string &page, const std::string &label) {
    const Result result = runTool({"info", page});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    for (const std::string &line : lines(result.out)) {
        if (line.compare(0, label.size() + 1, label + " ") == 0) {
            return line.substr(line.find_first_not_of(' ', label.size()));
        }
    }
    return "no such line: " + label;
}

TEST(List, CharsetsAreOneALine) {
    const std::vector<std::string> names = listed("charsets");
    EXPECT_EQ(names.size(), 53u);
    for (const char *name : {"708", "1252", "SHIFT-JIS", "CP950-HKSCS", "UTF-8", "UTF-32BE"}) {
        EXPECT_TRUE(holds(names, name)) << name;
    }
}

TEST(List, CaseTablesNamePageAndTable) {
    const std::vector<std::string> names = listed("case");
    EXPECT_TRUE(holds(names, "1252 basic"));
    EXPECT_TRUE(holds(names, "1254 turkish"));
}

TEST(List, CollationsNamePageAndCollation) {
    EXPECT_TRUE(holds(listed("collations"), "1252 basic"));
}

TEST(List, ConversionsNameBothPages) {
    const std::vector<std::string> names = listed("conversions");
    EXPECT_EQ(names.size(), 528u);
    EXPECT_TRUE(holds(names, "SHIFT-JIS -> UTF-8"));
    EXPECT_TRUE(holds(names, "UTF-8 -> SHIFT-JIS"));
}

TEST(List, WithoutAGroupEachLineBeginsWithIt) {
    const std::vector<std::string> all = lines(runTool({"list"}).out);
    EXPECT_EQ(all.size(), listed("charsets").size() + listed("case").size() + listed("collations").size() +
                              listed("conversions").size());
    EXPECT_TRUE(holds(all, "charset\t1252"));
    EXPECT_TRUE(holds(all, "case\t1252 basic"));
    EXPECT_TRUE(holds(all, "collation\t1252 basic"));
    EXPECT_TRUE(holds(all, "conversion\tSHIFT-JIS -> UTF-8"));
}

TEST(List, AnUnknownGroupHasExitCode2) {
    const Result result = runTool({"list", "fonts"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
}

TEST(List, ConvertHasItByLetterToo) {
    EXPECT_EQ(runTool({"convert", "-l"}).out, runTool({"list", "charsets"}).out);
}

TEST(Info, OfASingleBytePageIsComplete) {
    const Result result = runTool({"info", "koi8-r"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "name             KOI8-R\n"
                          "kind             single byte\n"
                          "bytes            1\n"
                          "source           charmap KOI8-R of glibc\n"
                          "defined codes    256\n"
                          "undefined codes  0\n"
                          "one-way codes    0\n"
                          "collations       basic\n"
                          "case tables      basic\n"
                          "converts to      UTF-8, UCS2, UTF-16, UTF-16BE, 1251, ISO8859-5, IBM866\n"
                          "converts from    UTF-8, UCS2, UTF-16, UTF-16BE, 1251, ISO8859-5, IBM866\n");
}

TEST(Info, TellsLeadAndTrailBytesAsRanges) {
    EXPECT_EQ(infoLine("SHIFT-JIS", "kind"), "multibyte");
    EXPECT_EQ(infoLine("SHIFT-JIS", "bytes"), "1 to 2");
    EXPECT_EQ(infoLine("SHIFT-JIS", "lead bytes"), "0x81-0x9F, 0xE0-0xFC");
    EXPECT_EQ(infoLine("SHIFT-JIS", "trail bytes"), "0x40-0x7E, 0x80-0xFC");
    EXPECT_EQ(infoLine("CP949", "trail bytes"), "0x41-0x5A, 0x61-0x7A, 0x81-0xFE");
    EXPECT_EQ(infoLine("EUCJIS", "lead bytes"), "0x8E, 0xA1-0xFE");
}

// The counts that the pages' public tables have, one-way codes included: the charmap's codes, and for CP949,
// CP936 and CP950 those of the user-defined areas with their single bytes (190, 2150 and 5810).
TEST(Info, CountsCodesByConvertingThemThereAndBack) {
    const struct {
        const char *page;
        const char *defined;
        const char *oneWay;
    } kCounts[] = {
        {"SHIFT-JIS", "9795", "398"},  {"EUCJIS", "7527", "10"},  {"KSC5601", "8387", "0"},
        {"CP949", "17366", "0"},       {"CP1361", "17177", "0"},  {"GB2312", "7573", "0"},
        {"CP936", "24070", "0"},       {"BIG-5", "14040", "10"},  {"CP950", "19850", "10"},
        {"CP950-HKSCS", "18588", "8"}, {"ISO6937", "398", "0"},   {"1252", "256", "0"},
        {"708", "211", "0"},           {"ISO8859-8", "220", "0"},
    };
    for (const auto &count : kCounts) {
        EXPECT_EQ(infoLine(count.page, "defined codes"), count.defined) << count.page;
        const std::string oneWay = infoLine(count.page, "one-way codes");
        EXPECT_EQ(oneWay.substr(0, oneWay.find(':')), count.oneWay) << count.page;
    }
}

TEST(Info, NamesOneWayCodesAsRanges) {
    EXPECT_EQ(infoLine("BIG-5", "one-way codes").substr(0, 4), "10: ");
    EXPECT_NE(infoLine("SHIFT-JIS", "one-way codes").find("0xED40-0xED"), std::string::npos);
}

TEST(Info, TellsTheByteOrderOfUnits) {
    EXPECT_EQ(infoLine("UTF-16", "kind"), "Unicode, 16-bit units, low byte first");
    EXPECT_EQ(infoLine("UTF-16BE", "kind"), "Unicode, 16-bit units, high byte first");
    EXPECT_EQ(infoLine("UTF-32BE", "kind"), "Unicode, 32-bit units, high byte first");
    EXPECT_EQ(infoLine("UTF-16", "case tables"), "none");
    EXPECT_EQ(infoLine("UTF-8", "bytes"), "1 to 4");
    EXPECT_EQ(infoLine("UTF-8", "defined codes"), "every code point of Unicode");
}

TEST(Info, EveryPageOfTheFileHasASource) {
    for (const std::string &page : listed("charsets")) {
        EXPECT_NE(infoLine(page, "source"), "not recorded in the data file") << page;
    }
}

TEST(Info, OfAnotherDataFileDoesNotGuessTheSource) {
    const Result result = runTool({"info", "1252", "--data", VELNLS_SMALL_DATA});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("source           not recorded in the data file\n"), std::string::npos)
        << result.out;
}

TEST(Info, WithoutAPageHasExitCode2) {
    EXPECT_EQ(runTool({"info"}).exitCode, 2);
}

TEST(UnknownPage, IsNamedWithNearNames) {
    const Result result = runTool({"convert", "-f", "CP1252", "-t", "UTF-8"}, "text");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "velnls: unknown code page 'CP1252'; did you mean 1252? 'velnls list charsets' names all\n");
}

TEST(UnknownPage, OfTheOutputIsNamedToo) {
    const Result result = runTool({"convert", "-f", "1252", "-t", "EUC-JP"}, "text");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err,
              "velnls: unknown code page 'EUC-JP'; did you mean EUCJIS? 'velnls list charsets' names all\n");
}

TEST(UnknownPage, WithoutNearNamesPointsToTheList) {
    const Result result = runTool({"info", "Klingon"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: unknown code page 'Klingon'; 'velnls list charsets' names all\n");
}

TEST(NearNames, ArePagesUnderOtherProgramsNames) {
    const std::vector<std::string> names = listed("charsets");
    const struct {
        const char *wanted;
        const char *page;
    } kNames[] = {
        {"latin1", "ISO8859-1"},    {"ISO-8859-15", "ISO8859-15"},
        {"windows-1251", "1251"},   {"SJIS", "SHIFT-JIS"},
        {"Shift_JIS", "SHIFT-JIS"}, {"cp932", "SHIFT-JIS"},
        {"EUC-KR", "KSC5601"},      {"GBK", "CP936"},
        {"Big5", "BIG-5"},          {"utf8", "UTF-8"},
        {"UTF-16LE", "UTF-16"},     {"CP850", "IBM850"},
        {"850", "IBM850"},          {"TIS-620", "620-2533"},
        {"koi8r", "KOI8-R"},        {"UCS-2", "UCS2"},
    };
    for (const auto &name : kNames) {
        EXPECT_EQ(nearNames(name.wanted, names), std::vector<std::string>{name.page}) << name.wanted;
    }
}

TEST(NearNames, AreMisspellingsWhenNothingFitsBetter) {
    const std::vector<std::string> near = nearNames("SHIFT-JSI", {"SHIFT-JIS", "1252", "UTF-8"});
    EXPECT_EQ(near, std::vector<std::string>{"SHIFT-JIS"});
    EXPECT_EQ(nearNames("1259", {"1250", "1252", "850"}), (std::vector<std::string>{"1250", "1252"}));
    EXPECT_LE(nearNames("125", listed("charsets")).size(), 5u);
    EXPECT_EQ(nearNames("x", listed("charsets")), std::vector<std::string>{});
}

} // namespace
} // namespace velnls::tool
