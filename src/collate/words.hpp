// Words of a string by the class of each byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velnls {

inline constexpr std::size_t kLongestWord = 184;

struct WordRules {
    const std::uint8_t *classes; // 256 class bytes
    bool endAtTwoByte;           // class 9 ends the scan instead of being a two-byte character
    bool endAtMark;              // class 11 ends a word instead of being a two-byte character
};

struct Word {
    std::uint8_t bytes[kLongestWord + 1]; // NUL-terminated
    std::size_t length;
    bool cut; // bytes beyond the longest word were dropped
};

// Collects the next word and gives the place behind it. A word of no bytes: there is none.
const std::uint8_t *nextWord(const WordRules &rules, const std::uint8_t *text, Word &word);

} // namespace velnls
