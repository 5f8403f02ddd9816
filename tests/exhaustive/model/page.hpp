// What every code page must map, computed from the public tables and the documented corrections alone.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace model {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;
inline constexpr std::uint32_t kReplacement = 0xFFFD;

struct Page {
    std::string name;
    bool multibyte = false;
    std::uint8_t substitution = '?';
    std::array<std::uint8_t, 256> trailCount{};
    std::vector<std::uint32_t> unicodeOfCode; // 65536 values, kNone = not mapped
    std::vector<std::uint32_t> codeOfUnicode; // planes 0 to 2, kNone = not mapped
    std::size_t codes = 0;                    // mapped codes
    std::size_t reversible = 0;               // mapped Unicode values

    // Both with the rule that an unmapped value below 127 stands for itself.
    [[nodiscard]] std::uint32_t toUnicode(std::uint32_t code) const;
    [[nodiscard]] std::uint32_t fromUnicode(std::uint32_t unicode) const;
};

// Built on first use and kept; throws when a source table is missing or the name is unknown.
const Page &page(const std::string &name);

const std::vector<std::string> &singleBytePages();
const std::vector<std::string> &multibytePages();
std::vector<std::string> allPages();

// The pairs of single-byte pages that have a table of their own, each in both directions.
const std::vector<std::pair<std::string, std::string>> &byteTablePairs();
bool hasByteTable(const std::string &source, const std::string &target);
bool isEbcdic(const std::string &name);

} // namespace model
