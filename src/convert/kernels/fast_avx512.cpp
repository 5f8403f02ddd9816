#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/fast_walk.hpp"
#include "convert/kernels/proofs.hpp"

#include <algorithm>

namespace velnls::avx512 {

namespace {

// ---- Small parts
// -------------------------------------------------------------------------------------------

[[gnu::always_inline]] inline Vector bytesOf(unsigned byte) {
    return _mm512_set1_epi8(static_cast<char>(byte));
}
[[gnu::always_inline]] inline Vector numbersOf(std::uint32_t number) {
    return _mm512_set1_epi32(static_cast<int>(number));
}
[[gnu::always_inline]] inline __m256i unitsOf(unsigned unit) {
    return _mm256_set1_epi16(static_cast<short>(unit));
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
[[gnu::always_inline]] inline __mmask16 lanesBefore(__mmask16 lanes, std::uint32_t bad) {
    return bad == 0 ? lanes : static_cast<__mmask16>(lanes & (_blsmsk_u32(bad) >> 1));
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

// For each of 16 positions four bytes that count on from it. `positions` holds bytes; those from `group`
// times 16 on are meant.
[[gnu::always_inline]] inline Vector fourPlaces(Vector positions, int group) {
    const Vector spread = _mm512_set_epi32(
        0x0F0F0F0F, 0x0E0E0E0E, 0x0D0D0D0D, 0x0C0C0C0C, 0x0B0B0B0B, 0x0A0A0A0A, 0x09090909, 0x08080808,
        0x07070707, 0x06060606, 0x05050505, 0x04040404, 0x03030303, 0x02020202, 0x01010101, 0x00000000);
    const Vector which = _mm512_add_epi8(spread, bytesOf(static_cast<unsigned>(group) * 16));
    return _mm512_add_epi8(_mm512_permutexvar_epi8(which, positions), numbersOf(0x03020100));
}
// The bytes at those places, as numbers. Places behind the block lie in the next one; without one they are
// taken from the block's begin, and no character looks at them.
[[gnu::always_inline]] inline Vector gatherBytes(Vector block, Vector positions, int group) {
    return _mm512_permutexvar_epi8(fourPlaces(positions, group), block);
}
[[gnu::always_inline]] inline Vector gatherBytes(Vector block, Vector next, Vector positions, int group) {
    return _mm512_permutex2var_epi8(block, fourPlaces(positions, group), next);
}

// For each of the positions the one itself and the next.
[[gnu::always_inline]] inline Vector twoPlaces(Vector positions, int group) {
    const Vector spread = _mm512_castsi256_si512(
        _mm256_set_epi16(0x0F0F, 0x0E0E, 0x0D0D, 0x0C0C, 0x0B0B, 0x0A0A, 0x0909, 0x0808, 0x0707, 0x0606,
                         0x0505, 0x0404, 0x0303, 0x0202, 0x0101, 0x0000));
    const Vector which = _mm512_add_epi8(spread, bytesOf(static_cast<unsigned>(group) * 16));
    return _mm512_add_epi8(_mm512_permutexvar_epi8(which, positions), numbersOf(0x01000100));
}

// Well-formed characters of one to three bytes, of 16 positions: their values as numbers of 32 bits.
struct WideLanes {
    [[gnu::always_inline]] static Vector of(Vector block, Vector positions, int group) {
        return values(gatherBytes(block, positions, group));
    }
    [[gnu::always_inline]] static Vector of(Vector block, Vector next, Vector positions, int group) {
        return values(gatherBytes(block, next, positions, group));
    }

private:
    // Of their bytes, the first one lowest.
    [[gnu::always_inline]] static Vector values(Vector bytes) {
        const Vector six = numbersOf(0x3F);
        const __mmask16 isAscii = _mm512_testn_epi32_mask(bytes, numbersOf(0x80));
        const __mmask16 isThree =
            _mm512_cmpeq_epi32_mask(_mm512_and_si512(bytes, numbersOf(0xE0)), numbersOf(0xE0));
        const Vector second = _mm512_and_si512(_mm512_srli_epi32(bytes, 8), six);
        Vector values =
            _mm512_or_si512(_mm512_slli_epi32(_mm512_and_si512(bytes, numbersOf(0x1F)), 6), second);
        const Vector third = _mm512_and_si512(_mm512_srli_epi32(bytes, 16), six);
        values = _mm512_mask_or_epi32(values, isThree, _mm512_slli_epi32(values, 6), third);
        return _mm512_mask_and_epi32(values, isAscii, bytes, numbersOf(0x7F));
    }
};

// The same as units of 16 bits: half the work.
struct NarrowLanes {
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

// Entries of a table of 16-bit numbers: a load for each is quicker than gathering them, or than taking the
// places out of a register.
class Entries {
public:
    // Every place is one that the table has.
    [[gnu::always_inline]] Entries(const std::uint16_t *table, __m256i places) : table_(table) {
        _mm256_store_si256(reinterpret_cast<__m256i *>(place_), places);
        asm("" : "+m"(place_));
    }
    // The lower eight, and with `both` the upper ones; in short texts mostly there are no more than eight.
    [[gnu::always_inline]] __m256i load(bool both) const {
        const __m256i low = _mm256_castsi128_si256(eight(0));
        return both ? _mm256_inserti128_si256(low, eight(8), 1) : low;
    }

private:
    [[gnu::always_inline]] __m128i eight(unsigned from) const {
        __m128i found = _mm_cvtsi32_si128(entry(from));
        found = _mm_insert_epi16(found, entry(from + 1), 1);
        found = _mm_insert_epi16(found, entry(from + 2), 2);
        found = _mm_insert_epi16(found, entry(from + 3), 3);
        found = _mm_insert_epi16(found, entry(from + 4), 4);
        found = _mm_insert_epi16(found, entry(from + 5), 5);
        found = _mm_insert_epi16(found, entry(from + 6), 6);
        return _mm_insert_epi16(found, entry(from + 7), 7);
    }
    [[gnu::always_inline]] int entry(unsigned lane) const {
        return loadElement(table_, place_[lane]);
    }

    alignas(32) std::uint16_t place_[16];
    const std::uint16_t *table_;
};

// The entries of the lanes in `which`; kUnmapped in the others. The table has a place 0.
[[gnu::always_inline]] inline __m256i entriesAt(const std::uint16_t *table, __m256i places, __mmask16 which) {
    const Entries entries(table, _mm256_maskz_compress_epi16(which, places));
    return _mm256_mask_expand_epi16(unitsOf(file::kUnmapped), which, entries.load(countBits(which) > 8));
}
// The same, quicker where most lanes are in `which`.
[[gnu::always_inline]] inline __m256i entriesOfMost(const std::uint16_t *table, __m256i places,
                                                    __mmask16 which) {
    const Entries entries(table, _mm256_maskz_mov_epi16(which, places));
    return _mm256_mask_mov_epi16(unitsOf(file::kUnmapped), which, entries.load((which >> 8) != 0));
}

// ---- UTF-8 out
// ---------------------------------------------------------------------------------------------

inline constexpr std::ptrdiff_t kUtf8Room = 64; // of 16 characters up to U+FFFF, stored as one register

// Writes the lanes' values, none of them a surrogate, as UTF-8.
[[gnu::always_inline]] inline void putUtf8(Vector values, __mmask16 lanes, Target &target) {
    const Vector low = numbersOf(0x3F);
    const __mmask16 two = _mm512_mask_cmpge_epu32_mask(lanes, values, numbersOf(0x80));
    const __mmask16 three = _mm512_mask_cmpge_epu32_mask(lanes, values, numbersOf(0x800));
    const Vector last = _mm512_and_si512(values, low);
    const Vector twoBytes = _mm512_or_si512(_mm512_or_si512(numbersOf(0x80C0), _mm512_srli_epi32(values, 6)),
                                            _mm512_slli_epi32(last, 8));
    const Vector middle = _mm512_and_si512(_mm512_slli_epi32(values, 2), numbersOf(0x3F00));
    const Vector threeBytes =
        _mm512_or_si512(_mm512_or_si512(numbersOf(0x8080E0), _mm512_srli_epi32(values, 12)),
                        _mm512_or_si512(middle, _mm512_slli_epi32(last, 16)));
    Vector bytes = _mm512_mask_mov_epi32(values, two, twoBytes);
    bytes = _mm512_mask_mov_epi32(bytes, three, threeBytes);
    const std::uint64_t used = _pdep_u64(lanes, 0x1111111111111111) | _pdep_u64(two, 0x2222222222222222) |
                               _pdep_u64(three, 0x4444444444444444);
    const std::uint32_t count = countBits(used);
    _mm512_storeu_si512(target.at, _mm512_maskz_compress_epi8(used, bytes));
    target.at += count;
}

// The same for the first `count` of 32 units, none of them above 7FF.
[[gnu::always_inline]] inline void putShortUtf8(Vector units, std::uint32_t count, Target &target) {
    constexpr int kAndOr = 0xEA;
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

// ---- UTF-8 in
// ----------------------------------------------------------------------------------------------

// Sinks: kAsciiRoom for 64 ASCII characters, kBlockRoom for 64 bytes of any kind, kRoom for 16 characters;
// putAscii writes the `count` low bytes; put writes lanes, of the kind that Lanes makes, and gives those that
// it refuses, having written the ones before the first of them.
struct Utf16Sink {
    using Lanes = NarrowLanes;
    static constexpr std::ptrdiff_t kAsciiRoom = 128;
    static constexpr std::ptrdiff_t kBlockRoom = 128 + 32;
    static constexpr std::ptrdiff_t kRoom = 32;

    [[gnu::always_inline]] static void putAscii(Vector block, std::uint32_t count, Target &target) {
        _mm512_storeu_si512(target.at, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(block)));
        _mm512_storeu_si512(target.at + 64, _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(block, 1)));
        target.at += std::ptrdiff_t{count} * 2;
    }
    [[gnu::always_inline]] static __mmask16 put(__m256i values, __mmask16 lanes, Target &target) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(target.at), values);
        target.at += std::ptrdiff_t{countBits(lanes)} * 2;
        return 0;
    }
};

struct Utf32Sink {
    using Lanes = WideLanes;
    static constexpr std::ptrdiff_t kAsciiRoom = 256;
    static constexpr std::ptrdiff_t kBlockRoom = 256 + 64;
    static constexpr std::ptrdiff_t kRoom = 64;

    [[gnu::always_inline]] static void putAscii(Vector block, std::uint32_t count, Target &target) {
        _mm512_storeu_si512(target.at, _mm512_cvtepu8_epi32(_mm512_castsi512_si128(block)));
        _mm512_storeu_si512(target.at + 64, _mm512_cvtepu8_epi32(_mm512_extracti32x4_epi32(block, 1)));
        _mm512_storeu_si512(target.at + 128, _mm512_cvtepu8_epi32(_mm512_extracti32x4_epi32(block, 2)));
        _mm512_storeu_si512(target.at + 192, _mm512_cvtepu8_epi32(_mm512_extracti32x4_epi32(block, 3)));
        target.at += std::ptrdiff_t{count} * 4;
    }
    [[gnu::always_inline]] static __mmask16 put(Vector values, __mmask16 lanes, Target &target) {
        _mm512_storeu_si512(target.at, values);
        target.at += std::ptrdiff_t{countBits(lanes)} * 4;
        return 0;
    }
};

struct PageSink {
    static constexpr std::ptrdiff_t kAsciiRoom = 64;
    static constexpr std::ptrdiff_t kBlockRoom = 64 + 64;
    static constexpr std::ptrdiff_t kRoom = 32;

    [[gnu::always_inline]] static void putAscii(Vector block, std::uint32_t count, Target &target) {
        _mm512_storeu_si512(target.at, block);
        target.at += count;
    }
};

// The windows of single-byte pages are small: they fit registers, where looking up costs a fraction of
// loading each entry.
struct ByteRowSink : PageSink {
    using Lanes = WideLanes;
    static constexpr std::uint32_t kParts = 8;
    static constexpr std::uint32_t kRegisterSpan = kParts * 32; // indexes

    Vector lowest;
    Vector span;
    Vector base;
    Vector part[kParts];

    static bool fits(const MappingBody &body) {
        const file::MappingGroup &group = body.groups[2];
        return group.reverseCount != 0 && group.highest - group.lowest < kRegisterSpan;
    }
    // The body's window fits.
    explicit ByteRowSink(const MappingBody &body)
        : lowest(numbersOf(body.groups[2].lowest)),
          span(numbersOf(body.groups[2].highest - body.groups[2].lowest + 1)),
          base(numbersOf(body.groups[2].firstTrail - 1u)) {
        const std::ptrdiff_t count = body.groups[2].highest - body.groups[2].lowest + 1;
        for (std::uint32_t i = 0; i < kParts; ++i) {
            const std::ptrdiff_t left = count - static_cast<std::ptrdiff_t>(32 * i);
            const auto lanes = static_cast<__mmask32>(left <= 0 ? 0 : lowBits(left));
            part[i] = _mm512_maskz_loadu_epi16(
                lanes, reinterpret_cast<const std::uint8_t *>(body.groups[2].reverse) + std::size_t{64} * i);
        }
    }
    // The entries at places below kRegisterSpan.
    [[gnu::always_inline]] Vector entries(Vector places) const {
        const __mmask16 second = _mm512_test_epi32_mask(places, numbersOf(0x40));
        const __mmask16 third = _mm512_test_epi32_mask(places, numbersOf(0x80));
        const Vector low = _mm512_mask_mov_epi32(_mm512_permutex2var_epi16(part[0], places, part[1]), second,
                                                 _mm512_permutex2var_epi16(part[2], places, part[3]));
        const Vector high = _mm512_mask_mov_epi32(_mm512_permutex2var_epi16(part[4], places, part[5]), second,
                                                  _mm512_permutex2var_epi16(part[6], places, part[7]));
        return _mm512_and_si512(_mm512_mask_mov_epi32(low, third, high), numbersOf(0xFFFF));
    }
    [[gnu::always_inline]] __mmask16 put(Vector values, __mmask16 lanes, Target &target) const {
        const __mmask16 beyondAscii = _mm512_mask_cmpge_epu32_mask(lanes, values, numbersOf(0x80));
        const Vector places = _mm512_sub_epi32(values, lowest);
        const __mmask16 inside = _mm512_mask_cmplt_epu32_mask(beyondAscii, places, span);
        const Vector found = _mm512_mask_mov_epi32(numbersOf(file::kUnmapped), inside, entries(places));
        const __mmask16 refused =
            _mm512_mask_cmpeq_epi32_mask(beyondAscii, found, numbersOf(file::kUnmapped));
        const __mmask16 good = lanesBefore(lanes, refused);
        const Vector bytes = _mm512_mask_add_epi32(values, beyondAscii, found, base);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target.at), _mm512_cvtepi32_epi8(bytes));
        target.at += countBits(good);
        return refused;
    }
};

struct PairSink : PageSink {
    using Lanes = NarrowLanes;

    const MappingFacts &facts;
    const MappingBody &body;
    const std::uint16_t *window;
    __m256i lowest;

    explicit PairSink(const MappingBody &page)
        : facts(factsOf(page)), body(page),
          // Without a window nothing lies inside, and its first entry is looked at all the same.
          window(page.groups[2].reverseCount != 0 ? page.groups[2].reverse : page.groups[2].values),
          lowest(unitsOf(page.groups[2].lowest)) {}

    // The indexes of the lanes outside the window: kana and letters by stretches, punctuation one by one.
    [[gnu::always_inline]] __m256i besideWindow(__m256i values, __mmask16 lanes, __m256i found) const {
        const auto within = [values, lanes](unsigned begin, unsigned count) {
            return _mm256_mask_cmplt_epu16_mask(lanes, _mm256_sub_epi16(values, unitsOf(begin)),
                                                unitsOf(count));
        };
        static_assert(kKanaBlocks + kLetterBlocks == 8 && sizeof(LinearBlock) == 4);
        static_assert(offsetof(MappingFacts, letters) == offsetof(MappingFacts, kana) + 4 * kKanaBlocks &&
                      offsetof(MappingFacts, kana) == 0);
        const auto blocks = loadNumber<__m256i>(&facts);
        // `number`: twice that of the block, in its low four bits.
        const auto linear = [&found, values, blocks](__mmask16 which, __m256i number) {
            const __m256i block = _mm256_permutexvar_epi16(number, blocks);
            const __m256i delta = _mm256_permutexvar_epi16(_mm256_or_si256(number, unitsOf(1)), blocks);
            const __m256i step = _mm256_sub_epi16(_mm256_and_si256(values, unitsOf(31)),
                                                  _mm256_and_si256(block, unitsOf(0xFF)));
            const __mmask16 hit = _mm256_mask_cmplt_epu16_mask(which, step, _mm256_srli_epi16(block, 8));
            found = _mm256_mask_add_epi16(found, hit, values, delta);
        };
        const auto onePerValue = [&found, values](__mmask16 which, const std::uint8_t *table) {
            const auto low = loadNumber<__m256i>(table);
            const __m256i high = _mm256_maskz_loadu_epi16((1u << (kPunctuation - 16)) - 1, table + 32);
            found = _mm256_mask_mov_epi16(found, which, _mm256_permutex2var_epi16(low, values, high));
        };
        const auto twiceBlock = [values](unsigned begin) {
            return _mm256_and_si256(_mm256_srli_epi16(_mm256_sub_epi16(values, unitsOf(begin)), 4),
                                    unitsOf(0xE));
        };
        linear(within(kKanaBegin, 32 * kKanaBlocks), twiceBlock(kKanaBegin));
        onePerValue(within(kPunctuationBegin, kPunctuation), body.groups[1].unusedA);
        for (std::uint32_t i = 0; i < kSoundMarks; ++i)
            found = _mm256_mask_mov_epi16(
                found, _mm256_mask_cmpeq_epi16_mask(lanes, values, unitsOf(kSoundMarksBegin + i)),
                unitsOf(facts.marks[i]));
        if (const __mmask16 fullWidth = within(kWidePunctuationBegin, 0x100); fullWidth != 0) {
            onePerValue(within(kWidePunctuationBegin, kPunctuation), body.groups[2].unusedA);
            linear(within(kLettersBegin, 32 * kLetterBlocks),
                   _mm256_add_epi16(twiceBlock(kLettersBegin), unitsOf(2 * kKanaBlocks)));
        }
        // No index is 0: there it means none, as in the lanes that nothing was found for.
        return _mm256_mask_mov_epi16(found, _mm256_testn_epi16_mask(found, found), unitsOf(file::kUnmapped));
    }

    [[gnu::always_inline]] __mmask16 put(__m256i values, __mmask16 lanes, Target &target) const {
        const PairUnits &units = facts.units;
        const __mmask16 beyondAscii = _mm256_mask_cmpge_epu16_mask(lanes, values, unitsOf(0x80));
        const __m256i places = _mm256_sub_epi16(values, lowest);
        const __mmask16 inside = _mm256_mask_cmplt_epu16_mask(beyondAscii, places, unitsOf(units.span));
        __m256i found = entriesAt(window, places, inside);
        const auto outside = static_cast<__mmask16>(beyondAscii & ~inside);
        found = besideWindow(values, outside, found);
        const __mmask16 refused = _mm256_mask_cmpeq_epi16_mask(beyondAscii, found, unitsOf(file::kUnmapped));
        const __mmask16 good = lanesBefore(lanes, refused);
        const __m256i place = _mm256_sub_epi16(found, unitsOf(1));
        const __m256i row = _mm256_srl_epi16(_mm256_mulhi_epu16(place, unitsOf(units.reciprocal)),
                                             _mm_cvtsi32_si128(units.reciprocalShift));
        __m256i code = _mm256_add_epi16(_mm256_add_epi16(unitsOf(units.codeBase), found),
                                        _mm256_mullo_epi16(row, unitsOf(units.rowStep)));
        if (units.trailShift != 0) {
            const __mmask16 behind =
                _mm256_cmpgt_epu16_mask(_mm256_and_si256(code, unitsOf(0xFF)), unitsOf(units.trailGapLow));
            code = _mm256_mask_add_epi16(code, behind, code, unitsOf(units.trailShift));
        }
        if (units.leadShift != 0) {
            const __mmask16 behind = _mm256_cmpgt_epu16_mask(code, unitsOf(units.leadGapEnd));
            code = _mm256_mask_add_epi16(code, behind, code, unitsOf(units.leadShift));
        }
        // Lead byte first.
        const __m256i bytes = _mm256_mask_shldi_epi16(values, beyondAscii, code, code, 8);
        const std::uint32_t used = _pdep_u32(good, 0x55555555) |
                                   _pdep_u32(static_cast<std::uint32_t>(good & beyondAscii), 0xAAAAAAAA);
        const std::uint32_t count = countBits(used);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(target.at), _mm256_maskz_compress_epi8(used, bytes));
        target.at += count;
        return refused;
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
            const auto values = Sink::Lanes::of(block, next, positions, group);
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
    if (source.end - source.at >= 128)
        utf8Blocks(sink, source, out);
    const std::uint8_t *at = source.at;
    Target target = out;
    const Vector counting = countingBytes();
    while (at < source.end) {
        const std::ptrdiff_t left = source.end - at;
        const std::uint32_t size = left < 64 ? static_cast<std::uint32_t>(left) : 64;
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (notAscii == 0) {
            if (target.end - target.at < Sink::kAsciiRoom)
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
            const auto values = Sink::Lanes::of(block, positions, group);
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

// ---- Units in
// ----------------------------------------------------------------------------------------------

[[gnu::always_inline]] inline __mmask32 surrogates16(Vector units) {
    return _mm512_cmpeq_epi16_mask(_mm512_and_si512(units, _mm512_set1_epi16(static_cast<short>(0xF800))),
                                   _mm512_set1_epi16(static_cast<short>(0xD800)));
}
// Surrogates and what lies beyond U+FFFF.
[[gnu::always_inline]] inline __mmask16 odd32(Vector units) {
    return static_cast<__mmask16>(
        _mm512_cmpeq_epi32_mask(_mm512_and_si512(units, numbersOf(0xFFFFF800)), numbersOf(0xD800)) |
        _mm512_cmpge_epu32_mask(units, numbersOf(0x10000)));
}

[[gnu::always_inline]] inline std::uint32_t smaller(std::ptrdiff_t a, std::uint32_t b) {
    return a < static_cast<std::ptrdiff_t>(b) ? static_cast<std::uint32_t>(a) : b;
}

// ---- Pages in
// ----------------------------------------------------------------------------------------------

// 128 values by the low seven bits of 32 bytes.
struct RowTable {
    Vector part[4];

    explicit RowTable(const MappingBody &body) {
        const auto *const values = reinterpret_cast<const std::uint8_t *>(body.groups[2].values) +
                                   (0x80 - body.groups[2].firstTrail + 1) * 2;
        for (int i = 0; i < 4; ++i)
            part[i] = _mm512_loadu_si512(values + 64 * i);
    }
    [[gnu::always_inline]] Vector valuesOf(Vector bytes, __mmask32 beyondAscii) const {
        const Vector low = _mm512_permutex2var_epi16(part[0], bytes, part[1]);
        const Vector high = _mm512_permutex2var_epi16(part[2], bytes, part[3]);
        const __mmask32 upper = _mm512_test_epi16_mask(bytes, _mm512_set1_epi16(0x40));
        return _mm512_mask_mov_epi16(bytes, beyondAscii, _mm512_mask_mov_epi16(low, upper, high));
    }
};

// ---- Japanese
// ----------------------------------------------------------------------------------------------

[[gnu::always_inline]] inline __m128i fewOf(unsigned byte) {
    return _mm_set1_epi8(static_cast<char>(byte));
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

struct ShiftJisText {
    static std::uint64_t leadValues(Vector bytes) {
        return between(bytes, 0x81, 0x9F) | between(bytes, 0xE0, 0xEF);
    }
    static std::uint64_t oddSingles(Vector bytes) {
        return between(bytes, 0xA1, 0xDF); // half-width katakana
    }
    static std::uint64_t oddTrails(Vector bytes) {
        return ~between(bytes, 0x40, 0xFC);
    }
    // `next` and `before` are the bytes one place further and one place back.
    [[gnu::always_inline]] static Vector convert(Vector bytes, Vector next, Vector, std::uint64_t leads,
                                                 std::uint64_t trails) {
        const std::uint64_t low = _mm512_cmplt_epu8_mask(bytes, bytesOf(0xA0));
        Vector first = _mm512_sub_epi8(_mm512_add_epi8(bytes, bytes),
                                       _mm512_mask_mov_epi8(bytesOf(0xE0), low, bytesOf(0x60)));
        first = _mm512_mask_sub_epi8(first, _mm512_cmplt_epu8_mask(next, bytesOf(0x9F)), first, bytesOf(1));
        Vector shift =
            _mm512_mask_mov_epi8(bytesOf(0x02), _mm512_cmplt_epu8_mask(bytes, bytesOf(0x9F)), bytesOf(0x60));
        shift = _mm512_mask_mov_epi8(shift, _mm512_cmplt_epu8_mask(bytes, bytesOf(0x80)), bytesOf(0x61));
        const Vector made = _mm512_mask_mov_epi8(bytes, leads, first);
        return _mm512_mask_add_epi8(made, trails, bytes, shift);
    }
};

struct EucText {
    static std::uint64_t leadValues(Vector bytes) {
        return between(bytes, 0xA1, 0xFE);
    }
    static std::uint64_t oddSingles(Vector bytes) {
        return _mm512_cmpeq_epi8_mask(bytes, bytesOf(0x8E)); // the shift before half-width katakana
    }
    static std::uint64_t oddTrails(Vector bytes) {
        return ~leadValues(bytes);
    }
    [[gnu::always_inline]] static Vector convert(Vector bytes, Vector, Vector before, std::uint64_t leads,
                                                 std::uint64_t trails) {
        const Vector row = _mm512_sub_epi8(bytes, bytesOf(0x80));
        const std::uint64_t low = _mm512_cmplt_epu8_mask(row, bytesOf(0x5F));
        const Vector first = _mm512_add_epi8(_mm512_avg_epu8(row, _mm512_setzero_si512()),
                                             _mm512_mask_mov_epi8(bytesOf(0xB0), low, bytesOf(0x70)));
        const std::uint64_t odd = _mm512_test_epi8_mask(before, bytesOf(1));
        Vector shift = bytesOf(0x7E);
        shift = _mm512_mask_mov_epi8(shift, odd, bytesOf(0x20));
        shift = _mm512_mask_mov_epi8(shift, odd & _mm512_cmplt_epu8_mask(row, bytesOf(0x60)), bytesOf(0x1F));
        const Vector made = _mm512_mask_mov_epi8(bytes, leads, first);
        return _mm512_mask_add_epi8(made, trails, row, shift);
    }
};

// Blocks follow each other at a fixed distance: a pair that begins with a block's last byte is carried into
// the next one, so that no block waits for the end of the one before.
template <typename Text>
[[gnu::always_inline]] inline void convertJapanese(Source &source, Target &out) {
    const Vector placeBefore = _mm512_sub_epi8(countingBytes(), bytesOf(1));
    const std::uint8_t *at = source.at;
    Target target = out;
    std::uint64_t carried = 0; // 1: the block's first byte is a trail
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, 64);
        if (target.end - target.at < static_cast<std::ptrdiff_t>(size))
            break;
        const std::uint64_t whole = lowBits(size);
        const Vector bytes = _mm512_maskz_loadu_epi8(whole, at);
        const Vector next = _mm512_maskz_loadu_epi8(lowBits(source.end - at - 1), at + 1);
        // Before the first byte of the source nothing is read: it is no trail.
        const Vector before = carried != 0 ? _mm512_maskz_loadu_epi8(whole, at - 1)
                                           : _mm512_permutexvar_epi8(placeBefore, bytes);
        const std::uint64_t leadValues = Text::leadValues(bytes) & ~carried;
        const std::uint64_t trails = trailsBehind(leadValues, carried) & whole;
        const std::uint64_t leads = leadValues & ~trails;
        const std::uint64_t oddSingles = Text::oddSingles(bytes) & ~trails & ~leads & whole;
        const std::uint64_t oddTrails = Text::oddTrails(bytes) & trails;
        store(target, Text::convert(bytes, next, before, leads, trails), size);
        if ((oddSingles | oddTrails) != 0) {
            // The characters before the first odd one stay; a pair begins one byte before its trail.
            const auto single = static_cast<std::ptrdiff_t>(firstBitOr64(oddSingles));
            const auto pair = static_cast<std::ptrdiff_t>(firstBitOr64(oddTrails)) - 1;
            const std::ptrdiff_t good = single < pair || oddTrails == 0 ? single : pair;
            at += good;
            target.at += good;
            carried = 0;
            break;
        }
        at += size;
        target.at += size;
        carried = leads >> (size - 1) & 1;
    }
    // A pair without its trail, at the end of the source or of the target's room, is left.
    source.at = at - static_cast<std::ptrdiff_t>(carried);
    out.at = target.at - static_cast<std::ptrdiff_t>(carried);
}

} // namespace

void mapBytes(const std::uint8_t *map, Source &source, Target &target) {
    const Vector a = _mm512_loadu_si512(map);
    const Vector b = _mm512_loadu_si512(map + 64);
    const Vector c = _mm512_loadu_si512(map + 128);
    const Vector d = _mm512_loadu_si512(map + 192);
    const std::uint8_t *at = source.at;
    Target running = target;
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, 64);
        const Vector bytes = _mm512_maskz_loadu_epi8(lowBits(size), at);
        const Vector low = _mm512_permutex2var_epi8(a, bytes, b);
        const Vector high = _mm512_permutex2var_epi8(c, bytes, d);
        store(running, _mm512_mask_mov_epi8(low, _mm512_movepi8_mask(bytes), high), size);
        at += size;
        running.at += size;
    }
    source.at = at;
    target.at = running.at;
}

void byteRowToUtf8(const MappingBody &body, Source &source, Target &out) {
    const RowTable table(body);
    const std::uint8_t *at = source.at;
    Target target = out;
    while (at < source.end && target.end - target.at >= 2 * kUtf8Room) {
        const std::uint32_t size = smaller(source.end - at, 64);
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (notAscii == 0) {
            _mm512_storeu_si512(target.at, block);
            at += size;
            target.at += size;
            continue;
        }
        const Vector values = table.valuesOf(_mm512_cvtepu8_epi16(_mm512_castsi512_si256(block)),
                                             static_cast<__mmask32>(notAscii));
        const std::uint32_t half = size < 32 ? size : 32;
        const auto inHalf = static_cast<__mmask32>(lowBits(half));
        // Unmapped ones are FFFF.
        if (_mm512_mask_cmpge_epu16_mask(inHalf, values, _mm512_set1_epi16(0x800)) == 0) {
            putShortUtf8(values, half, target);
            at += half;
            continue;
        }
        const std::uint32_t unmapped = _mm512_cmpeq_epi16_mask(values, _mm512_set1_epi16(-1));
        const std::uint32_t good = unmapped == 0 ? half : firstBitOr64(unmapped);
        const std::uint64_t lanes = lowBits(good);
        putUtf8(_mm512_cvtepu16_epi32(_mm512_castsi512_si256(values)), static_cast<__mmask16>(lanes), target);
        if (good > 16)
            putUtf8(_mm512_cvtepu16_epi32(_mm512_extracti64x4_epi64(values, 1)),
                    static_cast<__mmask16>(lanes >> 16), target);
        if (unmapped != 0) {
            at += good;
            break;
        }
        at += half;
    }
    source.at = at;
    out.at = target.at;
}

namespace {

// What a page has for the 128 values of two neighbouring lead bytes, by the low six bits of the trail byte:
// as good as a whole alphabet. 0 where it has nothing.
class LeadPair {
public:
    [[nodiscard]] unsigned lead() const {
        return lead_;
    }
    // The trail bytes behind the two lead bytes become the page's bytes.
    [[gnu::always_inline]] [[nodiscard]] Vector bytesOf(Vector block, std::uint64_t behindEven,
                                                        std::uint64_t behindOdd) const {
        const Vector made = _mm512_mask_permutexvar_epi8(block, behindEven, block, even_);
        return _mm512_mask_permutexvar_epi8(made, behindOdd, block, odd_);
    }
    // Nothing is changed for lead bytes of no two-byte character.
    [[gnu::noinline]] void take(const MappingBody &body, unsigned evenLead) {
        if (evenLead < 0xC2 || evenLead > 0xDE)
            return;
        lead_ = evenLead;
        const int first = static_cast<int>((evenLead & 0x1F) << 6);
        even_ = sixtyFour(body.groups[2], first);
        odd_ = sixtyFour(body.groups[2], first + 64);
    }

private:
    static Vector sixtyFour(const file::MappingGroup &group, int first) {
        return _mm512_inserti64x4(_mm512_castsi256_si512(thirtyTwo(group, first)),
                                  thirtyTwo(group, first + 32), 1);
    }
    // Of the values that the body's window has; only those are read.
    static __m256i thirtyTwo(const file::MappingGroup &group, int first) {
        const int place = first - group.lowest;
        const int left = group.highest - group.lowest + 1 - place;
        const std::uint64_t begun = lowBits(static_cast<std::size_t>(std::clamp(-place, 0, 32)));
        const std::uint64_t within = lowBits(static_cast<std::size_t>(std::clamp(left, 0, 32)));
        const auto lanes = static_cast<__mmask32>(within & ~begun);
        const auto *const at = reinterpret_cast<const void *>(
            reinterpret_cast<std::uintptr_t>(group.reverse) +
            static_cast<std::uintptr_t>(static_cast<std::intptr_t>(place) * 2));
        const Vector indexes = _mm512_maskz_loadu_epi16(lanes, at);
        const __mmask32 mapped = _mm512_mask_cmpneq_epi16_mask(lanes, indexes, _mm512_set1_epi16(-1));
        const Vector base = _mm512_set1_epi16(static_cast<short>(group.firstTrail - 1));
        return _mm512_cvtepi16_epi8(_mm512_maskz_add_epi16(mapped, indexes, base));
    }

    Vector even_ = _mm512_setzero_si512();
    Vector odd_ = _mm512_setzero_si512();
    unsigned lead_ = 0xC0; // the even one of the two; no character begins with C0
};

// Text of ASCII, Latin-1, and characters of one lead byte and its neighbour, which most alphabets do with:
// the bytes are made where the trail bytes stand, and the lead bytes are left out. Stops before any other
// character.
[[gnu::always_inline]] inline void alphabetToByteRow(const MappingBody &body, LeadPair &latin, LeadPair &own,
                                                     Source &source, Target &out) {
    constexpr unsigned kLatin = 0xC2;
    const std::uint8_t *at = source.at;
    Target target = out;
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, 64);
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (target.end - target.at < static_cast<std::ptrdiff_t>(size))
            break;
        if (notAscii == 0) {
            store(target, block, size);
            at += size;
            target.at += size;
            continue;
        }
        const std::uint64_t lead = _mm512_cmpge_epu8_mask(block, bytesOf(0xC0));
        const std::uint64_t latinEven = _mm512_cmpeq_epi8_mask(block, bytesOf(kLatin));
        const std::uint64_t latinOdd = _mm512_cmpeq_epi8_mask(block, bytesOf(kLatin + 1));
        if ((latinEven | latinOdd) != 0 && latin.lead() != kLatin)
            latin.take(body, kLatin);
        const std::uint64_t others = lead & ~(latinEven | latinOdd);
        if (others != 0) {
            const unsigned first = at[firstBitOr64(others)] & 0xFEU;
            if (first != own.lead())
                own.take(body, first);
        }
        const std::uint64_t even = _mm512_cmpeq_epi8_mask(block, bytesOf(own.lead()));
        const std::uint64_t odd = _mm512_cmpeq_epi8_mask(block, bytesOf(own.lead() + 1));
        const std::uint64_t leads = even | odd | latinEven | latinOdd;
        const std::uint64_t trails = notAscii & ~lead;
        const Vector made =
            latin.bytesOf(own.bytesOf(block, even << 1, odd << 1), latinEven << 1, latinOdd << 1);
        const std::uint64_t wrong =
            (lead ^ leads) | (trails ^ leads << 1) | (trails & _mm512_testn_epi8_mask(made, made));
        // A lead byte right before the end belongs to what comes then.
        std::uint32_t limit = firstBitOr64(wrong);
        limit = limit < size ? limit : size;
        if (limit != 0)
            limit -= static_cast<std::uint32_t>(leads >> (limit - 1) & 1);
        const std::uint64_t kept = ~leads & lowBits(limit);
        const std::uint32_t count = countBits(kept);
        store(target, _mm512_maskz_compress_epi8(kept, made), count);
        at += limit;
        target.at += count;
        if (wrong != 0)
            break;
    }
    source.at = at;
    out.at = target.at;
}

} // namespace

namespace {

// The value of the well-formed character of two or three bytes at the source's place; 0 for any other.
std::uint32_t valueAt(const Source &source) {
    const std::uint8_t *const at = source.at;
    const std::ptrdiff_t left = source.end - at;
    const auto isTrail = [at](int place) { return (at[place] & 0xC0) == 0x80; };
    if (left >= 2 && (*at & 0xE0) == 0xC0 && isTrail(1))
        return (at[0] & 0x1FU) << 6 | (at[1] & 0x3FU);
    if (left >= 3 && (*at & 0xF0) == 0xE0 && isTrail(1) && isTrail(2))
        return (at[0] & 0xFU) << 12 | (at[1] & 0x3FU) << 6 | (at[2] & 0x3FU);
    return 0;
}

// Converts a single character the plain way; false where that ends with anything but success.
bool putPlainly(const MappingBody &body, std::ptrdiff_t length, Source &source, Target &target) {
    Source piece{source.at, source.at + length, source.behind};
    Target room = target;
    if (velnls::utf8ToPage(body, piece, room) != NLS_OK || piece.at != piece.end)
        return false;
    source.at = piece.at;
    target = room;
    return true;
}

} // namespace

void utf8ToByteRow(const MappingBody &body, Source &source, Target &target) {
    constexpr std::ptrdiff_t kFew = 32; // bytes that the general way is tried for
    constexpr std::ptrdiff_t kMany = 4096;
    if (!ByteRowSink::fits(body))
        return;
    LeadPair latin;
    LeadPair own;
    std::ptrdiff_t most = kFew;
    for (;;) {
        const std::uint8_t *const begin = source.at;
        alphabetToByteRow(body, latin, own, source, target);
        if (source.at == source.end)
            return;
        // Dashes, quotes and the like stand in no window, and among letters that do.
        const std::uint32_t value = valueAt(source);
        const bool isOutside = value < body.groups[2].lowest || value > body.groups[2].highest;
        if (value != 0 && isOutside) {
            if (!putPlainly(body, value < 0x800 ? 2 : 3, source, target))
                return;
            continue;
        }
        // In text of several alphabets the general way goes further each time.
        most = source.at - begin >= kFew ? kFew : std::min(2 * most, kMany);
        Source piece{source.at, source.at + std::min(source.end - source.at, most)};
        fromUtf8(ByteRowSink(body), piece, target);
        if (piece.at == source.at)
            return;
        source.at = piece.at;
    }
}

void utf8ToPairs(const MappingBody &body, Source &source, Target &target) {
    fromUtf8(PairSink(body), source, target);
}

void pairsToUtf8(const MappingBody &body, Source &source, Target &target) {
    const file::MappingGroup &group = body.groups[2];
    while (source.at < source.end) {
        const std::uint32_t size = smaller(source.end - source.at, 64);
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), source.at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (target.end - target.at < 64)
            return;
        if (notAscii == 0) {
            _mm512_storeu_si512(target.at, block);
            source.at += size;
            target.at += size;
            continue;
        }
        const std::uint64_t leads = atLeast(block, group.firstLead) & atMost(block, group.lastLead) &
                                    (atMost(block, group.leadGapLow) | atLeast(block, group.leadGapHigh));
        const std::uint64_t trails = trailsBehind(leads) & lowBits(size);
        // A single byte beyond ASCII, or a pair that the block or the source cuts, ends the stretch.
        const std::uint64_t odd =
            (notAscii & ~leads & ~trails) | (leads & ~trails & std::uint64_t{1} << (size - 1));
        std::uint32_t limit = firstBitOr64(odd);
        limit = limit < size ? limit : size;
        const std::uint64_t starts = ~trails & lowBits(limit);
        // The first byte of each character, and the one behind it.
        Vector firsts = _mm512_maskz_compress_epi8(starts, block);
        Vector seconds =
            _mm512_maskz_compress_epi8(starts, _mm512_maskz_loadu_epi8(lowBits(size - 1), source.at + 1));
        std::uint32_t count = countBits(starts);
        std::uint32_t end = limit;
        bool stopped = count == 0;
        for (int group16 = 0; count != 0; ++group16) {
            if (count < 16 && group16 != 0 && size == 64) {
                end = startNumber(starts, 16 * static_cast<std::uint32_t>(group16));
                break;
            }
            std::uint32_t refusedAt = 0;
            __mmask16 refused = 0;
            if (target.end - target.at < kUtf8Room) {
                refused = 1;
            } else {
                const std::uint32_t taken = count < 16 ? count : 16;
                const auto lanes = static_cast<__mmask16>(lowBits(taken));
                const __m128i lead = _mm512_castsi512_si128(firsts);
                const __m128i trail = _mm512_castsi512_si128(seconds);
                firsts = _mm512_alignr_epi64(firsts, firsts, 2);
                seconds = _mm512_alignr_epi64(seconds, seconds, 2);
                const auto pairs = static_cast<__mmask16>(lanes & _mm_movepi8_mask(lead));
                const __mmask16 behindGap = _mm_cmpgt_epu8_mask(lead, fewOf(group.leadGapLow));
                const __m128i row8 = _mm_sub_epi8(lead, fewOf(group.firstLead));
                const __m128i row = _mm_mask_sub_epi8(row8, behindGap, row8, fewOf(group.leadShift));
                const __mmask16 behind = _mm_cmpgt_epu8_mask(trail, fewOf(group.trailGap1Low));
                const __mmask16 inGap = _mm_mask_cmplt_epu8_mask(behind, trail, fewOf(group.trailGap1High));
                const __m128i column8 = _mm_sub_epi8(trail, fewOf(group.firstTrail));
                const __m128i column = _mm_mask_sub_epi8(column8, behind, column8, fewOf(group.trailShift1));
                const auto inside = static_cast<__mmask16>(
                    _mm_mask_cmplt_epu8_mask(pairs, column, fewOf(group.trailsPerLead)) & ~inGap);
                const __m256i trailsPerLead = unitsOf(group.trailsPerLead);
                // Places count from 1.
                const __m256i found = entriesOfMost(
                    group.values + 1,
                    _mm256_add_epi16(_mm256_mullo_epi16(_mm256_cvtepu8_epi16(row), trailsPerLead),
                                     _mm256_cvtepu8_epi16(column)),
                    inside);
                refused = _mm256_mask_cmpeq_epi16_mask(pairs, found, unitsOf(file::kUnmapped));
                const __m256i values = _mm256_mask_mov_epi16(_mm256_cvtepu8_epi16(lead), pairs, found);
                putUtf8(_mm512_cvtepu16_epi32(values), lanesBefore(lanes, refused), target);
                count -= taken;
            }
            if (refused != 0) {
                refusedAt = 16 * static_cast<std::uint32_t>(group16) +
                            static_cast<std::uint32_t>(_tzcnt_u32(refused));
                end = startNumber(starts, refusedAt);
                stopped = true;
                break;
            }
        }
        source.at += end;
        if (stopped)
            return;
    }
}

void utf8ToUtf16(Source &source, Target &target) {
    fromUtf8(Utf16Sink{}, source, target);
}

void utf8ToUtf32(Source &source, Target &target) {
    fromUtf8(Utf32Sink{}, source, target);
}

// In the loops over units a whole register moves the position by a constant: the next load then waits for no
// result of this one.

void utf16ToUtf8(Source &source, Target &out) {
    const std::uint8_t *at = source.at;
    Target target = out;
    while (source.end - at >= 2 && target.end - target.at >= 2 * kUtf8Room) {
        const std::uint32_t size = smaller((source.end - at) / 2, 32);
        const Vector units = _mm512_maskz_loadu_epi16(static_cast<__mmask32>(lowBits(size)), at);
        if (_mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(0x80)) == 0) {
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(target.at), _mm512_cvtepi16_epi8(units));
            at += std::ptrdiff_t{size} * 2;
            target.at += size;
            continue;
        }
        const std::uint32_t odd = surrogates16(units);
        const std::uint32_t good = odd == 0 ? size : firstBitOr64(odd);
        const std::uint64_t lanes = lowBits(good);
        putUtf8(_mm512_cvtepu16_epi32(_mm512_castsi512_si256(units)), static_cast<__mmask16>(lanes), target);
        if (good > 16)
            putUtf8(_mm512_cvtepu16_epi32(_mm512_extracti64x4_epi64(units, 1)),
                    static_cast<__mmask16>(lanes >> 16), target);
        if (odd != 0) {
            at += std::ptrdiff_t{good} * 2;
            break;
        }
        at += std::ptrdiff_t{size} * 2;
    }
    source.at = at;
    out.at = target.at;
}

void utf32ToUtf8(Source &source, Target &out) {
    const std::uint8_t *at = source.at;
    Target target = out;
    while (source.end - at >= 4 && target.end - target.at >= kUtf8Room) {
        const std::uint32_t size = smaller((source.end - at) / 4, 16);
        const Vector units = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(lowBits(size)), at);
        if (_mm512_cmpge_epu32_mask(units, numbersOf(0x80)) == 0) {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(target.at), _mm512_cvtepi32_epi8(units));
            at += std::ptrdiff_t{size} * 4;
            target.at += size;
            continue;
        }
        const std::uint32_t odd = odd32(units);
        if (odd != 0) {
            const std::uint32_t good = firstBitOr64(odd);
            putUtf8(units, static_cast<__mmask16>(lowBits(good)), target);
            at += std::ptrdiff_t{good} * 4;
            break;
        }
        putUtf8(units, static_cast<__mmask16>(lowBits(size)), target);
        at += std::ptrdiff_t{size} * 4;
    }
    source.at = at;
    out.at = target.at;
}

void utf16ToUtf32(Source &source, Target &target) {
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    while (source.end - at >= 2 && target.end - to >= 128) {
        const std::uint32_t size = smaller((source.end - at) / 2, 32);
        const Vector units = _mm512_maskz_loadu_epi16(static_cast<__mmask32>(lowBits(size)), at);
        _mm512_storeu_si512(to, _mm512_cvtepu16_epi32(_mm512_castsi512_si256(units)));
        _mm512_storeu_si512(to + 64, _mm512_cvtepu16_epi32(_mm512_extracti64x4_epi64(units, 1)));
        const std::uint32_t odd = surrogates16(units);
        if (odd != 0) {
            at += std::ptrdiff_t{firstBitOr64(odd)} * 2;
            to += std::ptrdiff_t{firstBitOr64(odd)} * 4;
            break;
        }
        at += std::ptrdiff_t{size} * 2;
        to += std::ptrdiff_t{size} * 4;
    }
    source.at = at;
    target.at = to;
}

void utf32ToUtf16(Source &source, Target &target) {
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    while (source.end - at >= 4 && target.end - to >= 32) {
        const std::uint32_t size = smaller((source.end - at) / 4, 16);
        const Vector units = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(lowBits(size)), at);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), _mm512_cvtepi32_epi16(units));
        const std::uint32_t odd = odd32(units);
        if (odd != 0) {
            at += std::ptrdiff_t{firstBitOr64(odd)} * 4;
            to += std::ptrdiff_t{firstBitOr64(odd)} * 2;
            break;
        }
        at += std::ptrdiff_t{size} * 4;
        to += std::ptrdiff_t{size} * 2;
    }
    source.at = at;
    target.at = to;
}

void shiftJisToEuc(Source &source, Target &target) {
    convertJapanese<ShiftJisText>(source, target);
}

void eucToShiftJis(Source &source, Target &target) {
    convertJapanese<EucText>(source, target);
}

} // namespace velnls::avx512

#endif
