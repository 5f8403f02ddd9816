// The Unicode forms into one another, for processors with AVX-512.
#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/avx512_from_utf8.hpp"

namespace velnls::avx512 {

namespace {

[[gnu::always_inline]] inline __m256i lowHalf(Vector units) {
    return _mm512_castsi512_si256(units);
}
[[gnu::always_inline]] inline __m256i highHalf(Vector units) {
    return _mm512_extracti64x4_epi64(units, 1);
}

struct Utf16Sink {
    static constexpr std::ptrdiff_t kBlockRoom = 128;
    static constexpr std::ptrdiff_t kRoom = 64;
    static constexpr std::ptrdiff_t asciiRoom(std::uint32_t count) {
        return std::ptrdiff_t{count} * 2;
    }
    [[gnu::always_inline]] static void putAscii(Vector block, std::uint32_t count, Target &target) {
        const Vector low = _mm512_cvtepu8_epi16(lowHalf(block));
        const Vector high = _mm512_cvtepu8_epi16(highHalf(block));
        if (target.room() >= 128) [[likely]] {
            _mm512_storeu_si512(target.at, low);
            _mm512_storeu_si512(target.at + 64, high);
        } else {
            const std::uint64_t lanes = lowBits(count);
            _mm512_mask_storeu_epi16(target.at, static_cast<__mmask32>(lanes), low);
            _mm512_mask_storeu_epi16(target.at + 64, static_cast<__mmask32>(lanes >> 32), high);
        }
        target.at += std::ptrdiff_t{count} * 2;
    }
    [[gnu::always_inline]] static void putBlock(const Utf8Characters &characters, std::uint32_t count,
                                                Target &target) {
        _mm512_storeu_si512(target.at, characters.units<false>());
        _mm512_storeu_si512(target.at + 64, characters.units<true>());
        target.at += std::ptrdiff_t{count} * 2;
    }
    [[gnu::always_inline]] static __mmask32 put(Vector units, __mmask32 lanes, Target &target) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(target.at), lowHalf(units));
        if (lanes >> 16 != 0)
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(target.at + 32), highHalf(units));
        target.at += std::ptrdiff_t{countBits(lanes)} * 2;
        return 0;
    }
};

struct Utf32Sink {
    static constexpr std::ptrdiff_t kBlockRoom = 256;
    static constexpr std::ptrdiff_t kRoom = 128;
    static constexpr std::ptrdiff_t asciiRoom(std::uint32_t count) {
        return count > 32 ? 256 : 128;
    }

    [[gnu::always_inline]] static void putAscii(Vector block, std::uint32_t count, Target &target) {
        _mm512_storeu_si512(target.at, _mm512_cvtepu8_epi32(_mm512_castsi512_si128(block)));
        _mm512_storeu_si512(target.at + 64, _mm512_cvtepu8_epi32(_mm512_extracti32x4_epi32(block, 1)));
        if (count > 32) {
            _mm512_storeu_si512(target.at + 128, _mm512_cvtepu8_epi32(_mm512_extracti32x4_epi32(block, 2)));
            _mm512_storeu_si512(target.at + 192, _mm512_cvtepu8_epi32(_mm512_extracti32x4_epi32(block, 3)));
        }
        target.at += std::ptrdiff_t{count} * 4;
    }
    [[gnu::always_inline]] static void putBlock(const Utf8Characters &characters, std::uint32_t count,
                                                Target &target) {
        store32(characters.units<false>(), true, target.at);
        if (count > 32)
            store32(characters.units<true>(), true, target.at + 128);
        target.at += std::ptrdiff_t{count} * 4;
    }
    [[gnu::always_inline]] static __mmask32 put(Vector units, __mmask32 lanes, Target &target) {
        store32(units, lanes >> 16 != 0, target.at);
        target.at += std::ptrdiff_t{countBits(lanes)} * 4;
        return 0;
    }

private:
    [[gnu::always_inline]] static void store32(Vector units, bool both, std::uint8_t *to) {
        _mm512_storeu_si512(to, _mm512_cvtepu16_epi32(lowHalf(units)));
        if (both)
            _mm512_storeu_si512(to + 64, _mm512_cvtepu16_epi32(highHalf(units)));
    }
};

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

} // namespace

void utf8ToUtf16(Source &source, Target &target) {
    const Utf16Sink sink;
    if (source.left() >= kLongText)
        utf8Blocks(sink, source, target);
    fromUtf8(sink, source, target);
}

void utf8ToUtf32(Source &source, Target &target) {
    const Utf32Sink sink;
    if (source.left() >= kLongText)
        utf8Blocks(sink, source, target);
    fromUtf8(sink, source, target);
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
        putUtf8(_mm512_cvtepu16_epi32(lowHalf(units)), static_cast<__mmask16>(lanes), target);
        if (good > 16)
            putUtf8(_mm512_cvtepu16_epi32(highHalf(units)), static_cast<__mmask16>(lanes >> 16), target);
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
        _mm512_storeu_si512(to, _mm512_cvtepu16_epi32(lowHalf(units)));
        _mm512_storeu_si512(to + 64, _mm512_cvtepu16_epi32(highHalf(units)));
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

} // namespace velnls::avx512

#endif
