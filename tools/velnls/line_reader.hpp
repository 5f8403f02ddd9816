// Reads a file line by line, lines of any length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "input.hpp"
#include "platform.hpp"

namespace velnls::tool {

// Lines end at the page's own line feed, which no multibyte character holds. A line stands until the next is
// read; the byte behind it is NUL, as the library wants its texts. Memory grows to the longest line.
class LineReader {
public:
    LineReader(const std::string &path, unsigned char lineFeed, std::size_t blockSize = 256 * 1024);

    // The next line without its line feed; nothing at the end.
    std::optional<std::string_view> next();
    // Whether the last line had its line feed.
    bool ended() const {
        return ended_;
    }
    // Of the last line, from 1.
    std::uint64_t number() const {
        return number_;
    }
    // "FILE:LINE" of the last line.
    std::string place() const {
        return name() + ":" + std::to_string(number_);
    }
    const Input &input() const {
        return input_;
    }
    const std::string &name() const {
        return input_.name();
    }

private:
    bool fill();

    Input input_;
    unsigned char lineFeed_;
    std::size_t blockSize_;
    std::vector<char> buffer_; // one byte more than is read, for a NUL
    std::size_t begin_ = 0;    // of what is not handed out yet
    std::size_t end_ = 0;
    bool ended_ = false;
    std::uint64_t number_ = 0;
};

// Gathers output into large writes.
template <typename Output>
class Gathered {
public:
    explicit Gathered(Output &output)
        : output_(output), writeSize_(platform::isTerminal(output.descriptor()) ? 1 : kWriteSize) {}
    // What was finished before something failed is still written.
    ~Gathered() {
        try {
            flush();
        } catch (...) { // the first failure is the one to tell
        }
    }
    Gathered(const Gathered &) = delete;
    Gathered &operator=(const Gathered &) = delete;

    void write(std::string_view text) {
        text_ += text;
        if (text_.size() >= writeSize_) {
            flush();
        }
    }
    void write(char byte) {
        write(std::string_view(&byte, 1));
    }
    void flush() {
        std::string text;
        text.swap(text_);
        output_.write(text.data(), text.size());
        text.clear();
        text_.swap(text); // keeps the memory
    }

private:
    static constexpr std::size_t kWriteSize = 256 * 1024;
    Output &output_;
    std::size_t writeSize_; // a terminal gets everything at once
    std::string text_;
};

// The files of a command: standard input when none are named. A name that cannot be read is told before
// anything is written; nothing is opened, since a named pipe can be opened only once.
std::vector<std::string> namedInputs(const std::vector<std::string> &files);

} // namespace velnls::tool
