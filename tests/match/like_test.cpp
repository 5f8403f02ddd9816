// The rules of LIKE one by one.
#include "calls.hpp"
#include "match_pages.hpp"

#include <gtest/gtest.h>

namespace {

constexpr model::Signs kSigns{0, '_', '%'};
constexpr model::Signs kEscaped{'!', '_', '%'};
constexpr nlsStatus kYes = 1;
constexpr nlsStatus kNo = 0;
constexpr nlsStatus kBad = static_cast<nlsStatus>(-1);

nlsStatus like(const char *page, const std::string &pattern, const std::string &string,
               std::uint16_t mode = 1, const model::Signs &signs = kSigns) {
    return fixture::like(fixture::MatchPages::instance()[page].page, pattern, string, mode, signs);
}

const char *const kPages[] = {"single plain", "single basic",   "single thai",       "double basic",
                              "utf8 folded",  "double weights", "utf8 without case", "long"};

TEST(Like, OneCharacterOfAnyByteCountForTheOneCharacterWildcard) {
    EXPECT_EQ(like("single plain", "a_c", "abc"), kYes);
    EXPECT_EQ(like("single plain", "a_c",
                   "a\xDF"
                   "c"),
              kYes);
    EXPECT_EQ(like("utf8 folded", "a_c",
                   "a\xC3\x9F"
                   "c"),
              kYes);
    EXPECT_EQ(like("utf8 folded", "a_c",
                   "a\xF0\x9F\x98\x80"
                   "c"),
              kYes);
    EXPECT_EQ(like("double basic", "a_c",
                   "a\x82\x63"
                   "c"),
              kYes);
    EXPECT_EQ(like("long", "a_c",
                   "a\xF7"
                   "ccccccc"
                   "c"),
              kYes);
    for (const char *page : kPages)
        EXPECT_EQ(like(page, "a_c", "ac"), kNo) << page;
}

TEST(Like, TheAnyStringWildcardTakesNothingAndEverything) {
    for (const char *page : kPages) {
        EXPECT_EQ(like(page, "a%", "a"), kYes) << page;
        EXPECT_EQ(like(page, "a%", "abc"), kYes) << page;
        EXPECT_EQ(like(page, "%a", "ba"), kYes) << page;
        EXPECT_EQ(like(page, "%", ""), kYes) << page;
        EXPECT_EQ(like(page, "%", "abc"), kYes) << page;
    }
}

TEST(Like, BytesInsideABrokenCharacterAreNoPlaceInLongTextsEither) {
    for (const std::size_t before : {0U, 1U, 2U, 40U, 70U, 140U})
        for (const std::size_t behind : {0U, 30U, 70U, 140U}) {
            const auto with = [&](const std::string &middle) {
                return std::string(before, 'x') + middle + std::string(behind, 'x');
            };
            for (const char *const swallowed : {"\xC3"
                                                "c",
                                                "\xE3"
                                                "xc",
                                                "\xF0"
                                                "xxc"}) {
                EXPECT_EQ(like("utf8 folded", "%c%", with(swallowed)), kNo) << before << ' ' << behind;
                EXPECT_EQ(like("utf8 folded", "%c%", with(swallowed + std::string("c"))), kYes);
            }
            EXPECT_EQ(like("utf8 folded", "%c%", with("\xF0xxxc")), kYes) << "behind the broken character";
        }
}

TEST(Like, CapitalIWithDotFoldsToIInLongTextsToo) {
    for (const std::size_t before : {0U, 1U, 63U, 64U, 140U})
        for (const std::size_t behind : {0U, 70U, 140U}) {
            const std::string text = std::string(before, 'x') + "\xC4\xB0" + std::string(behind, 'x');
            for (const char *const page : {"utf8 folded", "utf8 folded, ASCII in pairs"})
                for (const char *const pattern : {"%i%", "%I%"}) {
                    EXPECT_EQ(like(page, pattern, text, 0), kYes) << before << ' ' << behind;
                    EXPECT_EQ(like(page, pattern, text, 1), kNo) << before << ' ' << behind;
                }
        }
}

TEST(Like, CapitalIWithDotFoldsToIAtTheEndOfLongTextsToo) {
    constexpr char kDotted[] = "\xC4\xB0";
    for (const std::size_t before : {0U, 1U, 63U, 64U, 70U, 140U})
        for (const char *const page : {"utf8 folded", "utf8 folded, ASCII in pairs"}) {
            SCOPED_TRACE(page + std::string(", ") + std::to_string(before));
            const std::string xs(before, 'x');
            for (const char *const small : {"i", "I"}) {
                EXPECT_EQ(like(page, std::string("%") + small, xs + kDotted, 0), kYes);
                EXPECT_EQ(like(page, std::string("%") + kDotted, xs + small, 0), kYes);
                EXPECT_EQ(like(page, std::string("%") + small, xs + kDotted, 1), kNo);
                EXPECT_EQ(like(page, std::string("%") + kDotted, xs + small, 1), kNo);
            }
        }
}

// By itself a first byte folds as the byte without its high bit does: C4 as "D".
TEST(Like, AFirstByteThatTheEndCutsOffFoldsAlikeInTextsOfAnyLength) {
    constexpr char kPage[] = "utf8 folded, ASCII in pairs";
    for (const fixture::Stand stand : fixture::kStands)
        for (std::size_t length = 0; length < 200; ++length) {
            SCOPED_TRACE(length);
            fixture::letStringsStand(stand);
            const std::string text = std::string(length, 'x') + '\xC4';
            for (const char *pattern : {"%d", "%D%", "%x%d", "%"}) {
                const bool wants = pattern[1] == 'x' && length == 0;
                EXPECT_EQ(like(kPage, pattern, text, 0), wants ? kNo : kYes) << pattern;
            }
            EXPECT_EQ(like(kPage, "%e", text, 0), kNo);
            EXPECT_EQ(like(kPage, "%d", text, 1), kNo);
            EXPECT_EQ(like(kPage, "%d%", text + '\x84', 0), kNo) << "it is not cut";
        }
    fixture::letStringsStand(fixture::Stand::kAtPageEnd);
}

TEST(Like, TheEmptyStringMatchesOnlyTheAnyStringWildcardAndTheEmptyPattern) {
    for (const char *page : kPages) {
        EXPECT_EQ(like(page, "", ""), kYes) << page;
        for (const char *pattern : {"a", "_", "%%", "%a", "a%", "_%", "%_"})
            EXPECT_EQ(like(page, pattern, ""), kNo) << page << ' ' << pattern;
    }
}

TEST(Like, TheEscapeMakesALiteralOfAWildcard) {
    for (const char *page : kPages) {
        EXPECT_EQ(like(page, "a!%", "a%", 1, kEscaped), kYes) << page;
        EXPECT_EQ(like(page, "a!%", "ab", 1, kEscaped), kNo) << page;
        EXPECT_EQ(like(page, "a!_", "a_", 1, kEscaped), kYes) << page;
        EXPECT_EQ(like(page, "a!!", "a!", 1, kEscaped), kYes) << page;
        EXPECT_EQ(like(page, "%!%b", "a%b", 1, kEscaped), kYes) << page;
    }
}

TEST(Like, TheEscapeBeforeAnythingElseIsBadWhenItIsReached) {
    for (const char *page : kPages) {
        EXPECT_EQ(like(page, "a!b", "ab", 1, kEscaped), kBad) << page;
        EXPECT_EQ(like(page, "a!", "ab", 1, kEscaped), kBad) << page;
        EXPECT_EQ(like(page, "a!b", "xb", 1, kEscaped), kNo) << page;
        EXPECT_EQ(like(page, "%!b", "ab", 1, kEscaped), kNo) << page; // no match at any place
    }
}

TEST(Like, CaseFollowsTheMode) {
    for (const char *page : {"single plain", "single basic", "double basic", "utf8 folded"}) {
        EXPECT_EQ(like(page, "ABC", "abc", 0), kYes) << page;
        EXPECT_EQ(like(page, "ABC", "abc", 1), kNo) << page;
        EXPECT_EQ(like(page, "%B%", "abc", 0), kYes) << page;
    }
    EXPECT_EQ(like("utf8 folded", "%\xD0\xA0%", "\xD0\xB0\xD1\x80", 0), kYes); // another lead byte
    EXPECT_EQ(like("utf8 folded", "%\xC4\xB0%", "aib", 0), kYes);              // another length
    EXPECT_EQ(like("single basic", "\xC4%", "\xE4x", 0), kYes);
    EXPECT_EQ(like("single basic", "%\xC4%", "x\xE4x", 0), kYes);
    for (const char *page : {"utf8 folded", "utf8 folded, ASCII in pairs"}) {
        EXPECT_EQ(like(page, "\xD0\xA0%", "\xD1\x80x", 0), kYes) << page;
        EXPECT_EQ(like(page, "i%", "\xC4\xB0x", 0), kYes) << page;
        EXPECT_EQ(like(page, "\xEF\xBC\xA1%", "\xEF\xBD\x81x", 0), kYes) << page;
        EXPECT_EQ(like(page, "\xE2\xB1\xA1%", "\xE2\xB1\xA0x", 0), kYes) << page;
        EXPECT_EQ(like(page, "%\xE2\xB1\xA1%", "x\xE2\xB1\xA0x", 0), kYes) << page;
    }
}

TEST(Like, TheLastLiteralAbsorbsRepeatsOfItself) {
    for (const char *page : kPages) {
        EXPECT_EQ(like(page, "ab", "abb"), kYes) << page;
        EXPECT_EQ(like(page, "ab", "abbb"), kYes) << page;
        EXPECT_EQ(like(page, "ab", "ab "), kNo) << page;
        EXPECT_EQ(like(page, "ab", "abc"), kNo) << page;
        EXPECT_EQ(like(page, "%ab", "xabbb"), kYes) << page;
        EXPECT_EQ(like(page, "%ab", "abbxabb"), kYes) << page;
        EXPECT_EQ(like(page, "%ab", "abbxabbx"), kNo) << page;
        EXPECT_EQ(like(page, "a!%", "a%%%", 1, kEscaped), kYes) << page;
    }
}

TEST(Like, ALiteralBlankEqualsTheEndOfTheString) {
    for (const char *page : kPages) {
        EXPECT_EQ(like(page, "", "   "), kYes) << page;
        EXPECT_EQ(like(page, "_ ", "a"), kYes) << page;
        EXPECT_EQ(like(page, "a ", "a"), kNo) << page; // the string has ended with its "a"
        EXPECT_EQ(like(page, "%_ ", "a"), kYes) << page;
    }
}

TEST(Like, TheRestIsNeverTriedAtTheEmptyEnd) {
    for (const char *page : kPages) {
        EXPECT_EQ(like(page, "%%", "a"), kYes) << page;
        EXPECT_EQ(like(page, "a%%", "a"), kNo) << page;
        EXPECT_EQ(like(page, "a%%", "ab"), kYes) << page;
        EXPECT_EQ(like(page, "%a%", "ba"), kYes) << page;
        EXPECT_EQ(like(page, "%_%", "a"), kYes) << page;
        EXPECT_EQ(like(page, "% ", "a"), kNo) << page;
    }
}

TEST(Like, MultibyteWildcardsAreWholeCharacters) {
    const model::Signs wide{0x8149, 0x8151, 0x8193};
    EXPECT_EQ(like("double basic",
                   "\x81\x93"
                   "a\x81\x51",
                   "xxay", 1, wide),
              kYes);
    EXPECT_EQ(like("double basic", "%", "abc", 1, wide), kNo);
    EXPECT_EQ(like("double basic", "a\x81\x49\x81\x93", "a\x81\x93", 1, wide), kYes);
    const model::Signs unicode{0, 0xEFBCBF, 0xEFBC85};
    EXPECT_EQ(like("utf8 folded",
                   "\xEF\xBC\x85"
                   "b\xEF\xBC\xBF",
                   "abc", 1, unicode),
              kYes);
    // Characters of five bytes and more count as "?".
    EXPECT_EQ(like("long", "a\xF5uvwxy", "abcd", 1, {0, '_', '?'}), kYes);
}

TEST(Like, TrailBytesAreNoPlacesToMatchAt) {
    EXPECT_EQ(like("double basic", "%a%", "\x82\x61"), kNo);
    EXPECT_EQ(like("double basic", "%\x82\x61%", "\x82\x82\x61\x61"), kNo);
    EXPECT_EQ(like("double basic", "%a%",
                   "\x82\x82"
                   "a"),
              kYes);
    const std::string pairs(3000, '\x82'); // all lead bytes, even and odd
    EXPECT_EQ(like("double basic", "%\x82\x61%", pairs + "\x82\x61\x61"), kYes);
    EXPECT_EQ(like("double basic", "%\x82\x61%", pairs + "\x82\x82\x61\x61"), kNo);
    EXPECT_EQ(like("utf8 folded", "%a%",
                   "\xC3"
                   "a"),
              kNo); // inside a broken character
}

TEST(Like, EqualBytesAreNotNeeded) {
    EXPECT_EQ(like("single merged", "%\xE1%", "xxax"), kYes);
    EXPECT_EQ(like("single merged", "%\xE1%", std::string(500, 'x') + "\xE4" + std::string(500, 'x')), kYes);
    for (const std::size_t length : {0, 10, 50, 500}) { // ASCII stays apart, and other bytes equal some of it
        const std::string filling(length, 'x');
        EXPECT_EQ(like("single shared", "%a%", filling + "\xE4" + filling, 0), kYes);
        EXPECT_EQ(like("single shared", "%\xE4%", filling + "A" + filling, 0), kYes);
        EXPECT_EQ(like("single shared", "%xS%", filling + "x\xDF" + filling, 0), kYes);
        EXPECT_EQ(like("single shared", "%x\xDF", filling + "xs", 0), kYes);
        EXPECT_EQ(like("single shared", "%a%", filling + "\xE4" + filling, 1), kNo);
    }
    // A character of weight 0 equals a single "s" when it is compared alone.
    EXPECT_EQ(like("single zero", "%s%", "x\xDFx"), kYes);
    EXPECT_EQ(like("single zero", "%\xDF%", std::string(500, 'x') + "s" + std::string(500, 'x')), kYes);
}

// What the string's end leaves of a character is compared as it is.
TEST(Like, CharactersThatTheEndCutsAreCompared) {
    const std::string filling(3000, 'x');
    for (const std::string &before : {std::string(), filling}) {
        // A lone C3 folds as the "C" of seven bits does.
        EXPECT_EQ(like("utf8 folded", "%ac", before + "a\xC3", 0), kYes);
        EXPECT_EQ(like("utf8 folded", "%c", before + "\xC3", 0), kYes);
        EXPECT_EQ(like("utf8 folded", "%c", before + "\xC3", 1), kNo);
        // Without its blank a character equals the one with it.
        EXPECT_EQ(like("utf8 folded", "%\xC3 ", before + "\xC3", 1), kYes);
        EXPECT_EQ(like("utf8 folded", "%\xE1", before + "\xE1  ", 1), kYes);
        EXPECT_EQ(like("double basic", "%\x81 ", before + "\x81", 1), kYes);
        EXPECT_EQ(like("double basic", "%x\x81 ", before + "x\x81", 1), kYes);
        EXPECT_EQ(like("double basic", "%\x81 %", before + "\x81", 1), kYes);
    }
    // The same at the start.
    EXPECT_EQ(like("double basic", "z%", "\x82", 0), kYes);
    EXPECT_EQ(like("double basic", "z%", "\x82\x82", 0), kNo);
    for (const char *page : {"utf8 folded", "utf8 folded, ASCII in pairs"})
        for (std::size_t length = 0; length < 100; ++length) {
            const std::string same(length, 'x');
            EXPECT_EQ(like(page, same + "c%", same + "\xC3", 0), kYes) << page << length;
            EXPECT_EQ(like(page, same + "c%", same + "\xC3", 1), kNo) << page << length;
        }
    EXPECT_EQ(like("utf8 folded", "\xE3\x81 %", "\xE3\x81", 1), kYes);
    EXPECT_EQ(like("utf8 folded", "x\xE3\x81 %", "x\xE3\x81", 1), kYes);
    EXPECT_EQ(like("double basic", "\x81 %", "\x81", 1), kYes);
    EXPECT_EQ(like("double basic", "x\x81 %", "x\x81", 1), kYes);
}

} // namespace
