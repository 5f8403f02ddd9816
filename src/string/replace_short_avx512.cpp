#include "string/replace_short.hpp"

#include "core/avx512.hpp"
#include "core/read_ahead.hpp"

namespace velnls::avx512 {

#if defined(VELNLS_AVX512_KERNELS) && defined(VELNLS_READS_AHEAD)

namespace {

constexpr std::int64_t kBlock = sizeof(Vector);
constexpr int kAtOnce = 4; // matches, which most short texts have at most

// The numbers of a block's bytes.
[[gnu::always_inline]] inline Vector numbers() {
    return _mm512_set_epi64(0x3F3E3D3C3B3A3938, 0x3736353433323130, 0x2F2E2D2C2B2A2928, 0x2726252423222120,
                            0x1F1E1D1C1B1A1918, 0x1716151413121110, 0x0F0E0D0C0B0A0908, 0x0706050403020100);
}

// Of places where a pattern stands, those that none before them overlaps.
std::uint64_t apart(std::uint64_t places, std::uint32_t patternLength) {
    std::uint64_t kept = 0;
    while (places != 0) {
        const std::uint64_t place = places & -places;
        kept |= place;
        places &= -(place << (patternLength - 1) << 1);
    }
    return kept;
}

} // namespace

bool replaceShort(ShortPlaces found, const std::uint8_t *text, const std::uint8_t *replacement, nlsStr &out,
                  std::uint32_t &count) {
    const std::size_t inPage = leftInPage(replacement);
    const Vector instead = _mm512_maskz_loadu_epi8(lowBits(inPage), replacement);
    const std::uint64_t insteadLength = _tzcnt_u64(_mm512_testn_epi8_mask(instead, instead));
    const std::uint32_t patternLength = found.patternLength();
    const std::uint32_t textLength = found.textLength();
    std::uint64_t left = patternLength == 1 ? found.places : apart(found.places, patternLength);
    const std::int64_t matches = _mm_popcnt_u64(left);
    const std::int64_t growth = static_cast<std::int64_t>(insteadLength) - patternLength;
    const std::int64_t length = textLength + matches * growth;
    // With both in a block, every byte that is taken is numbered below 64, and so is the replacement's
    // length.
    if (textLength + insteadLength > kBlock || insteadLength == inPage ||
        length + kBlock > static_cast<std::int32_t>(out.size))
        return false;
    const std::uint64_t end = std::uint64_t{1} << textLength;
    const Vector block = _mm512_maskz_loadu_epi8(end - 1, text);
    const Vector before = _mm512_sub_epi8(numbers(), _mm512_set1_epi8(static_cast<char>(growth)));
    const __mmask64 behindInstead = ~std::uint64_t{0} << insteadLength;
    char *to = out.buffer;
    _mm512_storeu_si512(to, block);
    // At each match what stands instead and all that is behind it, over what was put there before. How many
    // matches there are nobody could foresee: where there are none left, it is written behind the result.
    do {
#pragma GCC unroll 4
        for (int i = 0; i < kAtOnce; ++i) {
            const std::uint64_t place = _tzcnt_u64(left | end);
            const Vector from = _mm512_add_epi8(before, _mm512_set1_epi8(static_cast<char>(place)));
            _mm512_storeu_si512(to + place,
                                _mm512_mask_permutexvar_epi8(instead, behindInstead, from, block));
            to += growth & -static_cast<std::int64_t>(left != 0);
            left &= left - 1;
        }
    } while (left != 0);
    out.buffer[length] = '\0';
    out.length = static_cast<std::uint32_t>(length);
    count = static_cast<std::uint32_t>(matches);
    return true;
}

#else

// Never called: no text is settled as a short one, or the processor is another.
bool replaceShort(ShortPlaces, const std::uint8_t *, const std::uint8_t *, nlsStr &, std::uint32_t &) {
    return false;
}

#endif

} // namespace velnls::avx512
