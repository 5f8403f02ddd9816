// The calls under the real functions of Windows; and what POSIX builds take for the answers of Windows.
#include "platform/locale_name.hpp"

#include "velnls.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include <windows.h>

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
    ~ThreadLocale() override {
        SetThreadLocale(before_);
    }

private:
    LCID before_ = GetThreadLocale();
};

TEST_F(ThreadLocale, PageIsThatOfTheThread) {
    const std::map<LCID, std::string> pages = {{0x0407, "1252"}, {0x0415, "1250"}, {0x0419, "1251"},
                                               {0x041F, "1254"}, {0x0411, "932"},  {0x0412, "949"},
                                               {0x0804, "936"},  {0x0404, "950"},  {0x0439, "0"}};
    for (const auto &[locale, wanted] : pages) {
        ASSERT_TRUE(SetThreadLocale(locale)) << locale;
        EXPECT_EQ(page(), wanted) << locale;
    }
}

TEST_F(ThreadLocale, Page950FollowsTheCountry) {
    ASSERT_TRUE(SetThreadLocale(0x0C04));
    EXPECT_EQ(page950(), "CP950-HKSCS");
    ASSERT_TRUE(SetThreadLocale(0x0404));
    EXPECT_EQ(page950(), "CP950");
}

// ---- The table of POSIX builds --------------------------------------------------------------------------

struct Answer {
    std::string name; // of the locale, as Windows writes it
    std::string language;
    std::string territory;
    int page;
};

std::string ask(const wchar_t *locale, LCTYPE item) {
    wchar_t text[100] = {};
    GetLocaleInfoEx(locale, item, text, 100);
    std::string out;
    for (const wchar_t *at = text; *at != L'\0'; ++at)
        out += static_cast<char>(*at);
    return out;
}

BOOL CALLBACK collect(wchar_t *locale, DWORD, LPARAM answers) {
    const Answer answer = {ask(locale, LOCALE_SNAME), ask(locale, LOCALE_SISO639LANGNAME),
                           ask(locale, LOCALE_SISO3166CTRYNAME),
                           std::stoi("0" + ask(locale, LOCALE_IDEFAULTANSICODEPAGE))};
    reinterpret_cast<std::vector<Answer> *>(answers)->push_back(answer);
    return TRUE;
}

// The POSIX name of a locale of Windows; empty for those that have none: languages without a territory, other
// orders of a locale, scripts that POSIX names do not tell.
std::string posixName(const Answer &answer) {
    const auto has = [&](const char *part) { return answer.name.find(part) != std::string::npos; };
    if (!has("-") || has("_") || has("-Adlm") || has("-Hans-") || has("-Mong-") ||
        answer.territory.size() != 2)
        return {};
    std::string script;
    for (const auto &[part, modifier] :
         {std::pair("-Latn", "@latin"), {"-Cyrl", "@cyrillic"}, {"-Deva", "@devanagari"}})
        if (has(part))
            script = modifier;
    return answer.language + "_" + answer.territory + script;
}

TEST(PagesOfPosixBuilds, AreThoseOfWindows) {
    std::vector<Answer> answers;
    ASSERT_TRUE(EnumSystemLocalesEx(collect, LOCALE_ALL, reinterpret_cast<LPARAM>(&answers), nullptr));
    ASSERT_GT(answers.size(), 400U);
    // Where Windows has a page for a language, but none for a territory that was added later, POSIX builds
    // keep to the language.
    std::set<std::string> withPage;
    for (const Answer &answer : answers)
        if (answer.page != 0)
            withPage.insert(answer.language);
    int compared = 0;
    int kept = 0;
    for (const Answer &answer : answers) {
        const std::string name = posixName(answer);
        velnls::platform::LocaleName parts;
        if (name.empty())
            continue;
        ASSERT_TRUE(velnls::platform::parseLocaleName(name.c_str(), parts)) << name;
        const int ours = velnls::platform::ansiCodePage(parts);
        ++compared;
        if (answer.page == 0 && ours != 0 && withPage.count(answer.language) != 0)
            ++kept;
        else
            EXPECT_EQ(ours, answer.page) << answer.name << ", " << name;
    }
    std::printf("%d locales compared, %d of them keep to the page of their language\n", compared, kept);
    EXPECT_GT(compared, 400);
    EXPECT_LT(kept, compared / 10);
}

} // namespace
