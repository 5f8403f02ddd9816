// Names of locales taken apart, and what follows from their parts.
#include "platform/locale_name.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using velnls::platform::ansiCodePage;
using velnls::platform::countryName;
using velnls::platform::LocaleName;
using velnls::platform::parseLocaleName;

// The page of a name, -1 when it names no language.
int page(const char *name) {
    LocaleName parts;
    return parseLocaleName(name, parts) ? ansiCodePage(parts) : -1;
}

std::string country(const char *name) {
    LocaleName parts;
    const char *const found = parseLocaleName(name, parts) ? countryName(parts) : nullptr;
    return found == nullptr ? "none" : found;
}

TEST(LocaleName, NamesWithoutALanguage) {
    for (const char *const name :
         {"", "C", "POSIX", "C.UTF-8", "c", ".UTF-8", "_DE", "@euro", "german", "/x/y", "*"})
        EXPECT_EQ(page(name), -1) << name;
}

TEST(LocaleName, LanguageDecides) {
    EXPECT_EQ(page("de_DE.UTF-8"), 1252);
    EXPECT_EQ(page("de"), 1252);
    EXPECT_EQ(page("pl_PL.ISO-8859-2"), 1250);
    EXPECT_EQ(page("ru_UA"), 1251);
    EXPECT_EQ(page("el_CY"), 1253);
    EXPECT_EQ(page("tr_TR.utf8"), 1254);
    EXPECT_EQ(page("he_IL"), 1255);
    EXPECT_EQ(page("ar_EG"), 1256);
    EXPECT_EQ(page("lt_LT"), 1257);
    EXPECT_EQ(page("vi_VN"), 1258);
    EXPECT_EQ(page("th_TH"), 874);
    EXPECT_EQ(page("ja_JP.eucJP"), 932);
    EXPECT_EQ(page("ko_KR"), 949);
    EXPECT_EQ(page("fil_PH"), 1252) << "three letters";
}

TEST(LocaleName, TerritoryAndScriptDecideWhereOneLanguageHasSeveral) {
    EXPECT_EQ(page("zh"), 936);
    EXPECT_EQ(page("zh_CN.GB18030"), 936);
    EXPECT_EQ(page("zh_SG"), 936);
    EXPECT_EQ(page("zh_TW.Big5"), 950);
    EXPECT_EQ(page("zh_HK"), 950);
    EXPECT_EQ(page("zh_MO"), 950);
    EXPECT_EQ(page("sr_RS"), 1251);
    EXPECT_EQ(page("sr_RS@latin"), 1250);
    EXPECT_EQ(page("sr_RS.UTF-8@latin"), 1250);
    EXPECT_EQ(page("uz_UZ"), 1254);
    EXPECT_EQ(page("uz_UZ@cyrillic"), 1251);
    EXPECT_EQ(page("sd_IN"), 1256);
    EXPECT_EQ(page("sd_IN@devanagari"), 0);
    EXPECT_EQ(page("de_DE@euro"), 1252) << "a modifier that is no script";
}

TEST(LocaleName, LanguagesInUnicodeAloneHavePage0) {
    for (const char *const name : {"hi_IN", "ka_GE", "hy_AM", "mt_MT", "csb_PL", "xx_YY"})
        EXPECT_EQ(page(name), 0) << name;
}

TEST(LocaleName, LetterCaseDoesNotMatter) {
    EXPECT_EQ(page("ZH_tw"), 950);
    EXPECT_EQ(country("DE_de"), "Germany");
}

TEST(LocaleName, TerritoryHasAnEnglishName) {
    EXPECT_EQ(country("zh_HK.UTF-8"), "Hong Kong");
    EXPECT_EQ(country("en_HK"), "Hong Kong");
    EXPECT_EQ(country("de_AT@euro"), "Austria");
    EXPECT_EQ(country("ca_AD"), "Andorra") << "the first of the table";
    EXPECT_EQ(country("en_ZW"), "Zimbabwe") << "the last";
    EXPECT_EQ(country("sv_AX"), "Aland Islands");
}

TEST(LocaleName, NoTerritoryHasNoName) {
    for (const char *const name : {"zh", "zh.UTF-8", "zh_", "zh_H", "zh_HKG", "zh_XX", "C", ""})
        EXPECT_EQ(country(name), "none") << name;
}

} // namespace
