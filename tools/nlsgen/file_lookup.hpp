// The two look-ups of a mapping record, step by step as docs/data-file-format.md states them, on the bytes of
// a data file. For proofs and checks, not for speed; every access is bounded.
#pragma once

#include "core/file_layout.hpp"

#include <cstdint>
#include <optional>
#include <span>

namespace velnls::nlsgen {

class FileLookup {
public:
    // `offset` is the record's; the record and its sub-tables must lie within the file.
    FileLookup(std::span<const std::uint8_t> file, std::size_t offset);

    [[nodiscard]] std::optional<std::uint32_t> toUnicode(std::uint16_t code) const;
    [[nodiscard]] std::optional<std::uint16_t> fromUnicode(std::uint32_t character) const;

    // Entries of the compressed tables that the last fromUnicode() stepped over; 0 for a direct look-up.
    [[nodiscard]] unsigned steps() const {
        return steps_;
    }

private:
    struct Table {
        const std::uint8_t *values = nullptr;
        std::size_t count = 0;

        [[nodiscard]] std::optional<std::uint16_t> at(std::size_t index) const;
        [[nodiscard]] std::uint32_t wide(std::size_t index) const; // 32-bit number of two halves; 0 beyond
    };
    struct Group {
        file::MappingGroup fields;
        Table values, reverse, deltas;
    };

    [[nodiscard]] std::optional<std::uint32_t> valueIn(const Group &group, std::uint16_t code) const;
    [[nodiscard]] std::optional<std::uint16_t> directIn(const Group &group, std::uint32_t character) const;
    [[nodiscard]] std::optional<std::uint16_t> compressedIn(const Group &group,
                                                            std::uint32_t character) const;
    [[nodiscard]] static std::uint16_t codeOf(const Group &group, std::uint16_t index);

    Group groups_[3];
    mutable unsigned steps_ = 0;
};

} // namespace velnls::nlsgen
