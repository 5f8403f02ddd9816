// The data file as it is put together: directory entries with their records, then the bytes of the whole.
#pragma once

#include "core/file_layout.hpp"
#include "mapping.hpp"
#include "problem.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velnls::nlsgen {

using Bytes = std::vector<std::uint8_t>;

struct PlannedEntry {
    std::string name;
    std::string name2;
    file::EntryKind kind;
    std::uint8_t format = 0;
    std::uint8_t variant = 0;                   // one digit
    Bytes record;                               // empty: none, or the mapping
    std::shared_ptr<const MappingData> mapping; // a record with sub-tables
    Place place;                                // the source that a message about this entry names
};

// Lays the entries out in their order; equal records are stored once. Throws Problem when a number does not
// fit its field.
Bytes layOut(const std::vector<PlannedEntry> &entries);

template <typename Record>
Bytes bytesOf(const Record &record) {
    const auto *first = reinterpret_cast<const std::uint8_t *>(&record);
    return Bytes(first, first + sizeof record);
}

} // namespace velnls::nlsgen
