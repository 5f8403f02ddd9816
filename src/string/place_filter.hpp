// A sieve for the places of a text where a string may begin: the bytes that can stand at one distance from
// such a place, and those at another. It looks at whole blocks of bytes; whoever asks proves the places that
// come through.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velnls {

// A few byte values.
struct ByteForms {
    static constexpr unsigned kMost = 4;
    std::uint8_t bytes[kMost];
    unsigned count = 0;

    // False when there is no room for one more.
    bool add(std::uint8_t byte);
    // The form at a place; behind the last one the first again.
    [[nodiscard]] std::uint8_t repeated(unsigned place) const {
        return bytes[place < count ? place : 0];
    }
    // An ASCII character, and its other case if it is a letter; or one byte. There are none yet.
    void addAscii(std::uint8_t byte) {
        bytes[0] = byte;
        bytes[1] = byte ^ 0x20;
        count = (byte | 0x20) - unsigned{'a'} < 26 ? 2 : 1;
    }
    void addOnly(std::uint8_t byte) {
        bytes[0] = byte;
        count = 1;
    }
};

struct PlaceFilter {
    ByteForms near;               // at least one
    ByteForms far;                // none: any
    std::size_t nearDistance = 0; // from the place to the byte that `near` is about
    std::size_t farDistance = 0;  // not below nearDistance
    bool wide = false;            // find() may use AVX-512

    // The first place from `at` on that comes through, in a text of which all between `text` and `end` may be
    // read. The sieve stops short of the end: `stopped` is then the first place that it has not looked at,
    // and the result null.
    const std::uint8_t *find(const std::uint8_t *text, const std::uint8_t *at, const std::uint8_t *end,
                             const std::uint8_t *&stopped) const;

    // All places of a text of `length` bytes, kShortText at most, that come through, one bit each. Places
    // whose byte at a distance would lie behind the text do not.
    static constexpr std::ptrdiff_t kShortText = 64;
    [[nodiscard]] std::uint64_t places(const std::uint8_t *text, std::size_t length) const;
};

// For processors with AVX-512: as PlaceFilter::find, but it stops further from the end.
namespace avx512 {

const std::uint8_t *findPlace(const PlaceFilter &filter, const std::uint8_t *at, const std::uint8_t *end,
                              const std::uint8_t *&stopped);

} // namespace avx512

// Adds the indexes, 0 left out, at which a table of 256 bytes has a value: all, or those of the bytes that
// are not ASCII. False when there is no room for them.
bool addIndexesOf(const std::uint8_t *table, bool beyondAscii, std::uint8_t value, ByteForms &forms);

// The first byte from `at` on that is 80 or above or one of `forms`, or the end of the text.
const std::uint8_t *skipOtherAscii(const std::uint8_t *text, const std::uint8_t *at, const std::uint8_t *end,
                                   const ByteForms &forms);

// The index of the first of 16-bit values, from `from` on, that equals one; `count` when none does. They need
// not be aligned.
unsigned findValue(const std::uint8_t *values, unsigned from, unsigned count, std::uint16_t value);

} // namespace velnls
