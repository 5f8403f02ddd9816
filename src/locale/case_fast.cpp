#include "locale/case_fast.hpp"

#include "core/file_layout.hpp"
#include "locale/common_case.hpp"
#include "locale/masks_sse2.hpp"
#include "locale/pair_masks.hpp"
#include "locale/unicode_case.hpp"

#include <cstring>
#include <initializer_list>

namespace velnls {

namespace {

constexpr std::uint8_t asciiCase(Case direction, std::uint8_t byte) {
    const unsigned first = direction == Case::Upper ? kSmallA : kCapitalA;
    return byte - first < 26 ? static_cast<std::uint8_t>(byte ^ 0x20) : byte;
}

template <Case kCase>
bool isCommon(const UnicodeCaseTable &table) {
    for (const std::uint32_t lead : {0xC2u, 0xC3u, 0xD0u, 0xD1u})
        for (std::uint32_t code = lead << 8 | 0x80; code <= (lead << 8 | 0xBF); ++code)
            if (const std::uint32_t mapped = commonCase(kCase, code);
                mapped != 0 && mapUtf8Case<kCase>(table, code) != mapped)
                return false;
    for (std::uint32_t code = 0xE28080; code <= 0xE280BF; ++code)
        if (mapUtf8Case<kCase>(table, code) != code)
            return false;
    return true;
}

template <Case kCase, typename Map>
bool isAsciiCase(Map map) {
    for (unsigned byte = 0; byte < 0x80; ++byte)
        if (map(byte) != asciiCase(kCase, static_cast<std::uint8_t>(byte)))
            return false;
    return true;
}

// Three-byte characters keep their lead byte, so only those of two bytes and single bytes could fold to
// ASCII.
bool foldsApart(const UnicodeCaseTable &table) {
    for (std::uint32_t code = 0x80; code < 0x100; ++code)
        if ((code < 0xC0 || code >= 0xF8) && mapUtf8Case<Case::Lower>(table, code) < 0x80)
            return false;
    for (unsigned page = 0xC0; page < 0xE0; ++page) {
        if (table.pages[page] == kZeroCasePage)
            continue;
        for (std::uint32_t code = page << 8 | 0x80; code <= (page << 8 | 0xBF); ++code)
            if (const std::uint32_t mapped = mapUtf8Case<Case::Lower>(table, code);
                mapped < 0x80 && (code != kDottedI || mapped != 'i'))
                return false;
    }
    return true;
}

} // namespace

std::uint32_t proveUtf8Case(const UnicodeCaseTable &table) {
    if (!isAsciiCase<Case::Upper>([&](unsigned byte) { return mapUtf8Case<Case::Upper>(table, byte); }) ||
        !isAsciiCase<Case::Lower>([&](unsigned byte) { return mapUtf8Case<Case::Lower>(table, byte); }))
        return 0;
    return kAsciiCase | (isCommon<Case::Upper>(table) && isCommon<Case::Lower>(table) ? kCommonCase : 0) |
           (foldsApart(table) ? kFoldsApart : 0);
}

std::uint32_t proveByteCase(const CharTable &chars, const ByteCaseTable &table) {
    std::uint32_t proofs = kKeepsBytes;
    if (std::memchr(table.upper + 1, 0, 255) != nullptr || std::memchr(table.lower + 1, 0, 255) != nullptr)
        proofs = 0;
    for (unsigned byte = 0; byte < 0x80; ++byte)
        if (chars.trailCount(static_cast<std::uint8_t>(byte)) != 0)
            return proofs;
    const bool ascii = isAsciiCase<Case::Upper>([&](unsigned byte) { return table.upper[byte]; }) &&
                       isAsciiCase<Case::Lower>([&](unsigned byte) { return table.lower[byte]; });
    if (!ascii)
        return proofs;
    proofs |= kAsciiCase | kFoldsApart | kPairCase;
    for (unsigned byte = 0x80; byte < 0x100; ++byte) {
        if (chars.trailCount(static_cast<std::uint8_t>(byte)) != 0)
            continue;
        if (table.lower[byte] < 0x80)
            proofs &= ~kFoldsApart;
        if (table.upper[byte] != byte || table.lower[byte] != byte)
            proofs &= ~kPairCase;
    }
    return proofs;
}

namespace fast {

#if defined(VELNLS_TEXT_VECTORS)

namespace {

constexpr std::size_t kBlock = 16;

[[gnu::always_inline]] inline __m128i all(unsigned value) {
    return _mm_set1_epi8(static_cast<char>(value));
}
[[gnu::always_inline]] inline __m128i isEqual(__m128i bytes, unsigned value) {
    return _mm_cmpeq_epi8(bytes, all(value));
}
[[gnu::always_inline]] inline __m128i isAtLeast(__m128i bytes, unsigned value) {
    return _mm_cmpeq_epi8(_mm_max_epu8(bytes, all(value)), bytes);
}
[[gnu::always_inline]] inline __m128i isInRange(__m128i bytes, unsigned first, unsigned last) {
    const __m128i place = _mm_sub_epi8(bytes, all(first));
    return _mm_cmpeq_epi8(_mm_min_epu8(place, all(last - first)), place);
}
[[gnu::always_inline]] inline unsigned bitsOf(__m128i bytes) {
    return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

template <Case kCase>
[[gnu::always_inline]] inline __m128i mapAsciiBlock(__m128i bytes) {
    constexpr unsigned kFirst = kCase == Case::Upper ? kSmallA : kCapitalA;
    return _mm_xor_si128(bytes, _mm_and_si128(isInRange(bytes, kFirst, kFirst + 25), all(0x20)));
}

// `bytes` begin with a character. False where they hold anything that the kernel is not for; `incomplete` is
// how many bytes at the end are a character's first ones.
template <Case kCase>
[[gnu::always_inline]] inline bool mapCommonBlock(__m128i bytes, __m128i &mapped, unsigned &incomplete) {
    const __m128i before = _mm_slli_si128(bytes, 1);
    const __m128i behindC2 = isEqual(before, 0xC2);
    const __m128i behindC3 = isEqual(before, 0xC3);
    const __m128i behindD0 = isEqual(before, 0xD0);
    const __m128i behindD1 = isEqual(before, 0xD1);
    const __m128i behindE2 = isEqual(before, 0xE2);
    const __m128i allowed = _mm_or_si128(_mm_or_si128(behindC2, behindC3),
                                         _mm_or_si128(_mm_or_si128(behindD0, behindD1), behindE2));
    const __m128i announced = _mm_or_si128(allowed, _mm_slli_si128(behindE2, 1));
    const __m128i trails = _mm_cmplt_epi8(bytes, all(0xC0));
    const __m128i leads = isAtLeast(bytes, 0xC0);
    // Every trail byte is announced, and every lead byte is allowed; the last byte's turn comes later.
    __m128i wrong =
        _mm_or_si128(_mm_xor_si128(announced, trails), _mm_xor_si128(allowed, _mm_slli_si128(leads, 1)));
    wrong = _mm_or_si128(wrong, _mm_andnot_si128(isEqual(bytes, 0x80), behindE2));
    wrong = _mm_or_si128(wrong, _mm_and_si128(behindD1, isAtLeast(bytes, 0xA0)));
    __m128i change;
    if constexpr (kCase == Case::Upper) {
        wrong = _mm_or_si128(wrong, _mm_and_si128(behindC2, isEqual(bytes, 0xB5)));
        wrong = _mm_or_si128(wrong, _mm_and_si128(behindC3, isEqual(bytes, 0xBF)));
        const __m128i latin =
            _mm_andnot_si128(isEqual(bytes, 0xB7), _mm_and_si128(behindC3, isAtLeast(bytes, 0xA0)));
        const __m128i basic = _mm_and_si128(behindD0, isAtLeast(bytes, 0xB0));
        const __m128i toLast = _mm_andnot_si128(isAtLeast(bytes, 0x90), behindD1);
        const __m128i toFirst = _mm_and_si128(isAtLeast(bytes, 0x90), behindD1);
        change = _mm_and_si128(_mm_or_si128(latin, basic), all(0xE0));
        change = _mm_or_si128(change, _mm_and_si128(toLast, all(0x20)));
        change = _mm_or_si128(change, _mm_and_si128(toFirst, all(0xF0)));
        // The lead byte D1 becomes D0.
        change = _mm_add_epi8(change, _mm_srli_si128(behindD1, 1));
    } else {
        const __m128i latin =
            _mm_andnot_si128(_mm_or_si128(isEqual(bytes, 0x97), isAtLeast(bytes, 0x9F)), behindC3);
        const __m128i first = _mm_andnot_si128(isAtLeast(bytes, 0x90), behindD0);
        const __m128i basic = _mm_and_si128(behindD0, isInRange(bytes, 0x90, 0x9F));
        const __m128i last = _mm_and_si128(behindD0, isInRange(bytes, 0xA0, 0xAF));
        change = _mm_and_si128(_mm_or_si128(latin, basic), all(0x20));
        change = _mm_or_si128(change, _mm_and_si128(first, all(0x10)));
        change = _mm_or_si128(change, _mm_and_si128(last, all(0xE0)));
        // The lead byte D0 becomes D1.
        change = _mm_sub_epi8(change, _mm_srli_si128(_mm_or_si128(first, last), 1));
    }
    mapped = _mm_add_epi8(mapAsciiBlock<kCase>(bytes), change);
    incomplete = (bitsOf(leads) >> 15) + 2 * (bitsOf(behindE2) >> 15);
    return bitsOf(wrong) == 0;
}

// Stores the first `count` bytes, 1 to 16, and nothing else.
[[gnu::always_inline]] inline void storeFirst(std::uint8_t *out, __m128i bytes, std::size_t count) {
    if (count == kBlock) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), bytes);
        return;
    }
    const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(bytes));
    const auto put = [](std::uint8_t *at, auto number) { std::memcpy(at, &number, sizeof number); };
    if (count >= 8) {
        put(out, low);
        const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_srli_si128(bytes, 8)));
        if (count > 8) {
            const std::size_t shift = (count - 8) * 8;
            put(out + count - 8, low >> shift | high << (64 - shift));
        }
    } else if (count >= 4) {
        put(out, static_cast<std::uint32_t>(low));
        put(out + count - 4, static_cast<std::uint32_t>(low >> (count - 4) * 8));
    } else {
        out[0] = static_cast<std::uint8_t>(low);
        out[count / 2] = static_cast<std::uint8_t>(low >> count / 2 * 8);
        out[count - 1] = static_cast<std::uint8_t>(low >> (count - 1) * 8);
    }
}

__m128i load(const std::uint8_t *at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}

// Whole blocks of ASCII.
template <Case kCase>
[[gnu::always_inline]] inline void mapAsciiBlocks(CaseStretch &stretch) {
    constexpr std::size_t kStride = 4 * kBlock;
    while (static_cast<std::size_t>(stretch.end - stretch.at) >= kStride && stretch.room >= kStride) {
        __m128i blocks[4];
        for (std::size_t i = 0; i < 4; ++i)
            blocks[i] = load(stretch.at + i * kBlock);
        if (bitsOf(_mm_or_si128(_mm_or_si128(blocks[0], blocks[1]), _mm_or_si128(blocks[2], blocks[3]))) != 0)
            return;
        for (std::size_t i = 0; i < 4; ++i)
            _mm_storeu_si128(reinterpret_cast<__m128i *>(stretch.out + i * kBlock),
                             mapAsciiBlock<kCase>(blocks[i]));
        stretch.advance(kStride);
    }
}

// FF for each bit of 16 that is set.
[[gnu::always_inline]] inline __m128i bytesOf(std::uint64_t mask) {
    __m128i wide = _mm_cvtsi32_si128(static_cast<int>(mask));
    wide = _mm_unpacklo_epi8(wide, wide);
    wide = _mm_shufflelo_epi16(wide, 0x50);
    wide = _mm_shuffle_epi32(wide, 0x50);
    const __m128i bit = _mm_set1_epi64x(static_cast<long long>(0x8040'2010'0804'0201));
    return _mm_cmpeq_epi8(_mm_and_si128(wide, bit), bit);
}

// `size` bytes, 1 to 16; `pending` as pairTrails() has it.
template <Case kCase>
[[gnu::always_inline]] inline __m128i mapPairBlock(const PageFacts &facts, const Sse2Masks<1> &block,
                                                   std::size_t size, std::uint64_t &pending) {
    const __m128i bytes = block.piece(0);
    const std::uint64_t trails = pairTrails(leadsOf(block, facts), pending);
    pending = trails >> size & 1;
    const __m128i change = _mm_xor_si128(bytes, mapAsciiBlock<kCase>(bytes));
    return _mm_xor_si128(bytes, _mm_andnot_si128(bytesOf(trails), change));
}

template <Case kCase>
[[gnu::always_inline]] inline void mapCommon(CaseStretch &stretch) {
    // A character that a block leaves incomplete is written over by its own bytes, three at most.
    constexpr std::size_t kBehind = 3;
    while (static_cast<std::size_t>(stretch.end - stretch.at) >= kBlock) {
        const __m128i bytes = load(stretch.at);
        __m128i mapped;
        unsigned incomplete = 0;
        const bool ascii = bitsOf(bytes) == 0;
        if (ascii)
            mapped = mapAsciiBlock<kCase>(bytes);
        else if (!mapCommonBlock<kCase>(bytes, mapped, incomplete))
            return;
        if (stretch.room < kBlock + (incomplete != 0 ? kBehind : 0))
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i *>(stretch.out), mapped);
        stretch.advance(kBlock - incomplete);
        if (ascii)
            mapAsciiBlocks<kCase>(stretch);
    }
    const auto left = static_cast<std::size_t>(stretch.end - stretch.at);
    if (left == 0 || left >= kBlock || stretch.room < left)
        return;
    // Behind the text stand zeros, so that a character that it cuts is wrong there.
    const __m128i bytes = loadFirst(stretch.at, left);
    __m128i mapped;
    unsigned incomplete = 0;
    if (bitsOf(bytes) == 0)
        mapped = mapAsciiBlock<kCase>(bytes);
    else if (!mapCommonBlock<kCase>(bytes, mapped, incomplete))
        return;
    storeFirst(stretch.out, mapped, left);
    stretch.advance(left);
}

} // namespace

template <Case kCase>
void mapCommonUtf8(CaseStretch &result) {
    // A stretch of its own, of which no byte that is stored could be a part; so in the others.
    CaseStretch stretch = result;
    mapCommon<kCase>(stretch);
    result = stretch;
}

template <Case kCase>
void mapAscii(CaseStretch &result) {
    CaseStretch stretch = result;
    mapAsciiBlocks<kCase>(stretch);
    while (static_cast<std::size_t>(stretch.end - stretch.at) >= kBlock && stretch.room >= kBlock) {
        const __m128i bytes = load(stretch.at);
        if (bitsOf(bytes) != 0)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i *>(stretch.out), mapAsciiBlock<kCase>(bytes));
        stretch.advance(kBlock);
    }
    result = stretch;
}

template <Case kCase>
void mapPairs(const PageFacts &facts, CaseStretch &result) {
    CaseStretch stretch = result;
    std::uint64_t pending = 0;
    while (static_cast<std::size_t>(stretch.end - stretch.at) >= kBlock && stretch.room >= kBlock) {
        const Sse2Masks<1> block(stretch.at);
        if ((block.high() | pending) == 0) {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(stretch.out), mapAsciiBlock<kCase>(block.piece(0)));
            stretch.advance(kBlock);
            mapAsciiBlocks<kCase>(stretch);
            continue;
        }
        std::uint64_t pendingBehind = pending;
        const __m128i mapped = mapPairBlock<kCase>(facts, block, kBlock, pendingBehind);
        // A lead byte is stored only where its trail byte fits too.
        if (kBlock + pendingBehind > stretch.room)
            break;
        pending = pendingBehind;
        _mm_storeu_si128(reinterpret_cast<__m128i *>(stretch.out), mapped);
        stretch.advance(kBlock);
    }
    if (const auto left = static_cast<std::size_t>(stretch.end - stretch.at);
        left != 0 && left < kBlock && stretch.room >= left) {
        std::uint64_t pendingBehind = pending;
        const Sse2Masks<1> block(stretch.at, left);
        const __m128i mapped = (block.high() | pending) == 0
                                   ? mapAsciiBlock<kCase>(block.piece(0))
                                   : mapPairBlock<kCase>(facts, block, left, pendingBehind);
        if (left + pendingBehind <= stretch.room) {
            pending = pendingBehind;
            storeFirst(stretch.out, mapped, left);
            stretch.advance(left);
        }
    }
    // A lead byte without its trail byte is left to the caller.
    stretch.stepBack(pending);
    result = stretch;
}

#else

template <Case>
void mapPairs(const PageFacts &, CaseStretch &) {}
template <Case>
void mapCommonUtf8(CaseStretch &) {}
template <Case>
void mapAscii(CaseStretch &) {}

#endif

template void mapCommonUtf8<Case::Upper>(CaseStretch &);
template void mapCommonUtf8<Case::Lower>(CaseStretch &);
template void mapAscii<Case::Upper>(CaseStretch &);
template void mapAscii<Case::Lower>(CaseStretch &);
template void mapPairs<Case::Upper>(const PageFacts &, CaseStretch &);
template void mapPairs<Case::Lower>(const PageFacts &, CaseStretch &);

} // namespace fast
} // namespace velnls
