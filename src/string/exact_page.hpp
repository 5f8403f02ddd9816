// The characters of a code page under BASIC by bytes, for matching.
#pragma once

#include "collate/basic.hpp"
#include "string/characters.hpp"
#include "string/place_filter.hpp"
#include "velnls.h"

#include <cstring>

namespace velnls {

// BASIC by bytes: characters are equal when their bytes are. Only one that the string's end cuts may differ
// from another in blanks.
template <typename Characters>
class ExactPage {
public:
    static constexpr bool kQuick = true;
    static constexpr std::ptrdiff_t kFilterWorth = 32;
    static constexpr std::ptrdiff_t kUnfiltered = 0;

    explicit ExactPage(const nlsLocale &locale) : characters_{*locale.charTable} {}
    [[nodiscard]] const Characters &characters() const {
        return characters_;
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        if (a.length == b.length)
            equal = std::memcmp(a.at, b.at, a.length) == 0;
        else
            equal = compareBytes(textOf(a), textOf(b)) == 0;
        return NLS_OK;
    }
    [[nodiscard]] const std::uint8_t *seek(const std::uint8_t *at, const std::uint8_t *end,
                                           Character sought) const {
        const std::uint8_t first = *sought.at;
        while (at != end && *at != first)
            at = characters_.characterAt(at).end();
        return at;
    }
    // Neither text ends inside a character.
    [[nodiscard]] bool stands(const std::uint8_t *wanted, const std::uint8_t *wantedEnd,
                              const std::uint8_t *&at, const std::uint8_t *end) const {
        const std::ptrdiff_t length = wantedEnd - wanted;
        if (end - at < length || std::memcmp(wanted, at, static_cast<std::size_t>(length)) != 0)
            return false;
        at += length;
        return true;
    }
    bool makeFilter(const std::uint8_t *run, const std::uint8_t *runEnd, PlaceFilter &filter) const {
        filter.first.add(*run);
        filter.distance = static_cast<std::size_t>(runEnd - run) - 1;
        if (filter.distance != 0)
            filter.second.add(runEnd[-1]);
        return true;
    }

private:
    Characters characters_;
};

} // namespace velnls
