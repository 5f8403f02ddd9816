// The type codes of conversion entries, as a data file writes them, and the kind words that they become.
#pragma once

#include "convert/converter.hpp"

namespace velnls {

// Kind words of the file types from kFirstRemapped on: variant bits included.
inline constexpr std::int32_t kFirstRemapped = 144;
inline constexpr std::int16_t kRemapped[] = {
    151, 536,  279,  1048, 153, 538,  281,  1050, 155, 540,  283,  1052, // 144 to 155
    539, 156,  1051, 284,  667, 668,  1179, 796,  795, 1180, 1307, 1308, // 156 to 167
    286, 1053, 158,  541,  261, 1030, 133,  518,  389, 1542,             // 168 to 177
};
static_assert(sizeof kRemapped / sizeof kRemapped[0] == 177 - kFirstRemapped + 1);
inline constexpr std::int32_t kLastRemapped = 177;
inline constexpr std::int32_t kLastPlainType = 128;

// The kind word of a file type; 0 with `valid` false for types that no data file may carry. A chain is made
// by the route builder alone: its body holds pointers, which must never come from a file.
inline std::int32_t kindWordOfFileType(std::int32_t type, bool &valid) {
    if (type >= kFirstRemapped && type <= kLastRemapped)
        type = kRemapped[type - kFirstRemapped];
    else if (type > kLastPlainType && type < kFirstByteMapType) {
        valid = false;
        return 0;
    }
    valid = type != kChain;
    return type;
}

} // namespace velnls
