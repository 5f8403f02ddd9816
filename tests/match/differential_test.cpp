// Random strings, whole and broken, through every call on every kind of page, beside the plain twins.
#include "calls.hpp"
#include "converted.hpp"
#include "match_pages.hpp"
#include "random.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace {

using fixture::MatchPage;
using fixture::MatchPages;
using fixture::Random;

// Strings of a page's characters, some of them with bytes torn out, doubled or changed.
class Maker {
public:
    Maker(const MatchPage &page, unsigned seed) : page_(page), random_(seed) {}

    std::string characters(unsigned most) {
        // A few characters make matches likely.
        const unsigned kinds = 1 + random_.below(4);
        std::string kept[4];
        for (unsigned i = 0; i < kinds; ++i)
            kept[i] = page_.alphabet[random_.below(size(page_.alphabet))];
        std::string text;
        for (unsigned left = random_.below(most + 1); left > 0; --left)
            text += kept[random_.below(kinds)];
        return text;
    }
    std::string text(unsigned most) {
        std::string text = characters(most);
        if (!text.empty() && random_.below(3) == 0)
            for (unsigned i = 1 + random_.below(3); i > 0 && !text.empty(); --i)
                damage(text);
        return text;
    }
    // Often a piece of the text, so that it is found.
    std::string pattern(const std::string &text, unsigned most) {
        if (text.empty() || random_.below(3) == 0)
            return this->text(most);
        const std::uint32_t begin = random_.below(size(text));
        std::string piece = text.substr(begin, 1 + random_.below(most));
        if (random_.below(4) == 0)
            piece += page_.alphabet[random_.below(size(page_.alphabet))];
        return piece;
    }
    std::uint32_t below(std::uint32_t n) {
        return random_.below(n);
    }
    std::string character() {
        return page_.alphabet[random_.below(size(page_.alphabet))];
    }

private:
    template <typename List>
    static std::uint32_t size(const List &list) {
        return static_cast<std::uint32_t>(list.size());
    }
    void damage(std::string &text) {
        const std::uint32_t at = random_.below(size(text));
        switch (random_.below(4)) {
        case 0:
            text.erase(at, 1);
            break;
        case 1:
            text[at] = static_cast<char>(1 + random_.below(255));
            break;
        case 2:
            text.insert(at, 1, text[at]);
            break;
        default: { // a byte that begins a character
            const std::string other = character();
            text.insert(at, 1, other[0]);
            break;
        }
        }
    }

    const MatchPage &page_;
    Random random_;
};

std::string shown(const std::string &text) {
    return fixture::hex(fixture::bytesOf(text));
}

testing::AssertionResult same(const model::Found &expected, const model::Found &actual) {
    if (expected.status == actual.status && expected.position == actual.position &&
        expected.found == actual.found &&
        (expected.endOffset == model::kUnwritten || expected.endOffset == actual.endOffset))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "status " << static_cast<std::int32_t>(actual.status)
                                       << " position " << actual.position << " end " << actual.endOffset
                                       << " instead of status " << static_cast<std::int32_t>(expected.status)
                                       << " position " << expected.position << " end " << expected.endOffset;
}

testing::AssertionResult same(const model::Out &expected, const model::Out &actual) {
    if (expected.status != actual.status || expected.length != actual.length)
        return testing::AssertionFailure()
               << "status " << static_cast<std::int32_t>(actual.status) << " length " << actual.length
               << " instead of status " << static_cast<std::int32_t>(expected.status) << " length "
               << expected.length;
    if (expected.count != model::kUnwritten && expected.count != actual.count)
        return testing::AssertionFailure() << actual.count << " replacements instead of " << expected.count;
    for (std::size_t i = 0; i < expected.size; ++i)
        if (expected.buffer[i] != actual.buffer[i] && i <= expected.length)
            return testing::AssertionFailure() << "byte " << i << " differs";
    // Behind the stated size only a text that fills it may have its NUL.
    if (actual.buffer.back() != expected.buffer.back() && actual.buffer.back() != 0xEE)
        return testing::AssertionFailure() << "wrote behind the buffer";
    return testing::AssertionSuccess();
}

void onEveryPage(unsigned rounds, const std::function<void(const MatchPage &, Maker &, std::uint16_t)> &run) {
    unsigned seed = 1;
    for (const MatchPage &page : MatchPages::instance().all()) {
        Maker maker(page, seed++);
        for (unsigned round = 0; round < rounds && !testing::Test::HasFatalFailure(); ++round) {
            fixture::letStringsStand(fixture::kStands[round % std::size(fixture::kStands)]);
            SCOPED_TRACE(page.name + ", round " + std::to_string(round));
            run(page, maker, static_cast<std::uint16_t>(round / 2 % 2));
        }
    }
    fixture::letStringsStand(fixture::Stand::kAtPageEnd);
}

// Short texts mostly; one in eight is long enough for blocks.
unsigned lengthFor(Maker &maker) {
    return maker.below(8) == 0 ? 400 : 24;
}

TEST(AgainstTwins, SearchForwards) {
    onEveryPage(6000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(lengthFor(maker));
        const std::string pattern = maker.pattern(text, 6);
        ASSERT_TRUE(same(model::searchForwards(page.page, pattern, text, mode),
                         fixture::searchForwards(page.page, pattern, text, mode)))
            << "pattern " << shown(pattern) << "text " << shown(text);
    });
}

// Only texts of some size are searched by blocks with folded first bytes.
TEST(AgainstTwins, SearchForwardsInLongTexts) {
    onEveryPage(300, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        std::string text;
        while (text.size() < 2500)
            text += maker.text(200);
        const std::string pattern = maker.pattern(text, 8);
        ASSERT_TRUE(same(model::searchForwards(page.page, pattern, text, mode),
                         fixture::searchForwards(page.page, pattern, text, mode)))
            << "pattern " << shown(pattern) << "text " << shown(text);
    });
}

TEST(AgainstTwins, SearchBackwards) {
    onEveryPage(6000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(24);
        const std::string pattern = maker.pattern(text, 6);
        const auto length =
            static_cast<std::int32_t>(maker.below(static_cast<std::uint32_t>(text.size()) + 1));
        ASSERT_TRUE(same(model::searchBackwards(page.page, pattern, text, length, mode),
                         fixture::searchBackwards(page.page, pattern, text, length, mode)))
            << "pattern " << shown(pattern) << "text " << shown(text) << "length " << length;
    });
}

TEST(AgainstTwins, Replace) {
    onEveryPage(6000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(lengthFor(maker));
        const std::string pattern = maker.pattern(text, 3);
        const std::string instead = maker.characters(4);
        const model::Out before = fixture::emptyOut(maker.below(static_cast<std::uint32_t>(text.size()) + 9));
        model::Out expected = model::replace(page.page, pattern, instead, text, mode, before);
        const model::Out actual = fixture::replace(page.page, pattern, instead, text, mode, before);
        ASSERT_TRUE(same(expected, actual)) << "pattern " << shown(pattern) << "by " << shown(instead)
                                            << "text " << shown(text) << "size " << before.size;
        expected.match.status = 0;
        ASSERT_TRUE(same(expected.match, actual.match));
    });
}

TEST(AgainstTwins, ReplaceAll) {
    onEveryPage(6000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(lengthFor(maker));
        const std::string pattern = maker.pattern(text, 3);
        if (pattern.empty())
            return;
        const std::string instead = maker.characters(4);
        const model::Out before =
            fixture::emptyOut(maker.below(2 * static_cast<std::uint32_t>(text.size()) + 9));
        ASSERT_TRUE(same(model::replaceAll(page.page, pattern, instead, text, mode, before),
                         fixture::replaceAll(page.page, pattern, instead, text, mode, before)))
            << "pattern " << shown(pattern) << "by " << shown(instead) << "text " << shown(text) << "size "
            << before.size;
    });
}

// Short texts are put down by blocks where those end in the room.
TEST(AgainstTwins, ReplaceAllInShortTextsWithRoomBehind) {
    onEveryPage(6000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(lengthFor(maker));
        const std::string pattern = maker.pattern(text, 3);
        if (pattern.empty())
            return;
        const std::string instead = maker.characters(maker.below(4) == 0 ? 60 : 5);
        const auto bytes = static_cast<std::uint32_t>(text.size() + instead.size());
        const model::Out before = fixture::emptyOut(bytes + maker.below(bytes + 150));
        ASSERT_TRUE(same(model::replaceAll(page.page, pattern, instead, text, mode, before),
                         fixture::replaceAll(page.page, pattern, instead, text, mode, before)))
            << "pattern " << shown(pattern) << "by " << shown(instead) << "text " << shown(text) << "size "
            << before.size;
    });
}

// Long texts are replaced by blocks where the room is sure to do.
TEST(AgainstTwins, ReplaceAllInLongTexts) {
    onEveryPage(3000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        std::string text;
        const unsigned length = 256 + maker.below(500);
        while (text.size() < length)
            text += maker.text(20);
        const std::string pattern = maker.pattern(text, maker.below(4) == 0 ? 70 : 5);
        if (pattern.empty())
            return;
        const std::string instead = maker.characters(maker.below(4) == 0 ? 70 : 6);
        const auto bytes = static_cast<std::uint32_t>(text.size());
        const model::Out before =
            fixture::emptyOut(maker.below(2) == 0 ? 80 * bytes : bytes + maker.below(bytes));
        ASSERT_TRUE(same(model::replaceAll(page.page, pattern, instead, text, mode, before),
                         fixture::replaceAll(page.page, pattern, instead, text, mode, before)))
            << "pattern " << shown(pattern) << "by " << shown(instead) << "text " << shown(text) << "size "
            << before.size;
    });
}

TEST(AgainstTwins, FindCharacters) {
    onEveryPage(6000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(lengthFor(maker));
        const std::string wanted = maker.pattern(text, 4);
        std::uint32_t lchar = 0; // up to four bytes, one character or not
        for (const char byte : wanted.substr(0, 1 + maker.below(4)))
            lchar = lchar << 8 | static_cast<unsigned char>(byte);
        ASSERT_TRUE(same(model::findForwards(page.page, lchar, text, mode),
                         fixture::findForwards(page.page, lchar, text, mode)))
            << "character " << std::hex << lchar << " text " << shown(text);
        const auto length =
            static_cast<std::int32_t>(maker.below(static_cast<std::uint32_t>(text.size()) + 1));
        ASSERT_TRUE(same(model::findBackwards(page.page, lchar, text, length, mode),
                         fixture::findBackwards(page.page, lchar, text, length, mode)))
            << "character " << std::hex << lchar << " text " << shown(text) << "length " << std::dec
            << length;
    });
}

TEST(AgainstTwins, Trim) {
    onEveryPage(6000, [](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(24);
        const bool noSet = maker.below(4) == 0;
        const std::string set = noSet ? " " : maker.text(4);
        const std::string *const given = noSet ? nullptr : &set;
        ASSERT_TRUE(same(model::trimLeft(page.page, set, text, mode),
                         fixture::trimLeft(page.page, given, text, mode)))
            << "set " << shown(set) << "text " << shown(text);
        const auto length =
            static_cast<std::int32_t>(maker.below(static_cast<std::uint32_t>(text.size()) + 1));
        ASSERT_TRUE(same(model::trimRight(page.page, set, text, length, mode),
                         fixture::trimRight(page.page, given, text, length, mode)))
            << "set " << shown(set) << "text " << shown(text) << "length " << length;
    });
}

// Patterns made from the text: pieces of it between wildcards.
std::string likePattern(Maker &maker, const std::string &text) {
    std::string pattern;
    for (unsigned parts = 1 + maker.below(4); parts > 0; --parts) {
        switch (maker.below(5)) {
        case 0:
            pattern += '_';
            break;
        case 1:
        case 2:
            pattern += '%';
            break;
        case 3:
            pattern += maker.below(8) == 0 ? "!" : "!%";
            break;
        default:
            pattern += maker.pattern(text, 4);
            break;
        }
    }
    return pattern;
}

TEST(AgainstTwins, Like) {
    const model::Signs signs{'!', '_', '%'};
    onEveryPage(8000, [&](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        const std::string text = maker.text(maker.below(16) == 0 ? 60 : 16);
        const std::string pattern = likePattern(maker, text);
        ASSERT_EQ(fixture::like(page.page, pattern, text, mode, signs),
                  model::like(page.page, pattern, text, mode, signs))
            << "pattern " << shown(pattern) << "text " << shown(text);
    });
}

TEST(AgainstTwins, LikeInLongTexts) {
    const model::Signs signs{'!', '_', '%'};
    onEveryPage(200, [&](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        std::string text;
        while (text.size() < 2600)
            text += maker.text(200);
        std::string pattern(1, '%');
        pattern += maker.pattern(text, 8);
        pattern += maker.below(2) == 0 ? "%" : "_%";
        ASSERT_EQ(fixture::like(page.page, pattern, text, mode, signs),
                  model::like(page.page, pattern, text, mode, signs))
            << "pattern " << shown(pattern) << "text " << shown(text);
    });
}

// Texts that go on behind a block, by patterns of several pieces with and without a last one.
TEST(AgainstTwins, LikeByPiecesInLinesOfText) {
    const model::Signs signs{'!', '_', '%'};
    int matches = 0;
    onEveryPage(4000, [&](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        std::string text;
        const unsigned length = 50 + maker.below(160);
        while (text.size() < length)
            text += maker.text(12);
        std::string pattern;
        for (unsigned pieces = 1 + maker.below(3); pieces > 0; --pieces)
            pattern += "%" + maker.pattern(text, 4);
        if (maker.below(3) == 0) // how the text ends, which is mostly not what a piece is
            pattern += "%" + text.substr(text.size() - maker.below(4));
        else if (maker.below(2) == 0)
            pattern += "%";
        const nlsStatus expected = model::like(page.page, pattern, text, mode, signs);
        ASSERT_EQ(fixture::like(page.page, pattern, text, mode, signs), expected)
            << "pattern " << shown(pattern) << "text " << shown(text);
        matches += expected == 1 ? 1 : 0;
    });
    EXPECT_GT(matches, 10000);
}

// Patterns that begin as the text does, or nearly so, of texts that end around the end of a block too.
TEST(AgainstTwins, LikeFromTheStart) {
    int matches = 0;
    onEveryPage(8000, [&](const MatchPage &page, Maker &maker, std::uint16_t mode) {
        std::string text = maker.text(maker.below(4) == 0 ? 100 : 12);
        if (maker.below(4) == 0)
            text += std::string(64 - text.size() % 64, 'a') + maker.text(3);
        std::string pattern = text.substr(0, maker.below(static_cast<std::uint32_t>(text.size()) + 1));
        if (pattern.empty() || maker.below(4) == 0)
            pattern += maker.character();
        const std::uint32_t place = maker.below(static_cast<std::uint32_t>(pattern.size()));
        switch (maker.below(6)) {
        case 0: // the other case of a letter, or of what looks like one
            if (pattern[place] != ' ')
                pattern[place] = static_cast<char>(pattern[place] ^ 0x20);
            break;
        case 1:
            pattern[place] = static_cast<char>(1 + maker.below(255));
            break;
        case 2: // the other case of any letter, now and then
            text.insert(0, maker.character());
            pattern.insert(0, maker.character());
            break;
        default:
            break;
        }
        pattern += maker.below(8) == 0 ? "" : "%";
        if (maker.below(4) == 0)
            pattern += maker.pattern(text, 3) + "%";
        model::Signs signs{'!', '_', '%'};
        if (maker.below(8) == 0) { // a sign that the pattern may begin with
            signs.oneCharacter = 0;
            for (const unsigned char byte : maker.character())
                signs.oneCharacter = signs.oneCharacter << 8 | byte;
        }
        const std::uint16_t asked = maker.below(16) == 0 ? 2 : mode;
        const nlsStatus expected = model::like(page.page, pattern, text, asked, signs);
        ASSERT_EQ(fixture::like(page.page, pattern, text, asked, signs), expected)
            << "pattern " << shown(pattern) << "text " << shown(text);
        matches += expected == 1 ? 1 : 0;
    });
    EXPECT_GT(matches, 10000);
}

} // namespace
