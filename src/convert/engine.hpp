// The one routine through which every conversion passes.
#pragma once

#include "convert/converter.hpp"

namespace velnls {

struct Request {
    std::uint8_t *destination;
    std::uint32_t capacity;
    const std::uint8_t *source;
    std::int32_t sourceLength;            // bytes, of UTF-16 and UTF-32 too
    std::uint8_t *intermediate = nullptr; // for a chain's first step; null: none
    std::uint32_t intermediateCapacity = 0;
    const void *converter;  // null: plain copy
    std::uint32_t *written; // left alone where nothing is converted
    bool check = false;     // report NLS_R_CHANGED when the text changes
    std::ptrdiff_t behind =
        1; // bytes behind the source that UTF-8 decoders may read: its terminator, or none
};

// 0, 2, 16, 33, NLS_R_CHANGED (check mode), NLS_R_SUBSTITUTED.
nlsStatus convert(const Request &request);

// Bytes of the terminator behind a converter's output; a chain's is that of its second step.
std::uint32_t terminatorWidth(const void *converter);

// A counted text with a terminator behind it, as nlsConvertNLS converts it; a chain needs an intermediate
// text.
nlsStatus convertText(const void *converter, const nlsStr &source, nlsStr *intermediate, nlsStr &destination);

// One character value, its bytes packed big-endian, into another.
nlsStatus convertCharacter(const void *converter, std::uint32_t character, std::uint32_t &result);

} // namespace velnls
