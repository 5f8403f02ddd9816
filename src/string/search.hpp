// Search for a pattern, character by character, in both directions.
#pragma once

#include "locale/walk.hpp"
#include "string/seeker.hpp"

namespace velnls {

// A stretch of text with the number of its characters, as nlsCountChars counts them.
struct Counted {
    const std::uint8_t *at;
    const std::uint8_t *end;
    std::uint32_t characters;
};

// The characters of a string bounded by its length: 0, or NLS_R_CUT.
nlsStatus countText(const nlsLocale &locale, const std::uint8_t *text, std::size_t length, Counted &counted);

// Whether the end of a text falls inside a character: what countText finds, without counting.
bool isCut(const nlsLocale &locale, const std::uint8_t *text, const std::uint8_t *end);

struct Match {
    const std::uint8_t *at; // null: none
    const std::uint8_t *end;
};

// Finds match after match on a quick page, where counts are not needed: a match that fits in the text has as
// many characters as the pattern, and the pattern's are all there. Neither text is cut at its end.
template <typename Page>
class QuickSearch {
public:
    QuickSearch(const Page &page, const std::uint8_t *pattern, const std::uint8_t *patternEnd,
                const std::uint8_t *text, const std::uint8_t *end)
        : page_(page), pattern_(pattern), patternEnd_(patternEnd), end_(end),
          seeker_(page, pattern, patternEnd, text, end) {}

    // The first match from `at` on. A character begins there, unless the page's first bytes decide.
    Match next(const std::uint8_t *at) {
        while (at != end_ && (at = seeker_.next(at)) != end_) {
            const std::uint8_t *behind = at;
            if (page_.stands(pattern_, patternEnd_, behind, end_) == Standing::Yes)
                return {at, behind};
            at = page_.characters().characterAt(at).end();
        }
        return {nullptr, nullptr};
    }

private:
    const Page &page_;
    const std::uint8_t *pattern_;
    const std::uint8_t *patternEnd_;
    const std::uint8_t *end_;
    Seeker<Page> seeker_;
};

// The search for any page, one place after the other: places are tried as long as enough characters are left.
template <typename Page>
class CountedSearch {
public:
    // The pattern is not empty.
    CountedSearch(const Page &page, const Counted &pattern) : page_(page), pattern_(pattern) {}

    // The first match in `text`, which moves on to the match's start. 0 whether there is one or not.
    nlsStatus forwards(Counted &text, Match &match) const {
        match = {nullptr, nullptr};
        while (text.characters >= pattern_.characters && text.at < text.end) {
            if (const nlsStatus status = matchAt(text, match); status != NLS_OK || match.at != nullptr)
                return status;
            text.at = clipped(text.at, text.end).end();
            --text.characters;
        }
        return NLS_OK;
    }

    // The last match in `text`, whose characters are walked from its end by `walk`.
    nlsStatus backwards(Counted text, BackWalk walk, BackWalk patternWalk, Match &match) const {
        match = {nullptr, nullptr};
        const std::uint8_t *const last = patternWalk.before(pattern_.end);
        const std::uint8_t *end = text.end;
        for (std::uint32_t left = text.characters; left >= pattern_.characters && end > text.at; --left) {
            const std::uint8_t *const candidate = walk.before(end);
            bool equal = false;
            const std::uint8_t *place = candidate;
            const std::uint8_t *wanted = last;
            BackWalk inner = walk;
            BackWalk innerPattern = patternWalk;
            for (;;) {
                const nlsStatus status =
                    page_.equal(clipped(wanted, pattern_.end), clipped(place, text.end), equal);
                if (status != NLS_OK)
                    return status;
                if (!equal || wanted == pattern_.at || place == text.at)
                    break;
                place = inner.before(place);
                wanted = innerPattern.before(wanted);
            }
            if (equal && wanted == pattern_.at) {
                match = {place, nullptr};
                return NLS_OK;
            }
            end = candidate;
        }
        return NLS_OK;
    }

private:
    [[nodiscard]] Character clipped(const std::uint8_t *at, const std::uint8_t *end) const {
        Character character = page_.characters().characterAt(at);
        if (end - at < static_cast<std::ptrdiff_t>(character.length))
            character.length = static_cast<unsigned>(end - at);
        return character;
    }

    nlsStatus matchAt(const Counted &text, Match &match) const {
        const std::uint8_t *place = text.at;
        for (const std::uint8_t *wanted = pattern_.at; wanted < pattern_.end;) {
            const Character sought = clipped(wanted, pattern_.end);
            const Character found = clipped(place, text.end);
            bool equal = false;
            if (const nlsStatus status = page_.equal(sought, found, equal); status != NLS_OK || !equal)
                return status;
            wanted = sought.end();
            place = found.end();
        }
        match = {text.at, place};
        return NLS_OK;
    }

    const Page &page_;
    const Counted &pattern_;
};

} // namespace velnls
