// The run-compressed way back from Unicode values to indexes, used by the first and second group of a
// mapping.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace velnls::nlsgen {

// A Unicode value (less the group's delta, if it has one) and the index it turns back to.
using IndexedCharacter = std::pair<std::uint32_t, std::uint32_t>;

struct CompressedReverse {
    std::uint32_t lowest = 0;
    std::uint32_t highest = 0;
    std::uint16_t split = 0;
    std::uint16_t runMask = 0;
    std::uint16_t indexShift = 0;
    std::vector<std::uint16_t> words;
};

inline constexpr std::uint32_t kLargestCompressedIndex = 32767; // leaves one bit for the run

// `characters` ascending and not empty, every index at most kLargestCompressedIndex. `lowest` may lie below
// the first character; segments of 2^split values are counted from it.
CompressedReverse compressReverse(const std::vector<IndexedCharacter> &characters, std::uint32_t lowest,
                                  unsigned split);

} // namespace velnls::nlsgen
