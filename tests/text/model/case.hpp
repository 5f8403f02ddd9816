// The plain way of case mapping, character by character into a list of pieces, with the two rules for room.
#pragma once

#include "locale.hpp"

namespace model {

// A character of a paged locale in its other case; the number of its bytes, read big-endian.
std::uint32_t mapNumber(const CasePages &pages, std::uint32_t number, bool upper);

struct Mapped {
    nlsStatus status = 0;
    Bytes text;              // what was written
    bool terminated = false; // a NUL stands behind it
    bool counted = false;    // the destination's length is set
};

// `text` ends where the string's NUL would be; `size` is the destination's.
Mapped mapCase(const Locale &locale, const Bytes &text, std::size_t size, bool upper);

} // namespace model
