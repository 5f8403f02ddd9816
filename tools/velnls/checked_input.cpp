// Judges block after block, and keeps a character that a block's end cuts for the next one.
#include "checked_input.hpp"

#include <cstdio>
#include <cstring>

#include "scan.hpp"

namespace velnls::tool {

std::string malformedWords(const std::string &file, std::uint64_t line, std::uint64_t column,
                           const unsigned char *text, std::size_t bad, const std::string &fault) {
    std::string words = file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": byte";
    for (std::size_t i = 0; i < bad; ++i) {
        char byte[8];
        std::snprintf(byte, sizeof byte, " 0x%02X", text[i]);
        words += byte;
    }
    return words + ": " + fault;
}

CheckedInput::CheckedInput(const std::string &path, const Page &page, std::size_t blockSize)
    : input_(path), page_(page), position_(page), buffer_(blockSize + kLongestCharacter) {}

std::span<const unsigned char> CheckedInput::next() {
    position_.advance(buffer_.data() + begin_ - given_, given_);
    given_ = 0;
    while (!fault_) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
        const std::size_t count = input_.read(buffer_.data() + end_, buffer_.size() - end_);
        end_ += count;
        if (end_ == 0) {
            break;
        }
        const Scan scan = scanText(page_, buffer_.data(), end_, count == 0);
        if (scan.good != 0) {
            begin_ = given_ = scan.good;
            return {buffer_.data(), given_};
        }
        if (scan.bad != 0) {
            fault_ =
                malformedWords(input_.name(), position_.line(), position_.column(), buffer_.data(), scan.bad,
                               describeFault(page_, scan.fault, buffer_.data(), scan.bad, end_));
        }
    }
    return {};
}

} // namespace velnls::tool
