// Characters of a NUL-terminated string, and proofs of where they begin.
#pragma once

#include "locale/page_facts.hpp"
#include "locale/text.hpp"

#include <algorithm>
#include <cstddef>

namespace velnls {

// One character: its bytes, fewer than announced where the string ends inside it. No bytes: the string's end.
struct Character {
    const std::uint8_t *at;
    unsigned length;

    [[nodiscard]] const std::uint8_t *end() const {
        return at + length;
    }
};

// Whether characters stand at a place of a text.
enum class Standing {
    No,
    Yes,
    TextEnded, // as far as the text goes, or it was not looked at
};

inline Text textOf(Character character) {
    return {character.at, character.end()};
}

// Each byte is a character.
struct SingleBytes {
    SingleBytes() = default;
    explicit SingleBytes(const nlsLocale &) {}

    [[nodiscard]] static unsigned announced(std::uint8_t) {
        return 1;
    }
    [[nodiscard]] static Character characterAt(const std::uint8_t *at) {
        return {at, *at != 0 ? 1u : 0u};
    }
    [[nodiscard]] static unsigned reach() {
        return 0;
    }
};

// By a page's table.
class TableCharacters {
public:
    explicit TableCharacters(const nlsLocale &locale)
        : table_(*locale.charTable), isUtf8_((locale.header.proofs & kUtf8Page) != 0),
          reach_(isUtf8_ ? 3 : kMostTrails) {
        if ((locale.header.proofs & kPairPage) != 0)
            reach_ = 1;
    }

    [[nodiscard]] unsigned announced(std::uint8_t first) const {
        return table_.trailCount(first) + 1;
    }
    [[nodiscard]] Character characterAt(const std::uint8_t *at) const {
        const unsigned bytes = announced(*at);
        if (bytes == 1)
            return {at, *at != 0 ? 1u : 0u};
        return {at, terminatedText(at).available(bytes)};
    }
    // Whether the page was proved to be UTF-8.
    [[nodiscard]] bool isUtf8() const {
        return isUtf8_;
    }
    // Bytes before a place that may belong to a character across it.
    [[nodiscard]] unsigned reach() const {
        return reach_;
    }

private:
    static constexpr unsigned kMostTrails = 7;

    const CharTable &table_;
    bool isUtf8_;
    unsigned reach_;
};

// Tells where characters begin in a text that is walked from its start, without walking all of it: a place
// that none of the few bytes before it reaches across is a boundary however those bytes are read. Elsewhere
// the walk goes from the last such place. Places are asked for in ascending order, and what was found for one
// serves the next: all answers together take time proportional to the text.
template <typename Characters>
class Boundaries {
public:
    // A character begins at `start`.
    Boundaries(const Characters &characters, const std::uint8_t *start)
        : characters_(characters), known_(start) {}

    // The first boundary at or behind `place`. It lies behind the text's end where a character is cut there.
    const std::uint8_t *from(const std::uint8_t *place) {
        if (characters_.reach() == 0)
            return place;
        if (place <= known_)
            return known_;
        const std::uint8_t *at = place;
        while (at != known_ && isCrossed(at))
            --at;
        while (at < place)
            at += characters_.announced(*at);
        return known_ = at;
    }

private:
    [[nodiscard]] bool isCrossed(const std::uint8_t *place) const {
        const auto reach = static_cast<unsigned>(
            std::min<std::ptrdiff_t>(place - known_, static_cast<std::ptrdiff_t>(characters_.reach())));
        for (unsigned back = 1; back <= reach; ++back)
            if (characters_.announced(place[-static_cast<std::ptrdiff_t>(back)]) > back)
                return true;
        return false;
    }

    const Characters &characters_;
    const std::uint8_t *known_; // the last boundary found
};

// Whether the end of a text falls inside a character. One begins at `start`.
template <typename Characters>
bool cutsCharacter(const Characters &characters, const std::uint8_t *start, const std::uint8_t *end) {
    return characters.reach() != 0 && Boundaries(characters, start).from(end) != end;
}

} // namespace velnls
