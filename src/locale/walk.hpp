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
    // One jump for each length, so that a walk need not wait for one character's length to look at the next.
    const unsigned trails = table.trailCount(*p);
    switch (trails) {
    case 0:
        return p + 1;
    case 1:
        return p[1] != 0 ? p + 2 : p + 1;
    case 2:
        if (p[1] != 0 && p[2] != 0)
            return p + 3;
        break;
    case kCheckedTrails:
        if (p[1] != 0 && p[2] != 0 && p[3] != 0)
            return p + 4;
        break;
    default:
        return p + trails + 1;
    }
    ++p;
    while (*p != 0)
        ++p;
    return p;
}

inline bool isUtf8Trail(std::uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

// Where the run of lead-valued bytes begins that ends just before `p`.
inline const std::uint8_t *leadRun(const CharTable &table, const std::uint8_t *p, const std::uint8_t *start) {
    while (p != start && table.trailCount(p[-1]) != 0)
        --p;
    return p;
}

// Whether a character begins at `p`: in UTF-8 by the byte itself, elsewhere when the run of lead-valued bytes
// before it has even length.
inline bool beginsCharacter(const CharTable &table, const std::uint8_t *p, const std::uint8_t *start) {
    return table.has(file::kUtf8) ? !isUtf8Trail(*p) : (p - leadRun(table, p, start)) % 2 == 0;
}

// Steps backwards through a text, character by character. A run of lead-valued bytes is measured once,
// however many steps lead through it.
class BackWalk {
public:
    BackWalk(const CharTable &table, const std::uint8_t *start) : table_(table), start_(start) {}

    // The character before `p`, which lies behind the start.
    const std::uint8_t *before(const std::uint8_t *p) {
        --p;
        if (table_.has(file::kUtf8)) {
            while (p != start_ && isUtf8Trail(*p))
                --p;
            return p;
        }
        if (run_ == nullptr || p < run_ || p > runEnd_) {
            run_ = leadRun(table_, p, start_);
            runEnd_ = p;
        }
        // Where the run has odd length, the one before the byte in front is shorter by one: that byte begins
        // a character.
        return (p - run_) % 2 == 0 ? p : p - 1;
    }

private:
    const CharTable &table_;
    const std::uint8_t *start_;
    const std::uint8_t *run_ = nullptr; // the run measured last, and where it was measured from
    const std::uint8_t *runEnd_ = nullptr;
};

} // namespace velnls
