// Texts that a walk in the wrong direction would measure again for every step: so long that work which grows
// with the square of their length would not end within a test's time.
#include "match_pages.hpp"

#include <gtest/gtest.h>

namespace {

constexpr std::size_t kLong = 4000000;

class Backwards : public testing::Test {
protected:
    const model::Page &pairs = fixture::MatchPages::instance()["double basic"].page;
    std::uint32_t position = 77;
    char *found = nullptr;
};

TEST_F(Backwards, SearchInLeadBytes) {
    for (const std::size_t size : {kLong, kLong + 1}) {
        std::string text(size, '\x82');
        text += 'a'; // a character of its own, or the last trail byte
        for (const char *pattern : {"b", "\x82\x82\x81\x81", "\x81\x81"}) {
            const nlsStatus status =
                nlsSearchBack(pairs.locale, pattern, text.c_str(), static_cast<std::int32_t>(text.size()), 1,
                              &position, &found);
            EXPECT_EQ(status, NLS_OK);
            EXPECT_EQ(position, 0U);
        }
    }
}

TEST_F(Backwards, FindACharacterInLeadBytes) {
    const std::string text(kLong, '\x82');
    const std::uint32_t other = 0x8181;
    EXPECT_EQ(nlsFindCharBack(pairs.locale, &other, text.c_str(), kLong, 1, &position, &found), NLS_OK);
    EXPECT_EQ(found, nullptr);
}

TEST_F(Backwards, TrimLeadBytes) {
    std::string text(kLong, '\x82');
    EXPECT_EQ(nlsFindRtrimPtrBack(pairs.locale, "x\x82\x82", text.data(), kLong, 1, &position, &found),
              NLS_OK);
    EXPECT_EQ(position, 1U);
}

// Each replacement is a search of its own in the rest; none may look at the whole of it.
TEST(ManyReplacements, AreOneScan) {
    for (const fixture::MatchPage &page : fixture::MatchPages::instance().all()) {
        std::string text;
        while (text.size() < kLong)
            text += "a-------------------------------";
        std::string out(text.size() * 2, '\0');
        nlsStr result{out.data(), static_cast<std::uint32_t>(out.size()), 0};
        std::uint32_t count = 0;
        EXPECT_EQ(nlsReplaceAll(page.page.locale, "a", "bb", text.c_str(), 1, &result, &count), NLS_OK);
        EXPECT_EQ(count, text.size() / 32) << page.name;
        EXPECT_EQ(result.length, text.size() + count) << page.name;
    }
}

} // namespace
