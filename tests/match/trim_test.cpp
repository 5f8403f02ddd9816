// The rules of finding a character and of trimming one by one.
#include "calls.hpp"
#include "match_pages.hpp"

#include <gtest/gtest.h>

namespace {

using fixture::MatchPages;

const model::Page &page(const char *name) {
    return MatchPages::instance()[name].page;
}

class Finds : public testing::TestWithParam<const char *> {};

TEST_P(Finds, ACharacterForwardsAndBackwards) {
    EXPECT_EQ(fixture::findForwards(page(GetParam()), 'b', "abcb", 1).position, 2U);
    EXPECT_EQ(fixture::findBackwards(page(GetParam()), 'b', "abcb", 4, 1).position, 4U);
    EXPECT_EQ(fixture::findBackwards(page(GetParam()), 'b', "abcb", 3, 1).position, 2U);
    EXPECT_EQ(fixture::findBackwards(page(GetParam()), 'a', "abcb", 4, 1).position, 1U); // at the start too
    EXPECT_EQ(fixture::findForwards(page(GetParam()), 'x', "abcb", 1).found, model::kNowhere);
    EXPECT_EQ(fixture::findBackwards(page(GetParam()), 'x', "abcb", 4, 1).found, model::kNowhere);
    EXPECT_EQ(fixture::findBackwards(page(GetParam()), 'b', "abcb", 0, 1).found, model::kNowhere);
}

TEST_P(Finds, TheCharacterZeroAtTheTerminator) {
    for (const model::Found &found : {fixture::findForwards(page(GetParam()), 0, "abc", 1),
                                      fixture::findBackwards(page(GetParam()), 0, "abc", 1, 1)}) {
        EXPECT_EQ(found.status, NLS_OK);
        EXPECT_EQ(found.position, 4U);
        EXPECT_EQ(found.found, 3);
    }
}

TEST_P(Finds, WhereTheTextBeginsAndEndsWithoutBlanks) {
    EXPECT_EQ(fixture::trimLeft(page(GetParam()), nullptr, "  ab", 1).position, 3U);
    const model::Found all = fixture::trimLeft(page(GetParam()), nullptr, "   ", 1);
    EXPECT_EQ(all.position, 4U);
    EXPECT_EQ(all.found, 3);
    const model::Found right = fixture::trimRight(page(GetParam()), nullptr, "ab  ", 4, 1);
    EXPECT_EQ(right.position, 3U);
    EXPECT_EQ(right.found, 2);
    const model::Found nothing = fixture::trimRight(page(GetParam()), nullptr, "ab  ", 0, 1);
    EXPECT_EQ(nothing.position, 1U);
    EXPECT_EQ(nothing.found, 0);
    EXPECT_EQ(fixture::trimRight(page(GetParam()), nullptr, "    ", 4, 1).position, 1U);
}

TEST_P(Finds, SetsOfSeveralCharacters) {
    const std::string set = "xy";
    EXPECT_EQ(fixture::trimLeft(page(GetParam()), &set, "yxyab", 1).position, 4U);
    EXPECT_EQ(fixture::trimRight(page(GetParam()), &set, "abxyx", 5, 1).position, 3U);
    const std::string none;
    EXPECT_EQ(fixture::trimLeft(page(GetParam()), &none, " a", 1).position, 1U);
    EXPECT_EQ(fixture::trimRight(page(GetParam()), &none, "a ", 2, 1).position, 3U);
}

INSTANTIATE_TEST_SUITE_P(Pages, Finds,
                         testing::Values("single plain", "single basic", "single thai", "double basic",
                                         "double weights", "utf8 folded", "utf8 without case", "long"));

TEST(FindCharacter, CaseFollowsTheFlag) {
    for (const char *name : {"single plain", "single basic", "double basic", "utf8 folded"}) {
        EXPECT_EQ(fixture::findForwards(page(name), 'B', "abc", 0).position, 2U) << name;
        EXPECT_EQ(fixture::findForwards(page(name), 'B', "abc", 1).found, model::kNowhere) << name;
    }
    const std::string set = "A";
    EXPECT_EQ(fixture::trimLeft(page("single plain"), &set, "aaAb", 0).position, 4U);
    EXPECT_EQ(fixture::trimRight(page("single plain"), &set, "baA", 3, 0).position, 2U);
}

TEST(FindCharacter, MultibyteCharactersAreWhole) {
    EXPECT_EQ(fixture::findForwards(page("double basic"), 0x8261, "a\x82\x82\x82\x61", 1).position, 4U);
    EXPECT_EQ(fixture::findForwards(page("double basic"), 'a', "\x82\x61", 1).found, model::kNowhere);
    EXPECT_EQ(fixture::findBackwards(page("double basic"), 'a', "a\x82\x61", 3, 1).position, 1U);
    EXPECT_EQ(fixture::findForwards(page("utf8 folded"), 0xE4B880, "a\xE4\xB8\x80", 1).position, 2U);
}

// Any number may be given as a character: what is none is compared as the string it is.
TEST(FindCharacter, NumbersThatAreNoCharacterAreComparedAsStrings) {
    EXPECT_EQ(fixture::findForwards(page("single plain"), 0x6162, "ab", 1).found, model::kNowhere); // "ab"
    EXPECT_EQ(fixture::findForwards(page("single plain"), 0x6120, "ba", 1).position, 2U);   // "a" and a blank
    EXPECT_EQ(fixture::findForwards(page("single zero"), 0x7373, "b\xDF", 1).position, 1U); // "ss", weight 0
    EXPECT_EQ(fixture::findForwards(page("single plain"), 0x6100, "ba", 1).position, 2U);   // ends at its NUL
}

TEST(Trim, CharactersOfMoreThanFourBytesReadAsQuestionMarksOnTheLeft) {
    const std::string question = "?";
    EXPECT_EQ(fixture::trimLeft(page("long"), &question, "\xF5uvwxya", 1).position, 7U);
    const std::string other = "\xF5uvwxy";
    EXPECT_EQ(fixture::trimLeft(page("long"), &other, "\xF5uvwxya", 1).position, 1U);
    EXPECT_EQ(fixture::trimRight(page("long"), &other, "a\xF5uvwxy", 7, 1).position, 8U); // no boundary there
}

// The right trim takes a text that nobody may write to, and looks at bytes behind a NUL as far as told.
TEST(Trim, ANulWithinTheLengthIsTrimmed) {
    char text[] = "ab\0 ";
    std::uint32_t position = 0;
    char *result = nullptr;
    EXPECT_EQ(nlsFindRtrimPtrBack(page("single plain").locale, " ", text, 4, 1, &position, &result), NLS_OK);
    EXPECT_EQ(position, 3U);
    EXPECT_EQ(result, text + 2);
}

} // namespace
