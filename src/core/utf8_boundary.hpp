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

// The same of the place behind four bytes, the last of them highest.
[[gnu::always_inline]] inline bool nothingReachesAcross(std::uint32_t four) {
    // A last byte from C0 up begins a character that goes on, the one before it does from E0 up, and the one
    // before that from F0 up: all of these bits are set.
    const std::uint32_t clear = (~four & 0xC0E0F000) | 0xFF;
    return ((clear - 0x01010101) & ~clear & 0x80808080) == 0;
}

// How many bytes before a place are the beginning of a character that goes on behind it, in well-formed text
// of characters of up to `kLongest` bytes; one byte less than that has to stand before the place. Seen at
// these bytes themselves: who goes on there by blocks does not wait for the masks of the one before.
template <unsigned kLongest>
[[gnu::always_inline]] inline unsigned incompleteBefore(const std::uint8_t *place) {
    unsigned bytes = place[-1] >= 0xC0 ? 1 : 0;
    if constexpr (kLongest > 2)
        bytes += place[-2] >= 0xE0 ? 2 : 0;
    if constexpr (kLongest > 3)
        bytes += place[-3] >= 0xF0 ? 3 : 0;
    return bytes;
}

} // namespace velnls
