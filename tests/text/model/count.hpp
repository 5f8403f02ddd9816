// The plain way of counting, cutting and validating.
#pragma once

#include "locale.hpp"

namespace model {

struct Counted {
    std::int32_t status = 0;
    std::uint32_t count = 0;

    bool operator==(const Counted &) const = default;
};

// `text` is the string without its NUL.
Counted countBytes(const Locale &locale, const Bytes &text, std::int32_t characters);
Counted countCharacters(const Locale &locale, const Bytes &text, std::int32_t bytes);
Counted countColumns(const Locale &locale, const Bytes &text, std::int32_t bytes);

struct Cut {
    std::int32_t status = 0;
    std::uint32_t characters = 0;
    Bytes text;
};

// Without the room of the destination.
Cut substring(const Locale &locale, const Bytes &text, std::int32_t start, std::int32_t length);

// `data` is all that may be looked at.
Counted validate(const Locale &locale, const Bytes &data, bool bigEndian);

} // namespace model
