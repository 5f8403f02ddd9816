// Keys by weights of texts whose every byte is a character of its own.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velnls {

struct ByteKey {
    const std::uint8_t *weights; // 256; a byte of the weight 0 expands
    std::uint8_t expanded;       // to this, twice
    std::uint32_t proofs;        // of the locale: for the instruction sets
};

// Writes the key of `length` bytes of text, at most `room` bytes of it, and gives its length. Bytes behind
// the key may be scribbled over, inside the room.
std::size_t writeByteKey(const ByteKey &how, const std::uint8_t *text, std::size_t length, std::uint8_t *key,
                         std::size_t room);

// The plain twin.
std::size_t writeByteKeyPlain(const ByteKey &how, const std::uint8_t *text, std::size_t length,
                              std::uint8_t *key, std::size_t room);

namespace avx512 {
// Only where instructionSets() says kWideVectors.
std::size_t writeByteKey(const ByteKey &how, const std::uint8_t *text, std::size_t length, std::uint8_t *key,
                         std::size_t room);
} // namespace avx512

} // namespace velnls
