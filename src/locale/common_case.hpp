// The case of the characters that kCommonCase is about.
//
// Included by the files that instantiate kernels; what it defines is local to each.
#pragma once

#include "locale/case_map.hpp"

namespace velnls {
namespace {

// What the kernels make of a two-byte character behind one of its lead bytes; 0: they leave it to the table.
constexpr std::uint32_t commonCase(Case direction, std::uint32_t code) {
    const std::uint32_t lead = code >> 8;
    const std::uint32_t trail = code & 0xFF;
    const bool upper = direction == Case::Upper;
    switch (lead) {
    case 0xC2:
        return upper && trail == 0xB5 ? 0 : code; // micro sign
    case 0xC3:
        if (upper && trail == 0xBF)
            return 0; // y with diaeresis
        if (upper)
            return trail >= 0xA0 && trail != 0xB7 ? code - 0x20 : code;
        return trail <= 0x9E && trail != 0x97 ? code + 0x20 : code;
    case 0xD0:
        if (upper)
            return trail >= 0xB0 ? code - 0x20 : code;
        return trail <= 0x8F   ? code + 0x110
               : trail <= 0x9F ? code + 0x20
               : trail <= 0xAF ? code + 0xE0
                               : code;
    default:
        if (trail >= 0xA0)
            return 0; // historic letters, in pairs that follow each other
        return upper ? trail <= 0x8F ? code - 0xE0 : code - 0x110 : code;
    }
}

} // namespace
} // namespace velnls
