// The fast ways to count: each goes as far as it can over whole characters, by what is proved of the locale,
// and leaves the rest to the plain loops.
#pragma once

#include "string/count_blocks.hpp"

namespace velnls::fast {

// Characters; and those whose trail bytes are valid ones.
Passed countCharacters(const nlsLocale &locale, const std::uint8_t *text, std::size_t length);
Passed countValid(const nlsLocale &locale, const std::uint8_t *text, std::size_t length);

// Columns, in UTF-8 and where some characters of two bytes take one column.
Passed countColumns(const nlsLocale &locale, const std::uint8_t *text, std::size_t length);

} // namespace velnls::fast

// The kernels for processors with AVX-512; call them only where kWideVectors is proved.
namespace velnls::avx512 {

Passed countUtf8(const std::uint8_t *text, std::size_t length);
Passed columnsUtf8(const std::uint8_t *text, std::size_t length);
Passed countPairs(const PageFacts &facts, const std::uint8_t *text, std::size_t length);
Passed countValidPairs(const PageFacts &facts, const std::uint8_t *text, std::size_t length);
Passed narrowColumns(const PageFacts &facts, const std::uint8_t *text, std::size_t length);

} // namespace velnls::avx512
