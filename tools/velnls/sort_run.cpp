// Records are two lengths, the key and the line, in a file without a name.
#include "sort_run.hpp"

#include "platform.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace velnls::tool {

namespace {

// Up to some two hundred runs are read at once.
constexpr std::size_t kBufferSize = 64 * 1024;

struct Lengths {
    std::uint64_t key;
    std::uint64_t line;
};

} // namespace

SortRun::SortRun(const std::string &folder) : folder_(folder) {
    descriptor_ = platform::openNameless(folder);
    if (descriptor_ < 0) {
        fail();
    }
    buffer_.resize(kBufferSize);
}

SortRun::~SortRun() {
    if (descriptor_ >= 0) {
        platform::closeFile(descriptor_);
    }
}

SortRun::SortRun(SortRun &&other) noexcept
    : folder_(std::move(other.folder_)), descriptor_(std::exchange(other.descriptor_, -1)),
      records_(other.records_), buffer_(std::move(other.buffer_)), at_(other.at_), end_(other.end_),
      key_(std::move(other.key_)), line_(std::move(other.line_)) {}

void SortRun::write(std::string_view key, std::string_view line) {
    const Lengths lengths = {key.size(), line.size()};
    put(reinterpret_cast<const char *>(&lengths), sizeof lengths);
    put(key.data(), key.size());
    put(line.data(), line.size());
    ++records_;
}

void SortRun::put(const char *bytes, std::size_t size) {
    while (size != 0) {
        const std::size_t count = std::min(size, buffer_.size() - at_);
        std::memcpy(buffer_.data() + at_, bytes, count);
        at_ += count;
        bytes += count;
        size -= count;
        if (at_ == buffer_.size()) {
            flush();
        }
    }
}

void SortRun::flush() {
    std::size_t done = 0;
    while (done != at_) {
        const long long count = platform::writeFile(descriptor_, buffer_.data() + done, at_ - done);
        if (count < 0) {
            fail();
        }
        done += static_cast<std::size_t>(count);
    }
    at_ = 0;
}

void SortRun::rewind() {
    flush();
    if (!platform::rewindFile(descriptor_)) {
        fail();
    }
    // A run that waits for its merge needs no buffer.
    buffer_ = {};
    end_ = 0;
}

bool SortRun::next() {
    if (records_ == 0) {
        return false;
    }
    --records_;
    buffer_.resize(kBufferSize);
    Lengths lengths = {};
    get(reinterpret_cast<char *>(&lengths), sizeof lengths);
    key_.resize(lengths.key);
    get(key_.data(), key_.size());
    line_.resize(lengths.line);
    get(line_.data(), line_.size());
    return true;
}

void SortRun::get(char *bytes, std::size_t size) {
    while (size != 0) {
        if (at_ == end_ && !fill()) {
            throw std::runtime_error("temporary file in " + folder_ + ": cut short");
        }
        const std::size_t count = std::min(size, end_ - at_);
        std::memcpy(bytes, buffer_.data() + at_, count);
        at_ += count;
        bytes += count;
        size -= count;
    }
}

bool SortRun::fill() {
    const long long count = platform::readFile(descriptor_, buffer_.data(), buffer_.size());
    if (count < 0) {
        fail();
    }
    at_ = 0;
    end_ = static_cast<std::size_t>(count);
    return count != 0;
}

void SortRun::fail() const {
    throw std::system_error(errno, std::generic_category(), "temporary file in " + folder_);
}

} // namespace velnls::tool
