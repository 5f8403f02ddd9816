// The forwarding libraries over a fake of today's ICU: what velnls asks of them, and what they ask of ICU for
// it.
#include <gtest/gtest.h>

#include "converted.hpp"
#include "fake.hpp"
#include "guarded_buffer.hpp"
#include "process.hpp"
#include "world.hpp"

#include "platform/libraries.hpp"

#include <array>
#include <cstring>

namespace {

using fixture::Bytes;
using fixture::bytesOf;
using fixture::units16;
using process::Home;
using process::seen;
using Names = std::vector<std::string>;

constexpr std::int32_t kUsingFallback = -128;
constexpr std::int32_t kUsingDefault = -127;
constexpr std::int32_t kCaseLevel = 3; // an attribute of collators, and its values
constexpr std::int32_t kDefault = -1;
constexpr std::int32_t kOn = 17;

// Where velnls finds the libraries, and Windows what they need.
void use(const Home &home) {
    process::setVariable("BINPATHX", home.path());
    process::setVariable("PATH", home.bin());
}

// A case with the forwarding libraries and an open handle.
void withForwarders(const std::function<void(world::Open &)> &body) {
    const Home home;
    home.putForwarders();
    process::isolated([&] {
        use(home);
        world::Open open;
        body(open);
    });
}

int compared(nlsLocale *locale, const std::string &a, const std::string &b, std::int16_t mode) {
    std::int16_t result = 77;
    EXPECT_TRUE(seen("nlsCompare", 0, nlsCompare(locale, a.c_str(), b.c_str(), mode, &result)));
    return result;
}

Bytes key(nlsLocale *locale, std::string text, std::uint16_t mode) {
    unsigned char out[64];
    std::uint16_t length = 0;
    EXPECT_TRUE(seen("nlsSortKey", 0, nlsSortKey(locale, text.data(), sizeof out, mode, 0, out, &length)));
    return {out, out + length};
}

// Calls of ICU for one converter or collator, and how many.
int countOf(const std::string &call, const std::string &object) {
    int count = 0;
    for (const fake::Call &one : fake::icu.calls)
        count += one.name == call && one.text == object ? 1 : 0;
    return count;
}

// ---- Loading ----

TEST(ForwardLoad, VelnlsLoadsTheThreeAndFindsAllOfItsFunctions) {
    const Home home;
    home.putForwarders();
    process::isolated([&] {
        use(home);
        world::Open open;
        ASSERT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", "ICU-de")));
        Names loads;
        int finds = 0;
        for (const std::string &call : process::loaderCalls())
            if (call.rfind("find ", 0) == 0)
                ++finds;
            else
                loads.push_back(call);
        EXPECT_EQ(loads, (Names{"load " + home.library("icudata-qmx"), "load " + home.library("icuuc-qmx"),
                                "load " + home.library("icui18n-qmx")}));
        EXPECT_EQ(finds, 19);
    });
}

TEST(ForwardLoad, TheDataLibraryLeadsToIcusData) {
    const Home home;
    home.putForwarders();
    process::isolated([&] {
        use(home);
        void *const library = velnls::platform::loadLibrary(home.library("icudata-qmx").c_str());
        ASSERT_NE(library, nullptr);
        void *const function = velnls::platform::findSymbol(library, "icudata_qmx");
        ASSERT_NE(function, nullptr);
        EXPECT_STREQ(reinterpret_cast<const char *(*)()>(function)(), "data of today");
    });
}

TEST(ForwardLoad, WithoutOneOfIcusLibrariesWhatNeedsItFailsAndTheRestWorks) {
    for (const std::string missing : {"dt", "uc", "in"}) {
        const Home home;
        home.putForwarders(missing);
        process::isolated([&] {
            use(home);
            world::Open open;
            EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de"))) << missing;
            EXPECT_TRUE(
                seen("nlsCreateConversion", missing == "in" ? 0 : 8, open.tryConversion("X", "UTF-8")))
                << missing;
            EXPECT_EQ(fake::icu.count("ucol_open"), 0);
            EXPECT_EQ(compared(open.locale("P", "weights"), "a", "b", 1), -1);
            EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        });
    }
}

// ---- Conversions ----

TEST(ForwardConversion, APageOfIcusIsConvertedBothWays) {
    withForwarders([](world::Open &open) {
        const Bytes page = bytesOf("a\x81z");
        const std::pair<const char *, Bytes> forms[] = {{"UTF-8", bytesOf("a\xE4\xBA\x81z")},
                                                        {"UTF-16", units16({'a', 0x4E81, 'z'})},
                                                        {"UTF-16BE", units16({'a', 0x4E81, 'z'}, true)}};
        for (const auto &[name, form] : forms) {
            const auto to = fixture::convert(open.conversion("X", name), page, 40);
            EXPECT_TRUE(seen("nlsConvertFromUCS2", 0, to.status)) << name;
            EXPECT_EQ(to.text(), form) << name;
            // The source is changed in place on the way.
            Bytes source = form;
            source.resize(form.size() + 2);
            Bytes out(40);
            nlsStr target{reinterpret_cast<char *>(out.data()), static_cast<std::uint32_t>(out.size()), 0};
            EXPECT_TRUE(seen("nlsConvertFromUCS2", 0,
                             nlsConvertFromUCS2(open.conversion(name, "X"), source.data(),
                                                static_cast<std::uint32_t>(form.size()), &target)));
            out.resize(target.length);
            EXPECT_EQ(out, page) << name;
        }
    });
}

TEST(ForwardConversion, IcuIsAskedByThePagesNameAndItsAnswersCount) {
    withForwarders([](world::Open &open) {
        fake::icu.openError["MISSING"] = 4;
        EXPECT_TRUE(seen("nlsCreateConversion", 8, open.tryConversion("MISSING", "UTF-8")));
        EXPECT_EQ(fake::icu.last("ucnv_open").text, "MISSING");
        nlsConversion *const conversion = open.conversion("X", "UTF-16");
        fake::icu.conversionError[fake::icu.conversions] = 10;
        EXPECT_TRUE(seen("nlsConvertFromUCS2", 16, fixture::convert(conversion, bytesOf("a"), 20).status));
    });
}

// ---- Names of collations ----

TEST(ForwardNames, WhatHasChangedIsMappedAndAllElseIsAskedAsItIs) {
    withForwarders([](world::Open &open) {
        const std::pair<const char *, const char *> names[] = {
            {"de__PHONEBOOK", "de@collation=phonebook"},
            {"es__TRADITIONAL", "es@collation=traditional"},
            {"hi__DIRECT", "hi"},
            {"ja__HQ", "ja"},
            {"sh", "sr_Latn"},
            {"zh__PINYIN", "zh@collation=pinyin"},
            {"UCA", ""},
            {"de", "de"},
            {"sr_Latn", "sr_Latn"},
            {"zh_TW", "zh_TW"},
            {"de__PHONEBOO", "de__PHONEBOO"},
            {"sh_YU", "sh_YU"}};
        for (const auto &[then, now] : names) {
            EXPECT_TRUE(
                seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", (std::string("ICU-") + then).c_str())));
            EXPECT_EQ(fake::icu.last("ucol_open").text, now) << then;
        }
        EXPECT_EQ(fake::icu.openCollators, static_cast<int>(std::size(names)));
    });
}

// ---- The default warning ----

TEST(ForwardWarning, TheDefaultStandsInForALanguageThatIcuKnows) {
    withForwarders([](world::Open &open) {
        for (const char *const name : {"fr", "ca", "fr_CA", "sr_Latn"})
            fake::icu.openError[name] = kUsingDefault;
        fake::icu.validLocale["fr_CA"] = "fr";
        for (const char *const taken : {"ICU-fr", "ICU-ca", "ICU-fr_CA", "ICU-sh"})
            EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", taken))) << taken;
        EXPECT_EQ(fake::icu.openCollators, 4);
    });
}

TEST(ForwardWarning, ALanguageThatIcuLacksIsRefusedAndItsCollatorClosed) {
    withForwarders([](world::Open &open) {
        for (const char *const name : {"xx", "yy", "zz", "de"})
            fake::icu.openError[name] = kUsingDefault;
        fake::icu.validLocale = {{"xx", "root"}, {"yy", ""}, {"zz", nullptr}};
        for (const char *const refused : {"ICU-xx", "ICU-yy", "ICU-zz"})
            EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", refused))) << refused;
        EXPECT_EQ(fake::icu.openCollators, 0);
        fake::icu.validLocaleError = 1;
        EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de"))) << "nobody knows";
        EXPECT_EQ(fake::icu.openCollators, 0);
        fake::icu.validLocaleError = 0;
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", "ICU-de")));
    });
}

TEST(ForwardWarning, TheRootAndEnglishTakeTheDefault) {
    withForwarders([](world::Open &open) {
        for (const char *const name : {"", "en", "en_ZZ"}) {
            fake::icu.openError[name] = kUsingDefault;
            fake::icu.validLocale[name] = "root";
        }
        for (const char *const taken : {"ICU-UCA", "ICU-en", "ICU-en_ZZ"})
            EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", taken))) << taken;
    });
}

TEST(ForwardWarning, AnErrorOrAnotherWarningIsPassedOn) {
    withForwarders([](world::Open &open) {
        fake::icu.openError["de"] = 2;
        EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de")));
        fake::icu.openError["de"] = kUsingFallback;
        fake::icu.validLocale["de"] = "root";
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", "ICU-de")));
        fake::icu.nullCollator = true;
        fake::icu.openError["fr"] = kUsingDefault;
        EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-fr")));
        EXPECT_EQ(fake::icu.count("ucol_getLocaleByType"), 0);
    });
}

// ---- Strengths ----

// A mode, and with what the collator then works.
struct Strength {
    std::uint16_t mode;
    std::int32_t strength;
    bool caseLevel;
};
constexpr Strength kStrengths[] = {{0, 1, false}, {1, 2, false}, {4, 0, false}, {5, 1, false},
                                   {6, 2, false}, {7, 3, false}, {8, 0, true}};
constexpr std::uint16_t kKeyOnly = 7;

TEST(ForwardStrength, ComparesHaveTheStrengthOfTheirModeWhateverWasBefore) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const Strength &before : kStrengths)
            for (const Strength &now : kStrengths) {
                if (now.mode == kKeyOnly)
                    continue;
                key(locale, "a", before.mode);
                EXPECT_EQ(compared(locale, "a", "b", static_cast<std::int16_t>(now.mode)), -1);
                EXPECT_EQ(fake::icu.usedStrength, now.strength) << now.mode << " after " << before.mode;
                EXPECT_EQ(fake::icu.usedCaseLevel, now.caseLevel) << now.mode << " after " << before.mode;
            }
    });
}

TEST(ForwardStrength, KeysHaveTheStrengthOfTheirModeWhateverWasBefore) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const Strength &before : kStrengths)
            for (const Strength &now : kStrengths) {
                key(locale, "a", before.mode);
                const Bytes made = key(locale, "a", now.mode);
                EXPECT_EQ(made, (Bytes{static_cast<unsigned char>('0' + now.strength), 1, 'a'}));
                EXPECT_EQ(fake::icu.usedStrength, now.strength) << now.mode << " after " << before.mode;
                EXPECT_EQ(fake::icu.usedCaseLevel, now.caseLevel) << now.mode << " after " << before.mode;
            }
        key(locale, "a", 0x4001);
        EXPECT_EQ(fake::icu.usedStrength, 0);
        EXPECT_FALSE(fake::icu.usedCaseLevel);
    });
}

TEST(ForwardStrength, TheCaseLevelIsSetForMode8AndGivenBackBehindIt) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        compared(locale, "a", "b", 8);
        EXPECT_EQ(fake::icu.last("ucol_setStrength").number, 0);
        EXPECT_EQ(fake::icu.last("ucol_setAttribute").number, kCaseLevel);
        EXPECT_EQ(fake::icu.last("ucol_setAttribute").capacity, kOn);
        compared(locale, "a", "b", 4);
        EXPECT_EQ(fake::icu.last("ucol_setAttribute").capacity, kDefault);
        EXPECT_EQ(fake::icu.count("ucol_setAttribute"), 2);
    });
}

TEST(ForwardStrength, AStrengthThatTheCollatorHasIsNotSetAgain) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        compared(locale, "a", "b", 1); // what collators begin with
        EXPECT_EQ(fake::icu.count("ucol_setStrength"), 0);
        compared(locale, "a", "b", 0);
        compared(locale, "c", "d", 0);
        EXPECT_EQ(fake::icu.count("ucol_setStrength"), 1);
        EXPECT_EQ(fake::icu.last("ucol_setStrength").number, 1);
    });
}

// ---- UTF-8 converters ----

TEST(ForwardUtf8, WellFormedTextIsDecodedWithoutIcu) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        std::u16string first;
        fake::icu.order = [&](const std::u16string &a, auto, auto) {
            first = a;
            return 0;
        };
        compared(locale, "warm", "up", 1);
        for (const auto &[text, units] : std::vector<std::pair<std::string, std::u16string>>{
                 {"abc", u"abc"},
                 {"Stra\xC3\x9F"
                  "e",
                  u"Stra\u00DFe"},
                 {"\xE6\x97\xA5\xE6\x9C\xAC", u"\u65E5\u672C"},
                 {"a\xF0\x9F\x98\x80z", u"a\U0001F600z"},
                 {"a text of more than sixteen bytes \xC3\xA4",
                  u"a text of more than sixteen bytes \u00E4"}}) {
            fake::icu.calls.clear();
            EXPECT_EQ(compared(locale, text, "b", 1), 0);
            EXPECT_EQ(first, units);
            EXPECT_EQ(fake::icu.names(), (Names{"ucol_getStrength", "ucol_strcoll"}));
        }
    });
}

TEST(ForwardUtf8, OtherTextIsLeftToIcuWhoseConverterIsResetBehindIt) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        compared(locale, "warm", "up", 1);
        fake::icu.calls.clear();
        compared(locale, "a", "broken \xC3", 1);
        EXPECT_EQ(fake::icu.names(),
                  (Names{"ucol_getStrength", "ucnv_toUChars", "ucol_strcoll", "ucnv_reset"}));
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").text, "utf8");
        EXPECT_EQ(fake::icu.last("ucnv_toUChars").number, 8);
        EXPECT_EQ(fake::icu.last("ucnv_reset").text, "utf8");
        fake::icu.calls.clear();
        compared(locale, "a", "b", 1);
        EXPECT_EQ(fake::icu.names(), (Names{"ucol_getStrength", "ucol_strcoll"})) << "as if nothing had been";
    });
}

TEST(ForwardUtf8, AConverterIsKeptAndServesAllCallsFromOnePlace) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        nlsConversion *const toUtf8 = open.conversion("X", "UTF-8");
        int after = 0;
        for (int i = 0; i < 50; ++i) {
            compared(locale, "a", "b", 1);
            key(locale, "a", 1);
            EXPECT_EQ(fixture::convert(toUtf8, bytesOf("a\x81"), 20).text(), bytesOf("a\xE4\xBA\x81"));
            if (i == 0)
                after = countOf("ucnv_open", "utf8");
        }
        EXPECT_GE(after, 1);
        EXPECT_EQ(countOf("ucnv_open", "utf8"), after);
        EXPECT_EQ(countOf("ucnv_close", "utf8"), 0);
        EXPECT_EQ(countOf("ucnv_reset", "utf8"), 50) << "once for each that ICU wrote UTF-8 with";
    });
}

TEST(ForwardUtf8, WithoutAConverterACompareGives16AndTheNextTriesAgain) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        fake::icu.openError["utf8"] = 4;
        std::int16_t result = 77;
        for (int i = 0; i < 20; ++i) // more than there are slots
            EXPECT_TRUE(seen("nlsCompare", 16, nlsCompare(locale, "a", "b", 1, &result)));
        EXPECT_EQ(countOf("ucnv_open", "utf8"), 20);
        fake::icu.openError.clear();
        fake::icu.calls.clear();
        EXPECT_EQ(compared(locale, "a", "b", 1), -1);
        EXPECT_EQ(compared(locale, "a", "b", 1), -1);
        EXPECT_EQ(countOf("ucnv_open", "utf8"), 1) << "no slot was lost";
    });
}

// The library for converters by itself.
struct Converters {
    explicit Converters(const Home &home)
        : library(velnls::platform::loadLibrary(home.library("icuuc-qmx").c_str())) {
        EXPECT_NE(library, nullptr);
        find("ucnv_open" VELNLS_ICU_SUFFIX, open);
        find("ucnv_close" VELNLS_ICU_SUFFIX, close);
    }
    template <typename Function>
    void find(const char *name, Function &function) const {
        function = reinterpret_cast<Function>(velnls::platform::findSymbol(library, name));
        EXPECT_NE(function, nullptr) << name;
    }
    void *openUtf8() const {
        std::int32_t error = 0;
        return open("utf8", &error);
    }

    void *library;
    void *(*open)(const char *name, std::int32_t *error) = nullptr;
    void (*close)(void *converter) = nullptr;
};

TEST(ForwardUtf8, SixteenAreKeptAndUnloadingTheLibraryClosesThem) {
    const Home home;
    home.putForwarders();
    process::isolated([&] {
        use(home);
        const Converters converters(home);
        std::array<void *, 20> all{};
        for (const int opened : {20, 24}) { // of the second round only those that were closed
            for (void *&one : all)
                one = converters.openUtf8();
            EXPECT_EQ(fake::icu.count("ucnv_open"), opened);
            for (void *const one : all)
                converters.close(one);
            EXPECT_EQ(fake::icu.openConverters, 16);
        }
        EXPECT_EQ(fake::icu.count("ucnv_reset"), 0) << "nothing was converted";
        velnls::platform::unloadLibrary(converters.library);
        EXPECT_EQ(fake::icu.openConverters, 0);
    });
}

// ---- Closing ----

TEST(ForwardClose, NlsCloseClosesCollatorsAndConvertersOfPagesAndKeepsThoseOfUtf8) {
    withForwarders([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        open.locale("UTF-8", "ICU-de__PHONEBOOK");
        compared(locale, "a", "b", 1);
        for (const char *const unicode : {"UTF-8", "UTF-16"}) {
            open.conversion("X", unicode);
            open.conversion(unicode, "X");
        }
        EXPECT_EQ(fixture::convert(open.conversion("X", "UTF-8"), bytesOf("a"), 20).status, NLS_OK);
        const int kept = countOf("ucnv_open", "utf8");
        EXPECT_EQ(fake::icu.openCollators, 2);
        EXPECT_EQ(fake::icu.openConverters, 4 + kept);
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        EXPECT_EQ(fake::icu.openCollators, 0);
        EXPECT_EQ(fake::icu.openConverters, kept);
        EXPECT_EQ(countOf("ucnv_close", "X"), 4);
        EXPECT_EQ(countOf("ucnv_close", "utf8"), 0);
        EXPECT_EQ(countOf("ucol_close", "de@collation=phonebook"), 1);
    });
}

} // namespace
