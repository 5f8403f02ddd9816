// Memory that ends where nothing may be touched: a buffer of exact size before an inaccessible page, and a
// source that can be read but not written.
#pragma once

#include <cstddef>
#include <cstdint>

namespace harness {

// Inaccessible pages stand before and behind the usable room.
class GuardedRoom {
public:
    // `readOnlyView`: the address handed out by `at` and `endingAt` cannot be written; fill it through
    // `writable`, which shows the same bytes.
    GuardedRoom(std::size_t size, bool readOnlyView);
    ~GuardedRoom();
    GuardedRoom(const GuardedRoom &) = delete;
    GuardedRoom &operator=(const GuardedRoom &) = delete;

    [[nodiscard]] std::size_t size() const {
        return size_;
    }
    // First byte of the room; the page before it cannot be touched.
    [[nodiscard]] std::uint8_t *begin() const {
        return view_;
    }
    // Where `count` bytes begin that end at the room's end.
    [[nodiscard]] std::uint8_t *endingWith(std::size_t count) const {
        return view_ + size_ - count;
    }
    // The writable twin of an address inside the room.
    [[nodiscard]] std::uint8_t *writable(const std::uint8_t *address) const {
        return twin_ + (address - view_);
    }

private:
    std::size_t size_;
    std::uint8_t *reserved_ = nullptr;
    std::uint8_t *view_ = nullptr;
    std::uint8_t *twin_ = nullptr;
};

} // namespace harness
