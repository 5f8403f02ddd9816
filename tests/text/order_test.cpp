// nlsSortKey, nlsCompare, nlsCompareN: statuses, order of checks, and every rule of the orders by example.
#include "harness/calls.hpp"
#include "model/order.hpp"

#include <gtest/gtest.h>

using kit::compare;
using kit::compareN;
using kit::gives;
using kit::sortKey;
using kit::operator+;
using kit::operator""_b;
using kit::Bytes;
using kit::World;

namespace {

nlsStatus plainKey(nlsLocale *locale) {
    char source[] = "abc";
    unsigned char key[8];
    std::uint16_t length = 0;
    return nlsSortKey(locale, source, sizeof key, 1, 0, key, &length);
}

nlsStatus plainCompare(nlsLocale *locale) {
    std::int16_t result = 0;
    return nlsCompare(locale, "a", "b", 1, &result);
}

nlsStatus plainCompareN(nlsLocale *locale) {
    std::int16_t result = 0;
    return nlsCompareN(locale, "a", "b", -1, 0xFFFFFFFF, 1, &result);
}

struct OrderCall {
    const char *name;
    nlsStatus (*call)(nlsLocale *);
};
constexpr OrderCall kOrderCalls[] = {
    {"nlsSortKey", plainKey}, {"nlsCompare", plainCompare}, {"nlsCompareN", plainCompareN}};

Bytes table(const fixture::ByteTable &weights, const Bytes &text) {
    Bytes out;
    for (const unsigned char byte : text)
        out.push_back(weights[byte]);
    return out;
}

} // namespace

TEST(OrderChecks, WhatIsNoLocaleGives13Or24) {
    for (const auto &[name, call] : kOrderCalls)
        kit::refusesWhatIsNoLocale(name, call);
}

TEST(OrderChecks, ALocaleWithoutCharacterTableGives27BeforeItsMissingCollation) {
    for (const auto &[name, call] : kOrderCalls) {
        kit::refusesWithoutCharacters(name, call);
        World world;
        nlsLocale *const bare = world.library.locale("1252");
        const void *const characters = fixture::peek::characterTable(bare);
        fixture::peek::setCharacterTable(bare, nullptr);
        EXPECT_TRUE(gives(name, 27, call(bare)));
        fixture::peek::setCharacterTable(bare, characters);
    }
}

TEST(OrderChecks, ALocaleWithoutCollationGives25) {
    World world;
    for (const auto &[name, call] : kOrderCalls)
        EXPECT_TRUE(gives(name, 25, call(world.library.locale("1252"))));
}

TEST(OrderChecks, NullArgumentsGive16) {
    World world;
    nlsLocale *const locale = world["1252 german"].locale;
    char text[] = "a";
    unsigned char key[4] = {};
    std::uint16_t length = 0;
    std::int16_t result = 0;
    EXPECT_TRUE(gives("nlsSortKey", 16, nlsSortKey(locale, nullptr, 4, 1, 0, key, &length)));
    EXPECT_TRUE(gives("nlsSortKey", 16, nlsSortKey(locale, text, 4, 1, 0, nullptr, &length)));
    EXPECT_TRUE(gives("nlsSortKey", 16, nlsSortKey(locale, text, 4, 1, 0, key, nullptr)));
    EXPECT_TRUE(gives("nlsCompare", 16, nlsCompare(locale, nullptr, text, 1, &result)));
    EXPECT_TRUE(gives("nlsCompare", 16, nlsCompare(locale, text, nullptr, 1, &result)));
    EXPECT_TRUE(gives("nlsCompare", 16, nlsCompare(locale, text, text, 1, nullptr)));
    EXPECT_TRUE(gives("nlsCompareN", 16, nlsCompareN(locale, nullptr, text, 1, 1, 1, &result)));
    EXPECT_TRUE(gives("nlsCompareN", 16, nlsCompareN(locale, text, nullptr, 1, 1, 1, &result)));
    EXPECT_TRUE(gives("nlsCompareN", 16, nlsCompareN(locale, text, text, 1, 1, 1, nullptr)));
    // A locale that is none comes first.
    EXPECT_TRUE(gives("nlsSortKey", 13, nlsSortKey(nullptr, nullptr, 4, 1, 0, nullptr, nullptr)));
    EXPECT_TRUE(gives("nlsCompare", 13, nlsCompare(nullptr, nullptr, nullptr, 1, nullptr)));
    EXPECT_TRUE(gives("nlsCompareN", 13, nlsCompareN(nullptr, nullptr, nullptr, 1, 1, 1, nullptr)));
}

TEST(OrderChecks, AModeThatSelectsNoTableGives16FromCompares) {
    World world;
    for (const char *const name : {"1252 german", "1252 literal", "1252 other kind", "SHIFT-JIS weights",
                                   "EUCJIS weights", "UTF-8 weights"})
        for (const int mode : {2, 4, -1, 0x2001, 0x4000}) {
            EXPECT_TRUE(
                gives("nlsCompare", 16,
                      compare(world[name].locale, "a"_b, "b"_b, static_cast<std::int16_t>(mode)).status));
            EXPECT_TRUE(gives(
                "nlsCompareN", 16,
                compareN(world[name].locale, "a"_b, "b"_b, -1, 0xFFFFFFFF, static_cast<std::uint16_t>(mode))
                    .status));
        }
}

TEST(SortKey, AModeThatSelectsNoTableGivesAnEmptyWeightKey) {
    World world;
    for (const char *const name : {"1252 german", "1252 literal", "SHIFT-JIS weights", "EUCJIS weights"}) {
        const kit::Key key = sortKey(world[name].locale, "abc"_b, 8, 2);
        EXPECT_TRUE(gives("nlsSortKey", 0, key.status));
        EXPECT_EQ(key.length, 0) << name;
        EXPECT_EQ(key.buffer[0], 0) << name;
    }
}

TEST(SortKey, AModeThatSelectsNoTableLeavesABasicKeyAsItWas) {
    World world;
    for (const char *const name : {"1252 BASIC", "EUCJIS BASIC"}) {
        const kit::Key old = sortKey(world[name].locale, "abc"_b, 8, 2, 0, {'x', 'y', 0, 'z'});
        EXPECT_TRUE(gives("nlsSortKey", 0, old.status)) << "its length is measured";
        EXPECT_EQ(old.length, 2) << name;
        EXPECT_EQ(old.buffer, (Bytes{'x', 'y', 0, 'z', 0xEE, 0xEE, 0xEE, 0xEE})) << name;
        const kit::Key full = sortKey(world[name].locale, "abc"_b, 8, 5);
        EXPECT_TRUE(gives("nlsSortKey", 2, full.status)) << "no NUL within the buffer";
    }
}

TEST(SortKey, TheBitsForIcuAreNotLookedAt) {
    World world;
    for (const kit::Kit &one : world.kits)
        for (const std::uint16_t mode : kit::kKeyModes)
            for (const unsigned bits : {0x2000U, 0x4000U, 0x6000U})
                EXPECT_EQ(sortKey(one.locale, "aBc"_b, 16, mode).text(),
                          sortKey(one.locale, "aBc"_b, 16, static_cast<std::uint16_t>(mode | bits)).text())
                    << one.name;
}

TEST(SortKey, ABufferOfFourBytesTakesThreeWeightsAndANul) {
    World world;
    const kit::Kit &german = world["1252 german"];
    const kit::Key key = sortKey(german.locale, "sechsx"_b, 4);
    EXPECT_TRUE(gives("nlsSortKey", 0, key.status));
    EXPECT_EQ(key.length, 3);
    EXPECT_EQ(key.buffer, table(german.twin.collation->sensitive, "sec"_b) + Bytes{0});
}

TEST(SortKey, AnEmptySourceGivesAnEmptyKey) {
    World world;
    for (const kit::Kit &one : world.kits)
        for (const std::uint16_t mode : kit::kKeyModes) {
            const kit::Key key = sortKey(one.locale, {}, 1, mode);
            EXPECT_TRUE(gives("nlsSortKey", 0, key.status)) << one.name;
            EXPECT_EQ(key.length, 0) << one.name;
            EXPECT_EQ(key.buffer, Bytes{0}) << one.name;
        }
}

TEST(SortKey, ABufferOfNoBytesGives2) {
    World world;
    for (const kit::Kit &one : world.kits) {
        const kit::Key key = sortKey(one.locale, "abc"_b, 0);
        EXPECT_TRUE(gives("nlsSortKey", 2, key.status)) << one.name;
        EXPECT_EQ(key.length, 0) << one.name;
    }
}

TEST(SortKey, ABasicSourceThatIsTooLongWritesNothing) {
    World world;
    for (const char *const name : {"1252 BASIC", "UTF-8 BASIC", "SHIFT-JIS BASIC"})
        for (const std::uint16_t mode : kit::kKeyModes) {
            const kit::Key key = sortKey(world[name].locale, "abcd"_b, 4, mode, 0, {'x', 0, 'y', 'z'});
            EXPECT_TRUE(gives("nlsSortKey", 0, key.status));
            EXPECT_EQ(key.buffer, (Bytes{'x', 0, 'y', 'z'})) << name;
            EXPECT_EQ(key.length, 1) << name;
            EXPECT_TRUE(gives("nlsSortKey", 2, sortKey(world[name].locale, "abcd"_b, 4, mode).status));
            EXPECT_EQ(sortKey(world[name].locale, "abc"_b, 4, mode).text(), "abc"_b) << name;
        }
}

TEST(SortKey, TrimmingCutsTrailingBlanksOfTheSource) {
    World world;
    for (const kit::Kit &one : world.kits)
        for (const std::uint16_t mode : kit::kKeyModes) {
            if (one.name == "1252 literal")
                continue;
            const Bytes plain = sortKey(one.locale, "a b"_b, 32, mode).text();
            EXPECT_EQ(sortKey(one.locale, "a b   "_b, 32, mode, 1).text(), plain) << one.name;
            EXPECT_EQ(sortKey(one.locale, "a b   "_b, 32, mode, 0xFFFF).text(), plain) << one.name;
            EXPECT_GT(sortKey(one.locale, "a b   "_b, 32, mode, 0).text().size(), plain.size()) << one.name;
            EXPECT_EQ(sortKey(one.locale, "   "_b, 32, mode, 1).length, 0) << one.name;
        }
}

TEST(SortKey, UnderTheLiteralRuleTrimmingCutsTheFinishedKey) {
    World world;
    nlsLocale *const locale = world["1252 literal"].locale;
    EXPECT_EQ(sortKey(locale, "a b  "_b, 32, 1, 1).text(), "a b"_b);
    EXPECT_EQ(sortKey(locale, "a b  "_b, 32, 1, 0).text(), "a b  "_b);
    // The key is cut to its buffer first: what stands behind it does not save its blanks.
    EXPECT_EQ(sortKey(locale, "a   b"_b, 4, 1, 1).text(), "a"_b);
    EXPECT_EQ(sortKey(locale, "a   b"_b, 4, 1, 0).text(), "a  "_b);
}

TEST(SortKey, AnExpandingCharacterWritesTheWeightOfSTwice) {
    World world;
    const kit::Kit &german = world["1252 german"];
    for (const std::uint16_t mode : kit::kKeyModes) {
        EXPECT_EQ(sortKey(german.locale, {0xDF}, 8, mode).text(),
                  sortKey(german.locale, "ss"_b, 8, mode).text());
        EXPECT_EQ(sortKey(german.locale, {'a', 0xDF}, 3, mode).text(),
                  sortKey(german.locale, "as"_b, 8, mode).text())
            << "a pair may be cut after its first byte";
    }
    // Kind 9 has the plain expansion whatever its variant byte.
    EXPECT_EQ(sortKey(world["1252 other kind"].locale, {0xDF}, 8).text(),
              sortKey(world["1252 other kind"].locale, "ss"_b, 8).text());
}

TEST(SortKey, UnderTheLiteralRuleAnExpandingCharacterWritesTwoCapitalS) {
    World world;
    for (const std::uint16_t mode : kit::kKeyModes) {
        EXPECT_EQ(sortKey(world["1252 literal"].locale, {0xDF}, 8, mode).text(), "SS"_b);
        EXPECT_EQ(sortKey(world["1252 literal"].locale, {'x', 0xDF}, 3, mode).length, 2);
    }
}

TEST(SortKey, APairGivesTheWeightOfItsLeadByteAndItsTrailByteUnweighted) {
    World world;
    const kit::Kit &sjis = world["SHIFT-JIS weights"];
    const fixture::ByteTable &weights = sjis.twin.collation->insensitive;
    // The trail 'a' stays 'a', where the letter itself would weigh as 'A'.
    EXPECT_EQ(sortKey(sjis.locale, {0x81, 'a', 'a'}, 8, 0).text(), (Bytes{weights[0x81], 'a', 'A'}));
    EXPECT_EQ(sortKey(sjis.locale, {'x', 0x81, 'a'}, 3, 0).text(), (Bytes{weights['x'], weights[0x81]}));
    EXPECT_EQ(sortKey(sjis.locale, {0x81}, 8, 0).text(), Bytes{weights[0x81]})
        << "a lead byte before the NUL";
}

TEST(SortKey, BasicModeOneCopiesAndModeZeroLowers) {
    World world;
    EXPECT_EQ(sortKey(world["1252 BASIC"].locale, {'A', 0xC4, 'b'}, 8, 1).text(), (Bytes{'A', 0xC4, 'b'}));
    EXPECT_EQ(sortKey(world["1252 BASIC"].locale, {'A', 0xC4, 'b'}, 8, 0).text(), (Bytes{'a', 0xE4, 'b'}));
    EXPECT_EQ(sortKey(world["1252 BASIC without case table"].locale, {'A', 0xC4, 'b'}, 8, 0).text(),
              (Bytes{'a', 0xC4, 'b'}))
        << "by the C runtime";
    EXPECT_EQ(sortKey(world["UTF-8 BASIC"].locale, {'A', 0xC3, 0x84}, 8, 0).text(), (Bytes{'a', 0xC3, 0xA4}));
    EXPECT_EQ(sortKey(world["SHIFT-JIS BASIC"].locale, {'A', 0x82, 0x60}, 8, 0).text(),
              (Bytes{'a', 0x82, 0x60}));
}

TEST(SortKey, BasicKeysInLowerCaseTurnFourByteCharactersIntoQuestionMarks) {
    World world;
    const Bytes first = "a\xF0\x9F\x98\x80"_b; // U+1F600
    const Bytes second = "a\xF0\x9F\x98\x81"_b;
    for (const char *const name : {"UTF-8 BASIC", "UTF-8 BASIC, common pairs of case"}) {
        nlsLocale *const locale = world[name].locale;
        EXPECT_EQ(sortKey(locale, first, 16, 0).text(), "a?"_b) << name;
        EXPECT_EQ(sortKey(locale, second, 16, 0).text(), "a?"_b) << name;
        // Compares tell them apart, and rank them behind what the keys rank behind "?".
        EXPECT_EQ(compare(locale, first, second, 0).result, -1) << name;
        EXPECT_EQ(compare(locale, first, "a\xC3\xA9"_b, 0).result, 1) << name;
        EXPECT_LT(sortKey(locale, first, 16, 0).text(), sortKey(locale, "a\xC3\xA9"_b, 16, 0).text()) << name;
        // In mode 1 keys are the bytes.
        EXPECT_EQ(sortKey(locale, first, 16, 1).text(), first) << name;
    }
    // Without a case table nothing but single bytes is changed.
    EXPECT_EQ(sortKey(world["UTF-8 BASIC without case table"].locale, first, 16, 0).text(), first);
}

TEST(SortKey, AnEucKeyIsMadeOfShiftJis) {
    World world;
    const kit::Kit &euc = world["EUCJIS weights"];
    const fixture::ByteTable &weights = euc.twin.collation->sensitive;
    EXPECT_EQ(sortKey(euc.locale, {'a', 0xB0, 0xA1, 0x8E, 0xB1}, 16).text(),
              (Bytes{weights['a'], weights[0x88], 0x9F, weights[0xB1]}));
    // The half-width kana DD has weight 0: an expanding character once it is a single byte.
    EXPECT_EQ(sortKey(euc.locale, {0x8E, 0xDD}, 16).text(), (Bytes{weights['s'], weights['s']}));
    EXPECT_EQ(sortKey(world["EUCJIS BASIC"].locale, {'A', 0xB0, 0xA1, 0x8E, 0xB1}, 16, 1).text(),
              (Bytes{'A', 0x88, 0x9F, 0xB1}));
    EXPECT_EQ(sortKey(world["EUCJIS BASIC"].locale, {'A', 0xB0, 0xA1, 0x8E, 0xB1}, 16, 0).text(),
              (Bytes{'a', 0x88, 0x9F, 0xB1}));
    EXPECT_EQ(sortKey(world["EUCJIS BASIC"].locale, {'A', 0x8E, 0xB1, 0x8E, 0xB2}, 3, 1).text(),
              (Bytes{'A', 0xB1}))
        << "as much as fits of the converted text";
}

TEST(SortKey, AThaiLeadingVowelSortsAfterItsConsonant) {
    World world;
    const kit::Kit &thai = world["Thai"];
    const fixture::ByteTable &t = thai.twin.collation->sensitive;
    EXPECT_EQ(sortKey(thai.locale, {0xE0, 0xA1}, 16).text(), (Bytes{t[0xA1], 128, t[0xE0], 2}));
    EXPECT_EQ(sortKey(thai.locale, {0xE0}, 16).text(), (Bytes{t[0xE0], 2}));
    EXPECT_EQ(sortKey(thai.locale, {0xE0, 'x'}, 16).text(), (Bytes{t[0xE0], 2, t['x']}));
    EXPECT_EQ(sortKey(thai.locale, {0xA1, 'x'}, 16).text(), (Bytes{t[0xA1], 2, t['x']}));
}

TEST(SortKey, ThaiVowelsAndMarksGoIntoTheByteBehindTheirConsonant) {
    World world;
    const kit::Kit &thai = world["Thai"];
    const fixture::ByteTable &t = thai.twin.collation->sensitive;
    const unsigned vowel = t[0xD4];
    const unsigned mark = t[0xE8];
    const auto byte = [](unsigned value) { return fixture::byteOf(value); };
    EXPECT_EQ(sortKey(thai.locale, {0xA1, 0xD4}, 16).text(), (Bytes{t[0xA1], byte(2 | vowel)}));
    EXPECT_EQ(sortKey(thai.locale, {0xA1, 0xD4, 0xE8}, 16).text(), (Bytes{t[0xA1], byte(vowel | mark)}));
    EXPECT_EQ(sortKey(thai.locale, {0xA1, 0xE8}, 16).text(), (Bytes{t[0xA1], byte(mark)}));
    EXPECT_EQ(sortKey(thai.locale, {0xD4}, 16).text(), (Bytes{128, byte(2 | vowel)})) << "an empty cell";
    EXPECT_EQ(sortKey(thai.locale, {'x', 0xE8}, 16).text(), (Bytes{t['x'], 128, byte(mark)}));
    EXPECT_EQ(sortKey(thai.locale, {0xA1, 0xD4, 0xD5}, 16).text(),
              (Bytes{t[0xA1], byte(2 | vowel), 128, byte(t[0xD5] | 2)}))
        << "a second vowel";
    EXPECT_EQ(sortKey(thai.locale, {0xA1, 0xE8, 0xE9}, 16).text(), (Bytes{t[0xA1], byte(mark), 128, t[0xE9]}))
        << "a second mark";
    for (std::uint16_t size = 1; size <= 4; ++size)
        EXPECT_EQ(sortKey(thai.locale, {0xE0, 0xA1, 0xA2}, size).length, size - 1)
            << "cut at the buffer's end";
}

TEST(SortKey, AnyModeButZeroSelectsTheCaseSensitiveThaiTable) {
    World world;
    const kit::Kit &thai = world["Thai"];
    for (const int mode : {1, 2, 7}) {
        EXPECT_EQ(sortKey(thai.locale, "aA"_b, 8, static_cast<std::uint16_t>(mode)).text(),
                  table(thai.twin.collation->sensitive, "aA"_b));
        EXPECT_EQ(compare(thai.locale, "a"_b, "A"_b, static_cast<std::int16_t>(mode)).result, 1);
    }
    EXPECT_EQ(sortKey(thai.locale, "aA"_b, 8, 0x6000).text(),
              table(thai.twin.collation->insensitive, "aA"_b));
    EXPECT_EQ(compare(thai.locale, "a"_b, "A"_b, 0).result, 0);
}

TEST(Compare, TrailingBlanksAreInsignificantInEveryOrder) {
    World world;
    for (const kit::Kit &one : world.kits)
        for (const std::int16_t mode : kit::kModes) {
            const kit::Compared equal = compare(one.locale, "abc"_b, "abc   "_b, mode);
            EXPECT_TRUE(gives("nlsCompare", 0, equal.status));
            EXPECT_EQ(equal.result, 0) << one.name;
            EXPECT_EQ(compare(one.locale, "abc   "_b, "abc"_b, mode).result, 0) << one.name;
            EXPECT_EQ(compare(one.locale, "abc"_b, "abc d"_b, mode).result, -1) << one.name;
            EXPECT_EQ(compare(one.locale, "abc d"_b, "abc"_b, mode).result, 1) << one.name;
            EXPECT_EQ(compare(one.locale, {}, "   "_b, mode).result, 0) << one.name;
            EXPECT_EQ(compare(one.locale, {}, {}, mode).result, 0) << one.name;
        }
}

TEST(Compare, AModeOtherThanZeroComparesBasicByBytes) {
    World world;
    for (const int mode : {1, 2, -1}) {
        EXPECT_EQ(compare(world["1252 BASIC"].locale, "B"_b, "a"_b, static_cast<std::int16_t>(mode)).result,
                  -1);
        EXPECT_EQ(
            compare(world["UTF-8 BASIC"].locale, {0xC3, 0xA4}, {0xC3, 0x84}, static_cast<std::int16_t>(mode))
                .result,
            1);
    }
    EXPECT_EQ(compare(world["1252 BASIC"].locale, {0xFF}, "a"_b, 1).result, 1) << "bytes are unsigned";
}

TEST(Compare, BasicModeZeroFoldsByTheLocalesLowerCase) {
    World world;
    const auto equal = [&world](const char *name, const Bytes &a, const Bytes &b) {
        return compare(world[name].locale, a, b, 0).result == 0;
    };
    EXPECT_TRUE(equal("1252 BASIC", {'A', 0xC4}, {'a', 0xE4}));
    EXPECT_FALSE(equal("1252 BASIC without case table", {0xC4}, {0xE4})) << "the C runtime knows ASCII";
    EXPECT_TRUE(equal("1252 BASIC without case table", "A"_b, "a"_b));
    EXPECT_TRUE(equal("UTF-8 BASIC", {0xC3, 0x84}, {0xC3, 0xA4}));
    EXPECT_TRUE(equal("UTF-8 BASIC", {0xE1, 0xB8, 0x80}, {0xE1, 0xB8, 0x81}));
    EXPECT_TRUE(equal("UTF-8 BASIC", {0xE2, 0x92, 0xB6}, {0xE2, 0x93, 0x90}));
    EXPECT_TRUE(equal("UTF-8 BASIC", {0xEF, 0xBC, 0xA1}, {0xEF, 0xBD, 0x81}));
    EXPECT_FALSE(equal("UTF-8 BASIC", {0xE3, 0x81, 0x83}, {0xE3, 0x81, 0x85})) << "E3 is not mapped";
    EXPECT_FALSE(equal("UTF-8 BASIC without case table", {0xC3, 0x84}, {0xC3, 0xA4}));
    EXPECT_FALSE(equal("SHIFT-JIS BASIC", {0x82, 0x60}, {0x82, 0x81})) << "two-byte characters have no case";
    EXPECT_FALSE(equal("SHIFT-JIS BASIC", {0x83, 'A'}, {0x83, 'a'}));
    EXPECT_TRUE(equal("UTF-8 BASIC", {0xC4, 0xB0}, "i"_b)) << "a counterpart of another length";
}

TEST(Compare, BasicModeZeroTakesCharactersWhole) {
    World world;
    // As numbers, a two-byte character is above every single byte; as bytes B1 is above 81.
    EXPECT_EQ(compare(world["SHIFT-JIS BASIC"].locale, {0xB1}, {0x81, 0x40}, 0).result, -1);
    EXPECT_EQ(compare(world["SHIFT-JIS BASIC"].locale, {0xB1}, {0x81, 0x40}, 1).result, 1);
    // Characters of four bytes keep their number, those of five and more count as 63.
    EXPECT_EQ(
        compare(world["UTF-8 BASIC"].locale, {0xF0, 0x90, 0x90, 0x80}, {0xF0, 0x90, 0x90, 0xA8}, 0).result,
        -1);
    const Bytes five{0xE0, 0x81, 0x82, 0x83, 0x84};
    const Bytes eight{0xF8, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87};
    EXPECT_EQ(compare(world["LONG BASIC"].locale, five, eight, 0).result, 0);
    EXPECT_EQ(compare(world["LONG BASIC"].locale, five, "?"_b, 0).result, 0);
    EXPECT_EQ(compare(world["LONG BASIC"].locale, five, "@"_b, 0).result, -1);
}

TEST(Compare, AnExpandingCharacterEqualsDoubleS) {
    World world;
    for (const char *const name : {"1252 german", "1252 literal", "1252 other kind"})
        for (const std::int16_t mode : kit::kModes) {
            nlsLocale *const locale = world[name].locale;
            EXPECT_EQ(compare(locale, {0xDF}, "ss"_b, mode).result, 0) << name;
            EXPECT_EQ(compare(locale,
                              "Stra\xDF"
                              "e"_b,
                              "Strasse"_b, mode)
                          .result,
                      0)
                << name;
            EXPECT_EQ(compare(locale, {0xDF, 'a'}, "sst"_b, mode).result, -1) << name;
            EXPECT_EQ(compare(locale, {0xDF, 0xDF}, "ssss"_b, mode).result, 0) << name;
            EXPECT_EQ(compare(locale, {'s', 0xDF}, {0xDF, 's'}, mode).result, 0) << name;
        }
}

TEST(Compare, APendingSecondStepIsDroppedWhenTheOtherStringHasEnded) {
    World world;
    nlsLocale *const locale = world["1252 german"].locale;
    EXPECT_EQ(compare(locale, {0xDF}, "s"_b, 1).result, 0);
    EXPECT_EQ(compare(locale, "s"_b, {0xDF}, 1).result, 0);
    EXPECT_EQ(compare(locale, {0xDF, 'x'}, "s"_b, 1).result, 1);
    EXPECT_EQ(compare(locale, {0xDF, ' '}, "s"_b, 1).result, 0);
    EXPECT_EQ(compare(locale, {0xDF}, "s "_b, 1).result, 1) << "the blank is still there to compare with";
    // A pair whose trail byte has no step left beside it.
    EXPECT_EQ(compare(world["SHIFT-JIS weights"].locale, {0x81}, {0x81, 0x40}, 1).result, 0);
}

TEST(Compare, PairsCompareByLeadWeightThenByTrailByte) {
    World world;
    nlsLocale *const locale = world["SHIFT-JIS weights"].locale;
    EXPECT_EQ(compare(locale, {0x81, 'a'}, {0x81, 'A'}, 0).result, 1) << "trail bytes have no case";
    EXPECT_EQ(compare(locale, {0x81, 0x40}, {0x82, 0x40}, 0).result, -1);
    EXPECT_EQ(compare(locale, "a"_b, "A"_b, 0).result, 0);
}

TEST(Compare, EucComparesPairByPairInShiftJis) {
    World world;
    nlsLocale *const locale = world["EUCJIS weights"].locale;
    // EUC order B0A1 > 8EB1; in Shift_JIS 889F < B1.
    EXPECT_EQ(compare(locale, {0xB0, 0xA1}, {0x8E, 0xB1}, 1).result, -1);
    EXPECT_EQ(compare(locale, {0x8E, 0xB1}, {0x8E, 0xB2}, 1).result, -1);
    EXPECT_EQ(compare(locale, {'~'}, "ss"_b, 1).result, 0) << "a single byte of weight 0 expands";
    EXPECT_EQ(compare(locale, {0x8E, 0xDD}, {0x8E, 0xDE}, 1).result, -1)
        << "of a pair that becomes one byte the weight alone is compared, also 0";
}

TEST(Compare, ThaiCellsCompareByConsonantThenVowelThenMark) {
    World world;
    nlsLocale *const locale = world["Thai"].locale;
    EXPECT_EQ(compare(locale, {0xE0, 0xA1}, {0xA2}, 1).result, -1) << "the consonant decides";
    EXPECT_EQ(compare(locale, {0xE0, 0xA1}, {0xA1}, 1).result, 1) << "then the leading vowel";
    EXPECT_EQ(compare(locale, {0xA1, 0xD4}, {0xA1, 0xD5}, 1).result, -1);
    EXPECT_EQ(compare(locale, {0xA1, 0xE8}, {0xA1, 0xE9}, 1).result, -1);
    EXPECT_EQ(compare(locale, {0xA1, 0xD4, 0xE8}, {0xA1, 0xE8, 0xD4}, 1).result, 0) << "one cell either way";
    EXPECT_EQ(compare(locale, {0xA1, 0xE0}, {0xA1}, 1).result, 1) << "a leading vowel begins a cell";
    EXPECT_EQ(compare(locale, {0xEB}, {0xEC}, 1).result, 0) << "two marks of one weight";
}

TEST(CompareN, ALengthBoundsItsString) {
    World world;
    for (const kit::Kit &one : world.kits)
        for (const std::uint16_t mode : kit::kKeyModes) {
            const kit::Compared equal = compareN(one.locale, "abX"_b, "abY"_b, 2, 2, mode);
            EXPECT_TRUE(gives("nlsCompareN", 0, equal.status));
            EXPECT_EQ(equal.result, 0) << one.name;
            EXPECT_EQ(compareN(one.locale, "abX"_b, "abY"_b, 3, 3, mode).result, -1) << one.name;
            EXPECT_EQ(compareN(one.locale, "abX"_b, "abX"_b, 2, 3, mode).result, -1) << one.name;
            EXPECT_EQ(compareN(one.locale, "abX"_b, "ab"_b, -1, 0xFFFFFFFF, mode).result, 1) << one.name;
            EXPECT_EQ(compareN(one.locale, "ab"_b, "ab"_b, 100, 5, mode).result, 0) << "the NUL comes first";
            EXPECT_EQ(compareN(one.locale, "abX"_b, "ab"_b, 0, 0, mode).result, 0) << one.name;
            EXPECT_EQ(compareN(one.locale, "ab"_b, "  "_b, 0, 2, mode).result, 0) << one.name;
        }
}

TEST(CompareN, ABoundInsideACharacterEndsIt) {
    World world;
    EXPECT_EQ(compareN(world["SHIFT-JIS weights"].locale, {0x81, 0x40}, {0x81, 0x50}, 1, 1, 1).result, 0);
    EXPECT_EQ(compareN(world["UTF-8 BASIC"].locale, {0xE4, 0xB8, 0x80}, {0xE4, 0xB8, 0x81}, 2, 2, 0).result,
              0);
    EXPECT_EQ(compareN(world["EUCJIS weights"].locale, {0xB0, 0xA1}, {0xB0, 0xA2}, 1, 1, 1).result, 0);
}

TEST(ThroughShiftJis, WithoutTheLocaleCallsGive7AndWithoutTheConversion8) {
    World world;
    nlsLocale *const companion = world.library.locale("SHIFT-JIS", "weights", "basic");
    nlsLocale *const locale = world["EUCJIS weights"].locale;
    // Every Shift_JIS locale leaves the list, the conversions stay.
    std::vector<nlsLocale *> hidden;
    for (const void *object = fixture::peek::newest(world.library.handle); object != nullptr;
         object = fixture::peek::next(object)) {
        auto *const one = static_cast<nlsLocale *>(const_cast<void *>(object));
        const char *const name = static_cast<const char *>(object) + 64;
        if (fixture::peek::type(object) == 2 && std::string_view(name).substr(0, 5) != "EUCJI") {
            fixture::peek::setType(one, 0);
            hidden.push_back(one);
        }
    }
    EXPECT_TRUE(gives("nlsSortKey", 7, plainKey(locale)));
    EXPECT_TRUE(gives("nlsSortKey", 7, plainKey(world["EUCJIS BASIC"].locale)));
    EXPECT_TRUE(gives("nlsCompare", 7, plainCompare(locale)));
    EXPECT_TRUE(gives("nlsCompareN", 7, plainCompareN(locale)));
    EXPECT_TRUE(gives("nlsCompare", 0, plainCompare(world["EUCJIS BASIC"].locale))) << "compares bytes";
    for (nlsLocale *const one : hidden)
        fixture::peek::setType(one, 2);
    EXPECT_EQ(fixture::peek::type(companion), 2);
    EXPECT_TRUE(gives("nlsCompare", 0, plainCompare(locale)));

    for (const void *object = fixture::peek::newest(world.library.handle); object != nullptr;
         object = fixture::peek::next(object))
        if (fixture::peek::type(object) == 3)
            fixture::peek::setType(const_cast<void *>(object), 0);
    EXPECT_TRUE(gives("nlsSortKey", 8, plainKey(locale)));
    EXPECT_TRUE(gives("nlsSortKey", 8, plainKey(world["EUCJIS BASIC"].locale)));
    EXPECT_TRUE(gives("nlsCompare", 8, plainCompare(locale)));
    EXPECT_TRUE(gives("nlsCompareN", 8, plainCompareN(locale)));
}
