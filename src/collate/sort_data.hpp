// The sort data block behind a locale that was rebuilt from a stored record.
#pragma once

#include "convert/converter.hpp"
#include "locale/locale.hpp"

#include <cstddef>
#include <cstdint>

namespace velnls {

// Its head, as the database lays it out.
struct [[gnu::packed]] SortDataHead {
    std::uint8_t format; // 7, 9 and 128 are told apart
    std::uint8_t unused;
    std::uint16_t length;   // of the sort data as the caller gives it, in bytes
    std::uint16_t classMap; // offset of 256 class bytes from the block's start
    std::uint8_t flags;
};
static_assert(offsetof(SortDataHead, classMap) == 4);
static_assert(offsetof(SortDataHead, flags) == 6);

// Formats.
inline constexpr std::uint8_t kSortedFormat = 7;
inline constexpr std::uint8_t kFirstKeyedFormat = 8; // from here on words are returned as keys
inline constexpr std::uint8_t kTwoByteFormat = 9;
inline constexpr std::uint8_t kUnsortedFormat = 128;

// Flags that rebuilding sets.
inline constexpr std::uint8_t kUtf8Locale = 0x02;
inline constexpr std::uint8_t kFromUtf8 = 0x04;
inline constexpr std::uint8_t kToUtf8 = 0x08;

// Bytes of the block behind the caller's sort data.
inline constexpr std::uint32_t kBesideSortData = 62;

inline std::uint32_t sortDataLength(const std::uint16_t *sortData) {
    return sortData[1];
}

// Copies the caller's sort data to `block`, which has `room` bytes, and completes its class map. `target` may
// be null; `converter` is that from the locale to the target. 0, 1 where the room is too small, or 21 where
// the data does not hold together.
nlsStatus buildSortData(const nlsLocale &locale, const std::uint16_t *sortData, const nlsLocale *target,
                        const void *converter, std::uint8_t *block, std::uint64_t room);

} // namespace velnls
