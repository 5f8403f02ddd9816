// Single-byte pages among themselves and to UTF-8, for processors with AVX-512.
#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/avx512_lanes.hpp"

namespace velnls::avx512 {

namespace {

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

} // namespace velnls::avx512

#endif
