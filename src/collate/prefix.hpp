// How far a text goes, and how far two of them begin alike, by blocks of bytes.
#pragma once

#include "core/read_ahead.hpp"
#include "locale/text.hpp"

namespace velnls {

// Bytes from a text's place to its bound.
inline std::size_t bytesLeft(Text text) {
    return reinterpret_cast<std::uintptr_t>(text.end) - reinterpret_cast<std::uintptr_t>(text.at);
}

// -1 or 1 for two numbers that are not equal. Which one is smaller is what no processor can foresee: no jump.
[[gnu::always_inline]] inline int orderOf(unsigned a, unsigned b) {
    return static_cast<int>(a - b) >> 31 | 1;
}

// The plain twins: byte by byte.
inline std::size_t equalBytesPlain(Text a, Text b) {
    std::size_t count = 0;
    while (a.at + count != a.end && b.at + count != b.end && a.at[count] == b.at[count] && a.at[count] != 0)
        ++count;
    return count;
}
inline std::size_t lengthPlain(Text text) {
    std::size_t length = 0;
    while (text.at + length != text.end && text.at[length] != 0)
        ++length;
    return length;
}

#if defined(VELNLS_READS_AHEAD)

// Beyond the first block: by larger ones, as many as the pages of memory have.
std::size_t equalBytesFrom(std::size_t from, std::size_t most, const std::uint8_t *a, const std::uint8_t *b);
std::size_t lengthFrom(std::size_t from, std::size_t most, const std::uint8_t *text);

// The bytes that both texts begin with, up to where either ends.
[[gnu::always_inline]] inline std::size_t equalBytes(Text a, Text b) {
    const std::size_t leftA = bytesLeft(a);
    const std::size_t leftB = bytesLeft(b);
    const std::size_t most = leftA < leftB ? leftA : leftB;
    a.at = unknownPlace(a.at);
    b.at = unknownPlace(b.at);
    // Not even one byte may be there behind a bound.
    if (most == 0 || !staysInPage(a.at) || !staysInPage(b.at)) [[unlikely]]
        return equalBytesFrom(0, most, a.at, b.at);
    const std::uint32_t stops = differencesAhead(a.at, b.at);
    if (stops == 0) [[unlikely]]
        return equalBytesFrom(kAheadBytes, most, a.at, b.at);
    const std::size_t count = firstOf(stops);
    return count < most ? count : most;
}

// The bytes before a text's NUL or bound.
[[gnu::always_inline]] inline std::size_t lengthOf(Text text) {
    const std::size_t most = bytesLeft(text);
    text.at = unknownPlace(text.at);
    if (most == 0 || !staysInPage(text.at)) [[unlikely]]
        return lengthFrom(0, most, text.at);
    const std::uint32_t ends = endsAhead(text.at);
    if (ends == 0) [[unlikely]]
        return lengthFrom(kAheadBytes, most, text.at);
    const std::size_t length = firstOf(ends);
    return length < most ? length : most;
}

#else

inline std::size_t equalBytes(Text a, Text b) {
    return equalBytesPlain(a, b);
}
inline std::size_t lengthOf(Text text) {
    return lengthPlain(text);
}

#endif

} // namespace velnls
