// How much the matching does, counted and not timed: every look at a character and every comparison goes
// through a page that counts. Texts are doubled; the work may do no more than that.
#include "locale/case_fast.hpp"
#include "string/like.hpp"
#include "string/search.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using namespace velnls;

std::uint64_t work = 0;

// Counts what a page's characters are asked.
template <typename Base>
struct CountingCharacters : Base {
    explicit CountingCharacters(const Base &base) : Base(base) {}

    [[nodiscard]] unsigned announced(std::uint8_t first) const {
        ++work;
        return Base::announced(first);
    }
    [[nodiscard]] Character characterAt(const std::uint8_t *at) const {
        ++work;
        return Base::characterAt(at);
    }
};

// Counts a page's comparisons, character by character, and the bytes that it passes over.
template <typename Base>
class CountingPage : public Base {
    using Plain = std::remove_cvref_t<decltype(std::declval<const Base &>().characters())>;

public:
    template <typename... Arguments>
    explicit CountingPage(const Arguments &...arguments)
        : Base(arguments...), characters_(Base::characters()) {}

    [[nodiscard]] const CountingCharacters<Plain> &characters() const {
        return characters_;
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        ++work;
        return Base::equal(a, b, equal);
    }
    [[nodiscard]] const std::uint8_t *seek(const std::uint8_t *text, const std::uint8_t *at,
                                           const std::uint8_t *end, const typename Base::Sought &sought) const
        requires(!Base::kFirstByteDecides) {
        const std::uint8_t *const found = Base::seek(text, at, end, sought);
        work += static_cast<std::uint64_t>(found - at) + 1;
        return found;
    }
    [[nodiscard]] Standing stands(const std::uint8_t *wanted, const std::uint8_t *wantedEnd,
                                  const std::uint8_t *&at, const std::uint8_t *end) const {
        work += static_cast<std::uint64_t>(wantedEnd - wanted); // all of it, as if none differed early
        return Base::stands(wanted, wantedEnd, at, end);
    }

private:
    CountingCharacters<Plain> characters_;
};

// Locales put together by hand.
struct Locales {
    CharTable single{};
    CharTable pairs{};
    CharTable utf8{};
    std::uint8_t weights[256];
    Collation basic{};
    nlsLocale pairsLocale{};
    nlsLocale utf8Locale{};
    ByteCaseTable byteCase{};
    nlsLocale provedPairs{}; // with what is proved of a page's ASCII

    Locales() {
        for (unsigned byte = 0; byte < 256; ++byte) {
            weights[byte] = static_cast<std::uint8_t>(byte);
            pairs.attributes[byte] = byte >= 0x81 && byte <= 0xFC ? 1 : 0;
            utf8.attributes[byte] = byte < 0xC0 || byte >= 0xF8 ? 0 : byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        }
        pairs.flags = file::kMultibyte;
        utf8.flags = file::kMultibyte | file::kUtf8;
        basic.kind = file::kBasic;
        pairsLocale.charTable = &pairs;
        pairsLocale.collation = &basic;
        utf8Locale.charTable = &utf8;
        utf8Locale.collation = &basic;
        for (unsigned byte = 0; byte < 256; ++byte) {
            const bool capital = byte - unsigned{'A'} < 26;
            const bool small = byte - unsigned{'a'} < 26;
            byteCase.lower[byte] = static_cast<std::uint8_t>(capital ? byte + 0x20 : byte);
            byteCase.upper[byte] = static_cast<std::uint8_t>(small ? byte - 0x20 : byte);
        }
        provedPairs = pairsLocale;
        provedPairs.caseTable = &byteCase;
        provedPairs.header.proofs = proveByteCase(pairs, byteCase);
    }
};

const Locales &locales() {
    static const Locales all;
    return all;
}

const std::uint8_t *bytes(const std::string &text) {
    return reinterpret_cast<const std::uint8_t *>(text.c_str());
}

// Calls `use` with each kind of counting page.
template <typename Use>
void onEveryPage(Use use) {
    {
        SCOPED_TRACE("weights");
        use(CountingPage<BytePage>(static_cast<const std::uint8_t *>(locales().weights)));
    }
    {
        SCOPED_TRACE("weights of ASCII in pairs");
        use(CountingPage<BytePage>(static_cast<const std::uint8_t *>(locales().weights), true));
    }
    {
        SCOPED_TRACE("single bytes");
        use(CountingPage<ExactPage<SingleBytes>>(locales().pairsLocale));
    }
    {
        SCOPED_TRACE("pairs folded, ASCII proved");
        use(CountingPage<FoldedPage>(locales().provedPairs));
    }
    {
        SCOPED_TRACE("utf8 exact");
        use(CountingPage<ExactPage<TableCharacters>>(locales().utf8Locale));
    }
    {
        SCOPED_TRACE("utf8 folded");
        use(CountingPage<FoldedPage>(locales().utf8Locale));
    }
    {
        SCOPED_TRACE("pairs exact");
        use(CountingPage<ExactPage<TableCharacters>>(locales().pairsLocale));
    }
    {
        SCOPED_TRACE("pairs folded");
        use(CountingPage<FoldedPage>(locales().pairsLocale));
    }
}

template <typename Page>
std::uint64_t likeWork(const Page &page, const std::string &pattern, const std::string &text,
                       nlsStatus expected) {
    const LikeSigns signs{0, '_', '%'};
    work = 0;
    EXPECT_EQ(LikeWalk(page, signs).match(bytes(pattern), bytes(text)), expected);
    return work;
}

template <typename Page>
std::uint64_t searchWork(const Page &page, const std::string &pattern, const std::string &text,
                         int expected) {
    work = 0;
    const std::uint8_t *const end = bytes(text) + text.size();
    QuickSearch search(page, bytes(pattern), bytes(pattern) + pattern.size(), bytes(text), end);
    int matches = 0;
    for (Match match = search.next(bytes(text)); match.at != nullptr; match = search.next(match.end))
        ++matches;
    if (expected >= 0) {
        EXPECT_EQ(matches, expected);
    }
    return work;
}

// The work on texts of `length`, twice and four times that: each at most a little more than twice the one
// before, and none above `perByte` for a byte.
template <typename Measure>
void expectLinear(std::size_t length, std::uint64_t perByte, Measure measure) {
    std::uint64_t before = 0;
    for (std::size_t size = length; size <= 4 * length; size *= 2) {
        const std::uint64_t now = measure(size);
        EXPECT_LE(now, perByte * size) << size;
        if (before != 0) {
            EXPECT_LE(now, 2 * before + before / 4 + 1000) << size;
        }
        before = now;
    }
}

TEST(LikeWork, SeveralAnyStringWildcardsAreNotTriedAgain) {
    onEveryPage([](const auto &page) {
        for (const char *pattern : {"%a%a%a%b", "%a%a%a%a%a%a%a%b", "%aa%aa%aa%b%", "%a_%a_%a_%b"})
            expectLinear(4000, 60, [&](std::size_t size) {
                return likeWork(page, pattern, std::string(size, 'a'), 0);
            });
    });
}

TEST(LikeWork, AnAbsorbingLastLiteralIsNotTriedFromEachOfItsRepeats) {
    onEveryPage([](const auto &page) {
        expectLinear(4000, 30,
                     [&](std::size_t size) { return likeWork(page, "%a", std::string(size, 'a') + "b", 0); });
        expectLinear(4000, 30, [&](std::size_t size) {
            return likeWork(page, "%aa", std::string(size, 'a') + "b", 0);
        });
        expectLinear(4000, 40, [&](std::size_t size) {
            std::string text;
            while (text.size() < size)
                text += "aaaaaaaaab";
            return likeWork(page, "%aa", text, 0);
        });
    });
}

TEST(LikeWork, IsAtMostPatternTimesText) {
    onEveryPage([](const auto &page) {
        for (const std::size_t length : {5U, 20U, 80U}) {
            std::string pattern(length + 3, 'a');
            pattern.front() = '%';
            pattern[length + 1] = '_';
            pattern[length + 2] = 'b';
            expectLinear(4000, 6 * (length + 10), [&](std::size_t size) {
                return likeWork(page, pattern, std::string(size, 'a'), 0);
            });
        }
    });
}

TEST(LikeWork, TextsOfLeadBytesAreWalkedOnce) {
    const CountingPage<ExactPage<TableCharacters>> exact(locales().pairsLocale);
    const CountingPage<FoldedPage> folded(locales().pairsLocale);
    const auto text = [](std::size_t size) { return std::string(size, '\x82') + "a"; };
    // Every place passes for the first byte; half of them are boundaries.
    expectLinear(4000, 60, [&](std::size_t size) { return likeWork(exact, "%\x82\x61%", text(size), 0); });
    expectLinear(4000, 60, [&](std::size_t size) { return likeWork(folded, "%\x82\x61%", text(size), 0); });
    expectLinear(4000, 60,
                 [&](std::size_t size) { return likeWork(exact, "%\x82\x82\x82\x61%", text(size), 0); });
}

TEST(SearchWork, RepeatedPrefixesCostPatternTimesTextAtMost) {
    onEveryPage([](const auto &page) {
        for (const std::size_t length : {5U, 20U, 80U}) {
            for (const std::size_t place : {std::size_t{0}, length, 2 * length}) { // of what is not there
                std::string pattern(2 * length + 1, 'a');
                pattern[place] = 'b';
                expectLinear(4000, 6 * (2 * length + 10), [&](std::size_t size) {
                    return searchWork(page, pattern, std::string(size, 'a'), 0);
                });
            }
        }
    });
}

TEST(SearchWork, ThousandsOfMatchesAreOneScan) {
    onEveryPage([](const auto &page) {
        expectLinear(4000, 30, [&](std::size_t size) {
            return searchWork(page, "a", std::string(size, 'a'), static_cast<int>(size));
        });
        expectLinear(4000, 30, [&](std::size_t size) {
            std::string text;
            while (text.size() < size)
                text += "xxxxxxab";
            return searchWork(page, "ab", text, static_cast<int>(text.size() / 8));
        });
    });
}

TEST(SearchWork, BoundariesInTextsOfLeadBytesAreProvedOnce) {
    const CountingPage<ExactPage<TableCharacters>> exact(locales().pairsLocale);
    const CountingPage<FoldedPage> folded(locales().pairsLocale);
    for (const std::string &pattern : {std::string("\x82\x82"), std::string("\x82\x82\x82\x61")})
        for (const std::size_t odd : {0U, 1U})
            expectLinear(4000, 60, [&](std::size_t size) {
                const std::string text(size + odd, '\x82');
                return searchWork(exact, pattern, text + "ab", -1) +
                       searchWork(folded, pattern, text + "ab", -1);
            });
    const CountingPage<ExactPage<TableCharacters>> utf8(locales().utf8Locale);
    expectLinear(4000, 60, [&](std::size_t size) {
        return searchWork(utf8, "\xC3\xC3", std::string(size, '\xC3'), -1); // broken throughout
    });
}

} // namespace
