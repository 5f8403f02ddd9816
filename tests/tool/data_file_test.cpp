// The data file: the built-in one, another one, and broken ones.
#include <gtest/gtest.h>

#include <algorithm>

#include "process.hpp"
#include "status.hpp"

namespace velnls::tool {
namespace {

Result convertWith(const std::string &data) {
    return runTool({"convert", "-f", "1252", "--data", data}, "\xE9");
}

TEST(DataFile, BuiltInNeedsNoFileAnywhere) {
    const Result result = runShell("cd / && printf '\\351' | env -i \"$VELNLS\" convert -f 1252");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "\xC3\xA9");
}

TEST(DataFile, AnotherTakesThePlaceOfTheBuiltInOne) {
    const Result result = convertWith(VELNLS_SMALL_DATA);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "\xC3\xA9");
    const auto count = [](const std::vector<std::string> &arguments) {
        const std::string out = runTool(arguments).out;
        return std::count(out.begin(), out.end(), '\n');
    };
    EXPECT_LT(count({"list", "conversions", "--data", VELNLS_SMALL_DATA}), count({"list", "conversions"}));
    EXPECT_EQ(count({"list", "charsets", "--data", VELNLS_SMALL_DATA}), count({"list", "charsets"}));
    EXPECT_EQ(count({"convert", "-l", "--data", VELNLS_SMALL_DATA}), count({"list", "charsets"}));
}

// Of the small file's conversions only those with UTF-8 are listed, so these go through UTF-8.
TEST(DataFile, SmallOneConvertsWhatTheLargeOneConverts) {
    const struct {
        const char *from;
        const char *to;
        std::string input;
    } kPairs[] = {
        {"1252", "IBM850", BYTES("a\xE9\0?")},
        {"SHIFT-JIS", "EUCJIS", "\x93\xFA\x96\x7B"},
        {"1251", "UTF-16", "\xC6"},
        {"UTF-16BE", "CP949", BYTES("\xAC\0")},
        {"UTF-32", "1252", BYTES("\xAC\x20\0\0")},
    };
    for (const auto &pair : kPairs) {
        const Result large = runTool({"convert", "-f", pair.from, "-t", pair.to}, pair.input);
        const Result small =
            runTool({"convert", "-f", pair.from, "-t", pair.to, "--data", VELNLS_SMALL_DATA}, pair.input);
        EXPECT_EQ(large.exitCode, 0) << pair.from << " to " << pair.to << large.err;
        EXPECT_EQ(small.exitCode, 0) << pair.from << " to " << pair.to << small.err;
        EXPECT_EQ(small.out, large.out) << pair.from << " to " << pair.to;
    }
}

TEST(DataFile, IsNotTakenFromTheEnvironment) {
    const Result result =
        runShell("printf '\\351' | VELNLS_DATA=/nowhere NLS_DATA=/nowhere \"$VELNLS\" convert -f 1252");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(DataFile, MissingIsNamedWithExitCode2) {
    const Result result = convertWith("/nowhere/velnls.dat");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "velnls: /nowhere/velnls.dat: No such file or directory\n");
}

TEST(DataFile, ThatIsAFolderIsNamedWithExitCode2) {
    const Result result = convertWith("/");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: /: Is a directory\n");
}

TEST(DataFile, EmptyOrOfAnotherKindIsSaidToBeNone) {
    const Folder folder;
    for (const char *content : {"", "424", "Dear Sir or Madam, this is a letter."}) {
        const std::string file = folder.write("data", content);
        const Result result = convertWith(file);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err,
                  "velnls: " + file +
                      ": not an NLS data file: it does not begin with the number 4242 (status 5)\n");
    }
}

TEST(DataFile, OfAnotherVersionIsSaidToBe) {
    const Folder folder;
    const std::string file = folder.write("data", "42421603001     ");
    const Result result = convertWith(file);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err,
              "velnls: " + file + ": the version of the data file is neither 4 nor 5 (status 6)\n");
}

TEST(DataFile, WithACutDirectoryIsSaidToBe) {
    const Folder folder;
    const std::string file = folder.write("data", readFile(VELNLS_DATA).substr(0, 1000));
    const Result result = convertWith(file);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err,
              "velnls: " + file +
                  ": the directory of the data file is cut short or names a table without a place (status "
                  "4)\n");
}

TEST(DataFile, WithCutTablesNamesThePage) {
    const Folder folder;
    // Directory whole, tables gone.
    const std::string file = folder.write("data", readFile(VELNLS_DATA).substr(0, 16 + 999 * 64));
    const Result result = convertWith(file);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find(file), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("is cut short or malformed (status 21)"), std::string::npos) << result.err;
}

TEST(DataFile, WithoutThePageSaysSo) {
    const Folder folder;
    const std::string file = folder.write("data", "42421605000     ");
    const Result result = convertWith(file);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err, "velnls: unknown code page '1252'; 'velnls list charsets' names all\n");
}

// The data file with every directory entry that names UTF-8 spelled otherwise.
std::string withoutUtf8() {
    std::string bytes = readFile(VELNLS_DATA);
    const std::size_t entries = std::stoul(bytes.substr(8, 3));
    const std::size_t start = std::stoul(bytes.substr(4, 2));
    for (std::size_t i = 0; i < 2 * entries; ++i) {
        // Two names of 20 bytes begin each entry of 64.
        const std::size_t name = start + i / 2 * 64 + i % 2 * 20;
        if (bytes.compare(name, 6, BYTES("UTF-8\0")) == 0) {
            bytes[name] = 'X';
        }
    }
    return bytes;
}

TEST(DataFile, WithoutUtf8StillConvertsWhatItLists) {
    const Folder folder;
    const std::string file = folder.write("data", withoutUtf8());
    const Result direct = runTool({"convert", "-f", "1252", "-t", "IBM850", "--data", file}, "\xE9");
    EXPECT_EQ(direct.exitCode, 0) << direct.err;
    EXPECT_EQ(direct.out, "\x82");
    const Result none = runTool({"convert", "-f", "1252", "-t", "1251", "--data", file}, "a");
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.err, "velnls: no conversion from 1252 to 1251 in " + file +
                            ", neither directly nor through UTF-8\n");
    const Result info = runTool({"info", "1252", "--data", file});
    EXPECT_EQ(info.exitCode, 0) << info.err;
    EXPECT_NE(info.out.find("defined codes    not known: the data file has no UTF-8\n"), std::string::npos)
        << info.out;
}

TEST(StatusWords, EveryStatusOfTheHeaderHasItsOwn) {
    std::vector<std::string> words;
    for (const nlsStatus status : {NLS_OK,          NLS_E_NOMEM,       NLS_E_BUFFER,      NLS_E_READ,
                                   NLS_E_MAGIC,     NLS_E_VERSION,     NLS_E_NOSJIS,      NLS_E_ICU,
                                   NLS_E_NOCHARSET, NLS_E_NOCOLLATION, NLS_E_NOCASETABLE, NLS_E_BADID,
                                   NLS_E_HANDLE,    NLS_E_NULLARG,     NLS_E_BADCHAR,     NLS_E_ICULOAD,
                                   NLS_E_CONVSTATE, NLS_E_END,         NLS_E_TABLE,       NLS_E_BADTABLE,
                                   NLS_E_BUSY,      NLS_E_NOTLOCALE,   NLS_E_NOSORT,      NLS_E_NOTCONV,
                                   NLS_E_NOCHARTAB, NLS_E_OSLOCALE,    NLS_E_NOSORTTAB,   NLS_E_SURROGATE,
                                   NLS_R_CHANGED,   NLS_R_SUBSTITUTED, NLS_R_CUT}) {
        words.push_back(statusWords(status));
        EXPECT_NE(words.back(), "unknown status") << status;
    }
    std::sort(words.begin(), words.end());
    EXPECT_EQ(std::adjacent_find(words.begin(), words.end()), words.end());
    EXPECT_STREQ(statusWords(99), "unknown status");
}

} // namespace
} // namespace velnls::tool
