// Keeps the line and column that conversion has reached, for messages.
#pragma once

#include <cstddef>
#include <cstdint>

#include "page.hpp"

namespace velnls::tool {

// Lines end at line feeds; columns count characters from 1. Whole ranges of text are counted with wide loops,
// since this runs over all input although only faults need it.
class Position {
public:
    explicit Position(const Page &page) : page_(&page) {}
    // Moves over well-formed text.
    void advance(const unsigned char *text, std::size_t size);
    // Moves over a malformed sequence, which takes one column.
    void advanceMalformed() {
        ++column_;
    }
    std::uint64_t line() const {
        return line_;
    }
    std::uint64_t column() const {
        return column_;
    }

private:
    const Page *page_;
    std::uint64_t line_ = 1;
    std::uint64_t column_ = 1;
};

} // namespace velnls::tool
