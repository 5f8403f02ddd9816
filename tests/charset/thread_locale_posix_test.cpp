// Which of the thread's locale and the environment is asked, with real locales that the test compiles.
#include "velnls.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <locale.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

std::string page() {
    char out[20];
    const nlsStatus status = nlsGetOSCharset(out);
    return status == NLS_OK ? std::string(out) : "status " + std::to_string(status);
}

std::string page950() {
    char out[12];
    EXPECT_EQ(nlsGetVelCharset(nullptr, nullptr, "950", out), NLS_OK);
    return out;
}

class ThreadLocale : public testing::Test {
protected:
    ThreadLocale() {
        for (const char *const variable : {"LC_ALL", "LC_CTYPE", "LANG"})
            ::unsetenv(variable);
        std::setlocale(LC_ALL, "C");
    }
    ~ThreadLocale() override {
        ::uselocale(LC_GLOBAL_LOCALE);
        std::setlocale(LC_ALL, "C");
    }
};

TEST_F(ThreadLocale, NothingSaidGives28AndNoCountry) {
    EXPECT_EQ(page(), "status 28");
    EXPECT_EQ(page950(), "CP950");
    ::setenv("LANG", "C.UTF-8", 1);
    EXPECT_EQ(page(), "status 28");
}

TEST_F(ThreadLocale, EnvironmentInItsOrderWhereNoLocaleWasChosen) {
    ::setenv("LANG", "pl_PL.UTF-8", 1);
    EXPECT_EQ(page(), "1250");
    ::setenv("LC_CTYPE", "zh_HK.UTF-8", 1);
    EXPECT_EQ(page(), "950");
    EXPECT_EQ(page950(), "CP950-HKSCS");
    ::setenv("LC_ALL", "ja_JP.UTF-8", 1);
    EXPECT_EQ(page(), "932");
    EXPECT_EQ(page950(), "CP950");
    ::setenv("LC_ALL", "", 1);
    EXPECT_EQ(page(), "950") << "set but empty counts as not set";
    ::setenv("LC_ALL", "C", 1);
    EXPECT_EQ(page(), "status 28") << "the first that is set is the user's word";
}

TEST_F(ThreadLocale, UnicodeLanguagesHavePage0AsOnWindows) {
    ::setenv("LANG", "hi_IN", 1);
    EXPECT_EQ(page(), "0");
}

// Locales of the tests' own, since few systems have any.
class CompiledLocales : public ThreadLocale {
protected:
    void SetUp() override {
        std::string name = "/tmp/velnls-locales.XXXXXX";
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
        // localedef also warns by its exit status; whether the locales open is what counts.
        compile("tr_TR", "ISO-8859-9");
        compile("zh_HK", "BIG5-HKSCS");
        ::setenv("LOCPATH", folder_.c_str(), 1);
        turkish_ = ::newlocale(LC_ALL_MASK, "tr_TR", nullptr);
        hongKong_ = ::newlocale(LC_ALL_MASK, "zh_HK", nullptr);
        ASSERT_TRUE(turkish_ != nullptr && hongKong_ != nullptr) << "is the package locales there?";
    }
    void TearDown() override {
        ::uselocale(LC_GLOBAL_LOCALE);
        for (const locale_t one : {turkish_, hongKong_})
            if (one != nullptr)
                ::freelocale(one);
        ::unsetenv("LOCPATH");
        std::filesystem::remove_all(folder_);
    }

    void compile(const std::string &locale, const std::string &charmap) const {
        const std::string command =
            "localedef -c -i " + locale + " -f " + charmap + " " + folder_ + "/" + locale;
        static_cast<void>(std::system((command + " >/dev/null 2>&1").c_str()));
    }

    std::string folder_;
    locale_t turkish_ = nullptr;
    locale_t hongKong_ = nullptr;
};

TEST_F(CompiledLocales, ThreadsOwnComesFirst) {
    ::setenv("LC_ALL", "ja_JP.UTF-8", 1);
    ASSERT_NE(std::setlocale(LC_ALL, "tr_TR"), nullptr);
    EXPECT_EQ(page(), "1254") << "the program's locale before the environment";
    ::uselocale(hongKong_);
    EXPECT_EQ(page(), "950") << "the thread's locale before the program's";
    EXPECT_EQ(page950(), "CP950-HKSCS");
    std::string other;
    std::thread([&] { other = page(); }).join();
    EXPECT_EQ(other, "1254") << "another thread has the program's";
    ::uselocale(turkish_);
    EXPECT_EQ(page(), "1254");
    EXPECT_EQ(page950(), "CP950");
}

} // namespace
