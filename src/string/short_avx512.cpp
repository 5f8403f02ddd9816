// The kernels for short texts on processors with AVX-512.
#include "locale/masks_avx512.hpp"
#include "string/out_text.hpp"
#include "string/short_fast.hpp"

namespace velnls::avx512 {

#if defined(VELNLS_AVX512_KERNELS)

ShortCount shortUtf8(const std::uint8_t *text, std::uint32_t limit) {
    return shortCountBy<WideMasks>(ShortUtf8(), text, limit);
}

ShortCount shortPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit) {
    return shortCountBy<WideMasks>(ShortPairs<false>(facts), text, limit);
}

ShortCount shortValidPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit) {
    return shortCountBy<WideMasks>(ShortPairs<true>(facts), text, limit);
}

ShortStretch shortUtf8Stretch(const std::uint8_t *text, std::uint32_t start, std::uint32_t length) {
    return shortStretchBy<WideMasks>(ShortUtf8(), text, start, length);
}

ShortStretch shortPairsStretch(const PageFacts &facts, const std::uint8_t *text, std::uint32_t start,
                               std::uint32_t length) {
    return shortStretchBy<WideMasks>(ShortPairs<false>(facts), text, start, length);
}

void putShort(char *to, const std::uint8_t *from, std::size_t length) {
    const Vector text = _mm512_maskz_loadu_epi8(lowBits(length), from);
    _mm512_mask_storeu_epi8(to, lowBits(length + 1), text);
}

#else

// On other processors nothing is settled; none is called.
ShortCount shortUtf8(const std::uint8_t *, std::uint32_t) {
    return kUnsettledCount;
}

ShortCount shortPairs(const PageFacts &, const std::uint8_t *, std::uint32_t) {
    return kUnsettledCount;
}

ShortCount shortValidPairs(const PageFacts &, const std::uint8_t *, std::uint32_t) {
    return kUnsettledCount;
}

ShortStretch shortUtf8Stretch(const std::uint8_t *, std::uint32_t, std::uint32_t) {
    return {0, 0, 0, false};
}

ShortStretch shortPairsStretch(const PageFacts &, const std::uint8_t *, std::uint32_t, std::uint32_t) {
    return {0, 0, 0, false};
}

void putShort(char *, const std::uint8_t *, std::size_t) {}

#endif

} // namespace velnls::avx512
