// `nlsgen dump`: prints header, directory and tables of a data file for a reader.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>

namespace velnls::nlsgen {

// The header and one line an entry. Throws Problem for a file that has a fault.
void dumpDirectory(std::span<const std::uint8_t> file, const std::string &path, std::ostream &out);

// Entries with their tables: by number ("#17"), or by name with or without the second ("1252", "1252/UTF-8").
void dumpEntry(std::span<const std::uint8_t> file, const std::string &path, const std::string &which,
               std::ostream &out);

} // namespace velnls::nlsgen
