// Replacement by blocks of 64 bytes, which are copied as they are looked through: for processors with
// AVX-512, where characters match by their bytes.
#pragma once

#include <cstdint>

namespace velnls::avx512 {

// What is replaced by what. Both fit a block.
struct ByteReplacement {
    static constexpr std::int64_t kMost = 64;
    static constexpr std::int64_t kWorthwhile = 256; // bytes of text

    const std::uint8_t *pattern;
    std::int64_t patternLength; // at least 1
    const std::uint8_t *instead;
    std::int64_t insteadLength;
    bool isUtf8; // a page of UTF-8; otherwise one of single bytes

    // The most that a text of `length` bytes can become.
    [[nodiscard]] std::int64_t longestOf(std::int64_t length) const {
        const std::int64_t growth = insteadLength - patternLength;
        return growth <= 0 ? length : length + length / patternLength * growth;
    }
};

// A text with what has become of it so far, in a buffer that has room for the longest it can become.
struct ReplacedText {
    const std::uint8_t *begin; // of the whole text
    const std::uint8_t
        *at; // what stands before is done; at first a character begins here, later it may be any byte
    const std::uint8_t *end;
    char *out; // no part of the text
    std::uint32_t count;
};

// Replaces as far as whole blocks go. Stops earlier before a place where a broken character may reach across
// it: that place may lie inside the character. Call it only where kWideVectors is proved.
void replaceBlocks(const ByteReplacement &replacement, ReplacedText &text);

} // namespace velnls::avx512
