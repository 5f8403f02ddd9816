// nlsUpperCase and nlsLowerCase: statuses, the three ways, and how each of the two treats room.
#include "harness/calls.hpp"
#include "model/case.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::Cased;
using kit::gives;
using kit::mapCase;
using kit::operator+;
using kit::operator""_b;
using kit::World;

namespace {

constexpr bool kUpper = true;
constexpr bool kLower = false;

nlsStatus mapAbc(nlsLocale *locale, bool upper) {
    char source[] = "abc";
    char buffer[8];
    const nlsStr from{source, 0, 0};
    nlsStr to{buffer, 8, 0};
    return upper ? nlsUpperCase(locale, &from, &to) : nlsLowerCase(locale, &from, &to);
}

const char *nameOf(bool upper) {
    return upper ? "nlsUpperCase" : "nlsLowerCase";
}

Bytes mapped(nlsLocale *locale, const Bytes &source, bool upper) {
    const Cased out = mapCase(locale, source, 64, upper);
    EXPECT_TRUE(gives(nameOf(upper), 0, out.status));
    EXPECT_LE(out.length, 64U);
    EXPECT_EQ(out.buffer[out.length], 0);
    return {out.buffer.begin(), out.buffer.begin() + out.length};
}

Bytes filled(Bytes head, std::size_t size) {
    head.resize(size + 1, 0xEE);
    return head;
}

} // namespace

TEST(CaseChecks, WhatIsNoLocaleGives13Or24) {
    for (const bool upper : {kUpper, kLower})
        kit::refusesWhatIsNoLocale(nameOf(upper),
                                   [upper](nlsLocale *locale) { return mapAbc(locale, upper); });
}

TEST(CaseChecks, ALocaleWithoutCharacterTableGives27BeforeNullBuffers) {
    for (const bool upper : {kUpper, kLower}) {
        kit::refusesWithoutCharacters(nameOf(upper),
                                      [upper](nlsLocale *locale) { return mapAbc(locale, upper); });
        kit::refusesWithoutCharacters(nameOf(upper), [upper](nlsLocale *locale) {
            nlsStr none{nullptr, 0, 0};
            return upper ? nlsUpperCase(locale, &none, &none) : nlsLowerCase(locale, &none, &none);
        });
    }
}

TEST(CaseChecks, NullArgumentsAndBuffersGive16) {
    World world;
    nlsLocale *const locale = world["1252 BASIC"].locale;
    char text[] = "abc";
    nlsStr full{text, 4, 3};
    nlsStr none{nullptr, 4, 3};
    for (const auto &[call, name] :
         {std::pair{&nlsUpperCase, nameOf(kUpper)}, std::pair{&nlsLowerCase, nameOf(kLower)}}) {
        EXPECT_TRUE(gives(name, 16, call(locale, nullptr, &full)));
        EXPECT_TRUE(gives(name, 16, call(locale, &full, nullptr)));
        EXPECT_TRUE(gives(name, 16, call(locale, &none, &full)));
        EXPECT_TRUE(gives(name, 16, call(locale, &full, &none)));
        EXPECT_TRUE(gives(name, 13, call(nullptr, nullptr, nullptr)));
    }
    EXPECT_STREQ(text, "abc");
}

TEST(CaseMapping, AnEmptySourceGivesAnEmptyDestination) {
    World world;
    for (const kit::Kit &one : world.kits)
        for (const bool upper : {kUpper, kLower}) {
            const Cased out = mapCase(one.locale, {}, 4, upper);
            EXPECT_TRUE(gives(nameOf(upper), 0, out.status));
            EXPECT_EQ(out.length, 0U) << one.name;
            EXPECT_EQ(out.buffer[0], 0) << one.name;
        }
}

TEST(CaseMapping, TheSourcesLengthFieldIsNotLookedAt) {
    World world;
    char source[] = "abc";
    char buffer[8];
    for (const std::uint32_t length : {0U, 2U, 77U}) {
        const nlsStr from{source, length, length};
        nlsStr to{buffer, 8, 5};
        EXPECT_TRUE(gives("nlsUpperCase", 0, nlsUpperCase(world["1252 BASIC"].locale, &from, &to)));
        EXPECT_STREQ(buffer, "ABC");
        EXPECT_EQ(to.length, 3U);
    }
}

TEST(CaseMapping, WithoutACaseTableTheRuntimeMapsSingleBytes) {
    World world;
    nlsLocale *const latin = world["1252 german"].locale;
    EXPECT_EQ(mapped(latin, "abc-XYZ"_b, kUpper), "ABC-XYZ"_b);
    EXPECT_EQ(mapped(latin, "abc-XYZ"_b, kLower), "abc-xyz"_b);
    EXPECT_EQ(mapped(latin, {0xE4, 0xC4}, kUpper), (Bytes{0xE4, 0xC4})) << "the C locale knows ASCII";
    nlsLocale *const sjis = world["SHIFT-JIS BASIC without case table"].locale;
    EXPECT_EQ(mapped(sjis, {'a', 0x83, 'a', 'b'}, kUpper), (Bytes{'A', 0x83, 'a', 'B'}))
        << "a trail byte stays";
    nlsLocale *const longer = world["LONG weights"].locale;
    EXPECT_EQ(mapped(longer, {'a', 0xF8, 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i'}, kUpper),
              (Bytes{'A', 0xF8, 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'I'}))
        << "as many bytes as the class says";
}

TEST(CaseMapping, AByteTableMapsSingleBytes) {
    World world;
    EXPECT_EQ(mapped(world["1252 BASIC"].locale, {'a', 0xE4, 0xDF, 'Z'}, kUpper),
              (Bytes{'A', 0xC4, 0xDF, 'Z'}));
    EXPECT_EQ(mapped(world["1252 BASIC"].locale, {'a', 0xC4, 0xDF, 'Z'}, kLower),
              (Bytes{'a', 0xE4, 0xDF, 'z'}));
}

TEST(CaseMapping, InADoubleBytePageTwoByteCharactersPass) {
    World world;
    nlsLocale *const sjis = world["SHIFT-JIS BASIC"].locale;
    EXPECT_EQ(mapped(sjis, {'a', 0x83, 'a', 0x82, 0x81, 'b'}, kUpper),
              (Bytes{'A', 0x83, 'a', 0x82, 0x81, 'B'}));
    EXPECT_EQ(mapped(sjis, {'A', 0x83, 'A', 'B'}, kLower), (Bytes{'a', 0x83, 'A', 'b'}));
    // With a byte table a lead byte takes two bytes whatever its class.
    nlsLocale *const longer = world["LONG BASIC"].locale;
    EXPECT_EQ(mapped(longer, {0xF8, 'b', 'c'}, kUpper), (Bytes{0xF8, 'b', 'C'}));
}

TEST(CaseMapping, Utf8MapsCharactersOfOneToThreeBytes) {
    World world;
    nlsLocale *const utf8 = world["UTF-8 BASIC"].locale;
    EXPECT_EQ(mapped(utf8, "az-AZ"_b, kUpper), "AZ-AZ"_b);
    EXPECT_EQ(mapped(utf8, {0xC3, 0xA4, 0xD0, 0xB0}, kUpper), (Bytes{0xC3, 0x84, 0xD0, 0x90}));
    EXPECT_EQ(mapped(utf8, {0xE1, 0xB8, 0x81}, kUpper), (Bytes{0xE1, 0xB8, 0x80}));
    EXPECT_EQ(mapped(utf8, {0xE1, 0xB8, 0x80}, kLower), (Bytes{0xE1, 0xB8, 0x81}));
    EXPECT_EQ(mapped(utf8, {0xE2, 0x93, 0x90}, kUpper), (Bytes{0xE2, 0x92, 0xB6}));
    EXPECT_EQ(mapped(utf8, {0xEF, 0xBD, 0x81}, kUpper), (Bytes{0xEF, 0xBC, 0xA1}));
    EXPECT_EQ(mapped(utf8, {0xC3, 0x9F}, kUpper), (Bytes{0xC3, 0x9F})) << "a character without another case";
}

TEST(CaseMapping, Utf8CounterpartsMayHaveAnotherLength) {
    World world;
    nlsLocale *const utf8 = world["UTF-8 BASIC"].locale;
    EXPECT_EQ(mapped(utf8, {0xC4, 0xB1}, kUpper), "I"_b);
    EXPECT_EQ(mapped(utf8, {0xC4, 0xB0}, kLower), "i"_b);
    EXPECT_EQ(mapped(utf8, "j"_b, kUpper), (Bytes{0xC7, 0xB0}));
}

TEST(CaseMapping, Utf8CharactersWithOtherLeadBytesPass) {
    World world;
    nlsLocale *const utf8 = world["UTF-8 BASIC"].locale;
    EXPECT_EQ(mapped(utf8, {0xE3, 0x81, 0x82}, kUpper), (Bytes{0xE3, 0x81, 0x82}))
        << "though the list has it";
    EXPECT_EQ(mapped(utf8, {0xE3, 0x81, 0x83}, kLower), (Bytes{0xE3, 0x81, 0x83}));
    // Their pairs lie on the slots of two other characters.
    EXPECT_EQ(mapped(utf8, {0xEF, 0x80, 0x82}, kUpper), (Bytes{0xEF, 0x81, 0x84}));
    EXPECT_EQ(mapped(utf8, {0xEF, 0x80, 0x83}, kLower), (Bytes{0xEF, 0x81, 0x85}));
}

TEST(CaseMapping, BytesThatAreNoUtf8FallOnThePageThatTheirNumberGives) {
    World world;
    nlsLocale *const utf8 = world["UTF-8 BASIC"].locale;
    EXPECT_EQ(mapped(utf8, {0xE1}, kUpper), "A"_b) << "page 0, the index of the letter a";
    // Numbered behind the lead's own pages, on page 0 again: the counterpart of g with the lead byte before
    // it.
    EXPECT_EQ(mapped(utf8, {0xEF, 0xFF, 0xE7}, kUpper), (Bytes{0xEF, 0x00, 'G'}));
    EXPECT_EQ(mapped(utf8, {0xC3, 0xFF}, kLower), (Bytes{0xC3, 0xFF})) << "an index behind its page";
}

TEST(CaseMapping, Utf8CharactersOfFourBytesBecomeQuestionMarks) {
    World world;
    nlsLocale *const utf8 = world["UTF-8 BASIC"].locale;
    for (const bool upper : {kUpper, kLower}) {
        EXPECT_EQ(mapped(utf8, {'-', 0xF0, 0x90, 0x90, 0xA8, '-'}, upper), "-?-"_b);
        EXPECT_EQ(mapped(utf8, {'-', 0xF0, 0x90}, upper), "-?"_b) << "cut by the NUL";
        // Without a case table they are copied.
        EXPECT_EQ(mapped(world["UTF-8 BASIC without case table"].locale, {0xF0, 0x90, 0x90, 0xA8}, upper),
                  (Bytes{0xF0, 0x90, 0x90, 0xA8}));
    }
}

TEST(CaseMapping, ALeadByteBeforeTheNulEndsTheText) {
    World world;
    for (const bool upper : {kUpper, kLower}) {
        const Bytes a = upper ? "A"_b : "a"_b;
        EXPECT_EQ(mapped(world["SHIFT-JIS BASIC"].locale, {'a', 0x81}, upper), (a + Bytes{0x81}));
        EXPECT_EQ(mapped(world["SHIFT-JIS BASIC without case table"].locale, {'a', 0x81}, upper),
                  (a + Bytes{0x81}));
        EXPECT_EQ(mapped(world["LONG weights"].locale, {'a', 0xF8, 'b'}, upper), (a + Bytes{0xF8, 'b'}));
        EXPECT_EQ(mapped(world["UTF-8 BASIC"].locale, {'a', 0xE3, 0x81}, upper), (a + Bytes{0xE3, 0x81}));
    }
}

TEST(CaseRoom, AnExactlyFilledBufferTakesItsNulOneByteBehind) {
    World world;
    for (const bool upper : {kUpper, kLower})
        for (const kit::Kit &one : world.kits) {
            const Cased out = mapCase(one.locale, "123"_b, 3, upper);
            EXPECT_TRUE(gives(nameOf(upper), 0, out.status)) << one.name;
            EXPECT_EQ(out.length, 3U);
            EXPECT_EQ(out.buffer, (Bytes{'1', '2', '3', 0})) << one.name;
        }
}

TEST(CaseRoom, WithoutRoomBeforeACharacterTheCallGives2AndWritesNoNul) {
    World world;
    for (const bool upper : {kUpper, kLower})
        for (const kit::Kit &one : world.kits) {
            const Cased out = mapCase(one.locale, "1234"_b, 3, upper);
            EXPECT_TRUE(gives(nameOf(upper), 2, out.status)) << one.name;
            EXPECT_EQ(out.length, 0xEEEEU) << "the length stands as it was";
            EXPECT_EQ(out.buffer, filled("123"_b, 3)) << "what was written stands";
            const Cased none = mapCase(one.locale, "1"_b, 0, upper);
            EXPECT_TRUE(gives(nameOf(upper), 2, none.status)) << one.name;
            EXPECT_EQ(none.buffer, filled({}, 0));
        }
}

TEST(CaseRoom, LowerCaseEndsItsTextWhereACharacterDoesNotFit) {
    World world;
    const auto check = [&world](const char *name, const Bytes &source, std::uint32_t size,
                                const Bytes &text) {
        const Cased out = mapCase(world[name].locale, source, size, kLower);
        EXPECT_TRUE(gives("nlsLowerCase", 2, out.status)) << name;
        EXPECT_EQ(out.length, 0xEEEEU) << name;
        EXPECT_EQ(out.buffer, filled(text + Bytes{0}, size)) << name;
    };
    check("SHIFT-JIS BASIC", {'A', 0x82, 0x60}, 2, "a"_b);
    check("SHIFT-JIS BASIC without case table", {'A', 0x82, 0x60}, 2, "a"_b);
    check("EUCJIS BASIC", {0xB0, 0xA1, 0xB0, 0xA1}, 3, {0xB0, 0xA1});
    check("UTF-8 BASIC", {'A', 0xC3, 0x84}, 2, "a"_b);
    check("UTF-8 BASIC", {'A', 0xE1, 0xB8, 0x80}, 3, "a"_b);
    check("UTF-8 BASIC without case table", {'A', 0xE1, 0xB8, 0x80}, 3, "a"_b);
    check("LONG weights", {0xF8, 'b', 'c', 'd', 'e', 'f', 'g', 'h'}, 7, {});
}

TEST(CaseRoom, UpperCaseOfACharacterThatDoesNotFitWritesNothingBehindTheSize) {
    World world;
    const auto check = [&world](const char *name, const Bytes &source, std::uint32_t size,
                                const Bytes &text) {
        const Cased out = mapCase(world[name].locale, source, size, kUpper);
        EXPECT_TRUE(gives("nlsUpperCase", 2, out.status)) << name;
        EXPECT_EQ(out.length, 0xEEEEU) << name;
        EXPECT_EQ(Bytes(out.buffer.begin(), out.buffer.begin() + std::ssize(text)), text) << name;
        EXPECT_EQ(out.buffer.back(), 0xEE) << name;
    };
    check("SHIFT-JIS BASIC", {'a', 0x82, 0x60}, 2, "A"_b);
    check("SHIFT-JIS BASIC without case table", {'a', 0x82, 0x60}, 2, "A"_b);
    check("UTF-8 BASIC", {'a', 0xC3, 0xA4}, 2, "A"_b);
    check("UTF-8 BASIC", {'a', 0xE1, 0xB8, 0x80}, 3, "A"_b);
    check("UTF-8 BASIC", "aj"_b, 2, "A"_b);
}
