// The Unicode forms into one another, for processors with AVX2.
#include "convert/kernels/fast_avx2.hpp"

#if defined(VELNLS_AVX2_KERNELS)

#include "convert/kernels/avx2_from_utf8.hpp"

namespace velnls::avx2 {

namespace {

// To units of `kWidth` bytes: what is read is written at once.
template <std::ptrdiff_t kWidth, typename Store, typename StoreAscii>
[[gnu::always_inline]] inline void fromUtf8(Source &source, Target &out, Store store8,
                                            StoreAscii storeAscii) {
    TextReader<Block::kReach> reader;
    Target target = out;
    const std::uint8_t *at = source.at;
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, Block::kSize);
        // Eights are written whole, and so are registers of ASCII.
        if (target.room() < (Block::wholeRegisters(size) + kHalf) * kWidth)
            break;
        const std::uint8_t *const text = reader.block(at, source.end);
        const Block block(text, size);
        const std::uint64_t notAscii = block.notAscii();
        if (notAscii == 0) {
            storeAscii(target.at, block.low);
            if (size > kRegister)
                storeAscii(target.at + kRegister * kWidth, block.high);
            target.at += std::ptrdiff_t{size} * kWidth;
            at += size;
            continue;
        }
        const Utf8Starts characters = utf8Starts(block, notAscii, size);
        if (characters.length == 0)
            break;
        putEights<kWidth>(text, characters, target.at, store8);
        at += characters.length;
    }
    source.at = at;
    out.at = target.at;
}

// A bit for each unit of 16 that is a surrogate.
[[gnu::always_inline]] inline std::uint32_t surrogatesOf(Bytes units) {
    return bitsOf(_mm256_cmpeq_epi16(_mm256_and_si256(units, unitsOf(0xF800)), unitsOf(0xD800)));
}
// A bit for each number of 8 that is a surrogate or beyond U+FFFF.
[[gnu::always_inline]] inline std::uint32_t oddOf(Bytes numbers) {
    const Bytes top = _mm256_and_si256(numbers, numbersOf(0xFFFFF800));
    const Bytes isSurrogate = _mm256_cmpeq_epi32(top, numbersOf(0xD800));
    const Bytes isPlain = _mm256_cmpeq_epi32(_mm256_srli_epi32(numbers, 16), _mm256_setzero_si256());
    const Bytes plain = _mm256_andnot_si256(isSurrogate, isPlain);
    return ~static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(plain))) & 0xFF;
}

// Goes through units of `kWidth` bytes by registers of them. `take` gets one and how many of its units are
// text; it gives the odd ones, having written those before the first of them: there it ends, and where there
// is less room than `room`. A whole register moves the position by a constant: the next load then waits for
// no result of this one.
template <std::ptrdiff_t kWidth, typename Take>
[[gnu::always_inline]] inline void forUnits(Source &source, Target &target, std::ptrdiff_t room, Take take) {
    constexpr std::uint32_t kUnits = kRegister / kWidth;
    TextReader<kRegister> reader;
    const std::uint8_t *at = source.at;
    Target running = target;
    while (source.end - at >= kWidth && running.room() >= room) {
        const std::uint32_t size = smaller((source.end - at) / kWidth, kUnits);
        const Bytes units = _mm256_and_si256(load(reader.block(at, source.end)), firstBytes(size * kWidth));
        const std::uint64_t odd = take(units, size, running);
        if (odd != 0) {
            at += std::ptrdiff_t{firstBitOr64(odd)} * kWidth;
            break;
        }
        at += std::ptrdiff_t{size} * kWidth;
    }
    source.at = at;
    target.at = running.at;
}

} // namespace

void utf8ToUtf16(Source &source, Target &target) {
    const auto storeAscii = [](std::uint8_t *to, Bytes bytes) {
        store(to, _mm256_cvtepu8_epi16(lowHalf(bytes)));
        store(to + kRegister, _mm256_cvtepu8_epi16(highHalf(bytes)));
    };
    fromUtf8<2>(source, target, storeUnits, storeAscii);
}

void utf8ToUtf32(Source &source, Target &target) {
    const auto storeAscii = [](std::uint8_t *to, Bytes bytes) {
        store(to, _mm256_cvtepu8_epi32(lowHalf(bytes)));
        store(to + kRegister, _mm256_cvtepu8_epi32(_mm_srli_si128(lowHalf(bytes), 8)));
        store(to + 2 * kRegister, _mm256_cvtepu8_epi32(highHalf(bytes)));
        store(to + 3 * kRegister, _mm256_cvtepu8_epi32(_mm_srli_si128(highHalf(bytes), 8)));
    };
    fromUtf8<4>(source, target, store, storeAscii);
}

void utf16ToUtf8(Source &source, Target &target) {
    forUnits<2>(source, target, utf8Room(kLanes),
                [](Bytes units, std::uint32_t size, Target &out) -> std::uint32_t {
                    if (_mm256_testz_si256(units, unitsOf(0xFF80)) != 0) {
                        _mm_storeu_si128(reinterpret_cast<__m128i *>(out.at), narrowed(units));
                        out.at += size;
                        return 0;
                    }
                    const std::uint32_t odd = surrogatesOf(units);
                    putUtf8(units, before(odd, size), out);
                    return odd;
                });
}

void utf32ToUtf8(Source &source, Target &target) {
    forUnits<4>(source, target, utf8Room(kHalf),
                [](Bytes numbers, std::uint32_t size, Target &out) -> std::uint32_t {
                    if (_mm256_testz_si256(numbers, numbersOf(0xFFFFFF80)) != 0) {
                        const __m128i units = narrowedHalf(numbers);
                        _mm_storel_epi64(reinterpret_cast<__m128i *>(out.at), _mm_packus_epi16(units, units));
                        out.at += size;
                        return 0;
                    }
                    const std::uint32_t odd = oddOf(numbers);
                    putHalfAsUtf8(numbers, before(odd, size), out);
                    return odd;
                });
}

void utf16ToUtf32(Source &source, Target &target) {
    forUnits<2>(source, target, 64, [](Bytes units, std::uint32_t size, Target &out) {
        store(out.at, _mm256_cvtepu16_epi32(lowHalf(units)));
        store(out.at + kRegister, _mm256_cvtepu16_epi32(highHalf(units)));
        const std::uint32_t odd = surrogatesOf(units);
        out.at += std::ptrdiff_t{before(odd, size)} * 4;
        return odd;
    });
}

void utf32ToUtf16(Source &source, Target &target) {
    forUnits<4>(source, target, 16, [](Bytes numbers, std::uint32_t size, Target &out) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out.at), narrowedHalf(numbers));
        const std::uint32_t odd = oddOf(numbers);
        out.at += std::ptrdiff_t{before(odd, size)} * 2;
        return odd;
    });
}

} // namespace velnls::avx2

#endif
