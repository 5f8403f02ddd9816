#include "collate/first_block.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS) && defined(VELNLS_READS_AHEAD)

namespace velnls::avx512 {

namespace {

struct Differences {
    [[gnu::always_inline]] std::uint32_t operator()(const std::uint8_t *a, const std::uint8_t *b) const {
        const __m256i blockA = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(a));
        const __m256i blockB = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(b));
        return _mm256_cmpneq_epi8_mask(blockA, blockB) | _mm256_testn_epi8_mask(blockA, blockA);
    }
};

} // namespace

nlsStatus compareFirstBytes(const char *a, const char *b, std::int16_t *out) {
    return compareFirstBytesBy(Differences(), a, b, out);
}

nlsStatus compareFirstWeights(const nlsLocale *locale, const char *a, const char *b,
                              const std::uint8_t *weights, std::int16_t *out) {
    return compareFirstWeightsBy(Differences(), locale, a, b, weights, out);
}

nlsStatus compareFirstOwnWeights(const nlsLocale *locale, const char *a, const char *b,
                                 const std::uint8_t *weights, std::int16_t *out) {
    return compareFirstOwnWeightsBy(
        Differences(), [](unsigned) { return true; }, locale, a, b, weights, out);
}

nlsStatus compareFirstOwnAscii(const nlsLocale *locale, const char *a, const char *b,
                               const std::uint8_t *weights, std::int16_t *out) {
    return compareFirstOwnWeightsBy(
        Differences(), [](unsigned either) { return either < 0x80; }, locale, a, b, weights, out);
}

} // namespace velnls::avx512

#else

namespace velnls::avx512 {

// Never called on other processors.

nlsStatus compareFirstBytes(const char *a, const char *b, std::int16_t *out) {
    return compareOnByBytes(a, b, out);
}

nlsStatus compareFirstWeights(const nlsLocale *locale, const char *a, const char *b,
                              const std::uint8_t *weights, std::int16_t *out) {
    return compareOnByWeights(locale, a, b, weights, out);
}
nlsStatus compareFirstOwnWeights(const nlsLocale *locale, const char *a, const char *b,
                                 const std::uint8_t *weights, std::int16_t *out) {
    return compareOnByWeights(locale, a, b, weights, out);
}
nlsStatus compareFirstOwnAscii(const nlsLocale *locale, const char *a, const char *b,
                               const std::uint8_t *weights, std::int16_t *out) {
    return compareOnByWeights(locale, a, b, weights, out);
}

} // namespace velnls::avx512

#endif
