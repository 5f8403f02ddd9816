// Collation records written from locales, locales rebuilt from them in blocks of exact size, and sort data.
#pragma once

#include "calls.hpp"

#include <memory>

namespace kit {

inline constexpr std::int32_t kOldLevel = 5;
inline constexpr std::int32_t kNewLevel = 6;

struct Stored {
    nlsStatus status = 0;
    nlsDbCollation record{};
    Bytes data;
};

// Writes a record; its data area has exactly `room` bytes (by default more than enough).
Stored store(nlsLocale *locale, std::int32_t level = kNewLevel, std::uint32_t room = 20000);

// Sort data as a database lays them out: format, length, place of the class map, flags, the map.
std::vector<std::uint16_t> sortData(unsigned char format, const fixture::ByteTable &classes,
                                    unsigned char flags = 0);

// A rebuilt locale with its block, which ends where the forbidden page begins.
class Rebuilt {
public:
    // `size` 0: what the record's block size, the name and the sort data take.
    Rebuilt(nlsHandle *handle, const Stored &stored, const std::string &name = "copy",
            const std::vector<std::uint16_t> *sortData = nullptr, nlsLocale *target = nullptr,
            std::uint32_t size = 0);
    // Closes the locale, if it is still open, before its block goes.
    ~Rebuilt();
    Rebuilt(const Rebuilt &) = delete;
    Rebuilt &operator=(const Rebuilt &) = delete;

    nlsStatus status = 0;
    nlsLocale *locale = nullptr;
    std::uint32_t size; // as the call left it
    unsigned char *block = nullptr;

    [[nodiscard]] const char *pageName() const {
        return reinterpret_cast<const char *>(block) + 64;
    }
    // The rebuilt sort data, null when there are none.
    [[nodiscard]] const unsigned char *sortBlock() const;

private:
    std::unique_ptr<fixture::GuardedBuffer> memory_;
    std::unique_ptr<fixture::GuardedBuffer> data_;
};

std::uint32_t sizeNeeded(const Stored &stored, const std::string &name,
                         const std::vector<std::uint16_t> *sortData = nullptr);

// A data file with the same pages, other weights, other case tables and other classes.
fixture::DataFile changedFile();

} // namespace kit
