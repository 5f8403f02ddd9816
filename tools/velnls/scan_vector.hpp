// Judges text in blocks of 64 bytes where the machine can, to spare the careful walks most of their way.
#pragma once

#include <cstddef>

#include "page.hpp"

namespace velnls::tool {

// How many bytes at the start are surely well formed and end with a whole character. What follows, a fault or
// merely the rest of a block, is for the careful walk. 0 on machines without AVX2.
std::size_t wellFormedUtf8Prefix(const unsigned char *text, std::size_t size);

// The same for a page of one- and two-byte characters (page.hasPairs).
std::size_t wellFormedPairsPrefix(const Page &page, const unsigned char *text, std::size_t size);

} // namespace velnls::tool
