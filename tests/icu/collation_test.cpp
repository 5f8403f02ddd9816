// Order by ICU's collators: opening them, what the record then holds, compares and keys with every mode, and
// what becomes of ICU's failures.
#include <gtest/gtest.h>

#include "fake.hpp"
#include "guarded_buffer.hpp"
#include "process.hpp"
#include "world.hpp"

#include <cstring>

namespace {

using fixture::Bytes;
using fixture::bytesOf;
using fixture::operator+;
using process::Home;
using process::seen;

constexpr std::int16_t kUntouched = 77;

void withIcu(const std::function<void(world::Open &)> &body) {
    const Home home;
    home.putIcu();
    process::isolated([&] {
        process::setVariable("BINPATHX", home.path());
        world::Open open;
        body(open);
    });
}

// The result of a compare that is expected to give a status.
std::int16_t compared(nlsLocale *locale, const std::string &a, const std::string &b, std::int16_t mode,
                      std::int32_t status = 0) {
    std::int16_t result = kUntouched;
    EXPECT_TRUE(seen("nlsCompare", status, nlsCompare(locale, a.c_str(), b.c_str(), mode, &result)));
    return result;
}

struct Key {
    nlsStatus status;
    std::uint16_t length;
    Bytes buffer;

    [[nodiscard]] Bytes text() const {
        return {buffer.begin(), buffer.begin() + length};
    }
};

// A key in a buffer of exact size.
Key key(nlsLocale *locale, std::string text, std::uint16_t size, std::uint16_t mode, std::uint16_t trim = 0) {
    fixture::GuardedBuffer guarded(8192);
    unsigned char *const at = guarded.tail(size);
    std::memset(at, 0xEE, size);
    Key result{0, 0xFFFF, {}};
    result.status = nlsSortKey(locale, text.data(), size, mode, trim, at, &result.length);
    result.buffer.assign(at, at + size);
    if (result.length > size)
        result.length = 0;
    return result;
}

// What the fake writes: the strength and the characters.
Bytes keyOf(char strength, const std::string &ascii) {
    Bytes all{static_cast<unsigned char>(strength)};
    for (const char c : ascii) {
        all.push_back(1);
        all.push_back(static_cast<unsigned char>(c | 1));
    }
    return all;
}

// ---- Opening ----

TEST(IcuCollator, TheNameBehindThePrefixIsOpened) {
    withIcu([](world::Open &open) {
        for (const char *const name : {"de", "de__PHONEBOOK", "en_ZZ", "es__TRADITIONAL"}) {
            EXPECT_TRUE(
                seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", (std::string("ICU-") + name).c_str())));
            EXPECT_EQ(fake::icu.last("ucol_open").text, name);
        }
    });
}

TEST(IcuCollator, UcaOpensTheRoot) {
    withIcu([](world::Open &open) {
        EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", "ICU-UCA")));
        EXPECT_EQ(fake::icu.last("ucol_open").text, "");
    });
}

TEST(IcuCollator, AnErrorOfIcuFailsTheOpenWith1) {
    withIcu([](world::Open &open) {
        for (const std::int32_t error : {1, 2, 4, 7}) {
            fake::icu.openError["de"] = error;
            EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de")));
        }
        fake::icu.openError.clear();
        fake::icu.nullCollator = true;
        EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("UTF-8", "ICU-de")));
        EXPECT_EQ(fake::icu.count("ucol_close"), 0);
    });
}

TEST(IcuCollator, TheDefaultWarningIsTakenForTheRootAndEnglishAlone) {
    withIcu([](world::Open &open) {
        for (const char *const name : {"", "en", "en_ZZ", "en_", "de", "ens", "xx_en", "EN", "fr_CA"})
            fake::icu.openError[name] = -127;
        for (const char *const taken : {"ICU-UCA", "ICU-en", "ICU-en_ZZ", "ICU-en_", "ICU-"})
            EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", taken))) << taken;
        const int before = fake::icu.openCollators;
        for (const char *const refused : {"ICU-de", "ICU-ens", "ICU-xx_en", "ICU-EN", "ICU-fr_CA"})
            EXPECT_TRUE(seen("nlsCreateLocale", 1, open.tryLocale("P", refused))) << refused;
        EXPECT_EQ(fake::icu.openCollators, before) << "what was opened and refused is closed";
    });
}

TEST(IcuCollator, OtherWarningsAreTaken) {
    withIcu([](world::Open &open) {
        for (const std::int32_t warning : {-1, -122, -124, -126, -128}) {
            fake::icu.openError["de"] = warning;
            EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("UTF-8", "ICU-de", ""))) << warning;
            EXPECT_TRUE(seen("nlsCreateLocale", 0, open.tryLocale("P", "ICU-de"))) << warning;
        }
    });
}

TEST(IcuCollator, BothAreasHoldTheCollatorItsVersionNameAndStrength) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de__PHONEBOOK");
        EXPECT_EQ(world::kind(locale), 5);
        const Bytes sensitive = world::area(locale, true);
        const Bytes insensitive = world::area(locale, false);
        const Bytes pointer(sensitive.begin(), sensitive.begin() + 8);
        EXPECT_NE(pointer, Bytes(8));
        Bytes expected = pointer + Bytes(8) + Bytes{0xA1, 0xA2, 0xA3, 0xA4} + Bytes{3, 1, 1, 0} + Bytes(4);
        Bytes name = bytesOf("de__PHONEBOOK");
        name.resize(16);
        expected = expected + name;
        Bytes first = expected + bytesOf("TERTIARY");
        first.resize(256);
        Bytes second = expected + bytesOf("SECONDARY");
        second.resize(256);
        EXPECT_EQ(sensitive, first);
        EXPECT_EQ(insensitive, second);
    });
}

TEST(IcuCollator, ANameOfFifteenCharactersIsKeptWhole) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-abcdefghijklmno");
        EXPECT_EQ(fake::icu.last("ucol_open").text, "abcdefghijklmno");
        const Bytes area = world::area(locale, true);
        EXPECT_EQ(Bytes(area.begin() + 28, area.begin() + 44), bytesOf("abcdefghijklmno") + Bytes(1));
    });
}

TEST(IcuCollator, EachRequestOpensACollatorOfItsOwn) {
    withIcu([](world::Open &open) {
        nlsLocale *const first = open.locale("UTF-8", "ICU-de");
        nlsLocale *const second = open.locale("P", "ICU-de");
        EXPECT_NE(fixture::peek::collation(first), fixture::peek::collation(second));
        EXPECT_EQ(fake::icu.openCollators, 2);
        EXPECT_EQ(open.locale("UTF-8", "ICU-de"), first) << "the locale itself is shared";
        EXPECT_EQ(fake::icu.openCollators, 2);
    });
}

TEST(IcuCollator, TheSpellingOfThePrefixMatters) {
    withIcu([](world::Open &open) {
        EXPECT_TRUE(seen("nlsCreateLocale", 10, open.tryLocale("UTF-8", "icu-de")));
        EXPECT_EQ(fake::icu.count("ucol_open"), 0);
    });
}

TEST(IcuCollator, CollatorsAreClosedWithTheHandle) {
    withIcu([](world::Open &open) {
        open.locale("UTF-8", "ICU-de");
        open.locale("UTF-8", "ICU-fr");
        ASSERT_EQ(open.tryLocale("UTF-8", "ICU-sv", "missing"), NLS_E_NOCASETABLE);
        fake::icu.openError["xx"] = 1;
        ASSERT_EQ(open.tryLocale("UTF-8", "ICU-xx"), NLS_E_NOMEM);
        world::Open other;
        other.locale("UTF-8", "ICU-da");
        EXPECT_EQ(fake::icu.openCollators, 4);
        EXPECT_TRUE(seen("nlsClose", 0, nlsClose(open.handle)));
        EXPECT_EQ(fake::icu.openCollators, 1)
            << "also that of a locale that failed later; not the other handle's";
        EXPECT_EQ(fake::icu.count("ucol_close"), 3);
        EXPECT_EQ(nlsClose(other.handle), NLS_OK);
        EXPECT_EQ(fake::icu.openCollators, 0);
    });
}

TEST(IcuCollator, AKind5ThatADataFileStatesIsWeights) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "five");
        EXPECT_EQ(fake::icu.count("ucol_open"), 0);
        EXPECT_EQ(compared(locale, "a", "b", 0), 1) << "its insensitive weights fall";
        EXPECT_EQ(key(locale, "a", 10, 0).text(), Bytes{world::insensitiveWeight('a')});
        EXPECT_EQ(nlsClose(open.handle), NLS_OK);
    });
}

// ---- Compare ----

TEST(IcuCompare, TrailingBlanksAreTakenOffBeforeIcuSeesTheTexts) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        EXPECT_EQ(compared(locale, "abc  ", "abc", 1), 0);
        EXPECT_EQ(fake::icu.last("ucol_strcoll").number, 3);
        EXPECT_EQ(fake::icu.last("ucol_strcoll").capacity, 3);
        EXPECT_EQ(compared(locale, " abc", "abc", 1), -1) << "blanks in front count";
    });
}

TEST(IcuCompare, EmptyTextsNeedNoIcu) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        const std::size_t calls = fake::icu.calls.size();
        for (const std::int16_t mode : std::vector<std::int16_t>{0, 1, 5, 7, 99}) {
            EXPECT_EQ(compared(locale, "", "   ", mode), 0);
            EXPECT_EQ(compared(locale, " ", "a", mode), -1);
            EXPECT_EQ(compared(locale, "a", "", mode), 1);
        }
        EXPECT_EQ(fake::icu.calls.size(), calls);
    });
}

TEST(IcuCompare, LengthsBoundTheTexts) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        fixture::GuardedBuffer guarded(16);
        const auto *const text = reinterpret_cast<const char *>(guarded.readOnly(bytesOf("abX")));
        std::int16_t result = kUntouched;
        EXPECT_TRUE(seen("nlsCompareN", 0, nlsCompareN(locale, text, "abY", 2, 2, 1, &result)));
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(seen("nlsCompareN", 0, nlsCompareN(locale, text, "abX", 3, 0xFFFFFFFF, 1, &result)));
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(seen("nlsCompareN", 0, nlsCompareN(locale, "ab\0c", text, 4, 2, 1, &result)));
        EXPECT_EQ(result, 0) << "a NUL in front of the length ends the text";
        EXPECT_TRUE(seen("nlsCompareN", 0, nlsCompareN(locale, text, "", 0, 0, 1, &result)));
        EXPECT_EQ(result, 0);
    });
}

TEST(IcuCompare, ModesSetTheStrengthBeforeEveryUse) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const auto &[mode, strength] : std::vector<std::pair<std::int16_t, std::int32_t>>{
                 {1, 2}, {0, 1}, {4, 0}, {5, 1}, {6, 2}, {8, 4}, {1, 2}}) {
            fake::icu.order = [](auto, auto, std::int32_t used) { return used == 1 ? 0 : -1; };
            EXPECT_EQ(compared(locale, "a", "b", mode), strength == 1 ? 0 : -1) << mode;
            EXPECT_EQ(fake::icu.last("ucol_setStrength").number, strength) << mode;
        }
    });
}

TEST(IcuCompare, OtherModesReturn0AndLeaveTheResult) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        const std::size_t calls = fake::icu.calls.size();
        for (const std::int16_t mode : std::vector<std::int16_t>{2, 3, 7, 9, 100, 0x2001, 0x4000, -1})
            EXPECT_EQ(compared(locale, "a", "b", mode), kUntouched) << mode;
        EXPECT_EQ(fake::icu.calls.size(), calls);
    });
}

TEST(IcuCompare, TheAnswersOfIcuBecomeResults) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        std::int32_t answer = 0;
        fake::icu.order = [&](auto, auto, auto) { return answer; };
        for (const auto &[from, to] : std::vector<std::pair<std::int32_t, std::int16_t>>{
                 {-1, -1}, {-5, -1}, {-2147483647, -1}, {0, 0}, {1, 1}}) {
            answer = from;
            EXPECT_EQ(compared(locale, "a", "b", 1), to);
        }
        for (const std::int32_t wrong : {2, 3, 2147483647}) {
            answer = wrong;
            EXPECT_EQ(compared(locale, "a", "b", 1, 22), kUntouched);
            std::int16_t result = kUntouched;
            EXPECT_TRUE(seen("nlsCompareN", 22, nlsCompareN(locale, "a", "b", 1, 1, 1, &result)));
        }
    });
}

TEST(IcuCompare, WithoutAUtf8ConverterItGives16) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        fake::icu.openError["utf8"] = 4;
        EXPECT_EQ(compared(locale, "a", "b", 1, 16), kUntouched);
        std::int16_t result = kUntouched;
        EXPECT_TRUE(seen("nlsCompareN", 16, nlsCompareN(locale, "a", "b", 1, 1, 1, &result)));
        EXPECT_EQ(fake::icu.count("ucol_strcoll"), 0);
    });
}

TEST(IcuCompare, ATextThatIcuCannotDecodeGives22) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const int which : {0, 1})
            for (const std::int32_t error : {10, 12, 15, -122, -127}) {
                fake::icu.conversionError[fake::icu.conversions + which] = error;
                EXPECT_EQ(compared(locale, "a", "b", 1, 22), kUntouched) << error;
                EXPECT_EQ(fake::icu.openConverters, 0);
            }
        fake::icu.conversionError[fake::icu.conversions] = -124;
        EXPECT_EQ(compared(locale, "a", "b", 1), -1) << "a result without its terminator will do";
    });
}

TEST(IcuCompare, EachCompareOpensAndClosesItsConverter) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        fake::icu.calls.clear();
        EXPECT_EQ(compared(locale, "a", "b", 1), -1);
        EXPECT_EQ(fake::icu.names(),
                  (std::vector<std::string>{"ucol_setStrength", "ucnv_open", "ucnv_toUChars", "ucnv_toUChars",
                                            "ucol_strcoll", "ucnv_close"}));
        EXPECT_EQ(fake::icu.last("ucnv_open").text, "utf8");
    });
}

TEST(IcuCompare, TextsOfUpTo2000BytesUseABufferOf2000Units) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const int length : {1, 1999, 2000, 2001, 3000, 70000}) {
            const std::string text(static_cast<std::size_t>(length), 'a');
            EXPECT_EQ(compared(locale, text, text + "b", 1), -1) << length;
            // The last decoded is the second text, one byte longer.
            EXPECT_EQ(fake::icu.last("ucnv_toUChars").capacity, length + 1 <= 2000 ? 2000 : length + 1);
            EXPECT_EQ(fake::icu.last("ucnv_toUChars").number, length + 1);
            EXPECT_EQ(compared(locale, text + "   ", text, 1), 0);
        }
    });
}

TEST(IcuCompare, NoMemoryForALongTextGives2) {
    if (VELNLS_SANITIZED)
        GTEST_SKIP() << "sanitizers take address space of their own";
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        const std::string text(64U << 20, 'a');
        process::refuseLargeBlocks();
        EXPECT_EQ(compared(locale, text, "a", 1, 2), kUntouched);
        EXPECT_EQ(compared(locale, "a", text, 1, 2), kUntouched);
        std::int16_t result = kUntouched;
        EXPECT_TRUE(seen("nlsCompareN", 2, nlsCompareN(locale, text.c_str(), "a", -1, 1, 1, &result)));
        EXPECT_EQ(fake::icu.openConverters, 0);
    });
}

TEST(IcuCompare, MatchingCallsFollowTheCollation) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        fake::icu.order = [](std::u16string a, std::u16string b, std::int32_t strength) {
            const auto fold = [&](char16_t c) {
                return strength == 1 && c >= 'A' && c <= 'Z' ? static_cast<char16_t>(c + 32) : c;
            };
            return fold(a[0]) == fold(b[0]) ? 0 : 1;
        };
        EXPECT_EQ(nlsSqlLike(locale, "a%", "Abc", 0, '\\', '_', '%'), 1U);
        EXPECT_EQ(nlsSqlLike(locale, "a%", "Abc", 1, '\\', '_', '%'), 0U);
        char *found = nullptr;
        std::uint32_t position = 0;
        std::uint32_t end = 0;
        EXPECT_EQ(nlsSearchForw(locale, "B", "abc", 0, &position, &end, &found), NLS_OK);
        EXPECT_EQ(position, 2U);
    });
}

// ---- Keys ----

TEST(IcuKey, TheKeyIsWhatIcuWrites) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        const Key made = key(locale, "abc", 40, 1);
        EXPECT_TRUE(seen("nlsSortKey", 0, made.status));
        EXPECT_EQ(made.text(), keyOf('2', "abc"));
        EXPECT_EQ(made.buffer[made.length], 0);
        EXPECT_EQ(fake::icu.last("ucol_getSortKey").capacity, 40);
        EXPECT_EQ(fake::icu.last("ucol_getSortKey").number, 3);
    });
}

TEST(IcuKey, ModesSetTheStrength) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const auto &[mode, strength] : std::vector<std::pair<unsigned, char>>{{1, '2'},
                                                                                   {0, '1'},
                                                                                   {4, '0'},
                                                                                   {5, '1'},
                                                                                   {6, '2'},
                                                                                   {7, '3'},
                                                                                   {8, '4'},
                                                                                   {0x2001, '2'},
                                                                                   {0x2007, '3'}})
            EXPECT_EQ(key(locale, "ab", 40, static_cast<std::uint16_t>(mode)).text(), keyOf(strength, "ab"))
                << mode;
    });
}

TEST(IcuKey, Bit4000AsksForPrimaryWhateverTheMode) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const unsigned mode : {0x4000U, 0x4001U, 0x6001U, 0x4005U, 0x4099U})
            EXPECT_EQ(key(locale, "ab", 40, static_cast<std::uint16_t>(mode)).text(), keyOf('0', "ab"))
                << mode;
    });
}

TEST(IcuKey, OtherModesLeaveTheKeyEmpty) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const unsigned mode : {2U, 3U, 9U, 100U, 0x8000U, 0x8001U}) {
            const Key made = key(locale, "ab", 40, static_cast<std::uint16_t>(mode));
            EXPECT_TRUE(seen("nlsSortKey", 0, made.status));
            EXPECT_EQ(made.length, 0) << mode;
            EXPECT_EQ(made.buffer[0], 0);
        }
        EXPECT_EQ(fake::icu.count("ucol_getSortKey"), 0);
    });
}

TEST(IcuKey, AnEmptySourceLeavesTheKeyEmpty) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        const std::size_t calls = fake::icu.calls.size();
        EXPECT_EQ(key(locale, "", 40, 1).length, 0);
        EXPECT_EQ(key(locale, "   ", 40, 1, 1).length, 0) << "empty once it is trimmed";
        EXPECT_EQ(fake::icu.calls.size(), calls);
    });
}

TEST(IcuKey, BlanksAtTheEndAreTrimmedOnDemandWithoutAWrite) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        EXPECT_EQ(key(locale, "ab  ", 40, 1, 1).text(), keyOf('2', "ab"));
        EXPECT_EQ(key(locale, "ab  ", 40, 1, 0).text(), keyOf('2', "ab  "));
        fixture::GuardedBuffer guarded(16);
        const unsigned char *const text = guarded.readOnly(bytesOf({"ab  \0", 5}));
        unsigned char out[40];
        std::uint16_t length = 0;
        EXPECT_EQ(nlsSortKey(locale, const_cast<char *>(reinterpret_cast<const char *>(text)), 40, 1, 1, out,
                             &length),
                  NLS_OK);
    });
}

TEST(IcuKey, AKeyThatIcuHadToCutGives2) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const std::uint16_t size : std::vector<std::uint16_t>{0, 1, 2, 6, 7}) {
            const Key made = key(locale, "abc", size, 1); // eight bytes with its NUL
            EXPECT_TRUE(seen("nlsSortKey", 2, made.status)) << size;
        }
        EXPECT_TRUE(seen("nlsSortKey", 0, key(locale, "abc", 8, 1).status));
        fake::icu.key = [](auto, std::uint8_t *, std::int32_t) { return 9999; };
        EXPECT_TRUE(seen("nlsSortKey", 2, key(locale, "abc", 40, 1).status))
            << "an ICU that then writes nothing";
    });
}

TEST(IcuKey, WhatIcuCannotDoLeavesTheKeyEmptyWithoutAStatus) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        fake::icu.conversionError[fake::icu.conversions] = 10;
        Key made = key(locale, "abc", 40, 1);
        EXPECT_TRUE(seen("nlsSortKey", 0, made.status));
        EXPECT_EQ(made.length, 0);
        fake::icu.openError["utf8"] = 4;
        made = key(locale, "abc", 40, 1);
        EXPECT_TRUE(seen("nlsSortKey", 0, made.status));
        EXPECT_EQ(made.length, 0);
        EXPECT_EQ(fake::icu.openConverters, 0);
    });
}

TEST(IcuKey, LongSourcesFollowTheRuleOf2000Units) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("UTF-8", "ICU-de");
        for (const int length : {2000, 2001, 3000}) {
            EXPECT_EQ(key(locale, std::string(static_cast<std::size_t>(length), 'a'), 8000, 1).length,
                      2 * length + 1);
            EXPECT_EQ(fake::icu.last("ucnv_toUChars").capacity, length <= 2000 ? 2000 : length);
        }
    });
}

TEST(IcuKey, APageThatCollatesThroughShiftJisIsConvertedFirst) {
    withIcu([](world::Open &open) {
        nlsLocale *const locale = open.locale("EUC", "ICU-ja");
        const Key made = key(locale, "abc", 40, 1);
        EXPECT_EQ(made.status, NLS_OK);
        EXPECT_EQ(made.text(), keyOf('2', "abc"));
        EXPECT_EQ(key(locale, "abcdefgh", 3, 1).status, NLS_E_BUFFER)
            << "as much as fits, then ICU's own cut";
    });
}

} // namespace
