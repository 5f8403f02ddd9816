// Walking of multibyte text by a code page's character table: where the next and the previous character
// begin.
#pragma once

#include "locale/tables.hpp"

#include <cstdint>

namespace velnls {

// Characters of more trail bytes than this are stepped over without a look at the bytes between.
inline constexpr unsigned kCheckedTrails = 3;

// The character after the one at `p`, which is not NUL. A NUL among the first three trail bytes ends the walk
// there.
inline const std::uint8_t *nextCharacter(const CharTable &table, const std::uint8_t *p) {
    const unsigned trails = table.trailCount(*p);
    if (trails > kCheckedTrails)
        return p + trails + 1;
    ++p;
    for (unsigned i = 0; i < trails && *p != 0; ++i)
        ++p;
    return p;
}

inline bool isUtf8Trail(std::uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

// The character before `p`, which lies behind `start`.
inline const std::uint8_t *previousCharacter(const CharTable &table, const std::uint8_t *p,
                                             const std::uint8_t *start) {
    --p;
    if (table.has(file::kUtf8)) {
        while (p != start && isUtf8Trail(*p))
            --p;
        return p;
    }
    // A byte begins a character when the run of lead-valued bytes before it has even length. Where it has odd
    // length, the run before the byte in front is shorter by one, so that byte begins a character.
    const std::uint8_t *run = p;
    while (run != start && table.trailCount(run[-1]) != 0)
        --run;
    return (p - run) % 2 == 0 ? p : p - 1;
}

} // namespace velnls
