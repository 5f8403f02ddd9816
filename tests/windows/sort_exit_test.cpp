// The user sort exit with the real loader of Windows: usortwin.dll is found along PATH, used, and let go of.
#include "library_fixture.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <windows.h>

namespace {

fixture::DataFile siteFile() {
    fixture::DataFile file;
    file.codePage("1252", fixture::CharacterTable::singleByte());
    fixture::CollationTable weights;
    weights.kind = 2;
    file.collation("1252", "house", weights);
    return file;
}

class SortExit : public testing::Test {
protected:
    ~SortExit() override {
        _putenv_s("PATH", before_.c_str());
    }
    static void searchIn(const std::string &path) {
        _putenv_s("PATH", path.c_str());
    }
    static bool loaded() {
        return GetModuleHandleA("usortwin.dll") != nullptr;
    }

private:
    std::string before_ = std::getenv("PATH") == nullptr ? "" : std::getenv("PATH");
};

int compared(nlsLocale *locale, const char *a, const char *b) {
    std::int16_t result = 99;
    EXPECT_EQ(nlsCompare(locale, a, b, 1, &result), NLS_OK);
    return result;
}

TEST_F(SortExit, IsFoundAlongPathAndOrders) {
    searchIn("C:\\no\\such\\folder;;" VELNLS_EXIT_FOLDER ";C:\\windows");
    {
        fixture::Library library(siteFile());
        EXPECT_FALSE(loaded()) << "a handle alone loads nothing";
        nlsLocale *const locale = library.locale("1252", "house");
        ASSERT_NE(locale, nullptr);
        EXPECT_TRUE(loaded());
        EXPECT_EQ(compared(locale, "file9", "file10"), -1) << "by value";
        EXPECT_EQ(compared(locale, "file10", "file9"), 1);
        char text[] = "file9";
        unsigned char keys[2][40];
        std::uint16_t length = 0;
        EXPECT_EQ(nlsSortKey(locale, text, sizeof keys[0], 1, 0, keys[0], &length), NLS_OK);
        char larger[] = "file10";
        EXPECT_EQ(nlsSortKey(locale, larger, sizeof keys[1], 1, 0, keys[1], &length), NLS_OK);
        EXPECT_LT(std::string(reinterpret_cast<char *>(keys[0])),
                  std::string(reinterpret_cast<char *>(keys[1])));
    }
    EXPECT_FALSE(loaded()) << "closing the handle lets go of it";
}

TEST_F(SortExit, MissingGives25) {
    searchIn("C:\\no\\such\\folder;C:\\windows");
    fixture::Library library(siteFile());
    EXPECT_EQ(library.tryLocale("1252", "house"), NLS_E_NOSORT);
}

TEST_F(SortExit, CurrentDirectoryIsNotSearched) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(VELNLS_EXIT_FOLDER);
    searchIn("");
    fixture::Library library(siteFile());
    EXPECT_EQ(library.tryLocale("1252", "house"), NLS_E_NOSORT);
    searchIn(";C:\\no\\such\\folder;;");
    EXPECT_EQ(library.tryLocale("1252", "house"), NLS_E_NOSORT);
    std::filesystem::current_path(before);
}

TEST_F(SortExit, FileThatIsNoLibraryGives25) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "velnls-no-library";
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "usortwin.dll") << "no library";
    searchIn(folder.string() + ";" VELNLS_EXIT_FOLDER);
    {
        fixture::Library library(siteFile());
        EXPECT_EQ(library.tryLocale("1252", "house"), NLS_E_NOSORT) << "the first file of the name decides";
    }
    std::filesystem::remove_all(folder);
}

} // namespace
