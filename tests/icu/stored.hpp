// A collation in a record of the caller's, and the locale rebuilt from it.
#pragma once

#include "bytes.hpp"

#include "velnls.h"

#include <cstring>
#include <vector>

namespace stored {

inline constexpr std::int32_t kOld = 5;
inline constexpr std::int32_t kNew = 6;

class Record {
public:
    Record(nlsLocale *of, std::int32_t level) : data(16384), block(32768) {
        record.data = data.data();
        status = nlsLocaleToDbCollation(of, level, static_cast<std::uint32_t>(data.size()), &record);
        data.resize(record.dataSize);
        record.data = data.data();
    }
    void setKind(std::uint32_t kind) {
        record.collationKind = kind;
        if (data.size() > 512)
            std::memcpy(&data[524], &kind, sizeof kind);
    }
    void setName(const char *name) {
        std::memset(record.collationName, 0, sizeof record.collationName);
        std::strncpy(record.collationName, name, sizeof record.collationName - 1);
        if (data.size() > 512)
            std::memcpy(&data[552], record.collationName, sizeof record.collationName);
    }
    nlsStatus rebuild(nlsHandle *handle) {
        auto size = static_cast<std::uint32_t>(block.size());
        return nlsDbCollationToLocale(handle, &record, "rebuilt", &size, block.data(), &locale);
    }

    nlsDbCollation record{};
    std::vector<unsigned char> data;
    std::vector<unsigned char> block;
    nlsLocale *locale = nullptr;
    nlsStatus status = 0;
};

} // namespace stored
