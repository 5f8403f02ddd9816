// Look-ups in tables of 128 bytes that are held in registers, for processors with AVX2.
#include "convert/kernels/fast_avx2.hpp"

#if defined(VELNLS_AVX2_KERNELS)

#include "convert/kernels/avx2_lanes.hpp"
#include "convert/kernels/baseline_from_page.hpp"
#include "convert/kernels/baseline_sinks.hpp"

namespace velnls::avx2 {

namespace {

// A table of 128 bytes, as the differences of neighbouring rows of 16: a look-up adds up the rows as far as
// that of its byte, and each step is a shuffle, which gives 0 where the byte's row is passed.
class Table128 {
public:
    [[gnu::always_inline]] explicit Table128(const std::uint8_t *values) {
        __m128i before = _mm_setzero_si128();
#pragma GCC unroll 8
        for (int row = 0; row < 8; ++row) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(values + 16 * row));
            steps_[row] = _mm256_broadcastsi128_si256(_mm_xor_si128(bytes, before));
            before = bytes;
        }
    }
    // Of bytes below 80.
    [[gnu::always_inline]] [[nodiscard]] Bytes operator[](Bytes places) const {
        Bytes sum = _mm256_shuffle_epi8(steps_[0], places);
#pragma GCC unroll 8
        for (int row = 1; row < 8; ++row) {
            places = _mm256_sub_epi8(places, _mm256_set1_epi8(16));
            sum = _mm256_xor_si256(sum, _mm256_shuffle_epi8(steps_[row], places));
        }
        return sum;
    }

private:
    Bytes steps_[8];
};

[[gnu::always_inline]] inline Bytes lowSeven(Bytes bytes) {
    return _mm256_and_si256(bytes, _mm256_set1_epi8(0x7F));
}

bool keepsAscii(const std::uint8_t *map) {
    Bytes identity = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19,
                                      20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
    Bytes differences = _mm256_setzero_si256();
#pragma GCC unroll 4
    for (int i = 0; i < 0x80; i += kRegister) {
        differences = _mm256_or_si256(differences, _mm256_xor_si256(load(map + i), identity));
        identity = _mm256_add_epi8(identity, _mm256_set1_epi8(kRegister));
    }
    return _mm256_testz_si256(differences, differences) != 0;
}

// Maps register by register; the last one overlaps the one before it.
template <typename MapRegister>
[[gnu::always_inline]] inline void mapRegisters(const std::uint8_t *from, std::uint8_t *to,
                                                std::ptrdiff_t length, MapRegister mapRegister) {
    const std::ptrdiff_t last = length - kRegister;
    for (std::ptrdiff_t at = 0;; at = at + kRegister < last ? at + kRegister : last) {
        store(to + at, mapRegister(load(from + at)));
        if (at == last)
            return;
    }
}

} // namespace

void mapBytes(const std::uint8_t *map, const std::uint8_t *from, std::uint8_t *to, std::ptrdiff_t length) {
    const Table128 upper(map + 0x80);
    if (keepsAscii(map)) {
        mapRegisters(from, to, length,
                     [&](Bytes bytes) { return _mm256_blendv_epi8(bytes, upper[lowSeven(bytes)], bytes); });
        return;
    }
    const Table128 lower(map);
    mapRegisters(from, to, length, [&](Bytes bytes) {
        const Bytes places = lowSeven(bytes);
        return _mm256_blendv_epi8(lower[places], upper[places], bytes);
    });
}

namespace {

// The UTF-8 bytes of the values of the bytes from 80 up; a lead byte of 0 for values that do not have two.
struct TwoBytes {
    alignas(32) std::uint8_t leads[0x80];
    alignas(32) std::uint8_t trails[0x80];

    [[gnu::always_inline]] explicit TwoBytes(const std::uint8_t *values) {
#pragma GCC unroll 4
        for (int i = 0; i < 0x80; i += kRegister) {
            const Bytes first = load(values + 2 * i);
            const Bytes second = load(values + 2 * i + kRegister);
            store(leads + i, narrowed(leadsOf(first), leadsOf(second)));
            store(trails + i, narrowed(trailsOf(first), trailsOf(second)));
        }
    }

private:
    static Bytes leadsOf(Bytes values) {
        const Bytes place = _mm256_sub_epi16(values, unitsOf(0x80));
        const Bytes two = _mm256_cmpeq_epi16(_mm256_min_epu16(place, unitsOf(0x77F)), place);
        return _mm256_and_si256(_mm256_or_si256(_mm256_srli_epi16(values, 6), unitsOf(0xC0)), two);
    }
    static Bytes trailsOf(Bytes values) {
        return _mm256_or_si256(_mm256_and_si256(values, unitsOf(0x3F)), unitsOf(0x80));
    }
};

} // namespace

void byteRowToUtf8(const MappingBody &body, Source &source, Target &target) {
    constexpr std::ptrdiff_t kRoom = 2 * kRegister + 16;
    copyAscii(source, target); // needs no tables
    if (source.at == source.end)
        return;
    const ByteRow row(body);
    const TwoBytes forms(row.values());
    const Table128 leadTable(forms.leads);
    const Table128 trailTable(forms.trails);
    TextReader<kRegister> reader;
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    while (at < source.end && target.end - to >= kRoom) {
        const std::uint32_t size = smaller(source.end - at, kRegister);
        const Bytes bytes = _mm256_and_si256(load(reader.block(at, source.end)), firstBytes(size));
        const std::uint64_t high = maskOf(bytes);
        if (high == 0) {
            store(to, bytes);
            at += size;
            to += size;
            continue;
        }
        const Bytes places = lowSeven(bytes);
        const Bytes leads = leadTable[places];
        const Bytes trails = _mm256_blendv_epi8(bytes, trailTable[places], bytes);
        const Bytes low = _mm256_unpacklo_epi8(leads, trails);
        const Bytes upper = _mm256_unpackhi_epi8(leads, trails);
        std::uint8_t *put = to;
        put += squeeze(put, lowHalf(low), high);
        put += squeeze(put, lowHalf(upper), high >> 8);
        put += squeeze(put, highHalf(low), high >> 16);
        squeeze(put, highHalf(upper), high >> 24);
        const std::uint64_t others = high & maskOf(_mm256_cmpeq_epi8(leads, _mm256_setzero_si256()));
        if (others == 0) [[likely]] {
            at += size; // mostly a constant: the next load waits for nothing
            to += size + countBits(high);
            continue;
        }
        // Goes on behind the first value of another length.
        const std::uint32_t good = firstBitOr64(others);
        at += good;
        to += good + countBits(high & lowBits(good));
        const std::uint32_t value = row.valueOf(*at);
        if (value == file::kUnmapped)
            break;
        Utf8Sink sink(to, target.end);
        sink.put(value);
        to = sink.out;
        ++at;
    }
    source.at = at;
    target.at = to;
}

} // namespace velnls::avx2

#endif
