// The sieve for places on processors with AVX-512: 128 bytes at once.
#include "core/avx512.hpp"
#include "string/place_filter.hpp"

namespace velnls::avx512 {

#if defined(VELNLS_AVX512_KERNELS)

namespace {

// Which of 64 bytes, of those in `among`, are one of kForms values.
template <unsigned kForms>
class WideTest {
public:
    explicit WideTest(const ByteForms &forms) {
        for (unsigned i = 0; i < kForms; ++i)
            wanted_[i] = _mm512_set1_epi8(static_cast<char>(forms.repeated(i)));
    }
    [[gnu::always_inline]] __mmask64 operator()(const std::uint8_t *at, __mmask64 among) const {
        const Vector block = _mm512_loadu_si512(at);
        __mmask64 found = _mm512_mask_cmpeq_epi8_mask(among, block, wanted_[0]);
        for (unsigned i = 1; i < kForms; ++i)
            found |= _mm512_mask_cmpeq_epi8_mask(among, block, wanted_[i]);
        return found;
    }

private:
    Vector wanted_[kForms];
};

template <>
class WideTest<0> {
public:
    explicit WideTest(const ByteForms &) {}
    [[gnu::always_inline]] __mmask64 operator()(const std::uint8_t *, __mmask64 among) const {
        return among;
    }
};

template <unsigned kNear, unsigned kFar>
const std::uint8_t *findIn(const PlaceFilter &filter, const std::uint8_t *at, const std::uint8_t *end,
                           const std::uint8_t *&stopped) {
    const WideTest<kNear> near(filter.near);
    const WideTest<kFar> far(filter.far);
    const std::size_t nearDistance = filter.nearDistance;
    const std::size_t farDistance = filter.farDistance;
    constexpr std::size_t kBlock = sizeof(Vector);
    const auto test = [&](const std::uint8_t *block) {
        return far(block + farDistance, near(block + nearDistance, ~__mmask64{0}));
    };
    for (; end - at >= static_cast<std::ptrdiff_t>(2 * kBlock + farDistance); at += 2 * kBlock) {
        const __mmask64 first = test(at);
        const __mmask64 second = test(at + kBlock);
        if (_kortestz_mask64_u8(first, second) != 0)
            continue;
        return first != 0 ? at + __builtin_ctzll(first) : at + kBlock + __builtin_ctzll(second);
    }
    stopped = at;
    return nullptr;
}

} // namespace

const std::uint8_t *findPlace(const PlaceFilter &filter, const std::uint8_t *at, const std::uint8_t *end,
                              const std::uint8_t *&stopped) {
    const unsigned most = filter.near.count > filter.far.count ? filter.near.count : filter.far.count;
    if (filter.far.count == 0)
        return most == 1   ? findIn<1, 0>(filter, at, end, stopped)
               : most == 2 ? findIn<2, 0>(filter, at, end, stopped)
                           : findIn<4, 0>(filter, at, end, stopped);
    return most == 1   ? findIn<1, 1>(filter, at, end, stopped)
           : most == 2 ? findIn<2, 2>(filter, at, end, stopped)
                       : findIn<4, 4>(filter, at, end, stopped);
}

#else

// On other processors nothing is looked at; it is not called.
const std::uint8_t *findPlace(const PlaceFilter &, const std::uint8_t *at, const std::uint8_t *,
                              const std::uint8_t *&stopped) {
    stopped = at;
    return nullptr;
}

#endif

} // namespace velnls::avx512
