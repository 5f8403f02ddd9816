// Replacement in a short text whose matches are known, by one block: for processors with AVX-512.
#pragma once

#include "string/short_match.hpp"
#include "velnls.h"

#include <cstdint>

namespace velnls::avx512 {

// Puts the text into a string with the pattern's places in it replaced; of places that overlap the first one
// counts. False, and nothing has changed, where text and replacement are longer than a block together or the
// room ends less than a block behind the result: bytes there may be written over. Call it only where
// kWideVectors is proved, with places that are settled.
bool replaceShort(ShortPlaces found, const std::uint8_t *text, const std::uint8_t *replacement, nlsStr &out,
                  std::uint32_t &count);

} // namespace velnls::avx512
