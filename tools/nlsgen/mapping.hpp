// The mapping of a page in the form of the file: three groups of a rectangle, its values and the way back.
#pragma once

#include "core/file_layout.hpp"
#include "page.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace velnls::nlsgen {

inline constexpr std::uint8_t kPageToUtf8 = 17;
inline constexpr std::uint8_t kPageToUtf8Wide = 81; // four bytes of UTF-8 for two bytes of the page
inline constexpr std::uint8_t kUtf8ToMultibyte = 18;
inline constexpr std::uint8_t kUtf8ToSingleByte = 50;

struct MappingGroupData {
    file::MappingGroup group{}; // counts and pointers are set where the file is laid out
    std::vector<std::uint16_t> values;
    std::vector<std::uint16_t> reverse;
    std::vector<std::uint16_t> deltas;
};

struct MappingData {
    std::array<MappingGroupData, 3> groups; // first, second, third
    std::uint8_t type = kPageToUtf8;
};

// Throws Problem, naming the place of the code, when a code lies outside what the layout can hold.
MappingData buildSingleByteMapping(const Page &page, const Range &window);
MappingData buildMultibyteMapping(const Page &page, const MultibytePlan &plan);

} // namespace velnls::nlsgen
