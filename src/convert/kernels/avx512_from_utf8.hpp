// Reads UTF-8 by blocks of 64 bytes, sixteen characters at a time, into a sink.
#pragma once

#include "convert/kernels/avx512_lanes.hpp"

namespace velnls::avx512 {
namespace {

// For each of 16 positions the one itself and the next. `positions` holds bytes; those from `group` times 16
// on are meant.
[[gnu::always_inline]] inline Vector twoPlaces(Vector positions, int group) {
    const Vector spread = _mm512_castsi256_si512(
        _mm256_set_epi16(0x0F0F, 0x0E0E, 0x0D0D, 0x0C0C, 0x0B0B, 0x0A0A, 0x0909, 0x0808, 0x0707, 0x0606,
                         0x0505, 0x0404, 0x0303, 0x0202, 0x0101, 0x0000));
    const Vector which = _mm512_add_epi8(spread, bytesOf(static_cast<unsigned>(group) * 16));
    return _mm512_add_epi8(_mm512_permutexvar_epi8(which, positions), numbersOf(0x01000100));
}

// Well-formed characters of one to three bytes, of 16 positions, as units of 16 bits.
struct Utf8Units {
    // Of a block alone: places behind it are taken from its begin, and no character looks at them.
    [[gnu::always_inline]] static __m256i of(Vector block, Vector positions, int group) {
        const Vector places = twoPlaces(positions, group);
        return values(_mm512_permutexvar_epi8(places, block),
                      _mm512_permutexvar_epi8(_mm512_add_epi8(places, bytesOf(2)), block));
    }
    [[gnu::always_inline]] static __m256i of(Vector block, Vector next, Vector positions, int group) {
        const Vector places = twoPlaces(positions, group);
        return values(_mm512_permutex2var_epi8(block, places, next),
                      _mm512_permutex2var_epi8(block, _mm512_add_epi8(places, bytesOf(2)), next));
    }

private:
    // Of their first two bytes, the first one low, and the third in the low byte.
    [[gnu::always_inline]] static __m256i values(Vector firstTwo, Vector thirds) {
        const __m256i bytes = _mm512_castsi512_si256(firstTwo);
        const __m256i six = unitsOf(0x3F);
        const __mmask16 isAscii = _mm256_testn_epi16_mask(bytes, unitsOf(0x80));
        const __mmask16 isThree =
            _mm256_cmpeq_epi16_mask(_mm256_and_si256(bytes, unitsOf(0xE0)), unitsOf(0xE0));
        const __m256i second = _mm256_and_si256(_mm256_srli_epi16(bytes, 8), six);
        const __m256i two =
            _mm256_or_si256(_mm256_slli_epi16(_mm256_and_si256(bytes, unitsOf(0x1F)), 6), second);
        const __m256i third = _mm256_and_si256(_mm512_castsi512_si256(thirds), six);
        const __m256i three = _mm256_or_si256(_mm256_slli_epi16(two, 6), third);
        return _mm256_mask_mov_epi16(_mm256_mask_mov_epi16(two, isThree, three), isAscii,
                                     _mm256_and_si256(bytes, unitsOf(0x7F)));
    }
};

// Sinks: asciiRoom(count) for that many ASCII characters, kBlockRoom for 64 bytes of any kind, kRoom for 16
// characters; putAscii writes the `count` low bytes; put writes lanes and gives those that it refuses, having
// written the ones before the first of them. kTakesBlocks: long texts are worth the code of a way of their
// own.
struct PageSink {
    static constexpr std::ptrdiff_t kBlockRoom = 64 + 64;
    static constexpr std::ptrdiff_t kRoom = 32;
    static constexpr std::ptrdiff_t asciiRoom(std::uint32_t count) {
        return count;
    }

    [[gnu::always_inline]] static void putAscii(Vector block, std::uint32_t count, Target &target) {
        store(target, block, count);
        target.at += count;
    }
};

// Long texts: blocks follow each other at a fixed distance, and what the last characters of one have in the
// next is carried over, so that no block waits for the end of the one before. Stops before a block that is
// not well formed, at a character's begin.
template <typename Sink>
[[gnu::always_inline]] inline void utf8Blocks(const Sink &sink, Source &source, Target &out) {
    const std::uint8_t *at = source.at;
    Target target = out;
    const Vector counting = countingBytes();
    std::uint64_t carried = 0; // trail bytes at the block's begin that belong to a character already written
    while (source.end - at >= 128 && target.end - target.at >= Sink::kBlockRoom) {
        const Vector block = _mm512_loadu_si512(at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (notAscii == 0 && carried == 0) {
            sink.putAscii(block, 64, target);
            at += 64;
            continue;
        }
        const Vector next = _mm512_loadu_si512(at + 64);
        const std::uint64_t lead = _mm512_cmpge_epu8_mask(block, bytesOf(0xC0));
        const std::uint64_t three = _mm512_cmpge_epu8_mask(block, bytesOf(0xE0));
        const std::uint64_t four = _mm512_cmpge_epu8_mask(block, bytesOf(0xF0));
        const std::uint64_t trail = notAscii & ~lead;
        const std::uint64_t behind = lead >> 63 | three >> 62;
        const std::uint64_t trailsBehindBlock =
            _mm512_movepi8_mask(next) & ~_mm512_cmpge_epu8_mask(next, bytesOf(0xC0));
        if (((trail ^ (lead << 1 | three << 2 | carried)) | four | (behind & ~trailsBehindBlock)) != 0)
            break;
        const std::uint64_t starts = ~trail;
        const Vector positions = _mm512_maskz_compress_epi8(starts, counting);
        const std::uint32_t count = countBits(starts);
        std::uint32_t refused = 0;
        int group = 0;
        for (std::uint32_t left = count; left != 0; ++group) {
            const std::uint32_t taken = left < 16 ? left : 16;
            const auto values = Utf8Units::of(block, next, positions, group);
            refused = sink.put(values, static_cast<__mmask16>(lowBits(taken)), target);
            if (refused != 0)
                break;
            left -= taken;
        }
        if (refused != 0) {
            at += startNumber(starts, 16 * static_cast<std::uint32_t>(group) + _tzcnt_u32(refused));
            carried = 0;
            break;
        }
        at += 64;
        carried = behind;
    }
    source.at = at + countBits(carried);
    out.at = target.at;
}

template <typename Sink>
[[gnu::always_inline]] inline void fromUtf8(const Sink &sink, Source &source, Target &out) {
    if constexpr (Sink::kTakesBlocks) {
        if (source.end - source.at >= 128)
            utf8Blocks(sink, source, out);
    }
    const std::uint8_t *at = source.at;
    Target target = out;
    const Vector counting = countingBytes();
    while (at < source.end) {
        const std::ptrdiff_t left = source.end - at;
        const std::uint32_t size = left < 64 ? static_cast<std::uint32_t>(left) : 64;
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (notAscii == 0) {
            if (target.end - target.at < Sink::asciiRoom(size))
                break;
            sink.putAscii(block, size, target);
            at += size;
            continue;
        }
        const std::uint64_t lead = _mm512_cmpge_epu8_mask(block, bytesOf(0xC0));
        const std::uint64_t three = _mm512_cmpge_epu8_mask(block, bytesOf(0xE0));
        const std::uint64_t four = _mm512_cmpge_epu8_mask(block, bytesOf(0xF0));
        const std::uint64_t trail = notAscii & ~lead;
        // Everything before the first byte that is not as announced; a character that reaches beyond is left.
        const std::uint64_t odd = (trail ^ (lead << 1 | three << 2)) | four;
        std::uint32_t limit = firstBitOr64(odd);
        limit = limit < size ? limit : size;
        std::uint64_t starts = ~trail & lowBits(limit);
        if (starts == 0)
            break;
        const std::uint32_t lastStart = 63 - static_cast<std::uint32_t>(_lzcnt_u64(starts));
        const std::uint32_t lastLength = 1 + static_cast<std::uint32_t>(lead >> lastStart & 1) +
                                         static_cast<std::uint32_t>(three >> lastStart & 1);
        if (lastStart + lastLength > limit) {
            starts &= ~(std::uint64_t{1} << lastStart);
            limit = lastStart;
        }
        const Vector positions = _mm512_maskz_compress_epi8(starts, counting);
        std::uint32_t count = countBits(starts);
        std::uint32_t end = limit;
        bool stopped = count == 0;
        for (int group = 0; count != 0; ++group) {
            if (count < 16 && group != 0 &&
                size == 64) { // they fill a register better with those behind them
                end = startNumber(starts, 16 * static_cast<std::uint32_t>(group));
                break;
            }
            if (target.end - target.at < Sink::kRoom) {
                stopped = true;
                end = startNumber(starts, 16 * static_cast<std::uint32_t>(group));
                break;
            }
            const std::uint32_t taken = count < 16 ? count : 16;
            const auto lanes = static_cast<__mmask16>(lowBits(taken));
            const auto values = Utf8Units::of(block, positions, group);
            const std::uint32_t refused = sink.put(values, lanes, target);
            if (refused != 0) {
                stopped = true;
                end = firstBitOr64(_pdep_u64(
                    std::uint64_t{1} << (16 * group + static_cast<int>(_tzcnt_u32(refused))), starts));
                break;
            }
            count -= taken;
        }
        at += end;
        if (stopped)
            break;
    }
    source.at = at;
    out.at = target.at;
}

} // namespace
} // namespace velnls::avx512
