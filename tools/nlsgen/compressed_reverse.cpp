#include "compressed_reverse.hpp"

#include <algorithm>
#include <bit>

namespace velnls::nlsgen {
namespace {

// What ends a segment, and all that an empty one has: a run that no position reaches.
constexpr std::uint16_t kEndEntry = 0;
constexpr std::uint16_t kEndRun = 0xFFFF;

} // namespace

CompressedReverse compressReverse(const std::vector<IndexedCharacter> &characters, std::uint32_t lowest,
                                  unsigned split) {
    CompressedReverse result;
    result.lowest = lowest;
    result.highest = characters.back().first;
    result.split = static_cast<std::uint16_t>(split);
    std::uint32_t largest = 1;
    for (const auto &character : characters)
        largest = std::max(largest, character.second);
    result.indexShift = static_cast<std::uint16_t>(16 - std::bit_width(largest));
    result.runMask = static_cast<std::uint16_t>((1U << result.indexShift) - 1);

    const std::uint32_t segmentSize = 1U << split;
    const std::size_t segments = ((result.highest - lowest) >> split) + 1;
    auto &words = result.words;
    words.assign(segments, 0);
    const auto emptySegment = static_cast<std::uint16_t>(words.size());
    words.push_back(kEndEntry);
    words.push_back(kEndRun);

    auto next = characters.begin();
    for (std::size_t segment = 0; segment < segments; segment++) {
        const std::uint32_t begin = lowest + static_cast<std::uint32_t>(segment << split);
        const std::uint32_t end = begin + segmentSize;
        if (next == characters.end() || next->first >= end) {
            words[segment] = emptySegment;
            continue;
        }
        words[segment] = static_cast<std::uint16_t>(words.size());
        std::uint32_t previous = begin - 1;
        for (; next != characters.end() && next->first < end; ++next) {
            const std::uint32_t run = next->first - previous;
            const std::uint32_t entry = next->second << result.indexShift;
            if (run <= result.runMask) {
                words.push_back(static_cast<std::uint16_t>(entry | run));
            } else {
                words.push_back(static_cast<std::uint16_t>(entry));
                words.push_back(static_cast<std::uint16_t>(run));
            }
            previous = next->first;
        }
        if (previous != end - 1) {
            words.push_back(kEndEntry);
            words.push_back(kEndRun);
        }
    }
    return result;
}

} // namespace velnls::nlsgen
