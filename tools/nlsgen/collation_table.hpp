// Collation records: single-byte weights, Thai weights, the shared record of the pages without weights.
#pragma once

#include "character_order.hpp"
#include "core/file_layout.hpp"
#include "page.hpp"

namespace velnls::nlsgen {

// Each byte has a weight of its own in the case-sensitive table; forms of one letter share the lowest in the
// other. Byte 0 ends a string and weighs nothing. Characters in `expanding` weigh 0: they sort as "ss".
file::Collation makeWeights(const Page &page, const CharacterOrder &order,
                            const std::set<std::uint32_t> &expanding = {});

// The Thai key packs a vowel sign into bits 3-6 and a tone mark into bits 0-2 of one byte.
file::Collation makeThaiWeights(const Page &page, const CharacterOrder &order);

file::Collation makeBasicCollation();

// Throws Problem when the weights break the rules above.
void checkCollation(const Page &page, const std::string &name, const file::Collation &collation,
                    const std::set<std::uint32_t> &expanding = {});

} // namespace velnls::nlsgen
