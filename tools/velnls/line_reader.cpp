// Keeps the rest of a block in front of the next one.
#include "line_reader.hpp"

#include "platform.hpp"

#include <cerrno>
#include <cstring>
#include <system_error>

namespace velnls::tool {

LineReader::LineReader(const std::string &path, unsigned char lineFeed, std::size_t blockSize)
    : input_(path), lineFeed_(lineFeed), blockSize_(blockSize) {}

bool LineReader::fill() {
    if (begin_ != 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    // Doubles for long lines, so that each byte is moved a few times at most.
    if (buffer_.size() < end_ + blockSize_ + 1) {
        buffer_.resize(end_ * 2 + blockSize_ + 1);
    }
    const std::size_t count =
        input_.read(reinterpret_cast<unsigned char *>(buffer_.data()) + end_, buffer_.size() - end_ - 1);
    end_ += count;
    return count != 0;
}

std::optional<std::string_view> LineReader::next() {
    std::size_t looked = 0;
    for (;;) {
        char *const line = buffer_.data() + begin_;
        const std::size_t available = end_ - begin_;
        void *const found =
            available == looked ? nullptr : std::memchr(line + looked, lineFeed_, available - looked);
        if (found != nullptr) {
            char *const end = static_cast<char *>(found);
            *end = '\0';
            const auto size = static_cast<std::size_t>(end - line);
            begin_ += size + 1;
            ended_ = true;
            ++number_;
            return std::string_view(line, size);
        }
        looked = available;
        if (fill()) {
            continue;
        }
        if (available == 0) {
            return std::nullopt;
        }
        char *const last = buffer_.data() + begin_;
        last[available] = '\0';
        begin_ = end_;
        ended_ = false;
        ++number_;
        return std::string_view(last, available);
    }
}

std::vector<std::string> namedInputs(const std::vector<std::string> &files) {
    for (const std::string &file : files) {
        if (file != "-" && !platform::isReadable(file)) {
            throw std::system_error(errno, std::generic_category(), file);
        }
    }
    return files.empty() ? std::vector<std::string>{"-"} : files;
}

} // namespace velnls::tool
