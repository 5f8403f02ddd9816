// Which conversion type goes with which in the two entries of a pair.
#pragma once

#include <cstdint>

namespace velnls::nlsgen {

// Whether the table of `back` is the opposite of the one of `forward`; order does not matter.
bool typesFit(std::uint8_t forward, std::uint8_t back);

// What a type does, whatever the byte order of the Unicode units: 144 and 146 are 23.
int kindOfType(int type);

// Whether a file may state this type at all: kinds the library knows, and the file's own numbers 144 to 177.
bool typeExists(int type);

} // namespace velnls::nlsgen
