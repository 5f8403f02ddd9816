// The tables a locale points at, as they lie in memory: characters, byte case maps, Unicode case pages.
#pragma once

#include "core/file_layout.hpp"

#include <cstddef>
#include <cstdint>

namespace velnls {

// How each byte value starts, continues or ends a character. One per code page, shared by its locales.
// Also written whole into stored collation records, so its 792 bytes never change.
struct [[gnu::packed]] CharTable {
    std::uint8_t classes[256];
    std::uint8_t attributes[256]; // bits 0-2 trail count, bit 3 one display column; by first byte
    std::uint8_t trailValid[256];
    std::uint32_t count;       // as the data file states it
    std::uint8_t reserved[16]; // facts about the page while it is in use; zeros in records
    std::uint32_t flags;       // file::CodePageFlag

    [[nodiscard]] unsigned trailCount(std::uint8_t first) const {
        return attributes[first] & file::kTrailCountMask;
    }
    // Whether any byte begins a longer character.
    [[nodiscard]] [[gnu::noinline]] bool hasTrails() const {
        unsigned all = 0;
        for (const std::uint8_t attribute : attributes)
            all |= attribute;
        return (all & file::kTrailCountMask) != 0;
    }
    [[nodiscard]] bool has(std::uint32_t flag) const {
        return (flags & flag) != 0;
    }
};
static_assert(sizeof(CharTable) == 792);
static_assert(offsetof(CharTable, count) == 768);
static_assert(offsetof(CharTable, flags) == 788);

// The most bytes of one character: 4 in the Unicode forms.
inline std::uint32_t maxBytes(const CharTable &table) {
    return table.has(file::kUtf8 | file::kWide | file::kUnits32) ? 4 : table.has(file::kMultibyte) ? 2 : 1;
}

struct [[gnu::packed]] ByteCaseTable {
    std::uint32_t count;
    std::uint8_t upper[256];
    std::uint8_t lower[256];
};
static_assert(sizeof(ByteCaseTable) == 516);

// Page 0 holds 128 upper-case values, then 128 lower-case values; any other page 64 and 64, indexed by the
// low six bits of the last byte. A value of 0 means "no other case".
struct [[gnu::packed]] UnicodeCaseTable {
    std::uint32_t directoryOffset; // of `pages` from here: 5976
    std::uint32_t size;            // bytes the table counts for in a stored record
    file::UnicodeCaseTable record;
    const std::uint16_t *pages[256];
};
static_assert(offsetof(UnicodeCaseTable, record) == 8);
static_assert(offsetof(UnicodeCaseTable, pages) == 5976);

} // namespace velnls
