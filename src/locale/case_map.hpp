// Case of single characters by a locale's tables, shared by case mapping and by the orders that fold.
#pragma once

#include "core/unaligned.hpp"
#include "locale/tables.hpp"

#include <cctype>
#include <cstdint>

namespace velnls {

enum class Case {
    Upper,
    Lower
};

// The first letters of ASCII, as numbers to count from.
inline constexpr unsigned kCapitalA = 0x41;
inline constexpr unsigned kSmallA = 0x61;

// First bytes of characters of three bytes that no table maps: such a character equals itself alone, as no
// mapping changes a first byte of that length.
inline constexpr unsigned kFirstCaseless = 0xE3;
inline constexpr unsigned kCaselessSpan = 0xEE - kFirstCaseless; // to the last one
constexpr bool isCaseless(unsigned lead) {
    return lead - kFirstCaseless <= kCaselessSpan;
}

// What a table gives for a UTF-8 character, its bytes read as a big-endian number: the number of its
// counterpart, or the number itself. Three-byte characters are mapped for the lead bytes E1, E2 and EF only.
template <Case kCase>
std::uint32_t mapUtf8Case(const UnicodeCaseTable &table, std::uint32_t code) {
    const std::uint32_t lead = code >> 16;
    std::uint32_t adjusted = code;
    switch (lead) {
    case 0:
        break;
    case 0xE1:
        adjusted -= 0xE17F80;
        break;
    case 0xE2:
        adjusted -= 0xE23F80;
        break;
    case 0xEF:
        adjusted -= 0xEEFF80;
        break;
    default:
        return code;
    }
    const unsigned page = adjusted >> 8 & 0xFF;
    const unsigned half = page == 0 ? 128 : 64;
    const unsigned index = (adjusted & 0x7F) + (kCase == Case::Lower ? half : 0);
    // A trail byte out of its range may point behind a short page.
    if (index >= 2 * half)
        return code;
    const std::uint16_t value = loadElement(table.pages[page], index);
    return value == 0 ? code : value + (lead << 16);
}

template <Case kCase>
std::uint8_t mapByteCase(const ByteCaseTable &table, std::uint8_t byte) {
    return kCase == Case::Upper ? table.upper[byte] : table.lower[byte];
}

// Without a case table the C runtime decides.
template <Case kCase>
std::uint8_t mapRuntimeCase(std::uint8_t byte) {
    return static_cast<std::uint8_t>(kCase == Case::Upper ? std::toupper(byte) : std::tolower(byte));
}

} // namespace velnls
