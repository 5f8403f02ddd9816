#include "string/place_filter.hpp"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velnls {

namespace {

#if defined(__SSE2__)

constexpr std::size_t kBlock = 16;

// Comparison with up to kForms values; a shorter list repeats its first one.
template <unsigned kForms>
class BlockTest {
public:
    explicit BlockTest(const ByteForms &forms) {
        for (unsigned i = 0; i < kForms; ++i)
            wanted_[i] = _mm_set1_epi8(static_cast<char>(forms.bytes[i < forms.count ? i : 0]));
    }
    // All bits of the bytes that are among the values.
    [[nodiscard]] __m128i operator()(const std::uint8_t *at) const {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        __m128i found = _mm_cmpeq_epi8(block, wanted_[0]);
        for (unsigned i = 1; i < kForms; ++i)
            found = _mm_or_si128(found, _mm_cmpeq_epi8(block, wanted_[i]));
        return found;
    }

private:
    __m128i wanted_[kForms];
};

template <>
class BlockTest<0> {
public:
    explicit BlockTest(const ByteForms &) {}
    [[nodiscard]] __m128i operator()(const std::uint8_t *) const {
        return _mm_set1_epi8(-1);
    }
};

template <unsigned kFirst, unsigned kSecond>
const std::uint8_t *findIn(const PlaceFilter &filter, const std::uint8_t *at, const std::uint8_t *end,
                           const std::uint8_t *&stopped) {
    const BlockTest<kFirst> first(filter.first);
    const BlockTest<kSecond> second(filter.second);
    const std::size_t distance = filter.distance;
    const auto test = [&](const std::uint8_t *block) {
        return _mm_and_si128(first(block), second(block + distance));
    };
    const auto placeIn = [](const std::uint8_t *block, __m128i found) {
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(found));
        return mask == 0 ? nullptr : block + __builtin_ctz(mask);
    };
    constexpr std::size_t kStride = 4 * kBlock;
    for (; end - at >= static_cast<std::ptrdiff_t>(kStride + distance); at += kStride) {
        const __m128i a = test(at);
        const __m128i b = test(at + kBlock);
        const __m128i c = test(at + 2 * kBlock);
        const __m128i d = test(at + 3 * kBlock);
        if (_mm_movemask_epi8(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d))) == 0)
            continue;
        const __m128i found[] = {a, b, c, d};
        for (std::size_t i = 0;; ++i)
            if (const std::uint8_t *const place = placeIn(at + i * kBlock, found[i]); place != nullptr)
                return place;
    }
    for (; end - at >= static_cast<std::ptrdiff_t>(kBlock + distance); at += kBlock)
        if (const std::uint8_t *const place = placeIn(at, test(at)); place != nullptr)
            return place;
    stopped = at;
    return nullptr;
}

#else

bool isAmong(const ByteForms &forms, std::uint8_t byte) {
    for (unsigned i = 0; i < forms.count; ++i)
        if (forms.bytes[i] == byte)
            return true;
    return false;
}

template <unsigned kFirst, unsigned kSecond>
const std::uint8_t *findIn(const PlaceFilter &filter, const std::uint8_t *at, const std::uint8_t *end,
                           const std::uint8_t *&stopped) {
    for (; end - at > static_cast<std::ptrdiff_t>(filter.distance); ++at)
        if (isAmong(filter.first, *at) && (kSecond == 0 || isAmong(filter.second, at[filter.distance])))
            return at;
    stopped = at;
    return nullptr;
}

#endif

} // namespace

bool ByteForms::add(std::uint8_t byte) {
    for (unsigned i = 0; i < count; ++i)
        if (bytes[i] == byte)
            return true;
    if (count >= kMost)
        return false;
    bytes[count++] = byte;
    return true;
}

const std::uint8_t *PlaceFilter::find(const std::uint8_t *at, const std::uint8_t *end,
                                      const std::uint8_t *&stopped) const {
    const unsigned most = first.count > second.count ? first.count : second.count;
    if (second.count == 0)
        return most == 1   ? findIn<1, 0>(*this, at, end, stopped)
               : most == 2 ? findIn<2, 0>(*this, at, end, stopped)
                           : findIn<4, 0>(*this, at, end, stopped);
    return most == 1   ? findIn<1, 1>(*this, at, end, stopped)
           : most == 2 ? findIn<2, 2>(*this, at, end, stopped)
                       : findIn<4, 4>(*this, at, end, stopped);
}

} // namespace velnls
