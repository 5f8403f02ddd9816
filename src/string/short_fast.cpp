#include "string/short_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

namespace {

// Half a block holds most texts, and is looked through in half the time.
using Masks = Sse2Masks<2>;

} // namespace

ShortCount countShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit) {
    return shortCountBy<Masks>(page, facts, text, limit);
}

ShortStretch stretchOfShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text,
                            std::uint32_t start, std::uint32_t length) {
    return shortStretchBy<Masks>(page, facts, text, start, length);
}

} // namespace velnls::fast

#endif
