// What the conversion kernels for processors with AVX-512 share.
//
// Files that include this are compiled for such processors alone, so everything here is local to each.
#pragma once

#include "convert/kernels/fast_avx512.hpp"
#include "convert/kernels/kernels.hpp"
#include "core/avx512.hpp"

namespace velnls::avx512 {
namespace {

// For ternary logic: of three, the first with the second, or the third.
inline constexpr int kAndOr = 0xEA;

[[gnu::always_inline]] inline Vector bytesOf(unsigned byte) {
    return _mm512_set1_epi8(static_cast<char>(byte));
}
[[gnu::always_inline]] inline Vector numbersOf(std::uint32_t number) {
    return _mm512_set1_epi32(static_cast<int>(number));
}
[[gnu::always_inline]] inline __m256i unitsOf(unsigned unit) {
    return _mm256_set1_epi16(static_cast<short>(unit));
}
[[gnu::always_inline]] inline Vector wideUnitsOf(unsigned unit) {
    return _mm512_set1_epi16(static_cast<short>(unit));
}
[[gnu::always_inline]] inline std::uint32_t countBits(std::uint64_t mask) {
    return static_cast<std::uint32_t>(_mm_popcnt_u64(mask));
}
[[gnu::always_inline]] inline std::uint32_t firstBitOr64(std::uint64_t mask) {
    return static_cast<std::uint32_t>(_tzcnt_u64(mask));
}
// The position of the start of that number, counted from 0.
[[gnu::always_inline]] inline std::uint32_t startNumber(std::uint64_t starts, std::uint32_t number) {
    return firstBitOr64(_pdep_u64(std::uint64_t{1} << number, starts));
}
// The lanes before the first of `bad`.
template <typename Lanes>
[[gnu::always_inline]] inline Lanes lanesBefore(Lanes lanes, std::uint32_t bad) {
    return bad == 0 ? lanes : static_cast<Lanes>(lanes & (_blsmsk_u32(bad) >> 1));
}

// The first 32 bytes as units of 16 bits, or those behind them.
template <bool kBehind>
[[gnu::always_inline]] inline Vector widened(Vector bytes) {
    return _mm512_cvtepu8_epi16(kBehind ? _mm512_extracti64x4_epi64(bytes, 1)
                                        : _mm512_castsi512_si256(bytes));
}

// Stores the first `count` bytes. A masked store takes many times as long as a whole one, so it is kept for
// the last bytes of the target; elsewhere what is behind `count` is scribbled over.
[[gnu::always_inline]] inline void store(const Target &target, Vector bytes, std::uint32_t count) {
    if (target.end - target.at >= 64)
        _mm512_storeu_si512(target.at, bytes);
    else
        _mm512_mask_storeu_epi8(target.at, lowBits(count), bytes);
}

// 0, 1, 2 ... 63.
[[gnu::always_inline]] inline Vector countingBytes() {
    const Vector fours = numbersOf(0x03020100);
    const Vector steps = _mm512_set_epi32(
        0x3C3C3C3C, 0x38383838, 0x34343434, 0x30303030, 0x2C2C2C2C, 0x28282828, 0x24242424, 0x20202020,
        0x1C1C1C1C, 0x18181818, 0x14141414, 0x10101010, 0x0C0C0C0C, 0x08080808, 0x04040404, 0x00000000);
    return _mm512_add_epi8(fours, steps);
}

[[gnu::always_inline]] inline std::uint32_t smaller(std::ptrdiff_t a, std::uint32_t b) {
    return a < static_cast<std::ptrdiff_t>(b) ? static_cast<std::uint32_t>(a) : b;
}

[[gnu::always_inline]] inline std::uint64_t atLeast(Vector bytes, unsigned low) {
    return _mm512_cmpge_epu8_mask(bytes, bytesOf(low));
}
[[gnu::always_inline]] inline std::uint64_t atMost(Vector bytes, unsigned high) {
    return _mm512_cmple_epu8_mask(bytes, bytesOf(high));
}
[[gnu::always_inline]] inline std::uint64_t between(Vector bytes, unsigned low, unsigned high) {
    return _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes, bytesOf(low)), bytesOf(high - low));
}

// ASCII where it stands for itself: asciiRoom(count) for that many characters; putAscii writes the `count`
// low bytes.
struct CopiedAscii {
    static constexpr std::ptrdiff_t asciiRoom(std::uint32_t count) {
        return count;
    }
    [[gnu::always_inline]] static void putAscii(Vector block, std::uint32_t count, Target &target) {
        store(target, block, count);
        target.at += count;
    }
};

// Goes over a text by blocks of 64 bytes, each from a character's begin on. `put(at, block, size, ends,
// target)` gets one that is not all ASCII; it sets `ends` to the last bytes of its characters, and gives how
// many of those it has written. Fewer than there are, or 0, ends the loop, at the first that is not written.
template <typename Ascii, typename Put>
[[gnu::always_inline]] inline void byBlocks(const Ascii &ascii, Source &source, Target &out, Put put) {
    const std::uint8_t *at = source.at;
    Target target = out;
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, 64);
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), at);
        if (_mm512_movepi8_mask(block) == 0) {
            if (target.room() < ascii.asciiRoom(size))
                break;
            ascii.putAscii(block, size, target);
            at += size;
            continue;
        }
        std::uint64_t ends = 0;
        const std::uint32_t written = put(at, block, size, ends, target);
        if (written == 0)
            break;
        if (written != countBits(ends)) {
            at += startNumber(ends << 1 | 1, written);
            break;
        }
        at += 64 - static_cast<std::uint32_t>(_lzcnt_u64(ends));
    }
    source.at = at;
    out.at = target.at;
}

inline constexpr std::ptrdiff_t kLongText = 128; // bytes that are worth a way of their own
inline constexpr std::ptrdiff_t kUtf8Room = 64;  // of 16 characters up to U+FFFF, stored as one register

// Writes the lanes' values, none of them a surrogate, as UTF-8.
[[gnu::always_inline]] inline void putUtf8(Vector values, __mmask16 lanes, Target &target) {
    const __mmask16 two = _mm512_mask_cmpge_epu32_mask(lanes, values, numbersOf(0x80));
    const __mmask16 three = _mm512_mask_cmpge_epu32_mask(lanes, values, numbersOf(0x800));
    // The last byte stands third, the one before it second, and the first of three first.
    const Vector fields = _mm512_multishift_epi64_epi8(_mm512_set1_epi64(0x20'20'26'2C'00'00'06'0C), values);
    const Vector marked =
        _mm512_mask_ternarylogic_epi32(fields, two, numbersOf(0x3F3F0F), numbersOf(0x8080E0), kAndOr);
    const Vector bytes = _mm512_mask_or_epi32(marked, _kandn_mask16(three, two), marked, numbersOf(0x4000));
    const std::uint64_t used = _pdep_u64(lanes, 0x4444444444444444) | _pdep_u64(two, 0x2222222222222222) |
                               _pdep_u64(three, 0x1111111111111111);
    const std::uint32_t count = countBits(used);
    _mm512_storeu_si512(target.at, _mm512_maskz_compress_epi8(used, bytes));
    target.at += count;
}

// The same for the first `count` of 32 units, none of them above 7FF.
[[gnu::always_inline]] inline void putShortUtf8(Vector units, std::uint32_t count, Target &target) {
    const __mmask32 two = _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(0x80));
    // The last byte stands high in its unit, by itself or with the first one before it.
    const Vector last = _mm512_slli_epi16(units, 8);
    const Vector bits =
        _mm512_ternarylogic_epi32(last, _mm512_set1_epi16(0x3F00), _mm512_srli_epi16(units, 6), kAndOr);
    const Vector marks = _mm512_set1_epi16(static_cast<short>(0x80C0));
    const Vector bytes = _mm512_mask_mov_epi16(last, two, _mm512_or_si512(bits, marks));
    const std::uint64_t used = (_pdep_u64(two, 0x5555555555555555) | 0xAAAAAAAAAAAAAAAA) & lowBits(2 * count);
    _mm512_storeu_si512(target.at, _mm512_maskz_compress_epi8(used, bytes));
    target.at += countBits(used);
}

} // namespace
} // namespace velnls::avx512
