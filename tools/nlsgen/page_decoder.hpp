// What the codes of a page stand for, as a data file itself says.
#pragma once

#include "file_lookup.hpp"
#include "file_view.hpp"

#include <array>
#include <map>
#include <optional>

namespace velnls::nlsgen {

// A character, or a byte that stands for none or for one that an earlier byte has: the two are told apart.
using ByteMeaning = std::uint32_t;
inline constexpr ByteMeaning kMeaningless = 0x80000000; // and the byte

class PageDecoder {
public:
    // `toUtf8` is the page's conversion to UTF-8; without one only ASCII is taken for granted.
    PageDecoder(const FileView &file, const EntryView *toUtf8);

    // One meaning a byte, none twice.
    [[nodiscard]] ByteMeaning meaningOf(std::uint8_t byte) const {
        return meanings_[byte];
    }
    [[nodiscard]] std::optional<std::uint8_t> byteOf(ByteMeaning meaning) const;

private:
    std::array<ByteMeaning, 256> meanings_;
    std::map<ByteMeaning, std::uint8_t> bytes_;
};

} // namespace velnls::nlsgen
