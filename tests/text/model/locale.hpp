// A locale as the reference twins see it: the tables of its page, its collation and its case, by value.
#pragma once

#include "data_file.hpp"
#include "velnls.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace model {

using fixture::Bytes;
using fixture::operator+;
using fixture::ByteTable;

// The paged case table of a UTF-8 locale, filed from its two lists of pairs.
struct CasePages {
    explicit CasePages(const fixture::UnicodeCase &lists);

    // The counterpart's two low bytes; 0 where there is none.
    [[nodiscard]] unsigned upper(unsigned page, unsigned index) const;
    [[nodiscard]] unsigned lower(unsigned page, unsigned index) const;

    std::array<std::vector<std::uint16_t>, 256> pages; // empty: no character of the lists falls on it
};

struct Locale {
    fixture::CharacterTable characters;
    std::optional<fixture::CollationTable> collation;
    std::optional<fixture::ByteCase> byteCase;
    std::optional<CasePages> casePages;
    // Where the page collates through Shift_JIS: the character table of that page.
    std::optional<fixture::CharacterTable> companion;

    [[nodiscard]] bool has(unsigned flag) const {
        return (characters.flags & flag) != 0;
    }
    [[nodiscard]] unsigned trails(unsigned char first) const {
        return characters.attributes[first] & 7U;
    }
    // Whether case is mapped by pages of Unicode characters.
    [[nodiscard]] bool pagedCase() const {
        return casePages.has_value() && has(fixture::kUtf8);
    }
};

// A character's UTF-8 bytes as one big-endian number.
std::uint32_t utf8Number(std::uint32_t character);

} // namespace model
