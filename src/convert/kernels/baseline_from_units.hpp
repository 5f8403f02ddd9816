// Reads UTF-16 and UTF-32 units of the machine's byte order into a sink.
//
// Stops at a surrogate, at a value above U+FFFF and before half a unit; the plain way takes those.
#pragma once

#include "convert/kernels/baseline_sinks.hpp"
#include "convert/kernels/kernels.hpp"

namespace velnls {
namespace {

#if defined(__SSE2__)

[[gnu::always_inline]] inline __m128i loadUnits(const std::uint8_t *at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}
[[gnu::always_inline]] inline bool isZero(__m128i units) {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(units, _mm_setzero_si128())) == 0xFFFF;
}

// 16 units that are all ASCII, as bytes; false when one is not.
[[gnu::always_inline]] inline bool asciiOf16(const std::uint8_t *at, std::uint16_t, std::uint8_t *bytes) {
    const __m128i low = loadUnits(at);
    const __m128i high = loadUnits(at + 16);
    const __m128i beyond = _mm_set1_epi16(static_cast<short>(0xFF80));
    if (!isZero(_mm_and_si128(_mm_or_si128(low, high), beyond)))
        return false;
    _mm_storeu_si128(reinterpret_cast<__m128i *>(bytes), _mm_packus_epi16(low, high));
    return true;
}
[[gnu::always_inline]] inline bool asciiOf16(const std::uint8_t *at, std::uint32_t, std::uint8_t *bytes) {
    const __m128i beyond = _mm_set1_epi32(static_cast<int>(0xFFFFFF80));
    const __m128i a = loadUnits(at);
    const __m128i b = loadUnits(at + 16);
    const __m128i c = loadUnits(at + 32);
    const __m128i d = loadUnits(at + 48);
    if (!isZero(_mm_and_si128(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d)), beyond)))
        return false;
    const __m128i packed = _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(bytes), packed);
    return true;
}
// Whether 8 units are below U+10000 and no surrogates.
[[gnu::always_inline]] inline bool arePlain8(const std::uint8_t *at, std::uint16_t) {
    const __m128i top = _mm_and_si128(loadUnits(at), _mm_set1_epi16(static_cast<short>(0xF800)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(top, _mm_set1_epi16(static_cast<short>(0xD800)))) == 0;
}
[[gnu::always_inline]] inline bool arePlain8(const std::uint8_t *at, std::uint32_t) {
    const __m128i mask = _mm_set1_epi32(static_cast<int>(0xFFFFF800));
    const __m128i surrogates = _mm_set1_epi32(0xD800);
    const __m128i a = loadUnits(at);
    const __m128i b = loadUnits(at + 16);
    if (!isZero(_mm_srli_epi32(_mm_or_si128(a, b), 16)))
        return false;
    const __m128i hit = _mm_or_si128(_mm_cmpeq_epi32(_mm_and_si128(a, mask), surrogates),
                                     _mm_cmpeq_epi32(_mm_and_si128(b, mask), surrogates));
    return _mm_movemask_epi8(hit) == 0;
}
// Units of one width become units of the other, 8 at a time.
[[gnu::always_inline]] inline void storeAs32(std::uint8_t *to, const std::uint8_t *at) {
    const __m128i units = loadUnits(at);
    const __m128i zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm_unpacklo_epi16(units, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to + 16), _mm_unpackhi_epi16(units, zero));
}
[[gnu::always_inline]] inline void storeAs16(std::uint8_t *to, const std::uint8_t *at) {
    // The signed pack keeps the low halves when they are sign-extended first.
    const __m128i a = _mm_srai_epi32(_mm_slli_epi32(loadUnits(at), 16), 16);
    const __m128i b = _mm_srai_epi32(_mm_slli_epi32(loadUnits(at + 16), 16), 16);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm_packs_epi32(a, b));
}

#else

template <typename Unit>
inline bool asciiOf16(const std::uint8_t *at, Unit, std::uint8_t *bytes) {
    std::uint32_t seen = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        const std::uint32_t unit = loadNumber<Unit>(at + i * sizeof(Unit));
        seen |= unit;
        bytes[i] = static_cast<std::uint8_t>(unit);
    }
    return seen < 0x80;
}
template <typename Unit>
inline bool arePlain8(const std::uint8_t *at, Unit) {
    bool plain = true;
    for (std::size_t i = 0; i < 8; ++i) {
        const std::uint32_t unit = loadNumber<Unit>(at + i * sizeof(Unit));
        plain = plain && unit < 0x10000 && (unit & 0xF800) != 0xD800;
    }
    return plain;
}
inline void storeAs32(std::uint8_t *to, const std::uint8_t *at) {
    for (int i = 0; i < 8; ++i)
        storeNumber<std::uint32_t>(to + 4 * i, loadNumber<std::uint16_t>(at + 2 * i));
}
inline void storeAs16(std::uint8_t *to, const std::uint8_t *at) {
    for (int i = 0; i < 8; ++i)
        storeNumber(to + 2 * i, static_cast<std::uint16_t>(loadNumber<std::uint32_t>(at + 4 * i)));
}

#endif

[[gnu::always_inline]] inline bool isPlainValue(std::uint32_t value) {
    return value < 0x10000 && (value & 0xF800) != 0xD800;
}

// Eight units that are plain. To UTF-8, alike lengths spare the choice; every run of words has such
// stretches.
template <typename Unit>
[[gnu::always_inline]] inline void put8(const std::uint8_t *at, Utf8Sink &sink) {
    std::uint32_t seen = 0;
    std::uint32_t shortest = 0xFFFF;
    for (std::size_t i = 0; i < 8; ++i) {
        const std::uint32_t unit = loadNumber<Unit>(at + i * sizeof(Unit));
        seen |= unit;
        shortest = unit < shortest ? unit : shortest;
    }
    if (seen < 0x800) {
        for (std::size_t i = 0; i < 8; ++i)
            sink.putOneOrTwo(loadNumber<Unit>(at + i * sizeof(Unit)));
    } else if (shortest >= 0x800) {
        for (std::size_t i = 0; i < 8; ++i)
            sink.putThree(loadNumber<Unit>(at + i * sizeof(Unit)));
    } else {
        for (std::size_t i = 0; i < 8; ++i)
            sink.put(loadNumber<Unit>(at + i * sizeof(Unit)));
    }
}

// To a sink of characters. Half of a unit at the end of the source stays there.
template <typename Unit, typename Sink>
[[gnu::always_inline]] inline void readUnitsInto(Source &source, Sink &sink) {
    constexpr std::ptrdiff_t kWidth = sizeof(Unit);
    const std::uint8_t *at = source.at;
    while (source.end - at >= 16 * kWidth && sink.hasRoom(Sink::kBlockRoom)) {
        std::uint8_t bytes[16];
        if (asciiOf16(at, Unit{}, bytes)) {
            sink.ascii16(bytes);
            sink.advance(16);
            at += 16 * kWidth;
            continue;
        }
        if (!arePlain8(at, Unit{}))
            break;
        put8<Unit>(at, sink);
        at += 8 * kWidth;
    }
    while (source.end - at >= kWidth && sink.hasRoom(Sink::kCharacterRoom)) {
        const std::uint32_t value = loadNumber<Unit>(at);
        if (!isPlainValue(value) || !sink.put(value))
            break;
        at += kWidth;
    }
    source.at = at;
}

// UTF-16 to UTF-32 and back: nothing to look up.
[[gnu::always_inline]] inline void widenUnits(Source &source, Target &target) {
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    for (; source.end - at >= 16 && target.end - to >= 32 && arePlain8(at, std::uint16_t{});
         at += 16, to += 32)
        storeAs32(to, at);
    for (; source.end - at >= 2 && target.end - to >= 4; at += 2, to += 4) {
        const std::uint32_t value = loadNumber<std::uint16_t>(at);
        if (!isPlainValue(value))
            break;
        storeNumber(to, value);
    }
    source.at = at;
    target.at = to;
}

[[gnu::always_inline]] inline void narrowUnits(Source &source, Target &target) {
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    for (; source.end - at >= 32 && target.end - to >= 16 && arePlain8(at, std::uint32_t{});
         at += 32, to += 16)
        storeAs16(to, at);
    for (; source.end - at >= 4 && target.end - to >= 2; at += 4, to += 2) {
        const std::uint32_t value = loadNumber<std::uint32_t>(at);
        if (!isPlainValue(value))
            break;
        storeNumber(to, static_cast<std::uint16_t>(value));
    }
    source.at = at;
    target.at = to;
}

} // namespace
} // namespace velnls
