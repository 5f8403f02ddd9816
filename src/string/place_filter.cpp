#include "string/place_filter.hpp"

#include "locale/masks_sse2.hpp"

#include <algorithm>
#include <cstring>

namespace velnls {

namespace {

bool isAmong(const ByteForms &forms, std::uint8_t byte) {
    for (unsigned i = 0; i < forms.count; ++i)
        if (forms.bytes[i] == byte)
            return true;
    return false;
}

#if defined(VELNLS_TEXT_VECTORS)

constexpr std::size_t kBlock = 16;

// Comparison with up to kForms values.
template <unsigned kForms>
class BlockTest {
public:
    explicit BlockTest(const ByteForms &forms) {
        for (unsigned i = 0; i < kForms; ++i)
            wanted_[i] = _mm_set1_epi8(static_cast<char>(forms.repeated(i)));
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

template <unsigned kNear, unsigned kFar>
const std::uint8_t *findIn(const PlaceFilter &filter, const std::uint8_t *text, const std::uint8_t *at,
                           const std::uint8_t *end, const std::uint8_t *&stopped) {
    const BlockTest<kNear> near(filter.near);
    const BlockTest<kFar> far(filter.far);
    const std::size_t nearDistance = filter.nearDistance;
    const std::size_t distance = filter.farDistance;
    const auto test = [&](const std::uint8_t *block) {
        return _mm_and_si128(near(block + nearDistance), far(block + distance));
    };
    const auto maskOf = [](__m128i found) { return static_cast<unsigned>(_mm_movemask_epi8(found)); };
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
            if (const unsigned mask = maskOf(found[i]); mask != 0)
                return at + i * kBlock + __builtin_ctz(mask);
    }
    for (; end - at >= static_cast<std::ptrdiff_t>(kBlock + distance); at += kBlock)
        if (const unsigned mask = maskOf(test(at)); mask != 0)
            return at + __builtin_ctz(mask);
    // The last block looks once more at places that are done with.
    if (end - text >= static_cast<std::ptrdiff_t>(kBlock + distance) &&
        end - at > static_cast<std::ptrdiff_t>(distance)) {
        const std::uint8_t *const last = end - distance - kBlock;
        const unsigned mask = maskOf(test(last)) >> (at - last);
        if (mask != 0)
            return at + __builtin_ctz(mask);
        at = last + kBlock;
    }
    stopped = at;
    return nullptr;
}

template <typename Masks>
std::uint64_t placesIn(const PlaceFilter &filter, const std::uint8_t *text, std::size_t length) {
    const Masks masks = length == Masks::kBytes ? Masks(text) : Masks(text, length);
    const auto among = [&masks](const ByteForms &forms) {
        std::uint64_t found = masks.equal(forms.bytes[0]);
        for (unsigned i = 1; i < forms.count; ++i)
            found |= masks.equal(forms.bytes[i]);
        return found;
    };
    // No text holds a NUL, so the zeros behind a short one are none of the bytes looked for.
    const std::uint64_t found = among(filter.near) >> filter.nearDistance;
    return filter.far.count == 0 ? found : found & among(filter.far) >> filter.farDistance;
}

// The text has a block at least.
template <unsigned kForms>
const std::uint8_t *skipBlocks(const std::uint8_t *at, const std::uint8_t *end, const ByteForms &forms) {
    const BlockTest<kForms> test(forms);
    // A mask takes the high bits: those of the bytes themselves and of the equal ones.
    const auto stops = [&test](const std::uint8_t *block) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(block));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(bytes, test(block))));
    };
    for (; end - at >= static_cast<std::ptrdiff_t>(kBlock); at += kBlock)
        if (const unsigned mask = stops(at); mask != 0)
            return at + __builtin_ctz(mask);
    if (at == end)
        return end;
    // The last block looks once more at bytes that are done with.
    const std::uint8_t *const last = end - kBlock;
    const unsigned mask = stops(last) >> (at - last);
    return mask != 0 ? at + __builtin_ctz(mask) : end;
}

#else

template <unsigned kNear, unsigned kFar>
const std::uint8_t *findIn(const PlaceFilter &filter, const std::uint8_t *text, const std::uint8_t *at,
                           const std::uint8_t *end, const std::uint8_t *&stopped) {
    static_cast<void>(text);
    for (; end - at > static_cast<std::ptrdiff_t>(filter.farDistance); ++at)
        if (isAmong(filter.near, at[filter.nearDistance]) &&
            (kFar == 0 || isAmong(filter.far, at[filter.farDistance])))
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

const std::uint8_t *PlaceFilter::find(const std::uint8_t *text, const std::uint8_t *at,
                                      const std::uint8_t *end, const std::uint8_t *&stopped) const {
    if (wide) {
        const std::uint8_t *const place = avx512::findPlace(*this, at, end, stopped);
        if (place != nullptr)
            return place;
        at = stopped;
    }
    const unsigned most = near.count > far.count ? near.count : far.count;
    if (far.count == 0) // patterns of one character: a few needless comparisons, and less code
        return findIn<4, 0>(*this, text, at, end, stopped);
    return most == 1   ? findIn<1, 1>(*this, text, at, end, stopped)
           : most == 2 ? findIn<2, 2>(*this, text, at, end, stopped)
                       : findIn<4, 4>(*this, text, at, end, stopped);
}

std::uint64_t PlaceFilter::places(const std::uint8_t *text, std::size_t length) const {
    if (farDistance >= length)
        return 0;
#if defined(VELNLS_TEXT_VECTORS)
    return length <= 32 ? placesIn<Sse2Masks<2>>(*this, text, length)
                        : placesIn<Sse2Masks<4>>(*this, text, length);
#else
    std::uint64_t found = 0;
    for (std::size_t place = 0; place + farDistance < length; ++place)
        if (isAmong(near, text[place + nearDistance]) &&
            (far.count == 0 || isAmong(far, text[place + farDistance])))
            found |= std::uint64_t{1} << place;
    return found;
#endif
}

bool addIndexesOf(const std::uint8_t *table, bool beyondAscii, std::uint8_t value, ByteForms &forms) {
    const unsigned from = beyondAscii ? 0x80 : 0;
#if defined(VELNLS_TEXT_VECTORS)
    for (unsigned base = from; base < 256; base += 64) {
        const std::uint64_t found = Sse2Masks<4>(table + base).equal(value);
        for (std::uint64_t left = base == 0 ? found & ~std::uint64_t{1} : found; left != 0; left &= left - 1)
            if (!forms.add(static_cast<std::uint8_t>(base + static_cast<unsigned>(__builtin_ctzll(left)))))
                return false;
    }
#else
    for (unsigned index = std::max(from, 1U); index < 256; ++index)
        if (table[index] == value && !forms.add(static_cast<std::uint8_t>(index)))
            return false;
#endif
    return true;
}

const std::uint8_t *skipOtherAscii(const std::uint8_t *text, const std::uint8_t *at, const std::uint8_t *end,
                                   const ByteForms &forms) {
#if defined(VELNLS_TEXT_VECTORS)
    if (end - text >= static_cast<std::ptrdiff_t>(kBlock))
        return forms.count <= 2 ? skipBlocks<2>(at, end, forms)
                                : skipBlocks<ByteForms::kMost>(at, end, forms);
#else
    static_cast<void>(text);
#endif
    while (at != end && *at < 0x80 && !isAmong(forms, *at))
        ++at;
    return at;
}

unsigned findValue(const std::uint8_t *values, unsigned from, unsigned count, std::uint16_t value) {
#if defined(VELNLS_TEXT_VECTORS)
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(value));
    for (; count - from >= kBlock / 2; from += kBlock / 2) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(values + 2 * from));
        const int mask = _mm_movemask_epi8(_mm_cmpeq_epi16(block, wanted));
        if (mask != 0)
            return from + static_cast<unsigned>(__builtin_ctz(static_cast<unsigned>(mask))) / 2;
    }
#endif
    for (; from < count; ++from)
        if (std::memcmp(values + 2 * from, &value, sizeof value) == 0)
            break;
    return from;
}

} // namespace velnls
