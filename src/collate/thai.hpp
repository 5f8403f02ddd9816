// The Thai order: cells of a consonant with the vowels and marks around it.
#pragma once

#include "locale/text.hpp"

#include <cstddef>

namespace velnls {

// -1, 0 or 1 by cells packed into 32 bits.
int compareThai(const std::uint8_t *weights, Text a, Text b);

// Writes the key of `text`, at most `room` bytes, and gives its length.
std::size_t writeThaiKey(const std::uint8_t *weights, Text text, std::uint8_t *key, std::size_t room);

} // namespace velnls
