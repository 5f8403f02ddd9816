// The two look-ups of a mapping: code to Unicode value and back, through three code range blocks.
//
// Nothing in a data file is trusted here: every index is held against the size of its table.
#pragma once

#include "convert/kernels/kernels.hpp"

#include <cstdint>

namespace velnls {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

// The Unicode value of a code of the page, or kNone.
std::uint32_t unicodeOfCode(const MappingBody &body, std::uint16_t code);

// The code of a Unicode value in the page, or kNone.
std::uint32_t codeOfUnicode(const MappingBody &body, std::uint32_t value);

// Writes a code's one or two bytes; false, with nothing written, when they do not fit.
[[gnu::always_inline]] inline bool writeCode(Target &target, std::uint32_t code) {
    if (target.room() < (code <= 0xFF ? 1 : 2))
        return false;
    if (code > 0xFF)
        *target.at++ = static_cast<std::uint8_t>(code >> 8);
    *target.at++ = static_cast<std::uint8_t>(code);
    return true;
}

} // namespace velnls
