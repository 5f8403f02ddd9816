// The judges for AVX2, chosen at run time.
#include "scan_vector.hpp"

#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace velnls::tool {

#if defined(__x86_64__)

namespace {

constexpr std::size_t kBlock = 64;

#define VELNLS_AVX2 __attribute__((target("avx2")))

bool hasAvx2() {
    static const bool has = __builtin_cpu_supports("avx2") != 0;
    return has;
}

VELNLS_AVX2 __m256i load(const unsigned char *text) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(text));
}

VELNLS_AVX2 __m256i inBothHalves(const unsigned char *sixteen) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(sixteen)));
}

VELNLS_AVX2 __m256i highDigits(__m256i bytes) {
    return _mm256_and_si256(_mm256_srli_epi16(bytes, 4), _mm256_set1_epi8(0x0F));
}

// The faults that two neighbouring bytes can show, a bit each. A fault is there when the first byte's high
// digit, its low digit and the second byte's high digit all allow it. (Keiser and Lemire, "Validating UTF-8
// In Less Than One Instruction Per Byte", 2021.)
constexpr unsigned char kTooShort = 1 << 0;     // a lead byte, then no continuation byte
constexpr unsigned char kTooLong = 1 << 1;      // ASCII, then a continuation byte
constexpr unsigned char kOverlong3 = 1 << 2;    // E0, then below A0
constexpr unsigned char kTooLarge = 1 << 3;     // F4, then above 8F, or F5 and above
constexpr unsigned char kSurrogate = 1 << 4;    // ED, then above 9F
constexpr unsigned char kOverlong2 = 1 << 5;    // C0 or C1
constexpr unsigned char kTooLarge1000 = 1 << 6; // F5 and above, then 80 to 8F
constexpr unsigned char kOverlong4 = 1 << 6;    // F0, then below 90
constexpr unsigned char kTwoContinuations = 1 << 7;
constexpr unsigned char kCarry = kTooShort | kTooLong | kTwoContinuations;

constexpr unsigned char kFirstHigh[16] = {
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTooLong,
    kTwoContinuations,
    kTwoContinuations,
    kTwoContinuations,
    kTwoContinuations,
    kTooShort | kOverlong2,
    kTooShort,
    kTooShort | kOverlong3 | kSurrogate,
    kTooShort | kTooLarge | kTooLarge1000 | kOverlong4,
};
constexpr unsigned char kFirstLow[16] = {
    kCarry | kOverlong3 | kOverlong2 | kOverlong4,
    kCarry | kOverlong2,
    kCarry,
    kCarry,
    kCarry | kTooLarge,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000 | kSurrogate,
    kCarry | kTooLarge | kTooLarge1000,
    kCarry | kTooLarge | kTooLarge1000,
};
constexpr unsigned char kSecondHigh[16] = {
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooLong | kOverlong2 | kTwoContinuations | kOverlong3 | kTooLarge1000 | kOverlong4,
    kTooLong | kOverlong2 | kTwoContinuations | kOverlong3 | kTooLarge,
    kTooLong | kOverlong2 | kTwoContinuations | kSurrogate | kTooLarge,
    kTooLong | kOverlong2 | kTwoContinuations | kSurrogate | kTooLarge,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
};

// The bytes that stand "Count" places before each byte of "bytes"; "before" is the vector in front of it.
template <int Count>
VELNLS_AVX2 __m256i shifted(__m256i bytes, __m256i before) {
    return _mm256_alignr_epi8(bytes, _mm256_permute2x128_si256(before, bytes, 0x21), 16 - Count);
}

// Not zero where a byte does not go with the three before it.
VELNLS_AVX2 __m256i utf8Faults(__m256i bytes, __m256i before) {
    const __m256i first = shifted<1>(bytes, before);
    const __m256i pairs = _mm256_and_si256(
        _mm256_and_si256(
            _mm256_shuffle_epi8(inBothHalves(kFirstHigh), highDigits(first)),
            _mm256_shuffle_epi8(inBothHalves(kFirstLow), _mm256_and_si256(first, _mm256_set1_epi8(0x0F)))),
        _mm256_shuffle_epi8(inBothHalves(kSecondHigh), highDigits(bytes)));
    // The third byte of three and the third and fourth of four must be continuation bytes behind a
    // continuation byte; everywhere else two in a row are a fault.
    const __m256i third =
        _mm256_subs_epu8(shifted<2>(bytes, before), _mm256_set1_epi8(static_cast<char>(0xE0 - 0x80)));
    const __m256i fourth =
        _mm256_subs_epu8(shifted<3>(bytes, before), _mm256_set1_epi8(static_cast<char>(0xF0 - 0x80)));
    const __m256i must =
        _mm256_and_si256(_mm256_or_si256(third, fourth), _mm256_set1_epi8(static_cast<char>(0x80)));
    return _mm256_xor_si256(must, pairs);
}

// The place behind the last whole character before "at": up to three bytes of a character that goes on are
// left.
std::size_t characterBoundary(const unsigned char *text, std::size_t at) {
    for (std::size_t back = 1; back <= 3 && back <= at; ++back) {
        const unsigned char byte = text[at - back];
        if (byte >= 0xC0) {
            const std::size_t length = byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
            return length > back ? at - back : at;
        }
        if (byte < 0x80) {
            break;
        }
    }
    return at;
}

VELNLS_AVX2 std::size_t utf8PrefixAvx2(const unsigned char *text, std::size_t size) {
    std::size_t at = 0;
    __m256i before = _mm256_setzero_si256();
    while (size - at >= kBlock) {
        const __m256i low = load(text + at);
        const __m256i high = load(text + at + 32);
        // Plain ASCII behind a whole character needs no closer look.
        const bool ascii = _mm256_movemask_epi8(_mm256_or_si256(low, high)) == 0;
        if (!ascii || characterBoundary(text, at) != at) {
            const __m256i faults = _mm256_or_si256(utf8Faults(low, before), utf8Faults(high, low));
            if (_mm256_testz_si256(faults, faults) == 0) {
                break;
            }
        }
        before = high;
        at += kBlock;
    }
    return characterBoundary(text, at);
}

struct VectorSet {
    __m256i low;
    __m256i high;
};

// Bits of the 32 bytes that are in the set. "digits" are their low digits, "bit" has the bit of their high
// digits.
VELNLS_AVX2 std::uint32_t inSet(const VectorSet &set, __m256i bytes, __m256i digits, __m256i bit) {
    const __m256i row = _mm256_blendv_epi8(_mm256_shuffle_epi8(set.low, digits),
                                           _mm256_shuffle_epi8(set.high, digits), bytes);
    return ~static_cast<std::uint32_t>(
        _mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_and_si256(row, bit), _mm256_setzero_si256())));
}

VELNLS_AVX2 std::size_t pairsPrefixAvx2(const Page &page, const unsigned char *text, std::size_t size) {
    constexpr std::uint64_t kEven = 0x5555555555555555u;
    constexpr unsigned char kBits[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    const __m256i bits = inBothHalves(kBits);
    const VectorSet leadSet = {inBothHalves(page.leadBytes.low.data()),
                               inBothHalves(page.leadBytes.high.data())};
    const VectorSet trailSet = {inBothHalves(page.trailBytes.low.data()),
                                inBothHalves(page.trailBytes.high.data())};
    std::size_t at = 0;
    std::uint64_t open =
        0; // 1 when the last byte before the block is a lead byte that waits for its trail byte
    while (size - at >= kBlock) {
        std::uint64_t leadValued = 0;
        std::uint64_t trailValued = 0;
        for (int half = 0; half < 2; ++half) {
            const __m256i bytes = load(text + at + half * 32);
            const __m256i digits = _mm256_and_si256(bytes, _mm256_set1_epi8(0x0F));
            const __m256i bit = _mm256_shuffle_epi8(bits, highDigits(bytes));
            leadValued |= static_cast<std::uint64_t>(inSet(leadSet, bytes, digits, bit)) << (half * 32);
            trailValued |= static_cast<std::uint64_t>(inSet(trailSet, bytes, digits, bit)) << (half * 32);
        }
        // In a run of bytes with lead values that begins with a character, every second byte is a lead byte.
        // Adding the first bit of a run clears the run, which tells runs that begin at even places from the
        // others.
        const std::uint64_t runs = leadValued & ~open;
        const std::uint64_t starts = runs & ~(runs << 1);
        const std::uint64_t evenRuns = runs & ~(runs + (starts & kEven));
        const std::uint64_t leads = (evenRuns & kEven) | (runs & ~evenRuns & ~kEven);
        const std::uint64_t trails = leads << 1 | open;
        if ((trails & ~trailValued) != 0) {
            break;
        }
        open = leads >> 63;
        at += kBlock;
    }
    return at - open;
}

} // namespace

std::size_t wellFormedUtf8Prefix(const unsigned char *text, std::size_t size) {
    return size >= kBlock && hasAvx2() ? utf8PrefixAvx2(text, size) : 0;
}

std::size_t wellFormedPairsPrefix(const Page &page, const unsigned char *text, std::size_t size) {
    return size >= kBlock && hasAvx2() ? pairsPrefixAvx2(page, text, size) : 0;
}

#else

std::size_t wellFormedUtf8Prefix(const unsigned char *, std::size_t) {
    return 0;
}

std::size_t wellFormedPairsPrefix(const Page &, const unsigned char *, std::size_t) {
    return 0;
}

#endif

} // namespace velnls::tool
