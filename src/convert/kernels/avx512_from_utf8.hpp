// Reads UTF-8 by blocks of 64 bytes, up to 32 characters at a time, into a sink.
#pragma once

#include "convert/kernels/avx512_lanes.hpp"

namespace velnls::avx512 {
namespace {

// What the bytes of a block say of the characters of one to three bytes that they belong to: a bit for each.
struct Utf8Bytes {
    std::uint64_t lead;
    std::uint64_t three;  // lead bytes of three
    std::uint64_t trails; // none's first byte
    std::uint64_t thirds; // behind two others, as announced
    std::uint64_t ends;   // the last ones of characters, where nothing is odd
    std::uint64_t odd;    // not as announced, or of a longer character

    // `second` and `third`: the block's first bytes that belong to a character begun before it, the third
    // ones apart.
    [[gnu::always_inline]] explicit Utf8Bytes(Vector block, std::uint64_t second = 0, std::uint64_t third = 0)
        : lead(atLeast(block, 0xC0)), three(atLeast(block, 0xE0)), trails(_mm512_movepi8_mask(block) & ~lead),
          thirds(three << 2 | third), ends(~(lead | three << 1 | third >> 1)),
          odd((trails ^ (lead << 1 | second | thirds)) | atLeast(block, 0xF0)) {}
};

// The well-formed characters of one to three bytes that end in a block, side by side: of each the last byte,
// and those one and two before it, 0 where the character has none there.
class Utf8Characters {
public:
    // What stands before `at` is read where the block begins with bytes of a character begun before it.
    [[gnu::always_inline]] Utf8Characters(const std::uint8_t *at, Vector block, const Utf8Bytes &bytes)
        : Utf8Characters(at, block, bytes.ends, bytes.trails, bytes.thirds) {}

    // Of a text's block of `size` bytes: up to the first byte that is not as announced, or the end. `ends`:
    // where they end in it. Nothing before `at` is read, for a trail byte there is not as announced.
    [[gnu::always_inline]] static Utf8Characters upToOdd(const std::uint8_t *at, Vector block,
                                                         std::uint32_t size, std::uint64_t &ends) {
        const Utf8Bytes bytes(block);
        ends = bytes.ends & lowBits(firstBitOr64(bytes.odd | ~lowBits(size)));
        return {at, block, ends, bytes.trails & ~std::uint64_t{1}, bytes.thirds};
    }

    // The first sixteen as units of 16 bits; and without them.
    [[gnu::always_inline]] [[nodiscard]] __m256i sixteen() const {
        const auto units = [](Vector bytes) { return _mm256_cvtepu8_epi16(_mm512_castsi512_si128(bytes)); };
        const __m256i two = _mm256_ternarylogic_epi64(_mm256_slli_epi16(units(second_), 6), unitsOf(0x0FC0),
                                                      units(last_), kAndOr);
        return _mm256_or_si256(two, _mm256_slli_epi16(units(third_), 12));
    }
    [[gnu::always_inline]] void dropSixteen() {
        last_ = _mm512_alignr_epi64(last_, last_, 2);
        second_ = _mm512_alignr_epi64(second_, second_, 2);
        third_ = _mm512_alignr_epi64(third_, third_, 2);
    }

    // The same of the first 32, or of those behind them.
    template <bool kBehind>
    [[gnu::always_inline]] [[nodiscard]] Vector units() const {
        const Vector two = _mm512_ternarylogic_epi64(_mm512_slli_epi16(widened<kBehind>(second_), 6),
                                                     wideUnitsOf(0x0FC0), widened<kBehind>(last_), kAndOr);
        // What marks a lead byte leaves the unit at its top.
        return _mm512_or_si512(two, _mm512_slli_epi16(widened<kBehind>(third_), 12));
    }

private:
    [[gnu::always_inline]] Utf8Characters(const std::uint8_t *at, Vector block, std::uint64_t ends,
                                          std::uint64_t trails, std::uint64_t thirds)
        : last_(_mm512_maskz_compress_epi8(ends, _mm512_mask_sub_epi8(block, trails, block, bytesOf(0x80)))),
          second_(_mm512_maskz_compress_epi8(ends, _mm512_maskz_loadu_epi8(trails, at - 1))),
          third_(_mm512_maskz_compress_epi8(ends, _mm512_maskz_loadu_epi8(thirds, at - 2))) {}

    Vector last_;
    Vector second_;
    Vector third_;
};

// Sinks: asciiRoom and putAscii as CopiedAscii has them; kRoom for 32 characters of any kind; put writes
// lanes of units and gives those that it refuses, having written the ones before the first of them. Lanes
// that fit the lower half need half the room.

// Long texts, for sinks that refuse nothing: blocks follow each other at a fixed distance, so that none waits
// for the end of the one before. Stops before a block that is not well formed, at a character's begin.
// kBlockRoom: for 64 characters; putBlock writes `count` of a block.
template <typename Sink>
[[gnu::always_inline]] inline void utf8Blocks(const Sink &sink, Source &source, Target &out) {
    const std::uint8_t *at = source.at;
    Target target = out;
    std::uint64_t second = 0;
    std::uint64_t third = 0;
    while (source.end - at >= 64 && target.end - target.at >= Sink::kBlockRoom) {
        const Vector block = _mm512_loadu_si512(at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if ((notAscii | second | third) == 0) {
            sink.putAscii(block, 64, target);
            at += 64;
            continue;
        }
        const Utf8Bytes bytes(block, second, third);
        if (bytes.odd != 0)
            break;
        sink.putBlock(Utf8Characters(at, block, bytes), countBits(bytes.ends), target);
        second = bytes.lead >> 63;
        third = bytes.three >> 62;
        at += 64;
    }
    // Back to the begin of a character that was not written.
    source.at = at - (second != 0 ? 1 : 2 * static_cast<std::ptrdiff_t>(third & 1));
    out.at = target.at;
}

template <typename Sink>
[[gnu::always_inline]] inline void fromUtf8(const Sink &sink, Source &source, Target &out) {
    const auto some = [&sink](Vector units, std::uint32_t count, Target &target) -> std::uint32_t {
        if (target.room() < (count > 16 ? Sink::kRoom : Sink::kRoom / 2))
            return 0;
        const std::uint32_t refused = sink.put(units, static_cast<__mmask32>(lowBits(count)), target);
        return refused == 0 ? count : _tzcnt_u32(refused);
    };
    byBlocks(sink, source, out,
             [&some](const std::uint8_t *at, Vector block, std::uint32_t size, std::uint64_t &ends,
                     Target &target) -> std::uint32_t {
                 const Utf8Characters characters = Utf8Characters::upToOdd(at, block, size, ends);
                 if (ends == 0)
                     return 0;
                 const std::uint32_t count = countBits(ends);
                 const std::uint32_t first = count < 32 ? count : 32;
                 std::uint32_t written = some(characters.units<false>(), first, target);
                 if (written == first && count > 32)
                     written += some(characters.units<true>(), count - 32, target);
                 return written;
             });
}

} // namespace
} // namespace velnls::avx512
