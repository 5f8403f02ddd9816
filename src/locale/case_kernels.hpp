// Case mapping of whole texts: one kernel per way, chosen by what the locale carries.
//
// Each reads to the end of the text and writes up to `room` bytes; no kernel writes the terminator behind a
// complete text.
#pragma once

#include "locale/case_map.hpp"
#include "locale/text.hpp"

#include <cstddef>

namespace velnls {

struct CaseResult {
    std::size_t written;
    bool complete;     // false: the room ran out
    bool cutCharacter; // and it was a multibyte character that did not fit
    bool mayHoldNul;   // a table may give NUL for what is none
};

template <Case kCase>
CaseResult mapByRuntime(const CharTable &chars, Text text, std::uint8_t *out, std::size_t room);

// `known`: where the text is known to hold no NUL before, or null.
// `proofs` are those of the locale; without any, the plain loops do all of the work.
template <Case kCase>
CaseResult mapByBytes(const CharTable &chars, const ByteCaseTable &table, std::uint32_t proofs, Text text,
                      const std::uint8_t *known, std::uint8_t *out, std::size_t room);

template <Case kCase>
CaseResult mapByPages(const CharTable &chars, const UnicodeCaseTable &table, std::uint32_t proofs, Text text,
                      const std::uint8_t *known, std::uint8_t *out, std::size_t room);

} // namespace velnls
