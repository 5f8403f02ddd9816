// The plain way of ordering: by weights, by bytes and folded characters, by Thai cells, and the keys of each.
#pragma once

#include "locale.hpp"

namespace model {

struct Compared {
    nlsStatus status = 0;
    int result = 0;

    bool operator==(const Compared &) const = default;
};

// The texts end where their NUL or their bound is.
Compared compare(const Locale &locale, const Bytes &a, const Bytes &b, unsigned mode);

struct Keyed {
    nlsStatus status = 0;
    bool written = true; // false: the buffer is as it was
    Bytes key;
};

Keyed sortKey(const Locale &locale, const Bytes &source, std::size_t size, unsigned mode, bool trim);

// The key by weights alone, as words are keyed too.
Bytes weightKey(const Locale &locale, const Bytes &source, std::size_t size, unsigned mode);

// EUC-JP bytes as Shift_JIS, by the formulas of the algorithmic converter; a character cut by the end stays.
Bytes shiftJisOf(const Bytes &eucText);

} // namespace model
