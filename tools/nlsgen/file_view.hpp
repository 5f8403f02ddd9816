// A data file as read, any file: bounded access to its header, directory and records.
#pragma once

#include "core/file_layout.hpp"
#include "number_field.hpp"

#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace velnls::nlsgen {

// A directory entry with its numbers read.
struct EntryView {
    std::size_t place = 0; // of the entry in the file
    std::string name;
    std::string name2;
    long offset = 0;
    long kind = 0;
    long variant = 0;
    std::uint8_t format = 0;
};

class FileView {
public:
    explicit FileView(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] std::span<const std::uint8_t> bytes() const {
        return bytes_;
    }
    [[nodiscard]] bool has(std::size_t offset, std::size_t size) const {
        return offset <= bytes_.size() && size <= bytes_.size() - offset;
    }
    // A copy of a record that the file has.
    template <typename Record>
    [[nodiscard]] Record at(std::size_t offset) const {
        Record record;
        std::memcpy(&record, bytes_.data() + offset, sizeof record);
        return record;
    }
    [[nodiscard]] EntryView entryAt(std::size_t place) const;

private:
    std::span<const std::uint8_t> bytes_;
};

// How many bytes the library reads of an entry's record; 0 for a kind that it does not know.
std::size_t recordSize(const EntryView &entry);

// The record's conversion type: in the record, or in the entry when it has none.
int conversionType(const FileView &file, const EntryView &entry);

inline bool isMappingType(int type) {
    return type == 17 || type == 81 || type == 89;
}

// A byte page to UTF-8 by 256 units of 16 bits.
inline bool isByteMapType(int type) {
    return type == 19 || type == 51;
}

// The entries of a file whose directory is sound, in their order.
std::vector<EntryView> entriesOf(const FileView &file);

// The kind of an entry in a word.
const char *kindName(long kind);

} // namespace velnls::nlsgen
