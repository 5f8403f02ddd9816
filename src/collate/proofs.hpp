// What is proved of a locale's order once, when the locale is made, so that the fast kernels need not ask
// again per string.
#pragma once

#include "locale/locale.hpp"

namespace velnls {

// Single bytes under weights, and both tables have a weight of 0 for NUL: the weight tables alone decide.
inline constexpr std::uint32_t kByteWeights = 0x0100;
inline constexpr std::uint32_t kBasicOrder = 0x0200;
// BASIC, and keys are not of the Shift-JIS form of a text.
inline constexpr std::uint32_t kBasicKeys = 0x0800;
// With kBasicOrder: no character is longer than four bytes, ASCII bytes are characters of their own, and
// their lower case by the locale's case table is that of ASCII.
inline constexpr std::uint32_t kAsciiOrder = 0x0400;
// With kByteWeights: under mode 1 no two bytes of ASCII have the same weight, and none but NUL the weight 0.
inline constexpr std::uint32_t kOwnAsciiWeights = 0x2000;
// With kBasicOrder: single bytes, and lower case by the locale's table is NUL for NUL alone: an order by
// weights.
inline constexpr std::uint32_t kByteOrder = 0x1000;

// Bits for a locale's proofs, whose other fields are complete.
std::uint32_t proveOrder(const nlsLocale &locale);

} // namespace velnls
