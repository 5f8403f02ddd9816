// A collation record in a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velnls.h"

namespace velnls::tool {

// The file is the text "VELNLSR1", the three names of 20 bytes, four 32-bit numbers with the lowest byte
// first (kind, variant, data size, block size), and the data.
class StoredRecord {
public:
    // Of a locale with a collation. Throws StatusError.
    explicit StoredRecord(nlsLocale *locale);
    // From a file. Throws std::system_error, or std::runtime_error when it is no record.
    explicit StoredRecord(const std::string &path);
    StoredRecord(const StoredRecord &) = delete;
    StoredRecord &operator=(const StoredRecord &) = delete;

    // What the file holds.
    std::string bytes() const;
    // Points into this object.
    const nlsDbCollation &record() const {
        return record_;
    }

private:
    nlsDbCollation record_ = {};
    std::vector<unsigned char> data_;
};

} // namespace velnls::tool
