// Proves a finished data file against the pages and orders it was made from. Reads only the file's bytes,
// with look-ups of its own: what the compiler got wrong must not be repeated here.
#pragma once

#include "data_plan.hpp"

#include <memory>
#include <span>
#include <vector>

namespace velnls::nlsgen {

// Both look-ups of every mapping over all codes of 16 bits and the characters U+0000 to U+2FFFF. Throws
// Problem with the place of the first code or character that comes out otherwise than its source says.
void verifyMappings(std::span<const std::uint8_t> file,
                    const std::vector<std::shared_ptr<const Page>> &pages);

// Every planned collation is in the file, and its weights, both tables, put the page's characters into the
// order it was planned with. Throws Problem with the first two characters that they do not.
void verifyCollations(std::span<const std::uint8_t> file, const std::vector<PlannedCollation> &collations);

} // namespace velnls::nlsgen
