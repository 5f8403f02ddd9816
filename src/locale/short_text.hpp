// Texts whose NUL stands among their first 64 bytes: read by one load, changed in registers, written by one
// store. For processors with AVX-512; call these only where kWideVectors is proved.
//
// Each gives the length of what it wrote with a NUL behind it, or kNotShort: nothing is written then, and
// the general way does all of the work. The room counts the NUL, so that a text which leaves none for it is
// not for these either.
#pragma once

#include "locale/case_map.hpp"
#include "locale/page_facts.hpp"

#include <cstddef>

namespace velnls::avx512 {

inline constexpr std::size_t kNotShort = ~std::size_t{0};

// Where a text is read and what becomes of it goes to.
struct ShortText {
    const std::uint8_t *at;
    bool trims; // blanks at its end are left out
    std::uint8_t *out;
    std::size_t room;
    bool scribbles; // bytes of the room behind the NUL may change
};

// As it stands.
std::size_t copyShort(const ShortText &text);

// Each byte by a table of 256. No byte of the text becomes NUL.
std::size_t mapShortBytes(const std::uint8_t *map, const ShortText &text);

// With kCommonCase.
template <Case kCase>
std::size_t mapShortUtf8(const ShortText &text);

// With kPairPage and kPairCase.
template <Case kCase>
std::size_t mapShortPairs(const PageFacts &facts, const ShortText &text);

} // namespace velnls::avx512
