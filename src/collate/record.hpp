// A loaded collation, as it lies in memory and on the process-wide list.
#pragma once

#include <cstddef>
#include <cstdint>

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

} // namespace velnls
