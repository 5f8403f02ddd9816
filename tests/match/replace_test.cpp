// The rules of replacing one by one.
#include "calls.hpp"
#include "match_pages.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using fixture::emptyOut;
using fixture::MatchPages;

const model::Page &plain() {
    return MatchPages::instance()["single plain"].page;
}

std::string textOf(const model::Out &out) {
    return {out.buffer.begin(), out.buffer.begin() + out.length};
}

TEST(Replace, TheFirstOccurrenceIsReplacedAndReported) {
    const model::Out out = fixture::replace(plain(), "an", "X", "banana", 1, emptyOut(20));
    EXPECT_EQ(out.status, NLS_OK);
    EXPECT_EQ(textOf(out), "bXana");
    EXPECT_EQ(out.buffer[out.length], 0);
    EXPECT_EQ(out.match.position, 2U);
    EXPECT_EQ(out.match.endOffset, 3U);
    EXPECT_EQ(out.match.found, 1);
}

TEST(Replace, WithoutAMatchTheTextIsCopied) {
    const model::Out out = fixture::replace(plain(), "x", "yy", "banana", 1, emptyOut(20));
    EXPECT_EQ(out.status, NLS_OK);
    EXPECT_EQ(textOf(out), "banana");
    EXPECT_EQ(out.match.position, 0U);
    EXPECT_EQ(out.match.found, model::kNowhere);
    // Exactly filled, with the terminator behind the stated size.
    EXPECT_EQ(textOf(fixture::replace(plain(), "x", "yy", "banana", 1, emptyOut(6))), "banana");
    const model::Out tooSmall = fixture::replace(plain(), "x", "yy", "banana", 1, emptyOut(5));
    EXPECT_EQ(tooSmall.status, NLS_E_BUFFER);
    EXPECT_EQ(tooSmall.buffer[0], 0xEE); // nothing was written
}

TEST(Replace, AnEmptyPatternPutsTheReplacementBehindTheText) {
    const model::Out out = fixture::replace(plain(), "", "XY", "ab", 1, emptyOut(20));
    EXPECT_EQ(textOf(out), "abXY");
    EXPECT_EQ(out.match.position, 3U);
    EXPECT_EQ(out.match.endOffset, 3U);
}

// For every size: the whole result, or nothing and blanks.
TEST(Replace, ResultsFitWholeOrLeaveBlanks) {
    for (std::uint32_t size = 0; size < 12; ++size) {
        const model::Out out = fixture::replace(plain(), "an", "XYZ", "banana", 1, emptyOut(size));
        if (size >= 8) {
            EXPECT_EQ(out.status, NLS_OK) << size;
            EXPECT_EQ(textOf(out), "bXYZana") << size;
            continue;
        }
        EXPECT_EQ(out.status, NLS_E_BUFFER) << size;
        EXPECT_EQ(out.length, 0U) << size;
        if (size > 0) {
            EXPECT_EQ(out.buffer[0], 0) << size;
        }
        if (size >= 5) { // prefix and replacement had been written
            EXPECT_EQ(out.buffer[1], ' ') << size;
            EXPECT_EQ(out.buffer[3], ' ') << size;
        }
        EXPECT_EQ(out.buffer[size], 0xEE) << size;
    }
}

TEST(ReplaceAll, EveryOccurrenceIsReplacedAndCounted) {
    model::Out out = fixture::replaceAll(plain(), "a", "xy", "banana", 1, emptyOut(20));
    EXPECT_EQ(out.status, NLS_OK);
    EXPECT_EQ(textOf(out), "bxynxynxy");
    EXPECT_EQ(out.count, 3U);
    out = fixture::replaceAll(plain(), "aa", "b", "aaaaa", 1, emptyOut(20)); // no overlaps
    EXPECT_EQ(textOf(out), "bba");
    EXPECT_EQ(out.count, 2U);
    out = fixture::replaceAll(plain(), "A", "", "banana", 0, emptyOut(20));
    EXPECT_EQ(textOf(out), "bnn");
    EXPECT_EQ(out.count, 3U);
    out = fixture::replaceAll(plain(), "x", "y", "banana", 1, emptyOut(20));
    EXPECT_EQ(textOf(out), "banana");
    EXPECT_EQ(out.count, 0U);
}

TEST(ReplaceAll, OfMatchesThatOverlapTheFirstOneCounts) {
    for (const std::uint32_t size : {7U, 200U}) {
        const model::Out pairs = fixture::replaceAll(plain(), "aa", "b", "aaaaa", 1, emptyOut(size));
        EXPECT_EQ(textOf(pairs), "bba") << size;
        EXPECT_EQ(pairs.count, 2U) << size;
        const model::Out rings = fixture::replaceAll(plain(), "aba", "-", "ababaaba", 1, emptyOut(size));
        EXPECT_EQ(textOf(rings), "-ba-") << size;
        EXPECT_EQ(rings.count, 2U) << size;
    }
}

// Every number of matches up to all that a short text may have, each replacement up to more than a block, and
// the least room in which blocks are put down as well as one byte less.
TEST(ReplaceAll, ShortTextsWithAnyNumberOfMatchesAndAnyReplacement) {
    for (std::uint32_t matches = 1; matches <= 60; matches += matches < 12 ? 1 : 8)
        for (const std::uint32_t apart : {0U, 1U, 4U}) {
            std::string text;
            for (std::uint32_t i = 0; i < matches && text.size() + apart < 63; ++i)
                text += std::string(apart, static_cast<char>('b' + i % 20)) + "a";
            for (std::size_t length = 0; length <= 66; length += length < 10 ? 1 : 7) {
                const std::string instead(length, 'X');
                std::string expected;
                for (const char byte : text)
                    expected += byte == 'a' ? instead : std::string(1, byte);
                for (const std::uint32_t more : {1U, 63U, 64U, 300U}) {
                    const auto size = static_cast<std::uint32_t>(expected.size()) + more;
                    const model::Out out =
                        fixture::replaceAll(plain(), "a", instead, text, 1, emptyOut(size));
                    ASSERT_EQ(out.status, NLS_OK) << text << " by " << length << " in " << size;
                    ASSERT_EQ(textOf(out), expected) << text << " by " << length << " in " << size;
                    ASSERT_EQ(out.length, expected.size());
                    ASSERT_EQ(out.buffer[expected.size()], 0);
                    ASSERT_EQ(out.count, std::count(text.begin(), text.end(), 'a'));
                }
            }
        }
}

TEST(ReplaceAll, AReplacementThatDoesNotFitEndsReplacingAndTheRestFollows) {
    // The second replacement would need two bytes more than there are, the rest of the text fits.
    const model::Out out = fixture::replaceAll(plain(), "a", "VWXYZ", "banana", 1, emptyOut(11));
    EXPECT_EQ(out.status, NLS_OK);
    EXPECT_EQ(out.count, 1U);
    EXPECT_EQ(textOf(out), "bVWXYZnana");
}

TEST(ReplaceAll, NothingIsWrittenTwiceWhereReplacingEnds) {
    for (std::uint32_t size = 0; size < 24; ++size) {
        const model::Out out = fixture::replaceAll(plain(), "a", "WXYZ", "ba--ba--ba", 1, emptyOut(size));
        const model::Out twin = model::replaceAll(plain(), "a", "WXYZ", "ba--ba--ba", 1, emptyOut(size));
        EXPECT_EQ(out.status, twin.status) << size;
        EXPECT_EQ(out.count, twin.count) << size;
        EXPECT_EQ(textOf(out), textOf(twin)) << size;
        if (out.status == NLS_OK) {
            std::string undone = textOf(out);
            for (std::size_t at; (at = undone.find("WXYZ")) != std::string::npos;)
                undone.erase(at, 3)[at] = 'a';
            EXPECT_EQ(undone, "ba--ba--ba") << size;
        }
    }
}

TEST(ReplaceAll, ARestThatDoesNotFitIs2AndLeavesTheStringBlank) {
    const model::Out out = fixture::replaceAll(plain(), "a", "xy", "banana", 1, emptyOut(5));
    EXPECT_EQ(out.status, NLS_E_BUFFER);
    EXPECT_EQ(out.length, 0U);
    EXPECT_EQ(out.buffer[0], 0);
    EXPECT_EQ(out.buffer[1], ' ');
}

TEST(ReplaceAll, ASizeThatIsNegativeAsASignedNumberHasNoRoom) {
    for (const char *const text : {"banana", "no such letter"})
        for (const std::uint32_t size : {0x8000'0000U, 0xFFFF'FFFFU}) {
            char buffer[400] = "kept";
            nlsStr out{buffer, size, 0};
            std::uint32_t count = 7;
            EXPECT_EQ(nlsReplaceAll(plain().locale, *text == 'b' ? "a" : "q", "xy", text, 1, &out, &count),
                      NLS_E_BUFFER)
                << text << " " << size;
            EXPECT_EQ(count, 0U);
        }
}

TEST(ReplaceAll, AnEmptyPatternIsRefused) {
    const model::Out out = fixture::replaceAll(plain(), "", "x", "banana", 1, emptyOut(20));
    EXPECT_EQ(out.status, NLS_E_NULLARG);
    EXPECT_EQ(out.count, 0U);
    EXPECT_EQ(out.buffer[0], 0xEE);
}

TEST(ReplaceAll, OnlyTheFirstSearchReportsItsFailure) {
    const model::Out out =
        fixture::replaceAll(MatchPages::instance()["utf8 folded"].page, "a", "b", "aa\xC3", 1, emptyOut(20));
    EXPECT_EQ(out.status, NLS_R_CUT);
    EXPECT_EQ(out.buffer[0], 0xEE);
}

TEST(ReplaceAll, ThousandsOfMatchesInBrokenAndWholeText) {
    const model::Page &pairs = MatchPages::instance()["double basic"].page;
    std::string text;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        text += "\x82\x61"
                "a\x81\x83";
        expected += "\x82\x61"
                    "--\x81\x83";
    }
    const model::Out out = fixture::replaceAll(pairs, "a", "--", text, 1,
                                               emptyOut(static_cast<std::uint32_t>(expected.size()) + 1));
    EXPECT_EQ(out.count, 5000U);
    EXPECT_EQ(textOf(out), expected);
}

} // namespace
