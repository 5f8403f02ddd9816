// The counting kernels for processors with AVX-512: 64 bytes at once, short texts by masked loads.
#include "string/count_fast.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

namespace velnls::avx512 {

namespace {

class WideMasks {
public:
    static constexpr unsigned kBytes = 64;

    [[gnu::always_inline]] explicit WideMasks(const std::uint8_t *at) : bytes_(_mm512_loadu_si512(at)) {}
    [[gnu::always_inline]] WideMasks(const std::uint8_t *at, std::size_t count)
        : bytes_(_mm512_maskz_loadu_epi8(lowBits(count), at)) {}
    [[gnu::always_inline]] std::uint64_t high() const {
        return _mm512_movepi8_mask(bytes_);
    }
    [[gnu::always_inline]] std::uint64_t equal(unsigned value) const {
        return _mm512_cmpeq_epi8_mask(bytes_, all(value));
    }
    [[gnu::always_inline]] std::uint64_t atLeast(unsigned value) const {
        return _mm512_cmpge_epu8_mask(bytes_, all(value));
    }
    [[gnu::always_inline]] std::uint64_t utf8Trails() const {
        return _mm512_cmplt_epi8_mask(bytes_, all(0xC0));
    }
    [[gnu::always_inline]] std::uint64_t inRange(unsigned first, unsigned span) const {
        return _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes_, all(first)), all(span));
    }
    [[gnu::always_inline]] static unsigned population(std::uint64_t mask) {
        return static_cast<unsigned>(_mm_popcnt_u64(mask));
    }

private:
    static __m512i all(unsigned value) {
        return _mm512_set1_epi8(static_cast<char>(value));
    }

    __m512i bytes_;
};

} // namespace

Passed countUtf8(const std::uint8_t *text, std::size_t length) {
    return countUtf8By<WideMasks, WideMasks, WideMasks>(text, length);
}

Passed columnsUtf8(const std::uint8_t *text, std::size_t length) {
    return columnsUtf8By<WideMasks, WideMasks, WideMasks>(text, length);
}

Passed countPairs(const PageFacts &facts, const std::uint8_t *text, std::size_t length) {
    return countPairsBy<false, WideMasks, WideMasks, WideMasks>(facts, text, length);
}

Passed countValidPairs(const PageFacts &facts, const std::uint8_t *text, std::size_t length) {
    return countPairsBy<true, WideMasks, WideMasks, WideMasks>(facts, text, length);
}

Passed narrowColumns(const PageFacts &facts, const std::uint8_t *text, std::size_t length) {
    return narrowColumnsBy<WideMasks, WideMasks, WideMasks>(facts, text, length);
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
