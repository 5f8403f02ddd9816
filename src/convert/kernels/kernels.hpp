// The conversion kernels: pure functions over bytes and tables.
//
// Each converts from `source.at` to `source.end` into `target.at` up to `target.end` and leaves the positions
// where it stopped. The statuses are those of the engine: 0, 2 (target full), 16 (input cut or malformed), 33
// (unpaired surrogate in 32-bit units), NLS_R_SUBSTITUTED (complete, with substitutes). Source and target may
// be the same memory: a character is read whole before its output is written, and the next one is read after
// that.
#pragma once

#include "convert/converter.hpp"
#include "velnls.h"

#include <cstddef>
#include <cstdint>

namespace velnls {

struct Source {
    const std::uint8_t *at;
    const std::uint8_t *end;
    std::ptrdiff_t behind = 1; // bytes behind the end that UTF-8 decoders may read: the terminator, or none

    // Inline in every build: what is compiled for one instruction set must not run where it is not there.
    [[nodiscard]] [[gnu::always_inline]] std::ptrdiff_t left() const {
        return end - at;
    }
};

struct Target {
    std::uint8_t *at;
    std::uint8_t *end;

    [[nodiscard]] [[gnu::always_inline]] std::ptrdiff_t room() const {
        return end - at;
    }
};

// Whether none of the target's bytes is one of the source's: the fast kernels read blocks before they write.
inline bool areApart(const Source &source, const Target &target) {
    return source.end <= target.at || target.end <= source.at;
}

// Byte order of the units of a UTF-16 or UTF-32 side.
enum class Order {
    Native,
    Swapped
};

inline Order sourceOrder(std::int32_t kindWord) {
    return (kindWord & kSwapSource) != 0 ? Order::Swapped : Order::Native;
}
inline Order targetOrder(std::int32_t kindWord) {
    return (kindWord & kSwapTarget) != 0 ? Order::Swapped : Order::Native;
}

// Bytes to bytes by a 256-byte map; target.room() is at least source.left().
void mapBytes(const std::uint8_t *map, Source &source, Target &target);

// Single bytes to UTF-8 and back by the tables of kinds 19, 51 and 20.
nlsStatus byteToUtf8(const ByteToUtf8Body &body, Source &source, Target &target);
nlsStatus utf8ToByte(const Utf8ToByteBody &body, Source &source, Target &target);

// Code page with a mapping to Unicode and back. UTF-8 sources may be read up to one byte behind their end.
nlsStatus pageToUtf8(const MappingBody &body, Source &source, Target &target);
nlsStatus pageToUtf16(const MappingBody &body, Source &source, Target &target, Order order);
nlsStatus utf8ToPage(const MappingBody &body, Source &source, Target &target);
nlsStatus utf16ToPage(const MappingBody &body, Source &source, Target &target, Order order);

// The two algorithmic Japanese converters.
nlsStatus shiftJisToEuc(Source &source, Target &target);
nlsStatus eucToShiftJis(Source &source, Target &target);

// The Unicode encoding forms. UTF-8 sources may be read up to one byte behind their end.
nlsStatus utf16ToUtf8(Source &source, Target &target, Order sourceOrder);
nlsStatus utf8ToUtf16(Source &source, Target &target, Order targetOrder);
nlsStatus utf32ToUtf8(Source &source, Target &target, Order sourceOrder);
nlsStatus utf8ToUtf32(Source &source, Target &target, Order targetOrder);
nlsStatus utf16ToUtf32(Source &source, Target &target, Order sourceOrder, Order targetOrder);
nlsStatus utf32ToUtf16(Source &source, Target &target, Order sourceOrder, Order targetOrder);

} // namespace velnls
