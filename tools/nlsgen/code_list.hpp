// A list of codes of a page and the characters they stand for, as read from a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velnls::nlsgen {

struct CodeLine {
    std::uint32_t code; // the bytes as a big-endian number
    int bytes;          // 1 or 2
    std::uint32_t unicode;
    bool oneWay; // from the code to Unicode only
    int line;
};

struct CodeList {
    std::string file;
    std::vector<CodeLine> lines;
};

inline constexpr std::uint32_t kLastCodePoint = 0x10FFFF;

} // namespace velnls::nlsgen
