// `nlsgen diff`: what changed from one data file to another, for somebody who has stored text, keys or
// records under the first.
#pragma once

#include "character_names.hpp"

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>

namespace velnls::nlsgen {

struct NamedFile {
    std::string path; // for messages
    std::span<const std::uint8_t> bytes;
};

// Writes a line for each difference that the library's answers show: entries, flags, code page mappings, case
// pairs, orders. Where the records lie makes none. Gives the count. Throws Problem for a file with a fault.
std::size_t reportDifferences(const NamedFile &before, const NamedFile &after, const CharacterNames &names,
                              std::ostream &out);

} // namespace velnls::nlsgen
