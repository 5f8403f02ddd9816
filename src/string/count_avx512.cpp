// The counting kernels for processors with AVX-512: 64 bytes at once, short texts by masked loads.
#include "string/count_fast.hpp"

#include "locale/masks_avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

namespace velnls::avx512 {

Passed countUtf8(const std::uint8_t *text, std::size_t length) {
    return countUtf8By<WideMasks, WideMasks, WideMasks>(text, length);
}

Passed columnsUtf8(const std::uint8_t *text, std::size_t length) {
    return columnsUtf8By<WideMasks, WideMasks>(text, length);
}

Passed countPairs(const PageFacts &facts, const std::uint8_t *text, std::size_t length) {
    return countPairsBy<false, WideMasks, WideMasks, WideMasks>(facts, text, length);
}

Passed countValidPairs(const PageFacts &facts, const std::uint8_t *text, std::size_t length) {
    return countPairsBy<true, WideMasks, WideMasks, WideMasks>(facts, text, length);
}

Passed narrowColumns(const PageFacts &facts, const std::uint8_t *text, std::size_t length) {
    return narrowColumnsBy<WideMasks, WideMasks>(facts, text, length);
}

} // namespace velnls::avx512

#else

// On other processors every kernel stops where it is; none is called.
namespace velnls::avx512 {

Passed countUtf8(const std::uint8_t *, std::size_t) {
    return {0, 0};
}

Passed columnsUtf8(const std::uint8_t *, std::size_t) {
    return {0, 0};
}

Passed countPairs(const PageFacts &, const std::uint8_t *, std::size_t) {
    return {0, 0};
}

Passed countValidPairs(const PageFacts &, const std::uint8_t *, std::size_t) {
    return {0, 0};
}

Passed narrowColumns(const PageFacts &, const std::uint8_t *, std::size_t) {
    return {0, 0};
}

} // namespace velnls::avx512

#endif
