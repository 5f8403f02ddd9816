// What the kernels for processors with AVX2 share: text in blocks, and its characters in lanes, sixteen at a
// time.
//
// Files that include this are compiled for such processors alone, so everything here is local to each: no
// function of theirs may stand in for one that other processors run.
#pragma once

#include "convert/kernels/avx2_tables.hpp"
#include "convert/kernels/fast_avx2.hpp"
#include "convert/kernels/kernels.hpp"
#include "convert/kernels/text_reader.hpp"
#include "core/unaligned.hpp"

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace velnls::avx2 {
namespace {

using Bytes = __m256i;

// ---- Blocks ---------------------------------------------------------------------------------

inline constexpr std::ptrdiff_t kRegister = 32;

[[gnu::always_inline]] inline Bytes load(const std::uint8_t *at) {
    return _mm256_loadu_si256(reinterpret_cast<const Bytes *>(at));
}
[[gnu::always_inline]] inline void store(std::uint8_t *at, Bytes bytes) {
    _mm256_storeu_si256(reinterpret_cast<Bytes *>(at), bytes);
}
[[gnu::always_inline]] inline __m128i lowHalf(Bytes bytes) {
    return _mm256_castsi256_si128(bytes);
}
[[gnu::always_inline]] inline __m128i highHalf(Bytes bytes) {
    return _mm256_extracti128_si256(bytes, 1);
}
[[gnu::always_inline]] inline std::uint32_t maskOf(Bytes bytes) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

// The lowest `count` bits, all 64 of them from there on.
[[gnu::always_inline]] inline std::uint64_t lowBits(std::size_t count) {
    return _bzhi_u64(~std::uint64_t{0}, static_cast<unsigned>(count));
}
[[gnu::always_inline]] inline std::uint32_t countBits(std::uint64_t mask) {
    return static_cast<std::uint32_t>(_mm_popcnt_u64(mask));
}
[[gnu::always_inline]] inline std::uint32_t firstBitOr64(std::uint64_t mask) {
    return static_cast<std::uint32_t>(_tzcnt_u64(mask));
}
[[gnu::always_inline]] inline std::uint32_t smaller(std::ptrdiff_t a, std::uint32_t b) {
    return a < static_cast<std::ptrdiff_t>(b) ? static_cast<std::uint32_t>(a) : b;
}

// Ones in the first `count` bytes, up to 32.
[[gnu::always_inline]] inline Bytes firstBytes(std::uint32_t count) {
    return load(kFirstBytes.masks + kMostFirstBytes - count);
}

[[gnu::always_inline]] inline std::uint64_t both(std::uint32_t lower, std::uint32_t upper) {
    return lower | std::uint64_t{upper} << kRegister;
}

// 64 bytes of text, 0 behind its end; bit i of a mask speaks of byte i.
struct Block {
    static constexpr std::uint32_t kSize = 2 * kRegister;
    // Bytes that are read at a block: from its last one on, up to sixteen at once.
    static constexpr std::ptrdiff_t kReach = kSize + 16;

    Bytes low;
    Bytes high;

    // Of `size` bytes, though all are read.
    [[gnu::always_inline]] Block(const std::uint8_t *at, std::uint32_t size)
        : low(_mm256_and_si256(load(at), load(kFirstBytes.masks + kSize - size))),
          high(_mm256_and_si256(load(at + kRegister), load(kFirstBytes.masks + kSize + kRegister - size))) {
        static_assert(kSize == kMostFirstBytes);
    }

    [[gnu::always_inline]] [[nodiscard]] std::uint64_t notAscii() const {
        return both(maskOf(low), maskOf(high));
    }
    // The bytes of that value and above, unsigned; of that value and below.
    [[gnu::always_inline]] [[nodiscard]] std::uint64_t atLeast(unsigned value) const {
        const Bytes least = _mm256_set1_epi8(static_cast<char>(value));
        return both(maskOf(_mm256_cmpeq_epi8(_mm256_max_epu8(low, least), low)),
                    maskOf(_mm256_cmpeq_epi8(_mm256_max_epu8(high, least), high)));
    }
    [[gnu::always_inline]] [[nodiscard]] std::uint64_t atMost(unsigned value) const {
        const Bytes most = _mm256_set1_epi8(static_cast<char>(value));
        return both(maskOf(_mm256_cmpeq_epi8(_mm256_min_epu8(low, most), low)),
                    maskOf(_mm256_cmpeq_epi8(_mm256_min_epu8(high, most), high)));
    }
    // Stores the first `count` bytes, and what is behind them in their registers.
    [[gnu::always_inline]] void copyTo(std::uint8_t *to, std::uint32_t count) const {
        store(to, low);
        if (count > kRegister)
            store(to + kRegister, high);
    }
    static constexpr std::ptrdiff_t wholeRegisters(std::uint32_t count) {
        return count > kRegister ? 2 * kRegister : kRegister;
    }
};

// ---- Lanes ----------------------------------------------------------------------------------

inline constexpr std::uint32_t kLanes = 16; // of 16 bits
inline constexpr std::uint32_t kHalf = 8;

[[gnu::always_inline]] inline Bytes numbersOf(std::uint32_t number) {
    return _mm256_set1_epi32(static_cast<int>(number));
}
[[gnu::always_inline]] inline Bytes unitsOf(unsigned unit) {
    return _mm256_set1_epi16(static_cast<short>(unit));
}
[[gnu::always_inline]] inline Bytes joined(__m128i low, __m128i high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}
// Eight numbers up to FFFF as units.
[[gnu::always_inline]] inline __m128i narrowedHalf(Bytes numbers) {
    return _mm_packus_epi32(lowHalf(numbers), highHalf(numbers));
}
// The low bytes of units up to FF.
[[gnu::always_inline]] inline __m128i narrowed(Bytes units) {
    return _mm_packus_epi16(lowHalf(units), highHalf(units));
}
// Unsigned.
[[gnu::always_inline]] inline Bytes isAtLeast(Bytes units, Bytes least) {
    return _mm256_cmpeq_epi16(_mm256_subs_epu16(least, units), _mm256_setzero_si256());
}
[[gnu::always_inline]] inline bool isAny(Bytes mask) {
    return _mm256_testz_si256(mask, mask) == 0;
}
// Units up to FF of two registers as bytes.
[[gnu::always_inline]] inline Bytes narrowed(Bytes first, Bytes second) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), 0xD8);
}
// A bit for each lane of a mask.
[[gnu::always_inline]] inline std::uint32_t bitsOf(Bytes lanes) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(lowHalf(lanes), highHalf(lanes))));
}

// How many of `count` lanes stand before the first of `odd`, a mask or its bits; none is odd behind them.
[[gnu::always_inline]] inline std::uint32_t before(std::uint32_t odd, std::uint32_t count) {
    return odd == 0 ? count : firstBitOr64(odd);
}
[[gnu::always_inline]] inline std::uint32_t before(Bytes odd, std::uint32_t count) {
    return isAny(odd) ? firstBitOr64(bitsOf(odd)) : count;
}

// Takes the first bit out of a mask and gives its position; 64 from an empty one.
[[gnu::always_inline]] inline std::size_t takeFirst(std::uint64_t &mask) {
    const std::size_t position = _tzcnt_u64(mask);
    mask &= mask - 1;
    return position;
}

// Writes the leading blocks that are all ASCII, and the last of a text.
[[gnu::always_inline]] inline void copyAscii(Source &source, Target &target) {
    TextReader<Block::kReach> blocks;
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, Block::kSize);
        if (target.end - to < Block::wholeRegisters(size))
            break;
        const Block block(blocks.block(at, source.end), size);
        if (block.notAscii() != 0)
            break;
        block.copyTo(to, size);
        at += size;
        to += size;
    }
    source.at = at;
    target.at = to;
}

// Eight characters of two bytes each: stores 16 bytes, of which those of `two` have two that count, and the
// others one. Gives how many count.
[[gnu::always_inline]] inline std::uint32_t squeeze(std::uint8_t *to, __m128i characters, std::uint64_t two) {
    const auto *const shuffle = reinterpret_cast<const __m128i *>(kSqueezes.shuffles[two & 0xFF]);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm_shuffle_epi8(characters, _mm_load_si128(shuffle)));
    return kHalf + countBits(two & 0xFF);
}

// ---- UTF-8 out ------------------------------------------------------------------------------

// Bytes that may be written for `count` characters, some of them behind the last one.
constexpr std::ptrdiff_t utf8Room(std::uint32_t count) {
    return 3 * static_cast<std::ptrdiff_t>(count) + 4;
}

// Writes the first `count` of eight values up to U+FFFF, none of them a surrogate: four bytes are stored at
// once, the position moves by the character's length.
[[gnu::always_inline]] inline void putHalfAsUtf8(Bytes values, std::uint32_t count, Target &target) {
    constexpr unsigned kLengthShift = 29; // above the three bytes
    const Bytes middle = _mm256_and_si256(_mm256_slli_epi32(values, 2), numbersOf(0x3F00));
    const Bytes last = _mm256_and_si256(_mm256_slli_epi32(values, 16), numbersOf(0x3F0000));
    const Bytes bits = _mm256_or_si256(_mm256_or_si256(middle, last), _mm256_srli_epi32(values, 12));
    const Bytes three = _mm256_or_si256(bits, numbersOf(0x8080E0 | 3U << kLengthShift));
    // A value of two bytes has the last two of three; what is behind them does not count.
    const Bytes two = _mm256_or_si256(_mm256_srli_epi32(three, 8), numbersOf(0x40 | 2U << kLengthShift));
    const Bytes one = _mm256_or_si256(values, numbersOf(1U << kLengthShift));
    Bytes bytes = _mm256_blendv_epi8(one, two, _mm256_cmpgt_epi32(values, numbersOf(0x7F)));
    bytes = _mm256_blendv_epi8(bytes, three, _mm256_cmpgt_epi32(values, numbersOf(0x7FF)));
    const Bytes counting = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    bytes = _mm256_and_si256(bytes, _mm256_cmpgt_epi32(numbersOf(count), counting));
    alignas(32) std::uint32_t words[kHalf];
    _mm256_store_si256(reinterpret_cast<Bytes *>(words), bytes);
    std::uint8_t *to = target.at;
#pragma GCC unroll 8
    for (const std::uint32_t &word : words) {
        const std::uint32_t character = word;
        storeNumber(to, character);
        to += character >> kLengthShift;
    }
    target.at = to;
}

// The first `count` of sixteen units, none of them a surrogate; there is room for them.
[[gnu::always_inline]] inline void putUtf8(Bytes units, std::uint32_t count, Target &target) {
    putHalfAsUtf8(_mm256_cvtepu16_epi32(lowHalf(units)), count, target);
    if (count > kHalf)
        putHalfAsUtf8(_mm256_cvtepu16_epi32(highHalf(units)), count - kHalf, target);
}

} // namespace
} // namespace velnls::avx2
