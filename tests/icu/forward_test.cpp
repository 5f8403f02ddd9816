// The real ICU through the forwarding libraries, beside the same ICU called directly: the order of every
// collation that is offered, GB18030 character by character, and the names that have changed.
#include "converted.hpp"
#include "data_file.hpp"
#include "direct_icu.hpp"
#include "library_fixture.hpp"

#include "core/collation_names.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <dlfcn.h>
#include <random>

#include <unicode/ucol.h>

namespace {

using fixture::Bytes;
using namespace direct;

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

std::string withoutBlanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

TEST_F(Forwarded, EachOfThe55NamesOrdersAsIcuDoes) {
    Words all = manyWords();
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
        const Collator tertiary = openCollator(name, UCOL_TERTIARY);
        const Collator secondary = openCollator(name, UCOL_SECONDARY);
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
    const Words all = manyWords();
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
            const Collator collator = openCollator(name, strength);
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
    nlsConversion *const fromUtf8 = library_.conversion("UTF-8", "GB18030");
    nlsConversion *const toUtf8 = library_.conversion("GB18030", "UTF-8");
    constexpr std::uint32_t kRun = 0x100;
    for (std::uint32_t from = 0; from < 0x110000; from += kRun) {
        const std::u16string text = codePoints(from, from + kRun);
        if (text.empty())
            continue;
        const std::string expected = gb18030(text);
        const Bytes code(expected.begin(), expected.end());
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
    nlsConversion *const fromUtf8 = library_.conversion("UTF-8", "GB18030");
    nlsConversion *const toUtf8 = library_.conversion("GB18030", "UTF-8");
    for (const auto &[from, to] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
             {1, 0x4000}, {0x4E00, 0x9000}, {0x20, 0x7F}, {0xF000, 0x12000}, {0x80, 0x800}}) {
        std::u16string text;
        while (text.size() < 20000)
            text += codePoints(from, to);
        const std::string code = gb18030(text);
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
