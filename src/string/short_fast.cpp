#include "string/short_fast.hpp"

namespace velnls::fast {

#if defined(VELNLS_SHORT_TEXTS)

namespace {

using Masks = Sse2Masks<4>;
using Half = Sse2Masks<2>;

// A text of which no more matters than half a block.
template <typename Page>
[[gnu::always_inline]] inline ShortCount countOn(const Page &page, const std::uint8_t *text,
                                                 std::uint32_t limit) {
    return limit < Half::kBytes ? shortCountBy<Half>(page, text, limit)
                                : shortCountBy<Masks>(page, text, limit);
}

template <typename Page>
[[gnu::always_inline]] inline ShortStretch stretchOn(const Page &page, const std::uint8_t *text,
                                                     std::uint32_t start, std::uint32_t length) {
    return start + length < Half::kBytes ? shortStretchBy<Half>(page, text, start, length)
                                         : shortStretchBy<Masks>(page, text, start, length);
}

} // namespace

ShortCount shortUtf8(const std::uint8_t *text, std::uint32_t limit) {
    return countOn(ShortUtf8(), text, limit);
}

ShortCount shortPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit) {
    return countOn(ShortPairs<false>(facts), text, limit);
}

ShortCount shortValidPairs(const PageFacts &facts, const std::uint8_t *text, std::uint32_t limit) {
    return countOn(ShortPairs<true>(facts), text, limit);
}

ShortStretch shortUtf8Stretch(const std::uint8_t *text, std::uint32_t start, std::uint32_t length) {
    return stretchOn(ShortUtf8(), text, start, length);
}

ShortStretch shortPairsStretch(const PageFacts &facts, const std::uint8_t *text, std::uint32_t start,
                               std::uint32_t length) {
    return stretchOn(ShortPairs<false>(facts), text, start, length);
}

#else

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

#endif

} // namespace velnls::fast
