// Where characters of UTF-8 surely begin, for every set of instructions: what stands here is inlined and
// leaves no function of its own behind.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velnls {

// Whether no byte of a text before a place announces one that stands there. In well-formed text no byte does
// so before a character's first; in broken text any may. A page that is proved to be UTF-8.
[[gnu::always_inline]] inline bool nothingReachesAcross(const std::uint8_t *text, const std::uint8_t *place) {
    const std::ptrdiff_t before = place - text;
    return (before < 1 || place[-1] < 0xC0) && (before < 2 || place[-2] < 0xE0) &&
           (before < 3 || place[-3] < 0xF0);
}

} // namespace velnls
