// Runs of ASCII, and walks over the characters of a block of 64 bytes whose starts are known as bits.
//
// For the walks `take(position)` converts the character there and gives its length, or 0 when it needs the
// plain way. Both walks give the position of the first character not taken, up to 64.
#pragma once

#include "convert/kernels/baseline_vector.hpp"

namespace velnls {
namespace {

// Takes up to 16 characters of ASCII that begin with eight; false where there are none, or no room.
template <typename Sink>
[[gnu::always_inline]] inline bool takeAsciiRun(const std::uint8_t *&at, const std::uint8_t *end,
                                                Sink &sink) {
    if (end - at < 16 || !sink.hasRoom(Sink::kAsciiRoom) || !isAscii8(at))
        return false;
    const int count = asciiPrefix16(at);
    sink.ascii16(at);
    sink.advance(count);
    at += count;
    return true;
}

// The same, or the one character of ASCII that stands there; false where there is no room.
template <typename Sink>
[[gnu::always_inline]] inline bool takeAscii(const std::uint8_t *&at, const std::uint8_t *end, Sink &sink) {
    if (takeAsciiRun(at, end, sink))
        return true;
    if (!sink.hasRoom(Sink::kCharacterRoom))
        return false;
    sink.putAscii(*at++);
    return true;
}

// Starts from which four bytes, or two, can be read inside the block.
inline constexpr std::uint64_t kStartsOfFour = ~std::uint64_t{0} >> 3;
inline constexpr std::uint64_t kStartsOfTwo = ~std::uint64_t{0} >> 1;

// Four at a time, so that the loop's only branch depends on the number of characters and not on which they
// are.
template <std::uint64_t Inside, typename Take>
[[gnu::always_inline]] inline int denseCharacters(std::uint64_t starts, Take take, bool &refused) {
    std::uint64_t todo = starts & Inside;
    for (;;) {
        const std::uint64_t second = todo & (todo - 1);
        const std::uint64_t third = second & (second - 1);
        const std::uint64_t fourth = third & (third - 1);
        if (fourth == 0)
            break;
        const std::uint64_t bits[4] = {todo, second, third, fourth};
#pragma GCC unroll 4
        for (const std::uint64_t from : bits) {
            const int position = firstBit(from);
            if (take(position) == 0) {
                refused = true;
                return position;
            }
        }
        todo = fourth & (fourth - 1);
    }
    const std::uint64_t rest = todo | (starts & ~Inside);
    return rest != 0 ? firstBit(rest) : 64;
}

// For a block with few characters beyond ASCII, which start at `leads`: what lies between them is copied.
// Reads up to 16 bytes behind the block.
template <std::uint64_t Inside, typename Sink, typename Take>
[[gnu::always_inline]] inline int sparseCharacters(const std::uint8_t *at, std::uint64_t leads, Sink &sink,
                                                   Take take, bool &refused) {
    int from = 0;
    const auto copyTo = [at, &from, &sink](int end) {
        for (; end - from > 16; from += 16) {
            sink.ascii16(at + from);
            sink.advance(16);
        }
        sink.ascii16(at + from);
        sink.advance(end - from);
    };
    for (std::uint64_t todo = leads & Inside; todo != 0; todo &= todo - 1) {
        const int position = firstBit(todo);
        copyTo(position);
        const int length = take(position);
        if (length == 0) {
            refused = true;
            return position;
        }
        from = position + length;
    }
    const std::uint64_t late = leads & ~Inside;
    const int end = late != 0 ? firstBit(late) : 64;
    if (end <= from)
        return from;
    copyTo(end);
    return end;
}

[[gnu::always_inline]] inline bool isSparse(std::uint64_t leads) {
    for (int i = 0; i < 6; ++i)
        leads &= leads - 1;
    return leads == 0;
}

} // namespace
} // namespace velnls
