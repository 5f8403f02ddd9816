// What the fuzz targets of matching share: the pages of the matching tests, opened once, and the plain twins
// that every answer is compared with.
#pragma once

#include "lent_block.hpp"

#include "match_data.hpp"
#include "model/twins.hpp"

#include <string>

namespace fuzz {

// One of the pages, by any number.
const model::Page &matchPage(unsigned number);

// Up to `most` bytes of input as a string; it ends at its first NUL.
std::string stringOf(Input &input, std::size_t most);

// A copy of exactly its own size.
class Copy {
public:
    explicit Copy(const std::string &text);
    [[nodiscard]] char *get() {
        return reinterpret_cast<char *>(block_.data());
    }

private:
    Block block_;
};

} // namespace fuzz
