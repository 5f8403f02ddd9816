// A file as stretches of well-formed text, up to its first malformed place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "input.hpp"
#include "page.hpp"
#include "position.hpp"

namespace velnls::tool {

// Each stretch holds whole characters and stands until the next is read.
class CheckedInput {
public:
    CheckedInput(const std::string &path, const Page &page, std::size_t blockSize = 64 * 1024);

    const Input &input() const {
        return input_;
    }
    // The next stretch; empty at the end of the file, and at a malformed place.
    std::span<const unsigned char> next();
    // "FILE:LINE:COLUMN: byte 0xE2: what is wrong", once the file has turned out to be malformed.
    const std::optional<std::string> &fault() const {
        return fault_;
    }

private:
    Input input_;
    const Page &page_;
    Position position_;
    std::vector<unsigned char> buffer_;
    std::size_t begin_ = 0; // of what is not handed out yet
    std::size_t end_ = 0;
    std::size_t given_ = 0; // bytes of the stretch handed out last
    std::optional<std::string> fault_;
};

// The message for a malformed sequence of "bad" bytes at "text".
std::string malformedWords(const std::string &file, std::uint64_t line, std::uint64_t column,
                           const unsigned char *text, std::size_t bad, const std::string &fault);

} // namespace velnls::tool
