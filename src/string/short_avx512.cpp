// The kernels for short texts on processors with AVX-512.
#include "locale/masks_avx512.hpp"
#include "string/out_text.hpp"
#include "string/short_fast.hpp"

namespace velnls::avx512 {

#if defined(VELNLS_SHORT_TEXTS)

ShortCount countShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit) {
    return shortCountBy<WideMasks>(page, facts, text, limit);
}

ShortStretch stretchOfShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text,
                            std::uint32_t start, std::uint32_t length) {
    return shortStretchBy<WideMasks>(page, facts, text, start, length);
}

#endif

#if defined(VELNLS_AVX512_KERNELS)

void putShort(char *to, const std::uint8_t *from, std::size_t length) {
    const Vector text = _mm512_maskz_loadu_epi8(lowBits(length), from);
    _mm512_mask_storeu_epi8(to, lowBits(length + 1), text);
}

#else

// Never called on other processors.
void putShort(char *, const std::uint8_t *, std::size_t) {}

#endif

} // namespace velnls::avx512
