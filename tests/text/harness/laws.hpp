// What makes an order an order, tried on a million pairs or triples of random texts of a locale; fewer under
// sanitizers. Failures are GoogleTest's.
#pragma once

#include "harness/kits.hpp"

namespace kit {

// Texts of any bytes: each equals itself, and what compares smaller one way compares greater the other way.
void checkThatOrderTurnsRound(const Kit &one, std::int16_t mode);

// Texts without what the rules themselves order in no one way: expanding characters, and characters that rank
// with or below the blank.
void checkThatOrderIsTransitive(const Kit &one, std::int16_t mode);

} // namespace kit
