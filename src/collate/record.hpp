// A loaded collation, as it lies in memory and on the process-wide list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velnls {

struct [[gnu::packed]] Collation {
    std::uint8_t caseSensitive[256]; // weight by byte, mode 1
    std::uint8_t caseInsensitive[256];
    Collation *next; // loaded before this one
    std::int32_t count;
    std::int32_t kind; // file::CollationKind, or kUnusable
    std::int32_t variant;
    char charSetName[20];
    char name[20];
    std::uint32_t collatorOpen; // not 0: the weight areas hold an open ICU collator instead
};
static_assert(sizeof(Collation) == 576);
static_assert(offsetof(Collation, next) == 512);

inline constexpr std::int32_t kUnusable = -2; // a collator that could not be opened

// Whether both weight areas begin with "BASIC" and its NUL, as those of kind 3 must.
inline bool readsBasic(const std::uint8_t *caseSensitive, const std::uint8_t *caseInsensitive) {
    constexpr char kText[] = "BASIC";
    return std::memcmp(caseSensitive, kText, sizeof kText) == 0 &&
           std::memcmp(caseInsensitive, kText, sizeof kText) == 0;
}

// Moves what a table says of each byte of a page to the byte that the character has in another page.
inline void moveByMap(std::uint8_t *table, const std::uint8_t *map) {
    std::uint8_t old[256];
    std::memcpy(old, table, sizeof old);
    for (unsigned byte = 0; byte < 256; ++byte)
        table[map[byte]] = old[byte];
}

} // namespace velnls
