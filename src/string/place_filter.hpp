// A sieve for the places of a text where a string may begin: the bytes that can stand at its start, and those
// that can stand at one further place. It looks at whole blocks of bytes; whoever asks proves the places that
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
};

struct PlaceFilter {
    ByteForms first;  // at least one
    ByteForms second; // of the byte `distance` further; none: any
    std::size_t distance = 0;

    // The first place from `at` on that comes through. The sieve stops short of `end`: `stopped` is then the
    // first place that it has not looked at, and the result null.
    const std::uint8_t *find(const std::uint8_t *at, const std::uint8_t *end,
                             const std::uint8_t *&stopped) const;
};

} // namespace velnls
