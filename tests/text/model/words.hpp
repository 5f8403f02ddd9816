// The plain way of cutting text into words by the class map of sort data.
#pragma once

#include "locale.hpp"

namespace model {

struct WordText {
    Bytes word;               // at most 184 bytes
    bool cut = false;         // there were more
    std::size_t consumed = 0; // bytes up to the place where the scan ended
};

struct WordMap {
    ByteTable classes{};
    unsigned char format = 0; // the sort data's first byte
};

WordText nextWord(const Locale &locale, const WordMap &map, const Bytes &text);

// The class map that rebuilding puts where the given one has zeros.
ByteTable builtClasses(const Locale &locale, const fixture::CharacterTable *target, unsigned char format);

} // namespace model
