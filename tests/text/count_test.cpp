// nlsCountBytes, nlsCountChars, nlsCountColumns, nlsSubstr, nlsExtract: statuses and rules by example.
#include "harness/calls.hpp"

#include <gtest/gtest.h>

using kit::Bytes;
using kit::gives;
using kit::operator+;
using kit::operator""_b;
using kit::World;

namespace {

constexpr std::int32_t kCut = -4;

struct Counted {
    nlsStatus status;
    std::uint32_t count;
};

using CountCall = nlsStatus (*)(nlsLocale *, const char *, std::int32_t, std::uint32_t *);

kit::GuardedText &text() {
    static kit::GuardedText guarded;
    return guarded;
}

Counted count(CountCall call, nlsLocale *locale, const Bytes &source, std::int32_t limit) {
    Counted out{0, 77};
    out.status = call(locale, text().terminated(source), limit, &out.count);
    return out;
}

struct Piece {
    nlsStatus status;
    std::uint32_t characters;
    Bytes text;
};

Piece pieceOf(nlsStatus status, std::uint32_t characters, const nlsStr &out) {
    const auto *const bytes = reinterpret_cast<const unsigned char *>(out.buffer);
    return {status, characters, status == NLS_OK ? Bytes(bytes, bytes + out.length) : Bytes{}};
}

Piece substring(nlsLocale *locale, const Bytes &source, std::int32_t start, std::int32_t length) {
    char buffer[64] = "?";
    nlsStr out{buffer, 64, 1};
    std::uint32_t characters = 77;
    const nlsStatus status = nlsSubstr(locale, text().terminated(source), start, length, &characters, &out);
    return pieceOf(status, characters, out);
}

Piece extract(nlsLocale *locale, const Bytes &source, std::uint32_t characters) {
    char buffer[64] = "?";
    nlsStr out{buffer, 64, 1};
    const nlsStatus status = nlsExtract(locale, text().terminated(source), characters, &out);
    return pieceOf(status, characters, out);
}

struct Named {
    const char *name;
    CountCall call;
};
constexpr Named kCounts[] = {
    {"nlsCountBytes", nlsCountBytes}, {"nlsCountChars", nlsCountChars}, {"nlsCountColumns", nlsCountColumns}};

nlsStatus plainSubstr(nlsLocale *locale) {
    char buffer[8];
    nlsStr out{buffer, 8, 0};
    std::uint32_t characters = 0;
    return nlsSubstr(locale, "abc", 1, 2, &characters, &out);
}

nlsStatus plainExtract(nlsLocale *locale) {
    char buffer[8];
    nlsStr out{buffer, 8, 0};
    return nlsExtract(locale, "abc", 2, &out);
}

const Bytes kTwoKanji{0x88, 0x9F, 0x88, 0xA0};

} // namespace

TEST(CountChecks, WhatIsNoLocaleGives13Or24) {
    for (const auto &[name, call] : kCounts)
        kit::refusesWhatIsNoLocale(name, [call = call](nlsLocale *locale) {
            std::uint32_t count = 0;
            return call(locale, "abc", 2, &count);
        });
    kit::refusesWhatIsNoLocale("nlsSubstr", plainSubstr);
    kit::refusesWhatIsNoLocale("nlsExtract", plainExtract);
}

TEST(CountChecks, ALocaleWithoutCharacterTableGives27BeforeBadNumbers) {
    for (const auto &[name, call] : kCounts)
        for (const std::int32_t limit : {2, -1})
            kit::refusesWithoutCharacters(name, [call = call, limit](nlsLocale *locale) {
                std::uint32_t count = 0;
                return call(locale, "abc", limit, &count);
            });
    kit::refusesWithoutCharacters("nlsSubstr", plainSubstr);
    kit::refusesWithoutCharacters("nlsExtract", plainExtract);
}

TEST(CountChecks, NullPointersGive16AndClearTheCount) {
    World world;
    nlsLocale *const locale = world["1252 german"].locale;
    for (const auto &[name, call] : kCounts) {
        std::uint32_t out = 77;
        EXPECT_TRUE(gives(name, 16, call(locale, nullptr, 1, &out)));
        EXPECT_EQ(out, 0U) << name;
        EXPECT_TRUE(gives(name, 16, call(locale, "abc", 1, nullptr)));
        EXPECT_TRUE(gives(name, 13, call(nullptr, nullptr, 1, nullptr)));
    }
    char buffer[4] = "x";
    nlsStr out{buffer, 4, 1};
    nlsStr none{nullptr, 4, 0};
    std::uint32_t characters = 77;
    EXPECT_TRUE(gives("nlsSubstr", 16, nlsSubstr(locale, nullptr, 1, 1, &characters, &out)));
    EXPECT_EQ(characters, 0U);
    characters = 77;
    EXPECT_TRUE(gives("nlsSubstr", 16, nlsSubstr(locale, "abc", 1, 1, &characters, nullptr)));
    EXPECT_EQ(characters, 0U);
    EXPECT_TRUE(gives("nlsSubstr", 16, nlsSubstr(locale, "abc", 1, 1, nullptr, &out)));
    EXPECT_TRUE(gives("nlsSubstr", 16, nlsSubstr(locale, "abc", 1, 1, &characters, &none)));
    EXPECT_TRUE(gives("nlsExtract", 16, nlsExtract(locale, nullptr, 1, &out)));
    EXPECT_TRUE(gives("nlsExtract", 16, nlsExtract(locale, "abc", 1, nullptr)));
    EXPECT_TRUE(gives("nlsExtract", 16, nlsExtract(locale, "abc", 1, &none)));
    EXPECT_STREQ(buffer, "x");
}

TEST(CountChecks, NegativeCountsGive16AndZero) {
    World world;
    for (const auto &[name, call] : kCounts) {
        const Counted out = count(call, world["UTF-8 BASIC"].locale, "abc"_b, -1);
        EXPECT_TRUE(gives(name, 16, out.status));
        EXPECT_EQ(out.count, 0U) << name;
    }
}

TEST(CountBytes, CountsTheBytesOfTheFirstCharacters) {
    World world;
    nlsLocale *const sjis = world["SHIFT-JIS weights"].locale;
    const auto bytes = [&](const Bytes &source, std::int32_t characters) {
        const Counted out = count(nlsCountBytes, sjis, source, characters);
        EXPECT_TRUE(gives("nlsCountBytes", 0, out.status));
        return out.count;
    };
    EXPECT_EQ(bytes(kTwoKanji + "a"_b, 0), 0U);
    EXPECT_EQ(bytes(kTwoKanji + "a"_b, 1), 2U);
    EXPECT_EQ(bytes(kTwoKanji + "a"_b, 2), 4U);
    EXPECT_EQ(bytes(kTwoKanji + "a"_b, 3), 5U);
    EXPECT_EQ(bytes(kTwoKanji + "a"_b, 4), 5U) << "more characters than there are, not more than bytes";
    EXPECT_EQ(bytes(kTwoKanji + "a"_b, 5), 5U);
    EXPECT_EQ(bytes(kTwoKanji + "a"_b, 1000), 5U) << "more than bytes";
    EXPECT_EQ(bytes({}, 0), 0U);
    EXPECT_EQ(bytes({}, 3), 0U);
}

TEST(CountBytes, ACharacterLongerThanTheWholeTextGivesMinus4) {
    World world;
    const Counted out = count(nlsCountBytes, world["UTF-8 BASIC"].locale, {0xE4, 0xB8}, 1);
    EXPECT_TRUE(gives("nlsCountBytes", kCut, out.status));
    EXPECT_EQ(count(nlsCountBytes, world["UTF-8 BASIC"].locale, {0xE4, 0xB8}, 3).status, NLS_OK)
        << "more characters than bytes: not walked at all";
}

TEST(CountChars, CountsTheCharactersInTheFirstBytes) {
    World world;
    const auto characters = [&](const char *name, const Bytes &source, std::int32_t bytes) {
        const Counted out = count(nlsCountChars, world[name].locale, source, bytes);
        EXPECT_TRUE(gives("nlsCountChars", 0, out.status));
        return out.count;
    };
    EXPECT_EQ(characters("1252 german", "abc"_b, 2), 2U);
    EXPECT_EQ(characters("1252 german", "abc"_b, 9), 3U) << "a page of single bytes: the limit itself";
    EXPECT_EQ(characters("SHIFT-JIS weights", kTwoKanji + "a"_b, 4), 2U);
    EXPECT_EQ(characters("SHIFT-JIS weights", kTwoKanji + "a"_b, 100), 3U);
    EXPECT_EQ(characters("SHIFT-JIS weights", kTwoKanji, 0), 0U);
    EXPECT_EQ(characters("SHIFT-JIS weights", {}, 5), 0U);
    EXPECT_EQ(characters("UTF-8 BASIC", {0xC3, 0xA4, 0xE4, 0xB8, 0x80, 0xF0, 0x90, 0x90, 0xA8}, 9), 3U);
}

TEST(CountChars, ALimitInsideACharacterGivesMinus4AndTheCharactersBefore) {
    World world;
    Counted out = count(nlsCountChars, world["SHIFT-JIS weights"].locale, kTwoKanji, 3);
    EXPECT_TRUE(gives("nlsCountChars", kCut, out.status));
    EXPECT_EQ(out.count, 1U);
    out = count(nlsCountChars, world["SHIFT-JIS weights"].locale, {0x88, 0x9F, 0x88}, 10);
    EXPECT_TRUE(gives("nlsCountChars", kCut, out.status)) << "the text itself ends there";
    EXPECT_EQ(out.count, 1U);
}

TEST(CountColumns, SingleBytesTakeOneColumnAndPairsTwo) {
    World world;
    const auto columns = [&](const char *name, const Bytes &source) {
        const Counted out =
            count(nlsCountColumns, world[name].locale, source, static_cast<std::int32_t>(source.size()));
        EXPECT_TRUE(gives("nlsCountColumns", 0, out.status));
        return out.count;
    };
    EXPECT_EQ(columns("1252 german", {'a', 0xDF}), 2U);
    EXPECT_EQ(columns("SHIFT-JIS weights", kTwoKanji + "a"_b), 5U);
    EXPECT_EQ(columns("EUCJIS weights", {0x8E, 0xB1}), 1U) << "half-width kana: attribute 08";
    EXPECT_EQ(columns("EUCJIS weights", {0xB0, 0xA1}), 2U);
    EXPECT_EQ(columns("UTF-8 BASIC", {}), 0U);
}

TEST(CountColumns, Utf8WidthsFollowTheFirstThreeBytes) {
    World world;
    struct Row {
        Bytes character;
        unsigned columns;
    };
    const Row rows[] = {
        {{'a'}, 1},
        {{0xEF, 0xBB, 0xBF}, 0},
        {{0xE0, 0xB8, 0xB0}, 1},
        {{0xE0, 0xB8, 0xB1}, 0},
        {{0xE0, 0xB8, 0xB2}, 1},
        {{0xE0, 0xB8, 0xB3}, 1},
        {{0xE0, 0xB8, 0xB4}, 0},
        {{0xE0, 0xB8, 0xBA}, 0},
        {{0xE0, 0xB8, 0xBB}, 1},
        {{0xE0, 0xB9, 0x86}, 1},
        {{0xE0, 0xB9, 0x87}, 0},
        {{0xE0, 0xB9, 0x8E}, 0},
        {{0xE0, 0xB9, 0x8F}, 1},
        {{0xC3, 0xA4}, 1},
        {{0xE2, 0xBF, 0xBF}, 1},
        {{0xE3, 0x80, 0x80}, 2},
        {{0xE4, 0xB8, 0x80}, 2},
        {{0xE9, 0xBF, 0xBF}, 2},
        {{0xEE, 0x80, 0x80}, 2},
        {{0xEF, 0xB9, 0xBF}, 2},
        {{0xEF, 0xBA, 0x80}, 1},
        {{0xEF, 0xBB, 0xBE}, 1},
        {{0xEF, 0xBC, 0x80}, 2},
        {{0xEF, 0xBC, 0xBF}, 2},
        {{0xEF, 0xBD, 0x9F}, 2},
        {{0xEF, 0xBD, 0xA0}, 1},
        {{0xEF, 0xBE, 0x80}, 1},
        {{0xEF, 0xBF, 0x9C}, 1},
        {{0xEF, 0xBF, 0x9D}, 2},
        {{0xEF, 0xBF, 0xA7}, 2},
        {{0xEF, 0xBF, 0xA8}, 1},
        {{0xF0, 0x90, 0x90, 0xA8}, 2},
        {{0xF0, 0x9F, 0x98, 0x80}, 2},
    };
    for (const Row &row : rows) {
        const auto size = static_cast<std::int32_t>(row.character.size());
        const Counted out = count(nlsCountColumns, world["UTF-8 BASIC"].locale, row.character, size);
        EXPECT_TRUE(gives("nlsCountColumns", 0, out.status));
        EXPECT_EQ(out.count, row.columns) << kit::hex(row.character);
        // A character that begins below the limit is counted whole.
        EXPECT_EQ(count(nlsCountColumns, world["UTF-8 BASIC"].locale, row.character, 1).count, row.columns);
    }
}

TEST(CountColumns, MoreBytesThanTheTextHasGive16) {
    World world;
    const Counted out = count(nlsCountColumns, world["UTF-8 BASIC"].locale, "abc"_b, 4);
    EXPECT_TRUE(gives("nlsCountColumns", 16, out.status));
    EXPECT_EQ(out.count, 0U);
    EXPECT_EQ(count(nlsCountColumns, world["UTF-8 BASIC"].locale, "abc"_b, 3).count, 3U);
}

TEST(CountColumns, SingleBytesUpToTheLimitNeedNoNulBehindThem) {
    World world;
    for (const kit::Kit &one : world.kits)
        for (const Bytes &source : {"A"_b, "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"_b}) {
            Counted out{0, 77};
            const char *const bytes = text().bytes(source); // a forbidden page stands behind
            out.status =
                nlsCountColumns(one.locale, bytes, static_cast<std::int32_t>(source.size()), &out.count);
            EXPECT_EQ(out.status, NLS_OK) << one.name;
            EXPECT_EQ(out.count, source.size()) << one.name;
        }
}

TEST(Substr, TakesTheCharactersWhollyInsideTheRange) {
    World world;
    nlsLocale *const sjis = world["SHIFT-JIS weights"].locale;
    const Bytes source = "a"_b + kTwoKanji + "b"_b;
    const auto check = [&](std::int32_t start, std::int32_t length, std::uint32_t characters,
                           const Bytes &expected) {
        const Piece piece = substring(sjis, source, start, length);
        EXPECT_TRUE(gives("nlsSubstr", 0, piece.status));
        EXPECT_EQ(piece.characters, characters) << start << " " << length;
        EXPECT_EQ(piece.text, expected) << start << " " << length;
    };
    check(1, 6, 4, source);
    check(1, 1, 1, "a"_b);
    check(2, 2, 1, {0x88, 0x9F});
    check(2, 3, 1, {0x88, 0x9F});
    check(3, 3, 1, {0x88, 0xA0});
    check(3, 2, 0, {});
    check(3, 1, 0, {});
    check(6, 6, 1, "b"_b);
    check(1, 0, 0, {});
    check(3, 0, 0, {});
}

TEST(Substr, InUtf8TheStartMovesToTheNextCharacter) {
    World world;
    nlsLocale *const utf8 = world["UTF-8 BASIC"].locale;
    const Bytes source{0xE4, 0xB8, 0x80, 0xC3, 0xA4, 'x'};
    EXPECT_EQ(substring(utf8, source, 2, 5).text, (Bytes{0xC3, 0xA4, 'x'}));
    EXPECT_EQ(substring(utf8, source, 2, 4).text, (Bytes{0xC3, 0xA4}));
    EXPECT_EQ(substring(utf8, source, 2, 3).text, Bytes{});
    EXPECT_EQ(substring(utf8, source, 3, 1).text, Bytes{});
    EXPECT_EQ(substring(utf8, {0xC3, 0xA4}, 2, 2).text, Bytes{}) << "moved to the NUL";
}

TEST(Substr, ALeadByteBeforeTheNulIsLeftOut) {
    World world;
    const Piece piece = substring(world["SHIFT-JIS weights"].locale, {'a', 0x88}, 1, 2);
    EXPECT_EQ(piece.text, "a"_b);
    EXPECT_EQ(piece.characters, 1U);
    EXPECT_EQ(substring(world["SHIFT-JIS weights"].locale, {'a', 0x88}, 2, 2).text, Bytes{});
}

TEST(Substr, PositionsOutsideTheTextGive16) {
    World world;
    nlsLocale *const locale = world["1252 german"].locale;
    const auto refused = [&](const Bytes &source, std::int32_t start, std::int32_t length) {
        const Piece piece = substring(locale, source, start, length);
        EXPECT_EQ(piece.characters, 0U);
        return gives("nlsSubstr", 16, piece.status);
    };
    EXPECT_TRUE(refused("abc"_b, 0, 1));
    EXPECT_TRUE(refused("abc"_b, -1, 1));
    EXPECT_TRUE(refused("abc"_b, 4, 1));
    EXPECT_TRUE(refused("abc"_b, 1, 4));
    EXPECT_TRUE(refused("abc"_b, 1, -1));
    EXPECT_TRUE(refused({}, 1, 0));
    EXPECT_TRUE(gives("nlsSubstr", 0, substring(locale, "abc"_b, 3, 3).status)) << "the range may end beyond";
}

TEST(Substr, ADestinationThatIsTooSmallGives2) {
    World world;
    char buffer[4] = "xyz";
    nlsStr out{buffer, 2, 2};
    std::uint32_t characters = 0;
    nlsLocale *const locale = world["1252 german"].locale;
    EXPECT_TRUE(gives("nlsSubstr", 2, nlsSubstr(locale, "abc", 1, 3, &characters, &out)));
    EXPECT_STREQ(buffer, "xyz");
    EXPECT_EQ(out.length, 2U);
    EXPECT_TRUE(gives("nlsSubstr", 0, nlsSubstr(locale, "abc", 1, 2, &characters, &out)));
    EXPECT_STREQ(buffer, "ab") << "the NUL one byte behind the stated size";
    out.size = 0;
    EXPECT_TRUE(gives("nlsSubstr", 2, nlsSubstr(locale, "abc", 1, 0, &characters, &out)));
}

TEST(Extract, CopiesTheFirstCharacters) {
    World world;
    nlsLocale *const sjis = world["SHIFT-JIS weights"].locale;
    const auto check = [&](std::uint32_t characters, const Bytes &expected) {
        const Piece piece = extract(sjis, kTwoKanji + "a"_b, characters);
        EXPECT_TRUE(gives("nlsExtract", 0, piece.status));
        EXPECT_EQ(piece.text, expected) << characters;
    };
    check(0, {});
    check(1, {0x88, 0x9F});
    check(2, kTwoKanji);
    check(3, kTwoKanji + "a"_b);
    check(100, kTwoKanji + "a"_b);
}

TEST(Extract, PassesOnTheStatusOfCountingAndOfCopying) {
    World world;
    EXPECT_TRUE(gives("nlsExtract", kCut, extract(world["UTF-8 BASIC"].locale, {0xE4, 0xB8}, 1).status));
    char buffer[4] = "xyz";
    nlsStr out{buffer, 2, 2};
    nlsLocale *const locale = world["1252 german"].locale;
    EXPECT_TRUE(gives("nlsExtract", 2, nlsExtract(locale, "abc", 3, &out)));
    EXPECT_STREQ(buffer, "xyz");
    EXPECT_TRUE(gives("nlsExtract", 0, nlsExtract(locale, "abc", 2, &out)));
    EXPECT_STREQ(buffer, "ab");
}
