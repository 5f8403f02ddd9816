// Where the fast kernels put characters: one sink per target form.
//
// A sink writes at `out` and knows how much room a block of 64 source bytes or one character may need there;
// the kernels ask for that room first and hand over to the plain way when it is not left. It may scribble
// behind what it has written, but never beyond the target's end. put() refuses a character that needs the
// plain way, with nothing written.
#pragma once

#include "convert/kernels/fast_vector.hpp"
#include "convert/kernels/proofs.hpp"

namespace velnls {
namespace {

struct ByteCursor {
    std::uint8_t *out;
    std::uint8_t *end;

    [[nodiscard]] bool hasRoom(std::ptrdiff_t bytes) const {
        return end - out >= bytes;
    }
};

struct Utf16Sink : ByteCursor {
    static constexpr std::ptrdiff_t kBlockRoom = (64 + 16) * 2;
    static constexpr std::ptrdiff_t kAsciiRoom = 32;
    static constexpr std::ptrdiff_t kCharacterRoom = 2;

    // 16 ASCII characters, without moving on.
    [[gnu::always_inline]] void ascii16(const std::uint8_t *at) const {
#if defined(__SSE2__)
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i zero = _mm_setzero_si128();
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 16), _mm_unpackhi_epi8(bytes, zero));
#else
        for (int i = 0; i < 16; ++i)
            storeNumber<std::uint16_t>(out + 2 * i, at[i]);
#endif
    }
    [[gnu::always_inline]] void advance(std::ptrdiff_t characters) {
        out += characters * 2;
    }
    [[gnu::always_inline]] void putAscii(std::uint8_t byte) {
        put(byte);
    }
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        storeNumber(out, static_cast<std::uint16_t>(value));
        out += 2;
        return true;
    }
};

struct Utf32Sink : ByteCursor {
    static constexpr std::ptrdiff_t kBlockRoom = (64 + 16) * 4;
    static constexpr std::ptrdiff_t kAsciiRoom = 64;
    static constexpr std::ptrdiff_t kCharacterRoom = 4;

    [[gnu::always_inline]] void ascii16(const std::uint8_t *at) const {
#if defined(__SSE2__)
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i zero = _mm_setzero_si128();
        const __m128i low = _mm_unpacklo_epi8(bytes, zero);
        const __m128i high = _mm_unpackhi_epi8(bytes, zero);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm_unpacklo_epi16(low, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 16), _mm_unpackhi_epi16(low, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 32), _mm_unpacklo_epi16(high, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 48), _mm_unpackhi_epi16(high, zero));
#else
        for (int i = 0; i < 16; ++i)
            storeNumber<std::uint32_t>(out + 4 * i, at[i]);
#endif
    }
    [[gnu::always_inline]] void advance(std::ptrdiff_t characters) {
        out += characters * 4;
    }
    [[gnu::always_inline]] void putAscii(std::uint8_t byte) {
        put(byte);
    }
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        storeNumber(out, value);
        out += 4;
        return true;
    }
};

// A single-byte page: the reverse window gives the index, the row makes it a byte.
struct ByteRowSink : ByteCursor {
    static constexpr std::ptrdiff_t kBlockRoom = 64 + 16;
    static constexpr std::ptrdiff_t kAsciiRoom = 16;
    static constexpr std::ptrdiff_t kCharacterRoom = 1;

    const std::uint8_t *window; // 16-bit indexes by value - lowest
    std::uint32_t lowest;
    std::uint32_t span; // values of the window
    std::uint32_t base; // byte = index + base

    ByteRowSink(const MappingBody &body, std::uint8_t *outBegin, std::uint8_t *outEnd)
        : ByteCursor{outBegin, outEnd},
          // Never null: ASCII looks at the first entry without using it.
          window(reinterpret_cast<const std::uint8_t *>(
              body.groups[2].reverse != nullptr ? body.groups[2].reverse : body.groups[2].values)),
          lowest(body.groups[2].lowest),
          span(body.groups[2].reverseCount == 0 ? 0 : body.groups[2].highest - body.groups[2].lowest + 1),
          base(body.groups[2].firstTrail - 1u) {}

    [[gnu::always_inline]] void ascii16(const std::uint8_t *at) const {
        copyBytes<16>(out, at);
    }
    [[gnu::always_inline]] void advance(std::ptrdiff_t characters) {
        out += characters;
    }
    [[gnu::always_inline]] void putAscii(std::uint8_t byte) {
        *out++ = byte;
    }
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        const bool ascii = value < 0x80;
        const std::uint32_t place = value - lowest;
        if (place >= span && !ascii)
            return false;
        // ASCII reads the window's first entry and does not use it: no branch on the script.
        const std::uint32_t index = loadNumber<std::uint16_t>(window + std::size_t{ascii ? 0 : place} * 2);
        if (index == file::kUnmapped && !ascii)
            return false;
        *out++ = static_cast<std::uint8_t>(ascii ? value : index + base);
        return true;
    }
};

// A page of lead and trail bytes: the reverse window, and the linear stretches of kana and full-width forms.
struct PairSink : ByteCursor {
    static constexpr std::ptrdiff_t kBlockRoom = 64 + 16;
    static constexpr std::ptrdiff_t kAsciiRoom = 16;
    static constexpr std::ptrdiff_t kCharacterRoom = 2;

    const std::uint8_t *window;
    const MappingFacts &facts;
    std::uint32_t lowest;
    std::uint32_t span;
    std::uint32_t reciprocal;
    std::uint32_t trailsPerLead;
    std::uint32_t firstLead;
    std::uint32_t leadGapLow;
    std::uint32_t leadShift;
    std::uint32_t firstTrail;
    std::uint32_t trailGapLow;
    std::uint32_t trailShift;

    PairSink(const MappingBody &body, std::uint8_t *outBegin, std::uint8_t *outEnd)
        : ByteCursor{outBegin, outEnd},
          window(reinterpret_cast<const std::uint8_t *>(body.groups[2].reverse)), facts(factsOf(body)),
          lowest(body.groups[2].lowest),
          span(body.groups[2].reverseCount == 0 ? 0 : body.groups[2].highest - body.groups[2].lowest + 1),
          reciprocal(facts.reciprocal), trailsPerLead(body.groups[2].trailsPerLead),
          firstLead(body.groups[2].firstLead), leadGapLow(body.groups[2].leadGapLow),
          leadShift(body.groups[2].leadShift), firstTrail(body.groups[2].firstTrail),
          trailGapLow(body.groups[2].trailGap1Low), trailShift(body.groups[2].trailShift1) {}

    [[gnu::always_inline]] void ascii16(const std::uint8_t *at) const {
        copyBytes<16>(out, at);
    }
    [[gnu::always_inline]] void advance(std::ptrdiff_t characters) {
        out += characters;
    }
    [[gnu::always_inline]] void putAscii(std::uint8_t byte) {
        *out++ = byte;
    }
    [[gnu::always_inline]] void putPair(std::uint32_t lead, std::uint32_t trail) {
        storeNumber(out, static_cast<std::uint16_t>(lead | trail << 8));
        out += 2;
    }
    [[gnu::always_inline]] bool putLinear(const LinearBlock &block, std::uint32_t value) {
        if ((value & 31) - block.first >= block.count)
            return false;
        const std::uint32_t code = (value + block.delta) & 0xFFFF;
        putPair(code >> 8, code & 0xFF);
        return true;
    }
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        if (value < 0x80) {
            putAscii(static_cast<std::uint8_t>(value));
            return true;
        }
        if (value - lowest < span) {
            const std::uint32_t index = loadNumber<std::uint16_t>(window + std::size_t{value - lowest} * 2);
            if (index == file::kUnmapped)
                return false;
            const std::uint32_t place = index - 1;
            const auto row =
                static_cast<std::uint32_t>(std::uint64_t{place} * reciprocal >> kReciprocalShift);
            std::uint32_t lead = firstLead + row;
            std::uint32_t trail = firstTrail + (place - row * trailsPerLead);
            trail += trail > trailGapLow ? trailShift : 0;
            lead += lead > leadGapLow ? leadShift : 0;
            putPair(lead, trail);
            return true;
        }
        if (value - kKanaFirst < 32 * kKanaBlocks)
            return putLinear(facts.kana[(value - kKanaFirst) / 32], value);
        if (value - kFullWidthFirst < 32 * kFullWidthBlocks)
            return putLinear(facts.fullWidth[(value - kFullWidthFirst) / 32], value);
        return false;
    }
};

// UTF-8: four bytes are stored at once, the position moves by the character's length.
struct Utf8Sink : ByteCursor {
    static constexpr std::ptrdiff_t kBlockRoom = 64 / 2 * 3 + 64;
    static constexpr std::ptrdiff_t kAsciiRoom = 16;
    static constexpr std::ptrdiff_t kCharacterRoom = 4;

    [[gnu::always_inline]] void ascii16(const std::uint8_t *at) const {
        copyBytes<16>(out, at);
    }
    [[gnu::always_inline]] void advance(std::ptrdiff_t characters) {
        out += characters;
    }
    [[gnu::always_inline]] void putAscii(std::uint8_t byte) {
        *out++ = byte;
    }
    // A value up to U+FFFF, not a surrogate.
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        const std::uint32_t last = (value & 0x3F) | 0x80;
        const std::uint32_t two = 0xC0 | value >> 6 | last << 8;
        const std::uint32_t three = 0xE0 | value >> 12 | (0x80 | (value >> 6 & 0x3F)) << 8 | last << 16;
        std::uint32_t bytes = value < 0x800 ? two : three;
        bytes = value < 0x80 ? value : bytes;
        storeNumber(out, bytes);
        out += 1 + static_cast<int>(value >= 0x80) + static_cast<int>(value >= 0x800);
        return true;
    }
};

} // namespace
} // namespace velnls
