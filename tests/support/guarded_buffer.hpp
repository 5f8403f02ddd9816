// Memory between two pages that nobody may touch, so that one byte read or written outside ends the test.
#pragma once

#include "bytes.hpp"

#include <cstddef>

namespace fixture {

class GuardedBuffer {
public:
    // Holds buffers of up to `capacity` bytes.
    explicit GuardedBuffer(std::size_t capacity);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer &) = delete;
    GuardedBuffer &operator=(const GuardedBuffer &) = delete;

    // `size` bytes that end where the forbidden page begins. Writable again, if it was not.
    unsigned char *tail(std::size_t size);
    // `size` bytes that begin behind the forbidden page.
    unsigned char *head(std::size_t size);
    // Puts the bytes at the tail and forbids writing.
    const unsigned char *readOnly(const Bytes &bytes);

private:
    void writable(bool yes);

    unsigned char *pages_;
    std::size_t inner_;
    bool writable_ = true;
};

// A block to lend to the library: `size` bytes with forbidden pages around, `misalignment` bytes off a
// multiple of 16, full of rubbish at first. The forbidden page begins at most 15 bytes behind the block.
class LentMemory {
public:
    explicit LentMemory(std::size_t size, std::size_t misalignment = 0);

    [[nodiscard]] unsigned char *data() const {
        return data_;
    }
    [[nodiscard]] std::int32_t size() const {
        return size_;
    }
    // True while the bytes between the block and the forbidden page are as they were.
    [[nodiscard]] bool intact() const;

private:
    GuardedBuffer buffer_;
    unsigned char *data_;
    std::int32_t size_;
    std::size_t slack_;
};

} // namespace fixture
