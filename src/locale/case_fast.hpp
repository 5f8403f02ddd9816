// The fast ways to map case: blocks of ASCII by arithmetic, and in UTF-8 the Latin-1 letters and the basic
// Cyrillic alphabet too, where the case table is proved to map them so.
#pragma once

#include "locale/case_map.hpp"
#include "locale/page_facts.hpp"

#include <cstddef>

namespace velnls {

// The table maps ASCII letters to their other case, and no other ASCII character to anything else; ASCII
// characters are single bytes.
inline constexpr std::uint32_t kAsciiCase = 0x0008'0000;
// With kUtf8Page and kAsciiCase: the table maps the characters behind the lead bytes C2, C3, D0 and D1 as
// ISO 8859-1 and Unicode's Cyrillic block pair them, and leaves U+2000 to U+203F alone.
inline constexpr std::uint32_t kCommonCase = 0x0010'0000;

// With kAsciiCase: in lower case, no character but an ASCII letter becomes an ASCII character; in UTF-8,
// capital I with dot may become "i". Characters that the text's end cuts may become anything.
inline constexpr std::uint32_t kFoldsApart = 0x0020'0000;
inline constexpr std::uint32_t kDottedI = 0xC4B0;

// With kPairPage and kAsciiCase: no single byte but an ASCII letter has another case.
inline constexpr std::uint32_t kPairCase = 0x0100'0000;

// No byte but NUL becomes NUL.
inline constexpr std::uint32_t kKeepsBytes = 0x0200'0000;

std::uint32_t proveUtf8Case(const UnicodeCaseTable &table);
std::uint32_t proveByteCase(const CharTable &chars, const ByteCaseTable &table);

namespace fast {

// A stretch of text without a NUL, and the room for what becomes of it. They do not overlap.
struct CaseStretch {
    const std::uint8_t *at;
    const std::uint8_t *end;
    std::uint8_t *out;
    std::size_t room;

    // Behind bytes that are done, and back to them.
    [[gnu::always_inline]] void advance(std::size_t bytes) {
        at += bytes;
        out += bytes;
        room -= bytes;
    }
    [[gnu::always_inline]] void stepBack(std::size_t bytes) {
        at -= bytes;
        out -= bytes;
        room += bytes;
    }
};

// Each maps whole characters as far as blocks of them are what it is proved for, and moves on behind them.
template <Case kCase>
void mapCommonUtf8(CaseStretch &stretch);
template <Case kCase>
void mapAscii(CaseStretch &stretch);
template <Case kCase>
void mapPairs(const PageFacts &facts, CaseStretch &stretch);

} // namespace fast

// For processors with AVX-512; call it only where kWideVectors is proved.
namespace avx512 {

template <Case kCase>
void mapCommonUtf8(fast::CaseStretch &stretch);
template <Case kCase>
void mapPairs(const PageFacts &facts, fast::CaseStretch &stretch);

} // namespace avx512
} // namespace velnls
