// Byte strings and the few ways that tests put them together.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace fixture {

using Bytes = std::vector<unsigned char>;

inline unsigned char byteOf(std::uint64_t value) {
    return static_cast<unsigned char>(value & 0xFF);
}

inline std::uint16_t halfOf(std::uint64_t value) {
    return static_cast<std::uint16_t>(value & 0xFFFF);
}

inline Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

inline Bytes operator+(Bytes a, const Bytes &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// Units laid down in machine order (little-endian here), or swapped.
inline Bytes units16(const std::vector<std::uint16_t> &units, bool swapped = false) {
    Bytes out;
    for (const std::uint16_t unit : units) {
        out.push_back(byteOf(swapped ? unit >> 8 : unit));
        out.push_back(byteOf(swapped ? unit : unit >> 8));
    }
    return out;
}

inline Bytes units32(const std::vector<std::uint32_t> &units, bool swapped = false) {
    Bytes out;
    for (const std::uint32_t unit : units)
        for (unsigned i = 0; i < 4; ++i)
            out.push_back(byteOf(unit >> (swapped ? 24 - 8 * i : 8 * i)));
    return out;
}

} // namespace fixture
