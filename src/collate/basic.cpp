#include "collate/basic.hpp"

#include "locale/case_map.hpp"

#include <algorithm>

namespace velnls {

namespace {

constexpr unsigned kLongestNumbered = 4;

} // namespace

std::uint32_t foldNumber(const nlsLocale &locale, std::uint32_t number) {
    if (number >= 0x1000000)
        return number;
    if (locale.caseTable != nullptr && locale.charTable->has(file::kUtf8))
        return mapUtf8Case<Case::Lower>(*static_cast<const UnicodeCaseTable *>(locale.caseTable), number);
    if (number > 0xFF)
        return number;
    const auto byte = static_cast<std::uint8_t>(number);
    return locale.caseTable == nullptr
               ? mapRuntimeCase<Case::Lower>(byte)
               : mapByteCase<Case::Lower>(*static_cast<const ByteCaseTable *>(locale.caseTable), byte);
}

std::uint32_t takeFolded(const nlsLocale &locale, Text &text) {
    const unsigned length = locale.charTable->trailCount(*text.at) + 1;
    const unsigned taken = text.available(length);
    std::uint32_t number = '?';
    if (length <= kLongestNumbered) {
        number = 0;
        for (unsigned i = 0; i < taken; ++i)
            number = number << 8 | text.at[i];
    }
    text.at += taken;
    return foldNumber(locale, number);
}

namespace {

// Each byte is a character.
class BytePage {
public:
    explicit BytePage(const nlsLocale &locale) : locale_(locale) {}
    static std::size_t boundary(const std::uint8_t *, std::size_t place) {
        return place;
    }
    std::uint32_t take(Text &text) const {
        return foldNumber(locale_, *text.at++);
    }

private:
    const nlsLocale &locale_;
};

// The last place up to `place` where a character begins, in a text that begins with one and goes on behind
// `place`. `isCrossed` says whether some byte before a place may begin a character that reaches across it,
// however the bytes are read: where none does, the place is a boundary for certain, and the walk from there
// is exact.
template <typename Announced, typename IsCrossed>
std::size_t lastBoundary(const std::uint8_t *text, std::size_t place, Announced announced,
                         IsCrossed isCrossed) {
    std::size_t at = place;
    while (at > 0 && isCrossed(at))
        --at;
    while (at < place) {
        const std::size_t next = at + announced(text[at]);
        if (next > place)
            break;
        at = next;
    }
    return at;
}

// Proved to be UTF-8.
class Utf8Page {
public:
    explicit Utf8Page(const nlsLocale &locale)
        : locale_(locale), table_(static_cast<const UnicodeCaseTable *>(locale.caseTable)) {}
    [[nodiscard]] std::size_t boundary(const std::uint8_t *text, std::size_t place) const {
        const auto isCrossed = [text](std::size_t at) {
            return text[at - 1] >= 0xC0 || (at > 1 && text[at - 2] >= 0xE0) ||
                   (at > 2 && text[at - 3] >= 0xF0);
        };
        if (place == 0 || !isCrossed(place)) [[likely]]
            return place;
        const auto announced = [this](std::uint8_t byte) { return locale_.charTable->trailCount(byte) + 1; };
        return lastBoundary(text, place, announced, isCrossed);
    }
    std::uint32_t take(Text &text) const {
        const std::uint32_t first = *text.at;
        if (table_ == nullptr)
            return takeFolded(locale_, text);
        if (first < 0x80) {
            ++text.at;
            return mapUtf8Case<Case::Lower>(*table_, first);
        }
        if (first >= 0xC0 && first < 0xE0 && text.at + 1 != text.end && text.at[1] != 0) {
            const std::uint32_t number = first << 8 | text.at[1];
            text.at += 2;
            return mapUtf8Case<Case::Lower>(*table_, number);
        }
        return takeFolded(locale_, text);
    }

private:
    const nlsLocale &locale_;
    const UnicodeCaseTable *table_;
};

// Any page.
class TablePage {
public:
    explicit TablePage(const nlsLocale &locale)
        : locale_(locale), longestTrails_((locale.header.proofs & kLongestTrails) >> kLongestTrailsShift) {}
    [[nodiscard]] std::size_t boundary(const std::uint8_t *text, std::size_t place) const {
        const auto announced = [this](std::uint8_t byte) { return locale_.charTable->trailCount(byte) + 1; };
        const auto isCrossed = [&](std::size_t at) {
            const std::size_t reach = std::min<std::size_t>(at, longestTrails_);
            for (std::size_t back = 1; back <= reach; ++back)
                if (announced(text[at - back]) > back)
                    return true;
            return false;
        };
        return lastBoundary(text, place, announced, isCrossed);
    }
    std::uint32_t take(Text &text) const {
        return takeFolded(locale_, text);
    }

private:
    const nlsLocale &locale_;
    unsigned longestTrails_;
};

// Both texts begin with a character. What is alike up to a boundary gives the same steps; characters that
// differ and fold to the same are gone over, and both texts begin with a character again.
template <typename Page>
int compareFoldedBy(const Page &page, Text a, Text b) {
    for (;;) {
        const std::size_t alike = equalBytes(a, b);
        const std::size_t whole = page.boundary(a.at, alike);
        a.at += whole;
        b.at += whole;
        do {
            if (a.ended() || b.ended())
                return compareRests(a, b);
            const std::uint32_t stepA = page.take(a);
            const std::uint32_t stepB = page.take(b);
            if (stepA != stepB)
                return stepA < stepB ? -1 : 1;
        } while (a.ended() || b.ended() || *a.at != *b.at);
    }
}

} // namespace

int compareFolded(const nlsLocale &locale, Text a, Text b) {
    if ((locale.header.proofs & kUtf8Page) != 0)
        return compareFoldedBy(Utf8Page(locale), a, b);
    if ((locale.header.proofs & kSingleBytePage) != 0)
        return compareFoldedBy(BytePage(locale), a, b);
    return compareFoldedBy(TablePage(locale), a, b);
}

} // namespace velnls
