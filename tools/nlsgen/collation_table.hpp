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

// Letters share their weights with their accented ones: in the case-sensitive table form by form, in the
// other all of them. The order must tell forms apart, which the default order does.
file::Collation makeNoAccentsWeights(const Page &page, const CharacterOrder &order);

// The Thai key packs a vowel sign into bits 3-6 and a tone mark into bits 0-2 of one byte.
file::Collation makeThaiWeights(const Page &page, const CharacterOrder &order);

file::Collation makeBasicCollation();

// Throws Problem when the weights break the rules above, or when the blank does not rank below every letter
// and digit. Weights may be shared in the case-sensitive table by the name of the collation alone.
void checkCollation(const Page &page, const std::string &name, const file::Collation &collation,
                    const std::set<std::uint32_t> &expanding = {});

} // namespace velnls::nlsgen
