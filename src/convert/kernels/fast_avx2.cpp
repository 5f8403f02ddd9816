#include "convert/kernels/fast_avx2.hpp"

#if defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)

#include "convert/kernels/fast_from_page.hpp"
#include "convert/kernels/fast_sinks.hpp"

#include <immintrin.h>

namespace velnls::avx2 {

namespace {

using Bytes = __m256i;

constexpr std::ptrdiff_t kBlock = 32;

[[gnu::always_inline]] inline Bytes load(const std::uint8_t *at) {
    return _mm256_loadu_si256(reinterpret_cast<const Bytes *>(at));
}
[[gnu::always_inline]] inline void store(std::uint8_t *at, Bytes bytes) {
    _mm256_storeu_si256(reinterpret_cast<Bytes *>(at), bytes);
}
[[gnu::always_inline]] inline std::uint32_t maskOf(Bytes bytes) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

// A table of 128 bytes, as the differences of neighbouring rows of 16: a look-up adds up the rows as far as
// that of its byte, and each step is a shuffle, which gives 0 where the byte's row is passed.
class Table128 {
public:
    [[gnu::always_inline]] explicit Table128(const std::uint8_t *values) {
        __m128i before = _mm_setzero_si128();
        for (int row = 0; row < 8; ++row) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(values + 16 * row));
            steps_[row] = _mm256_broadcastsi128_si256(_mm_xor_si128(bytes, before));
            before = bytes;
        }
    }
    // Of bytes below 80.
    [[gnu::always_inline]] [[nodiscard]] Bytes operator[](Bytes places) const {
        Bytes sum = _mm256_shuffle_epi8(steps_[0], places);
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
    unsigned differences = 0;
    for (unsigned byte = 0; byte < 0x80; ++byte)
        differences |= map[byte] ^ byte;
    return differences == 0;
}

// Maps block by block; the last one overlaps the one before it.
template <typename MapBlock>
[[gnu::always_inline]] inline void mapBlocks(const std::uint8_t *from, std::uint8_t *to,
                                             std::ptrdiff_t length, MapBlock mapBlock) {
    for (std::ptrdiff_t done = 0; length - done > kBlock; done += kBlock)
        store(to + done, mapBlock(load(from + done)));
    store(to + length - kBlock, mapBlock(load(from + length - kBlock)));
}

} // namespace

void mapBytes(const std::uint8_t *map, const std::uint8_t *from, std::uint8_t *to, std::ptrdiff_t length) {
    const Table128 upper(map + 0x80);
    if (keepsAscii(map)) {
        mapBlocks(from, to, length,
                  [&](Bytes bytes) { return _mm256_blendv_epi8(bytes, upper[lowSeven(bytes)], bytes); });
        return;
    }
    const Table128 lower(map);
    mapBlocks(from, to, length, [&](Bytes bytes) {
        const Bytes places = lowSeven(bytes);
        return _mm256_blendv_epi8(lower[places], upper[places], bytes);
    });
}

namespace {

// For each choice of characters of two bytes among eight: the shuffle that leaves out the lead bytes of the
// others.
struct Squeezes {
    alignas(16) std::uint8_t shuffles[256][16];
};
constexpr Squeezes kSqueezes = [] {
    Squeezes squeezes{};
    for (unsigned mask = 0; mask < 256; ++mask) {
        unsigned length = 0;
        for (unsigned i = 0; i < 8; ++i) {
            if ((mask >> i & 1) != 0)
                squeezes.shuffles[mask][length++] = static_cast<std::uint8_t>(2 * i);
            squeezes.shuffles[mask][length++] = static_cast<std::uint8_t>(2 * i + 1);
        }
        while (length < 16)
            squeezes.shuffles[mask][length++] = 0x80;
    }
    return squeezes;
}();

// The UTF-8 bytes of the values of the bytes from 80 up; a lead byte of 0 for values that do not have two.
struct TwoBytes {
    alignas(32) std::uint8_t leads[0x80];
    alignas(32) std::uint8_t trails[0x80];

    [[gnu::always_inline]] explicit TwoBytes(const std::uint8_t *values) {
        for (int i = 0; i < 0x80; i += kBlock) {
            const Bytes first = load(values + 2 * i);
            const Bytes second = load(values + 2 * i + kBlock);
            store(leads + i, inOrder(leadsOf(first), leadsOf(second)));
            store(trails + i, inOrder(trailsOf(first), trailsOf(second)));
        }
    }

private:
    static Bytes all(int value) {
        return _mm256_set1_epi16(static_cast<short>(value));
    }
    static Bytes leadsOf(Bytes values) {
        const Bytes place = _mm256_sub_epi16(values, all(0x80));
        const Bytes two = _mm256_cmpeq_epi16(_mm256_min_epu16(place, all(0x77F)), place);
        return _mm256_and_si256(_mm256_or_si256(_mm256_srli_epi16(values, 6), all(0xC0)), two);
    }
    static Bytes trailsOf(Bytes values) {
        return _mm256_or_si256(_mm256_and_si256(values, all(0x3F)), all(0x80));
    }
    // Packing works on the halves of the registers.
    static Bytes inOrder(Bytes first, Bytes second) {
        return _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), 0xD8);
    }
};

// Eight characters, as pairs of a lead and a trail byte: stores 16 bytes, gives how many count.
[[gnu::always_inline]] inline std::ptrdiff_t putEight(std::uint8_t *to, __m128i pairs,
                                                      std::uint32_t twoBytes) {
    const std::uint32_t mask = twoBytes & 0xFF;
    const auto *const shuffle = reinterpret_cast<const __m128i *>(kSqueezes.shuffles[mask]);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm_shuffle_epi8(pairs, _mm_load_si128(shuffle)));
    return 8 + static_cast<std::ptrdiff_t>(__builtin_popcount(mask));
}

} // namespace

void byteRowToUtf8(const MappingBody &body, Source &source, Target &target) {
    constexpr std::ptrdiff_t kRoom = 2 * kBlock + 16;
    const ByteRow row(body);
    const TwoBytes forms(row.values());
    const Table128 leadTable(forms.leads);
    const Table128 trailTable(forms.trails);
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    while (source.end - at >= kBlock && target.end - to >= kRoom) {
        const Bytes bytes = load(at);
        const std::uint32_t high = maskOf(bytes);
        if (high == 0) {
            store(to, bytes);
            at += kBlock;
            to += kBlock;
            continue;
        }
        const Bytes places = lowSeven(bytes);
        const Bytes leads = leadTable[places];
        const Bytes trails = _mm256_blendv_epi8(bytes, trailTable[places], bytes);
        const Bytes low = _mm256_unpacklo_epi8(leads, trails);
        const Bytes upper = _mm256_unpackhi_epi8(leads, trails);
        std::uint8_t *const begin = to;
        to += putEight(to, _mm256_castsi256_si128(low), high);
        to += putEight(to, _mm256_castsi256_si128(upper), high >> 8);
        to += putEight(to, _mm256_extracti128_si256(low, 1), high >> 16);
        to += putEight(to, _mm256_extracti128_si256(upper, 1), high >> 24);
        const std::uint32_t others = high & maskOf(_mm256_cmpeq_epi8(leads, _mm256_setzero_si256()));
        if (others == 0) [[likely]] {
            at += kBlock;
            continue;
        }
        // Goes on behind the first value of another length.
        const auto before = static_cast<unsigned>(__builtin_ctz(others));
        at += before;
        to = begin + before + __builtin_popcount(high & ((1U << before) - 1));
        const std::uint32_t value = row.valueOf(*at);
        if (value == file::kUnmapped)
            break;
        Utf8Sink sink{{to, target.end}};
        sink.put(value);
        to = sink.out;
        ++at;
    }
    source.at = at;
    target.at = to;
}

} // namespace velnls::avx2

#endif
