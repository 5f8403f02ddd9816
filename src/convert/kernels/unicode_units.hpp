// One character in each Unicode encoding form: how it is read and how it is written.
//
// The UTF-8 decoder is lenient on purpose: overlong forms, bad trail bytes and surrogates are decoded by the
// arithmetic as they stand; five- and six-byte forms exist.
#pragma once

#include "convert/kernels/kernels.hpp"
#include "core/unaligned.hpp"

#include <cstring>

namespace velnls {

inline constexpr std::uint32_t kReplacement = 0xFFFD;
inline constexpr std::uint32_t kLastCodePoint = 0x10FFFF;

inline bool isHighSurrogate(std::uint32_t unit) {
    return unit - 0xD800 < 0x400;
}
inline bool isLowSurrogate(std::uint32_t unit) {
    return unit - 0xDC00 < 0x400;
}
inline bool isSurrogate(std::uint32_t unit) {
    return unit - 0xD800 < 0x800;
}
inline std::uint32_t joinSurrogates(std::uint32_t high, std::uint32_t low) {
    return (high - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000;
}

// Trail bytes that a UTF-8 lead byte announces. A trail byte in the place of a lead byte announces none.
inline unsigned utf8Trails(std::uint8_t lead) {
    if (lead < 0xC0)
        return 0;
    if (lead < 0xE0)
        return 1;
    if (lead < 0xF0)
        return 2;
    if (lead < 0xF8)
        return 3;
    return lead < 0xFC ? 4 : 5;
}

// The character at source.at, by sums and offsets modulo 2^32. False, with nothing consumed, when the
// sequence reaches further than may be read. Short by exactly one byte, the terminator is its last.
inline bool readUtf8(Source &source, std::uint32_t &value) {
    constexpr std::uint32_t kOffsets[6] = {0, 0x3080, 0xE2080, 0x3C82080, 0xFA082080, 0x82082080};
    const unsigned trails = utf8Trails(*source.at);
    if (source.left() - 1 + source.behind < static_cast<std::ptrdiff_t>(trails))
        return false;
    std::uint32_t sum = *source.at++;
    for (unsigned i = 0; i < trails; ++i)
        sum = (sum << 6) + *source.at++;
    value = sum - kOffsets[trails];
    return true;
}

// Bytes of a code point's UTF-8 form. Values above U+10FFFF take the four- and five-byte forms.
inline unsigned utf8Length(std::uint32_t value) {
    if (value < 0x80)
        return 1;
    if (value < 0x800)
        return 2;
    if (value < 0x10000)
        return 3;
    return value < 0x200000 ? 4 : 5;
}

// Writes that form whole; false, with nothing written, when it does not fit.
inline bool writeUtf8(Target &target, std::uint32_t value) {
    constexpr std::uint8_t kMarks[6] = {0, 0, 0xC0, 0xE0, 0xF0, 0xF8};
    constexpr std::uint32_t kBeyondFiveBytes = 0x4000000;
    unsigned length = utf8Length(value);
    if (value >=
        kBeyondFiveBytes) { // comes out as the bytes FF BD: the replacement in a form too short for it
        value = kReplacement;
        length = 2;
    }
    if (target.room() < static_cast<std::ptrdiff_t>(length))
        return false;
    for (unsigned i = length - 1; i > 0; --i) {
        target.at[i] = static_cast<std::uint8_t>(0x80 | (value & 0x3F));
        value >>= 6;
    }
    target.at[0] = static_cast<std::uint8_t>(value | kMarks[length]);
    target.at += length;
    return true;
}

template <typename Unit>
Unit loadUnit(const std::uint8_t *at, Order order) {
    const Unit unit = loadNumber<Unit>(at);
    if (order == Order::Native)
        return unit;
    if constexpr (sizeof(Unit) == 2)
        return __builtin_bswap16(unit);
    else
        return __builtin_bswap32(unit);
}

template <typename Unit>
void storeUnit(std::uint8_t *at, std::uint32_t value, Order order) {
    auto unit = static_cast<Unit>(value);
    if (order == Order::Swapped) {
        if constexpr (sizeof(Unit) == 2)
            unit = __builtin_bswap16(unit);
        else
            unit = __builtin_bswap32(unit);
    }
    std::memcpy(at, &unit, sizeof unit);
}

template <typename Unit>
bool hasUnit(const Source &source) {
    return source.left() >= static_cast<std::ptrdiff_t>(sizeof(Unit));
}

// The next unit; the caller has seen that there is one.
template <typename Unit>
std::uint32_t readUnit(Source &source, Order order) {
    const std::uint32_t unit = loadUnit<Unit>(source.at, order);
    source.at += sizeof(Unit);
    return unit;
}

// Joins a high surrogate with a low one behind it; any other unit stands for itself.
template <typename Unit>
std::uint32_t readPairOrUnit(Source &source, Order order) {
    const std::uint32_t unit = readUnit<Unit>(source, order);
    if (!isHighSurrogate(unit) || !hasUnit<Unit>(source))
        return unit;
    const std::uint32_t next = loadUnit<Unit>(source.at, order);
    if (!isLowSurrogate(next))
        return unit;
    source.at += sizeof(Unit);
    return joinSurrogates(unit, next);
}

template <typename Unit>
bool writeUnit(Target &target, std::uint32_t value, Order order) {
    if (target.room() < static_cast<std::ptrdiff_t>(sizeof(Unit)))
        return false;
    storeUnit<Unit>(target.at, value, order);
    target.at += sizeof(Unit);
    return true;
}

// One unit, or a surrogate pair written whole; values beyond Unicode become the replacement character.
inline bool writeUtf16(Target &target, std::uint32_t value, Order order) {
    if (value > kLastCodePoint)
        value = kReplacement;
    if (value < 0x10000)
        return writeUnit<std::uint16_t>(target, value, order);
    if (target.room() < 4)
        return false;
    value -= 0x10000;
    storeUnit<std::uint16_t>(target.at, 0xD800 + (value >> 10), order);
    storeUnit<std::uint16_t>(target.at + 2, 0xDC00 + (value & 0x3FF), order);
    target.at += 4;
    return true;
}

// Runs `write`, which writes units in native order, and then swaps them where the target's byte order asks
// for it: when all is written, so that a source that lies in the same memory is read as it was left.
template <typename Unit, typename Write>
nlsStatus writeOrdered(Target &target, Order order, Write write) {
    std::uint8_t *at = target.at;
    const nlsStatus status = write();
    if (order == Order::Swapped) {
        for (; target.at - at >= static_cast<std::ptrdiff_t>(sizeof(Unit)); at += sizeof(Unit))
            storeUnit<Unit>(at, loadUnit<Unit>(at, Order::Swapped), Order::Native);
    }
    return status;
}

} // namespace velnls
