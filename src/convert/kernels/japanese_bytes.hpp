// Which bytes begin a character of two in Shift_JIS and EUC-JP, as the arithmetic between the two sees them.
#pragma once

#include <cstdint>

namespace velnls {

inline constexpr std::uint8_t kKatakanaShift = 0x8E; // EUC-JP: one half-width katakana follows

inline bool isHalfKatakana(std::uint8_t byte) {
    return byte >= 0xA1 && byte <= 0xDF;
}

inline bool isShiftJisLead(std::uint8_t byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xEF);
}

inline bool isEucByte(std::uint8_t byte) {
    return byte >= 0xA1 && byte <= 0xFE;
}

} // namespace velnls
