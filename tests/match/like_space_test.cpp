// LIKE on every small pattern and every small text, against the recursive rules taken word by word.
#include "calls.hpp"
#include "match_pages.hpp"

#include <gtest/gtest.h>

namespace {

using fixture::MatchPages;

// All strings of up to `most` tokens.
std::vector<std::string> stringsOf(const std::vector<std::string> &tokens, unsigned most) {
    std::vector<std::string> all = {""};
    std::size_t begin = 0;
    for (unsigned length = 1; length <= most; ++length) {
        const std::size_t end = all.size();
        for (; begin < end; ++begin)
            for (const std::string &token : tokens)
                all.push_back(all[begin] + token);
    }
    return all;
}

std::uint32_t valueOf(const std::string &character) {
    std::uint32_t value = 0;
    for (const char byte : character)
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

struct Space {
    const char *page;
    std::uint16_t mode;
    std::string a, b, blank, one, any, escape;
};

void PrintTo(const Space &space, std::ostream *out) {
    *out << space.page << " mode " << space.mode;
}

class LikeSpace : public testing::TestWithParam<Space> {};

TEST_P(LikeSpace, EveryPatternOfFiveTokensByEveryTextOfSixFollowsTheRecursiveRules) {
    const Space &space = GetParam();
    const model::Page &page = MatchPages::instance()[space.page].page;
    const model::Signs signs{valueOf(space.escape), valueOf(space.one), valueOf(space.any)};
    const auto patterns = stringsOf({space.a, space.b, space.one, space.any, space.escape}, 5);
    const auto texts = stringsOf({space.a, space.b, space.blank}, 6);
    ASSERT_EQ(patterns.size(), 3906U);
    ASSERT_EQ(texts.size(), 1093U);
    std::size_t matches = 0;
    std::size_t badEscapes = 0;
    for (const std::string &pattern : patterns)
        for (const std::string &text : texts) {
            const nlsStatus expected = model::like(page, pattern, text, space.mode, signs);
            const nlsStatus actual = nlsSqlLike(page.locale, pattern.c_str(), text.c_str(), space.mode,
                                                signs.escape, signs.oneCharacter, signs.anyString);
            ASSERT_EQ(actual, expected) << "pattern \"" << pattern << "\" text \"" << text << '"';
            matches += expected == 1;
            badEscapes += expected == static_cast<nlsStatus>(-1);
        }
    // The space is no desert.
    EXPECT_GT(matches, 10000U);
    EXPECT_GT(badEscapes, 10000U);
}

INSTANTIATE_TEST_SUITE_P(
    Pages, LikeSpace,
    testing::Values(
        Space{"single plain", 1, "a", "b", " ", "_", "%", "!"},
        Space{"single plain", 0, "a", "A", " ", "_", "%", "!"},        // equal without case
        Space{"single merged", 1, "a", "b", " ", "_", "%", "!"},       // b equals the blank
        Space{"single merged", 0, "\xE1", "\xE4", " ", "_", "%", "!"}, // different bytes, one weight
        Space{"single zero", 1, "a", "b", " ", "_", "%", "!"},         // b has weight 0, a that of s
        Space{"single zero", 0, "\xDF", "s", " ", "_", "%", "!"},
        Space{"single thai", 1, "\xA1", "\xE0", " ", "_", "%", "!"},
        Space{"single basic", 0, "a", "A", " ", "_", "%", "!"},
        Space{"single basic", 1, "a", "A", " ", "_", "%", "!"},
        Space{"double basic", 1, "\x82\x61", "a", " ", "_", "%", "!"},
        Space{"double basic", 0, "\x82\x82", "A", " ", "\x81\x51", "\x81\x93", "\x81\x49"},
        Space{"double basic", 1, "\x82\x61", "b", "\x81\x40", "\x81\x51", "%", "\x81\x49"},
        Space{"double weights", 1, "\x82\x61", "a", " ", "_", "%", "!"}, // a lead byte that weighs as "a"
        Space{"double weights", 0, "\x83\x61", "z", " ", "_", "%", "!"}, // weight 0 on both sides
        Space{"utf8 folded", 1, "\xC3\xA5", "b", " ", "_", "%", "!"},
        Space{"utf8 folded", 0, "\xD0\x90", "\xD0\xB0", " ", "_", "%", "!"},
        Space{"utf8 folded", 0, "i", "\xC4\xB0", " ", "\xEF\xBC\xBF", "\xEF\xBC\x85", "\xEF\xBC\x81"},
        Space{"utf8 folded, ASCII in pairs", 0, "a", "A", " ", "_", "%", "!"},
        Space{"utf8 folded, ASCII in pairs", 0, "i", "\xC4\xB0", " ", "_", "%", "!"},
        Space{"utf8 folded, ASCII in pairs", 0, "\xC4", "d", " ", "_", "%", "!"}, // C4 cut off folds to "d"
        Space{"utf8 folded, ASCII in pairs", 1, "\xE4", "d", " ", "_", "%", "!"},
        Space{"double basic", 1, "\x82", "b", " ", "_", "%", "!"}, // a lead byte, cut off or before a blank
        Space{"utf8 without case", 0, "\xE4\xB8\x80", "A", " ", "\xC2\xA4", "\xF0\x9F\x98\x80", "!"},
        Space{"long", 0, "\xF3xyz", "\xF4wxyz", " ", "_", "%", "!"}));

// Equal values in several roles: the escape wins, and a missing wildcard is at the pattern's end.
TEST(LikeRoles, EveryMeaningOfOneSignFollowsTheRecursiveRules) {
    const auto patterns = stringsOf({"a", "_", "%"}, 5);
    const auto texts = stringsOf({"a", "_", " "}, 4);
    const std::uint32_t values[] = {0, '_', '%'};
    for (const char *name : {"single plain", "double basic", "utf8 folded", "single thai"}) {
        const model::Page &page = MatchPages::instance()[name].page;
        for (const std::uint32_t escape : values)
            for (const std::uint32_t one : values)
                for (const std::uint32_t any : values)
                    for (const std::string &pattern : patterns)
                        for (const std::string &text : texts)
                            ASSERT_EQ(
                                nlsSqlLike(page.locale, pattern.c_str(), text.c_str(), 1, escape, one, any),
                                model::like(page, pattern, text, 1, {escape, one, any}))
                                << name << " pattern \"" << pattern << "\" text \"" << text << "\" signs "
                                << escape << ' ' << one << ' ' << any;
    }
}

} // namespace
