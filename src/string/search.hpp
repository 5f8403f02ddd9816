// Search for a pattern, character by character, in both directions.
#pragma once

#include "locale/walk.hpp"
#include "string/pages.hpp"

namespace velnls {

// A stretch of text with the number of its characters, as nlsCountChars counts them.
struct Counted {
    const std::uint8_t *at;
    const std::uint8_t *end;
    std::uint32_t characters;
};

// The characters of a string bounded by its length: 0, or NLS_R_CUT.
nlsStatus countText(const CharTable &table, const std::uint8_t *text, std::size_t length, Counted &counted);

struct Match {
    const std::uint8_t *at; // null: none
    const std::uint8_t *end;
};

template <typename Page>
class Searcher {
public:
    // The pattern is not empty.
    Searcher(const Page &page, const Counted &pattern) : page_(page), pattern_(pattern) {}

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
        const Character last = {patternWalk.before(pattern_.end), 0};
        const std::uint8_t *end = text.end;
        for (std::uint32_t left = text.characters; left >= pattern_.characters && end > text.at; --left) {
            const std::uint8_t *const candidate = walk.before(end);
            bool equal = false;
            const std::uint8_t *place = candidate;
            const std::uint8_t *wanted = last.at;
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
        Character character = page_.characterAt(at);
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
