// Short texts in one go: where one kernel takes all of a text, nothing else has to be looked at. For
// processors with AVX2 or AVX-512.
#pragma once

#include "convert/converter.hpp"
#include "velnls.h"

namespace velnls {

// What a converter's short texts go through, kept as the proofs of a conversion: 0 = nothing.
std::uint32_t wayAtOnce(const void *converter);

// As convertText(), to which it goes on where `way` does not take all of a text. Of 1 to kMostAtOnce bytes.
// What the general way refuses before it converts, a byte that continues a character of UTF-8 before any has
// begun, no kernel takes.
nlsStatus convertAtOnce(std::uint32_t way, const void *converter, const nlsStr &source, nlsStr *intermediate,
                        nlsStr &destination);

inline constexpr std::uint32_t kMostAtOnce = 256; // bytes of a short text

} // namespace velnls
