// The rules of searching one by one.
#include "calls.hpp"
#include "match_pages.hpp"

#include <gtest/gtest.h>

namespace {

using fixture::MatchPages;

const model::Page &page(const char *name) {
    return MatchPages::instance()[name].page;
}

void expectAt(const model::Found &found, std::uint32_t position, std::uint32_t end) {
    EXPECT_EQ(found.status, NLS_OK);
    EXPECT_EQ(found.position, position);
    EXPECT_EQ(found.found, static_cast<std::ptrdiff_t>(position) - 1);
    EXPECT_EQ(found.endOffset, end);
}

void expectNowhere(const model::Found &found) {
    EXPECT_EQ(found.status, NLS_OK);
    EXPECT_EQ(found.position, 0U);
    EXPECT_EQ(found.found, model::kNowhere);
}

class Searches : public testing::TestWithParam<const char *> {};

TEST_P(Searches, ForwardsGivePositionAndEndOffset) {
    expectAt(fixture::searchForwards(page(GetParam()), "b", "abc", 1), 2, 2);
    expectAt(fixture::searchForwards(page(GetParam()), "bc", "abc", 1), 2, 3);
    expectAt(fixture::searchForwards(page(GetParam()), "abc", "abc", 1), 1, 3);
    expectAt(fixture::searchForwards(page(GetParam()), "ab", "abab", 1), 1, 2);
}

TEST_P(Searches, APatternLongerThanTheTextIsNotThere) {
    expectNowhere(fixture::searchForwards(page(GetParam()), "abcd", "abc", 1));
    expectNowhere(fixture::searchBackwards(page(GetParam()), "abcd", "abc", 3, 1));
    // Not even a pattern of blanks matches the text's end.
    expectNowhere(fixture::searchForwards(page(GetParam()), "c ", "abc", 1));
    expectNowhere(fixture::searchForwards(page(GetParam()), " ", "abc", 1));
}

TEST_P(Searches, TheEmptyPatternIsFoundAtTheEnd) {
    expectAt(fixture::searchForwards(page(GetParam()), "", "abc", 1), 4, 4);
    expectAt(fixture::searchForwards(page(GetParam()), "", "", 1), 1, 1);
    const model::Found back = fixture::searchBackwards(page(GetParam()), "", "abc", 2, 1);
    EXPECT_EQ(back.position, 3U);
    EXPECT_EQ(back.found, 2);
}

TEST_P(Searches, BackwardsFindTheLastOccurrence) {
    EXPECT_EQ(fixture::searchBackwards(page(GetParam()), "ab", "abab", 4, 1).position, 3U);
    EXPECT_EQ(fixture::searchBackwards(page(GetParam()), "ab", "abab", 3, 1).position, 1U);
    EXPECT_EQ(fixture::searchBackwards(page(GetParam()), "ab", "ab", 2, 1).position, 1U);
    expectNowhere(fixture::searchBackwards(page(GetParam()), "ab", "ba", 2, 1));
    expectNowhere(fixture::searchBackwards(page(GetParam()), "ab", "ab", 1, 1));
}

// Every place of a text that is long enough for blocks, and every length of the text around it.
TEST_P(Searches, EveryPlaceInATextOfAnyLengthIsFound) {
    for (std::uint16_t mode : {std::uint16_t{0}, std::uint16_t{1}})
        for (std::size_t before = 0; before < 700; before += before < 200 ? 1 : 37)
            for (const std::size_t after : {0U, 1U, 15U, 16U, 17U, 70U}) {
                std::string text = std::string(before, 'x') + "ab" + std::string(after, 'a');
                expectAt(fixture::searchForwards(page(GetParam()), "ab", text, mode),
                         static_cast<std::uint32_t>(before) + 1, static_cast<std::uint32_t>(before) + 2);
            }
}

INSTANTIATE_TEST_SUITE_P(Pages, Searches,
                         testing::Values("single plain", "single basic", "single basic without case",
                                         "single thai", "double basic", "double weights", "utf8 folded",
                                         "utf8 without case", "long"));

TEST(Search, TrailBytesAreNoPlaces) {
    const model::Page &pairs = page("double basic");
    expectNowhere(fixture::searchForwards(pairs, "a", "\x82\x61", 1));
    expectAt(fixture::searchForwards(pairs, "a",
                                     "\x82\x61"
                                     "a",
                                     1),
             3, 3);
    expectNowhere(fixture::searchForwards(pairs, "\x82\x61", "\x82\x82\x61", 1));
    expectAt(fixture::searchForwards(pairs, "\x82\x61", "\x82\x82\x82\x61", 1), 3, 4);
    const std::string leads(3000, '\x82');
    expectAt(fixture::searchForwards(pairs, "\x82\x61", leads + "\x82\x61", 1), 3001, 3002);
    expectAt(fixture::searchForwards(pairs, "a", leads + "aa", 0), 3001, 3001);
    expectAt(fixture::searchForwards(pairs, "a",
                                     leads + "\x82"
                                             "aa",
                                     0),
             3003, 3003);
    EXPECT_EQ(fixture::searchBackwards(pairs, "a", "a\x82\x61", 3, 1).position, 1U);
}

TEST(Search, BytesInsideBrokenUtf8AreNoPlaces) {
    const model::Page &utf8 = page("utf8 folded");
    const std::string filling(3000, 'x');
    for (std::uint16_t mode : {std::uint16_t{0}, std::uint16_t{1}}) {
        expectNowhere(fixture::searchForwards(utf8, "a",
                                              filling +
                                                  "\xC3"
                                                  "a" +
                                                  filling,
                                              mode));
        expectNowhere(fixture::searchForwards(utf8, "a",
                                              filling +
                                                  "\xE1\x80"
                                                  "a" +
                                                  filling,
                                              mode));
        expectNowhere(fixture::searchForwards(utf8, "a",
                                              filling +
                                                  "\xF1\xC3"
                                                  "aa" +
                                                  filling,
                                              mode));
        expectAt(fixture::searchForwards(utf8, "a",
                                         filling +
                                             "\xC3"
                                             "aa" +
                                             filling,
                                         mode),
                 3003, 3003);
        expectAt(fixture::searchForwards(utf8, "\xC3\xA5", filling + "\xE1\xC3\xA5\xC3\xA5" + filling, mode),
                 3004, 3005);
    }
}

TEST(Search, FoldedCharactersOfOtherBytesAndLengthsAreFound) {
    const model::Page &utf8 = page("utf8 folded");
    const std::string filling(3000, 'x');
    for (const std::string &around : {std::string(), filling}) {
        const auto at = static_cast<std::uint32_t>(around.size());
        expectAt(fixture::searchForwards(utf8, "i", around + "\xC4\xB0" + around, 0), at + 1, at + 2);
        expectAt(fixture::searchForwards(utf8,
                                         "\xC4\xB0"
                                         "b",
                                         around + "Ib" + around, 0),
                 at + 1, at + 2);
        expectAt(fixture::searchForwards(utf8, "\xD0\xA0\xD0\x90", around + "\xD1\x80\xD0\xB0" + around, 0),
                 at + 1, at + 4);
        expectAt(fixture::searchForwards(utf8, "\xC7\x84", around + "\xC7\x85" + around, 0), at + 1, at + 2);
        expectAt(fixture::searchForwards(utf8, "\xE1\xBC\x88", around + "\xE1\xBC\x80" + around, 0), at + 1,
                 at + 3);
        expectNowhere(fixture::searchForwards(utf8, "i", around + "\xC4\xB0" + around, 1));
    }
}

TEST(Search, WeightsDecideNotBytes) {
    const model::Page &merged = page("single merged");
    const std::string filling(500, 'x');
    expectAt(fixture::searchForwards(merged, "a\xE1",
                                     filling +
                                         "\xE4"
                                         "a" +
                                         filling,
                                     1),
             501, 502);
    expectAt(fixture::searchForwards(merged, " ", filling + "b" + filling, 1), 501, 501);
    const model::Page &shared = page("single shared");
    for (const std::size_t length : {0, 10, 50, 500}) {
        const std::string before(length, 'x');
        const auto at = static_cast<std::uint32_t>(length);
        expectAt(fixture::searchForwards(shared, "a",
                                         before + "\xE4y"
                                                  "a",
                                         0),
                 at + 1, at + 1);
        expectAt(fixture::searchForwards(shared, "\xE1y", before + "Ay", 0), at + 1, at + 2);
        expectAt(fixture::searchForwards(shared, "s", before + "\xDFs", 0), at + 1, at + 1);
    }
    const model::Page &zero = page("single zero");
    expectAt(fixture::searchForwards(zero, "s", filling + "\xDF" + filling, 1), 501, 501);
    expectAt(fixture::searchForwards(zero, "\xDF\xDF", filling + "ss" + filling, 1), 501, 502);
    // One character at a time: an expansion does not span two.
    expectNowhere(fixture::searchForwards(zero, "ss", filling + "\xDF" + filling, 1));
}

TEST(Search, CountsAreOfForwardCharactersEvenBackwards) {
    // The broken character holds the "a": one character forwards, two backwards, of which one may be tried.
    expectNowhere(fixture::searchBackwards(page("utf8 folded"),
                                           "\xC3"
                                           "b",
                                           "\xC3"
                                           "a",
                                           2, 1));
    EXPECT_EQ(fixture::searchBackwards(page("utf8 folded"), "a",
                                       "\xC3"
                                       "a",
                                       2, 1)
                  .position,
              2U);
}

} // namespace
