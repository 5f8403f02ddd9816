// Where the baseline's kernels put characters: one sink per target form.
//
// A sink writes at `out` and knows how much room one character may need there, and with kByBlocks a block of
// 64 source bytes; the kernels ask for that room first and hand over to the plain way when it is not left. It
// may scribble behind what it has written, but never beyond the target's end. put() refuses a character that
// needs the plain way, with nothing written.
#pragma once

#include "convert/kernels/baseline_vector.hpp"
#include "convert/kernels/proofs.hpp"

namespace velnls {
namespace {

struct ByteCursor {
    std::uint8_t *out;
    std::uint8_t *end;

    ByteCursor(std::uint8_t *from, std::uint8_t *to) : out(from), end(to) {}
    [[nodiscard]] bool hasRoom(std::ptrdiff_t bytes) const {
        return end - out >= bytes;
    }
};

// ascii16() puts 16 characters without moving on.
struct ByteSink : ByteCursor {
    using ByteCursor::ByteCursor;

    static constexpr std::ptrdiff_t kAsciiRoom = 16;

    [[gnu::always_inline]] void ascii16(const std::uint8_t *at) const {
        copyBytes<16>(out, at);
    }
    [[gnu::always_inline]] void advance(std::ptrdiff_t characters) {
        out += characters;
    }
    [[gnu::always_inline]] void putAscii(std::uint8_t byte) {
        *out++ = byte;
    }
};

template <typename Unit>
struct UnitSink : ByteCursor {
    using ByteCursor::ByteCursor;

    static constexpr std::ptrdiff_t kCharacterRoom = sizeof(Unit);
    static constexpr std::ptrdiff_t kAsciiRoom = 16 * kCharacterRoom;

    [[gnu::always_inline]] void advance(std::ptrdiff_t characters) {
        out += characters * kCharacterRoom;
    }
    [[gnu::always_inline]] void putAscii(std::uint8_t byte) {
        put(byte);
    }
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        storeNumber(out, static_cast<Unit>(value));
        out += kCharacterRoom;
        return true;
    }
};

// The value of a well-formed sequence of two bytes, or of one or two, in the low bytes of `word`.
[[gnu::always_inline]] inline std::uint32_t twoByteValue(std::uint32_t word) {
    return (word & 0x1F) << 6 | (word >> 8 & 0x3F);
}
[[gnu::always_inline]] inline std::uint32_t maskOfTop(std::uint32_t word) {
    auto mask = static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<std::int8_t>(word)) >> 7);
    asm("" : "+r"(mask));
    return mask;
}
[[gnu::always_inline]] inline std::uint32_t valueUpToTwo(std::uint32_t word) {
    return select(maskOfTop(word), twoByteValue(word), word & 0xFF);
}

struct Utf16Sink : UnitSink<std::uint16_t> {
    using UnitSink::UnitSink;

    static constexpr bool kByBlocks = true;
    static constexpr std::ptrdiff_t kBlockRoom = (64 + 16) * 2;

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
    [[gnu::always_inline]] bool putUpToTwo(std::uint32_t word) {
        return put(valueUpToTwo(word));
    }
};

struct Utf32Sink : UnitSink<std::uint32_t> {
    using UnitSink::UnitSink;

    static constexpr bool kByBlocks = false;

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
};

// A single-byte page: the reverse window gives the index, the row makes it a byte.
struct ByteRowSink : ByteSink {
    static constexpr bool kByBlocks = true;
    static constexpr std::ptrdiff_t kBlockRoom = 64 + 16;
    static constexpr std::ptrdiff_t kCharacterRoom = 1;

    const std::uint8_t *window; // 16-bit indexes by value - lowest
    std::uint32_t lowest;
    std::uint32_t span; // values of the window; without one, ASCII alone passes
    std::uint32_t base; // byte = index + base

    ByteRowSink(const MappingBody &body, std::uint8_t *outBegin, std::uint8_t *outEnd)
        : ByteSink(outBegin, outEnd),
          // Never null: ASCII looks at the first entry without using it.
          window(reinterpret_cast<const std::uint8_t *>(
              body.groups[2].reverse != nullptr ? body.groups[2].reverse : body.groups[2].values)),
          lowest(body.groups[2].reverseCount == 0 ? 0 : body.groups[2].lowest),
          span(body.groups[2].reverseCount == 0 ? 1 : body.groups[2].highest - body.groups[2].lowest + 1),
          base(body.groups[2].firstTrail - 1u) {}

    [[gnu::always_inline]] bool put(std::uint32_t value) {
        const std::uint32_t place = value - lowest;
        if (place >= span)
            return false;
        const std::uint32_t index = loadNumber<std::uint16_t>(window + std::size_t{place} * 2);
        if (index == file::kUnmapped)
            return false;
        *out++ = static_cast<std::uint8_t>(index + base);
        return true;
    }
    [[gnu::always_inline]] bool putUpToTwo(std::uint32_t word) {
        const std::uint32_t beyondAscii = maskOfTop(word);
        // ASCII reads the window's first entry and does not use it.
        const std::uint32_t place = (twoByteValue(word) - lowest) & beyondAscii;
        if (place >= span)
            return false;
        const std::uint32_t index = loadNumber<std::uint16_t>(window + std::size_t{place} * 2);
        if (index == file::kUnmapped && beyondAscii != 0)
            return false;
        *out++ = static_cast<std::uint8_t>(select(beyondAscii, index + base, word));
        return true;
    }
};

// A page of lead and trail bytes: the reverse window, and the linear stretches of kana and full-width forms.
struct PairSink : ByteSink {
    static constexpr bool kByBlocks = false;
    static constexpr std::ptrdiff_t kCharacterRoom = 2; // of one byte too, since two are stored

    const std::uint8_t *window;
    const MappingFacts &facts;
    const std::uint8_t *punctuation;
    const std::uint8_t *widePunctuation;
    std::uint32_t lowest;
    PairUnits units;

    PairSink(const MappingBody &body, std::uint8_t *outBegin, std::uint8_t *outEnd)
        : ByteSink(outBegin, outEnd), window(reinterpret_cast<const std::uint8_t *>(body.groups[2].reverse)),
          facts(factsOf(body)), punctuation(body.groups[1].unusedA), widePunctuation(body.groups[2].unusedA),
          lowest(body.groups[2].lowest), units(facts.units) {}

    [[gnu::always_inline]] void putIndex(std::uint32_t index) {
        const std::uint32_t row = (index - 1) * units.reciprocal >> 16 >> units.reciprocalShift;
        std::uint32_t code = (units.codeBase + index + row * units.rowStep) & 0xFFFF;
        if (units.trailShift != 0)
            code += units.trailShift & maskIf((code & 0xFF) > units.trailGapLow);
        if (units.leadShift != 0)
            code += units.leadShift & maskIf(code > units.leadGapEnd);
        storeNumber(out, __builtin_bswap16(static_cast<std::uint16_t>(code)));
        out += 2;
    }
    // The index of a value outside the window, or 0.
    [[gnu::always_inline]] static std::uint32_t indexInBlock(const LinearBlock &block, std::uint32_t value) {
        return (value & 31) - block.first < block.count ? (value + block.delta) & 0xFFFF : 0;
    }
    [[gnu::always_inline]] std::uint32_t indexBeside(std::uint32_t value) const {
        if (value - kKanaBegin < 32 * kKanaBlocks) {
            if (value - kSoundMarksBegin < kSoundMarks)
                return facts.marks[value - kSoundMarksBegin];
            return indexInBlock(facts.kana[(value - kKanaBegin) >> 5], value);
        }
        if (value - kPunctuationBegin < kPunctuation)
            return loadNumber<std::uint16_t>(punctuation + (value - kPunctuationBegin) * 2);
        if (value - kWidePunctuationBegin < kPunctuation)
            return loadNumber<std::uint16_t>(widePunctuation + (value - kWidePunctuationBegin) * 2);
        if (value - kLettersBegin < 32 * kLetterBlocks)
            return indexInBlock(facts.letters[(value - kLettersBegin) >> 5], value);
        return 0;
    }
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        std::uint32_t index = 0;
        if (value - lowest < units.span) {
            index = loadNumber<std::uint16_t>(window + std::size_t{value - lowest} * 2);
            if (index == file::kUnmapped)
                return false;
        } else {
            index = indexBeside(value);
            if (index == 0)
                return false;
        }
        putIndex(index);
        return true;
    }
};

// UTF-8: four bytes are stored at once, the position moves by the character's length.
struct Utf8Sink : ByteSink {
    using ByteSink::ByteSink;

    static constexpr std::ptrdiff_t kBlockRoom = 64 / 2 * 3 + 64;
    static constexpr std::ptrdiff_t kCharacterRoom = 4;

    // A value up to U+FFFF, not a surrogate.
    [[gnu::always_inline]] bool put(std::uint32_t value) {
        if (value < 0x800)
            putOneOrTwo(value);
        else
            putThree(value);
        return true;
    }
    [[gnu::always_inline]] void putOneOrTwo(std::uint32_t value) {
        const std::uint32_t beyondOne = maskIf(value >= 0x80);
        const std::uint32_t two = 0x80C0 | value >> 6 | (value & 0x3F) << 8;
        storeNumber(out, static_cast<std::uint16_t>(select(beyondOne, two, value)));
        out += 1 - static_cast<std::int32_t>(beyondOne);
    }
    [[gnu::always_inline]] void putThree(std::uint32_t value) {
        storeNumber(out, 0x8080E0 | value >> 12 | (value << 2 & 0x3F00) | (value & 0x3F) << 16);
        out += 3;
    }
};

} // namespace
} // namespace velnls
