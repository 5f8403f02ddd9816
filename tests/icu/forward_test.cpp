// The real ICU through the forwarding libraries, beside the same ICU called directly: the order of every
// collation that is offered, GB18030 character by character, and the names that have changed.
#include "converted.hpp"
#include "data_file.hpp"
#include "library_fixture.hpp"

#include "core/collation_names.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <map>
#include <memory>
#include <random>

#include <unicode/ucnv.h>
#include <unicode/ucol.h>
#include <unicode/ustring.h>

namespace {

using fixture::Bytes;

// The libraries of this build, whatever the environment says.
class Forwarded : public testing::Test {
protected:
    static void SetUpTestSuite() {
        setenv("BINPATHX", VELNLS_ICU_HOME, 1);
    }
    static fixture::DataFile file() {
        fixture::DataFile data;
        data.codePage("UTF-8", fixture::CharacterTable::utf8());
        data.codePage("GB18030", fixture::CharacterTable::doubleByte());
        data.codePage("UTF-16", fixture::CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
        data.codePage("UTF-16BE", fixture::CharacterTable::singleByte(fixture::kMultibyte | fixture::kWide));
        data.conversion("GB18030", "UTF-8", 177);
        data.conversion("UTF-8", "GB18030", 176);
        data.conversion("GB18030", "UTF-16", 6);
        data.conversion("UTF-16", "GB18030", 5);
        data.conversion("GB18030", "UTF-16BE", 175);
        data.conversion("UTF-16BE", "GB18030", 174);
        return data;
    }
    fixture::Library library_{file()};
};

using Words = std::vector<std::u16string>;

// Words of many languages, and random ones from the scripts that the collations are about.
Words words() {
    Words all = {u"a",
                 u"A",
                 u"\u00E1",
                 u"\u00C4pfel",
                 u"Apfel",
                 u"apfel",
                 u"Aepfel",
                 u"\u00D6l",
                 u"Ofen",
                 u"Stra\u00DFe",
                 u"Strasse",
                 u"cote",
                 u"cot\u00E9",
                 u"c\u00F4te",
                 u"c\u00F4t\u00E9",
                 u"chico",
                 u"cinco",
                 u"dedo",
                 u"llama",
                 u"luz",
                 u"lz",
                 u"\u00F1u",
                 u"nz",
                 u"\u0161",
                 u"sz",
                 u"\u017E",
                 u"z",
                 u"\u00E5",
                 u"aa",
                 u"\u00E6",
                 u"\u00F8",
                 u"\u0142",
                 u"l",
                 u"lj",
                 u"Lj",
                 u"nj",
                 u"d\u017E",
                 u"\u0131",
                 u"i",
                 u"I",
                 u"\u0130",
                 u"ye-ye",
                 u"yeye",
                 u"co-op",
                 u"coop",
                 u"co op",
                 u"\u65E5\u672C",
                 u"\u4E2D\u6587",
                 u"\u5B57",
                 u"\u304B",
                 u"\u30AB",
                 u"\u304C",
                 u"\u30FC",
                 u"\uAC00",
                 u"\uB098",
                 u"1",
                 u"10",
                 u"2",
                 u"\u0661",
                 u"\U0001F600",
                 u"\U00020000"};
    constexpr std::pair<char16_t, char16_t> kScripts[] = {
        {0x61, 0x7A},     {0xC0, 0x17F},  {0x386, 0x3CE},   {0x410, 0x45F},   {0x5D0, 0x5EA},
        {0x621, 0x64A},   {0x905, 0x939}, {0xA85, 0xAB9},   {0xB85, 0xBB9},   {0xC05, 0xC39},
        {0xC85, 0xCB9},   {0xE01, 0xE4B}, {0x1EA0, 0x1EF9}, {0x3041, 0x30FA}, {0x4E00, 0x9FA5},
        {0xAC00, 0xD7A3}, {0x20, 0x40}};
    std::mt19937 random(4242);
    for (const auto &[first, last] : kScripts)
        for (int i = 0; i < 60; ++i) {
            std::u16string word;
            for (auto length = 1 + random() % 5; length > 0; --length)
                word += static_cast<char16_t>(first + random() % (last - first + 1U));
            all.push_back(word);
        }
    return all;
}

std::string utf8(const std::u16string &text) {
    std::string out(text.size() * 3 + 1, '\0');
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &length, text.data(),
                static_cast<int32_t>(text.size()), &error);
    EXPECT_TRUE(U_SUCCESS(error));
    out.resize(static_cast<std::size_t>(length));
    return out;
}

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

// What ICU of today calls the order of a name of then.
std::string nameToday(const std::string &name) {
    const std::map<std::string, std::string> changed = {{"UCA", ""},
                                                        {"de__PHONEBOOK", "de@collation=phonebook"},
                                                        {"es__TRADITIONAL", "es@collation=traditional"},
                                                        {"hi__DIRECT", "hi"},
                                                        {"ja__HQ", "ja"},
                                                        {"sh", "sr_Latn"},
                                                        {"zh__PINYIN", "zh@collation=pinyin"}};
    const auto found = changed.find(name);
    return found == changed.end() ? name : found->second;
}

Collator openDirectly(const std::string &name, UCollationStrength strength) {
    UErrorCode error = U_ZERO_ERROR;
    Collator collator(ucol_open(nameToday(name).c_str(), &error), ucol_close);
    EXPECT_TRUE(U_SUCCESS(error)) << name;
    ucol_setStrength(collator.get(), strength);
    return collator;
}

std::string withoutBlanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

TEST_F(Forwarded, EachOfThe55NamesOrdersAsIcuDoes) {
    Words all = words();
    int names = 0;
    long compares = 0;
    velnls::forEachIcuCollation([&](std::string_view offered) {
        const std::string name(offered.substr(velnls::kIcuPrefix.size()));
        SCOPED_TRACE(name);
        ++names;
        nlsLocale *const locale = library_.locale("UTF-8", std::string(offered).c_str());
        EXPECT_NE(locale, nullptr);
        if (locale == nullptr)
            return true;
        const Collator tertiary = openDirectly(name, UCOL_TERTIARY);
        const Collator secondary = openDirectly(name, UCOL_SECONDARY);
        std::mt19937 random(7);
        for (int i = 0; i < 6000; ++i) {
            const std::u16string &a = all[random() % all.size()];
            const std::u16string &b = all[random() % all.size()];
            const std::string textA = utf8(a);
            const std::string textB = utf8(b);
            // Trailing blanks do not count here, and do in ICU.
            const std::string cutA = withoutBlanks(textA);
            const std::string cutB = withoutBlanks(textB);
            for (const bool sensitive : {true, false}) {
                std::int16_t result = 99;
                EXPECT_EQ(nlsCompare(locale, textA.c_str(), textB.c_str(), sensitive ? 1 : 0, &result),
                          NLS_OK);
                UErrorCode error = U_ZERO_ERROR;
                const int expected = ucol_strcollUTF8((sensitive ? tertiary : secondary).get(), cutA.data(),
                                                      static_cast<int32_t>(cutA.size()), cutB.data(),
                                                      static_cast<int32_t>(cutB.size()), &error);
                // A text of blanks alone is empty, and before every other.
                if (!cutA.empty() && !cutB.empty()) {
                    EXPECT_EQ(result, expected) << textA << " " << textB << " " << sensitive;
                }
                ++compares;
            }
        }
        return true;
    });
    EXPECT_EQ(names, 55);
    EXPECT_EQ(compares, 55L * 6000 * 2);
}

TEST_F(Forwarded, KeysAreIcusKeys) {
    const Words all = words();
    velnls::forEachIcuCollation([&](std::string_view offered) {
        const std::string name(offered.substr(velnls::kIcuPrefix.size()));
        SCOPED_TRACE(name);
        nlsLocale *const locale = library_.locale("UTF-8", std::string(offered).c_str());
        for (const auto &[mode, strength] :
             std::vector<std::pair<std::uint16_t, UCollationStrength>>{{1, UCOL_TERTIARY},
                                                                       {0, UCOL_SECONDARY},
                                                                       {4, UCOL_PRIMARY},
                                                                       {7, UCOL_QUATERNARY},
                                                                       {0x4001, UCOL_PRIMARY}}) {
            const Collator collator = openDirectly(name, strength);
            for (const std::u16string &word : all) {
                std::string text = utf8(word);
                unsigned char key[400];
                unsigned char expected[400];
                std::uint16_t length = 0;
                EXPECT_EQ(nlsSortKey(locale, text.data(), sizeof key, mode, 0, key, &length), NLS_OK);
                const int32_t size =
                    ucol_getSortKey(collator.get(), word.data(), static_cast<int32_t>(word.size()), expected,
                                    sizeof expected);
                EXPECT_EQ(Bytes(key, key + length + 1), Bytes(expected, expected + size)) << text;
            }
        }
        return true;
    });
}

TEST_F(Forwarded, TheOrdersOfVariantsAreTheirOwn) {
    const auto compared = [&](const char *collation, const char *a, const char *b) {
        std::int16_t result = 99;
        EXPECT_EQ(nlsCompare(library_.locale("UTF-8", collation), a, b, 1, &result), NLS_OK);
        return static_cast<int>(result);
    };
    EXPECT_EQ(compared("ICU-de__PHONEBOOK", "\xC3\xA4z", "af"), -1) << "as aez";
    EXPECT_EQ(compared("ICU-UCA", "\xC3\xA4z", "af"), 1);
    EXPECT_EQ(compared("ICU-es__TRADITIONAL", "chico", "cz"), 1) << "ch is a letter behind c";
    EXPECT_EQ(compared("ICU-es", "chico", "cz"), -1);
    EXPECT_EQ(compared("ICU-sh", "lja", "lz"), 1) << "lj is a letter behind l";
    EXPECT_EQ(compared("ICU-sv", "\xC3\xA5", "z"), 1);
    EXPECT_EQ(compared("ICU-zh_TW", "\xE4\xB8\x80", "\xE4\xB8\x81"), -1) << "one stroke, two strokes";
}

TEST_F(Forwarded, LanguagesWithoutAnOrderOfTheirOwnOpenAndUnknownOnesDoNot) {
    for (const char *const known :
         {"ICU-ca", "ICU-fr", "ICU-sw", "ICU-fr_CA", "ICU-de", "ICU-en", "ICU-en_ZZ", "ICU-UCA"})
        EXPECT_EQ(library_.tryLocale("UTF-8", known), NLS_OK) << known;
    for (const char *const unknown : {"ICU-xx", "ICU-tlh", "ICU-english", "ICU-xx_DE", "ICU-C"})
        EXPECT_EQ(library_.tryLocale("UTF-8", unknown), NLS_E_NOMEM) << unknown;
}

TEST_F(Forwarded, Strength4IgnoresAccentsButNotCase) {
    nlsLocale *const locale = library_.locale("UTF-8", "ICU-UCA");
    const auto compared = [&](const char *a, const char *b, std::int16_t mode) {
        std::int16_t result = 99;
        EXPECT_EQ(nlsCompare(locale, a, b, mode, &result), NLS_OK);
        return static_cast<int>(result);
    };
    EXPECT_EQ(compared("resume", "r\xC3\xA9sum\xC3\xA9", 8), 0);
    EXPECT_EQ(compared("resume", "Resume", 8), -1);
    EXPECT_EQ(compared("resume", "Resume", 4), 0) << "what strength 4 set is taken back";
    EXPECT_EQ(compared("resume", "Resume", 0), 0);
    EXPECT_EQ(compared("resume", "r\xC3\xA9sum\xC3\xA9", 1), -1);
    // Whatever strength was used before, the one asked for counts.
    struct Expected {
        std::int16_t mode;
        int accents, cases;
    };
    constexpr Expected kAll[] = {{0, -1, 0}, {1, -1, -1}, {4, 0, 0}, {5, -1, 0}, {6, -1, -1}, {8, 0, -1}};
    for (const Expected &before : kAll)
        for (const Expected &now : kAll) {
            compared("a", "b", before.mode);
            EXPECT_EQ(compared("resume", "r\xC3\xA9sume", now.mode), now.accents)
                << now.mode << " after " << before.mode;
            compared("a", "b", before.mode);
            EXPECT_EQ(compared("resume", "Resume", now.mode), now.cases)
                << now.mode << " after " << before.mode;
        }
}

// ---- GB18030 ----

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

bool isSurrogate(std::uint32_t point) {
    return point >= 0xD800 && point <= 0xDFFF;
}

// A run of code points as UTF-16; zero, which ends a text, and surrogates left out.
std::u16string run(std::uint32_t from, std::uint32_t to) {
    std::u16string text;
    for (std::uint32_t point = std::max(from, 1U); point < to; ++point) {
        if (isSurrogate(point))
            continue;
        if (point >= 0x10000) {
            text += static_cast<char16_t>(0xD7C0 + (point >> 10));
            text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        } else {
            text += static_cast<char16_t>(point);
        }
    }
    return text;
}

Bytes unitsOf(const std::u16string &text, bool swapped) {
    return fixture::units16({text.begin(), text.end()}, swapped);
}

Bytes converted(nlsConversion *conversion, Bytes source, std::size_t capacity) {
    Bytes out(capacity);
    source.resize(source.size() + 2);
    nlsStr destination{reinterpret_cast<char *>(out.data()), static_cast<std::uint32_t>(capacity), 0};
    EXPECT_EQ(nlsConvertFromUCS2(conversion, source.data(), static_cast<std::uint32_t>(source.size() - 2),
                                 &destination),
              NLS_OK);
    out.resize(destination.length);
    return out;
}

TEST_F(Forwarded, Gb18030TurnsEveryCodePointRoundAsIcuDoes) {
    UErrorCode error = U_ZERO_ERROR;
    const Converter gb(ucnv_open("gb18030", &error), ucnv_close);
    ASSERT_TRUE(U_SUCCESS(error));
    nlsConversion *const fromUtf8 = library_.conversion("UTF-8", "GB18030");
    nlsConversion *const toUtf8 = library_.conversion("GB18030", "UTF-8");
    constexpr std::uint32_t kRun = 0x100;
    for (std::uint32_t from = 0; from < 0x110000; from += kRun) {
        const std::u16string text = run(from, from + kRun);
        if (text.empty())
            continue;
        char expected[kRun * 4 + 1];
        error = U_ZERO_ERROR;
        const int32_t size = ucnv_fromUChars(gb.get(), expected, sizeof expected, text.data(),
                                             static_cast<int32_t>(text.size()), &error);
        ASSERT_TRUE(U_SUCCESS(error));
        const Bytes code(expected, expected + size);
        const std::string utf = utf8(text);
        const Bytes utfBytes(utf.begin(), utf.end());
        ASSERT_EQ(converted(fromUtf8, utfBytes, utf.size() * 4), code) << std::hex << from;
        ASSERT_EQ(converted(toUtf8, code, code.size() * 4), utfBytes) << std::hex << from;
        for (const bool swapped : {false, true}) {
            const char *const page = swapped ? "UTF-16BE" : "UTF-16";
            const Bytes units = unitsOf(text, swapped);
            ASSERT_EQ(converted(library_.conversion(page, "GB18030"), units, units.size() * 4), code);
            ASSERT_EQ(converted(library_.conversion("GB18030", page), code, code.size() * 4), units);
        }
    }
}

TEST_F(Forwarded, LongTextsOfGb18030AreRight) {
    UErrorCode error = U_ZERO_ERROR;
    const Converter gb(ucnv_open("gb18030", &error), ucnv_close);
    nlsConversion *const fromUtf8 = library_.conversion("UTF-8", "GB18030");
    nlsConversion *const toUtf8 = library_.conversion("GB18030", "UTF-8");
    for (const auto &[from, to] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
             {1, 0x4000}, {0x4E00, 0x9000}, {0x20, 0x7F}, {0xF000, 0x12000}, {0x80, 0x800}}) {
        std::u16string text;
        while (text.size() < 20000)
            text += run(from, to);
        std::string code(text.size() * 4, '\0');
        error = U_ZERO_ERROR;
        code.resize(static_cast<std::size_t>(ucnv_fromUChars(gb.get(), code.data(),
                                                             static_cast<int32_t>(code.size()), text.data(),
                                                             static_cast<int32_t>(text.size()), &error)));
        const std::string utf = utf8(text);
        EXPECT_EQ(converted(fromUtf8, Bytes(utf.begin(), utf.end()), utf.size() * 4),
                  Bytes(code.begin(), code.end()));
        EXPECT_EQ(converted(toUtf8, Bytes(code.begin(), code.end()), code.size() * 4),
                  Bytes(utf.begin(), utf.end()));
    }
}

// ---- The libraries themselves ----

TEST_F(Forwarded, TheDataLibraryBringsIcusData) {
    void *const library = dlopen(VELNLS_ICU_HOME "/bin/icudata-qmx.so", RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    void *const marker = dlsym(library, "icudata_qmx");
    ASSERT_NE(marker, nullptr);
    const auto data = reinterpret_cast<const void *(*)()>(marker);
    EXPECT_NE(data(), nullptr);
}

} // namespace
