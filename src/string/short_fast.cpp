#include "string/short_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

namespace {

using Masks = Sse2Masks<4>;
using Half = Sse2Masks<2>; // for texts of which no more matters

} // namespace

ShortCount countShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit) {
    return limit < Half::kBytes ? shortCountBy<Half>(page, facts, text, limit)
                                : shortCountBy<Masks>(page, facts, text, limit);
}

ShortStretch stretchOfShort(ShortPage page, const PageFacts &facts, const std::uint8_t *text,
                            std::uint32_t start, std::uint32_t length) {
    return start + length < Half::kBytes ? shortStretchBy<Half>(page, facts, text, start, length)
                                         : shortStretchBy<Masks>(page, facts, text, start, length);
}

} // namespace velnls::fast

#endif
