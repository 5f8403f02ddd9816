// The ways of nlsCompare through the first blocks of strings that their first bytes do not settle.
#pragma once

#include "collate/quick.hpp"
#include "locale/locale.hpp"
#include "velnls.h"

namespace velnls {

[[gnu::always_inline]] inline nlsStatus give(int order, std::int16_t *out) {
    *out = static_cast<std::int16_t>(order);
    return NLS_OK;
}

// To the ends of two strings, from places where both are at a step of their own. The ways below jump here
// with what they do not settle, so that they have nothing to keep.
nlsStatus compareOnByBytes(const char *a, const char *b, std::int16_t *out);
nlsStatus compareOnByWeights(const nlsLocale *locale, const char *a, const char *b,
                             const std::uint8_t *weights, std::int16_t *out);

#if defined(VELNLS_READS_AHEAD)

// By weights, two strings of which one may end at the first of the places where they differ.
nlsStatus compareAtEnd(const nlsLocale *locale, const char *a, const char *b, const std::uint8_t *weights,
                       std::int16_t *out, std::uint32_t places);

// The same as compareFirstWeightsBy() where the first blocks cannot be loaded.
nlsStatus compareNearPageEnd(const nlsLocale *locale, const char *a, const char *b,
                             const std::uint8_t *weights, std::int16_t *out);

// `places`: where the first blocks differ or both have a NUL, as differencesAhead() has it; others behind the
// first of them do no harm. Which place that is nobody could foresee: it is found without a jump.

// By weights, with 0 for that of NUL.
[[gnu::always_inline]] inline nlsStatus settleByWeights(std::uint32_t places, const nlsLocale *locale,
                                                        const char *a, const char *b,
                                                        const std::uint8_t *weights, std::int16_t *out) {
    for (; places != 0; places &= places - 1) {
        const std::size_t at = firstOf(places);
        const unsigned weightA = weights[bytesOf(a)[at]];
        const unsigned weightB = weights[bytesOf(b)[at]];
        if (weightA == 0 || weightB == 0)
            return compareAtEnd(locale, a, b, weights, out, places);
        if (weightA != weightB)
            return give(orderOf(weightA, weightB), out);
    }
    return compareOnByWeights(locale, a + kAheadBytes, b + kAheadBytes, weights, out);
}

// `placesIn(a, b)` loads the blocks.

template <typename Places>
[[gnu::always_inline]] inline nlsStatus compareFirstBytesBy(Places placesIn, const char *a, const char *b,
                                                            std::int16_t *out) {
    if (!canLookAhead(bytesOf(a), bytesOf(b))) [[unlikely]]
        return compareOnByBytes(a, b, out);
    const std::uint32_t places = placesIn(bytesOf(a), bytesOf(b));
    if (places == 0) [[unlikely]]
        return compareOnByBytes(a + kAheadBytes, b + kAheadBytes, out);
    a += firstOf(places);
    b += firstOf(places);
    const int order = byteOrder(*bytesOf(a), *bytesOf(b));
    return order != kUnsettled ? give(order, out) : compareOnByBytes(a, b, out);
}

template <typename Places>
[[gnu::always_inline]] inline nlsStatus
compareFirstWeightsBy(Places placesIn, const nlsLocale *locale, const char *a, const char *b,
                      const std::uint8_t *weights, std::int16_t *out) {
    if (!canLookAhead(bytesOf(a), bytesOf(b))) [[unlikely]]
        return compareNearPageEnd(locale, a, b, weights, out);
    return settleByWeights(placesIn(bytesOf(a), bytesOf(b)), locale, a, b, weights, out);
}

// By weights that bytes have alone, NUL that of 0. Which string ranks first, and whether one of them ends,
// nobody could foresee: both are settled without a jump. A blank beside an end may be the first of blanks at
// an end. `areOwn(either)`: whether two bytes, `either` having the bits of both, have weights of their own.
// Texts that begin alike are followed to the end of a page of memory: the general way has larger blocks, but
// lines seldom go far enough for the jump to it to pay.
template <typename Places, typename AreOwn>
[[gnu::always_inline]] inline nlsStatus
compareFirstOwnWeightsBy(Places placesIn, AreOwn areOwn, const nlsLocale *locale, const char *a,
                         const char *b, const std::uint8_t *weights, std::int16_t *out) {
    std::uint32_t places = 0;
    for (;; a += kAheadBytes, b += kAheadBytes) {
        if (!canLookAhead(bytesOf(a), bytesOf(b))) [[unlikely]]
            return compareNearPageEnd(locale, a, b, weights, out);
        places = placesIn(bytesOf(a), bytesOf(b));
        if (places != 0) [[likely]]
            break;
    }
    a += firstOf(places);
    b += firstOf(places);
    const unsigned either = *bytesOf(a) | *bytesOf(b);
    if (either == ' ' || !areOwn(either)) [[unlikely]]
        return compareOnByWeights(locale, a, b, weights, out);
    return give(signOf(weights[*bytesOf(a)] - weights[*bytesOf(b)]), out);
}

#else

template <typename Places>
nlsStatus compareFirstBytesBy(Places, const char *a, const char *b, std::int16_t *out) {
    return compareOnByBytes(a, b, out);
}
template <typename Places>
nlsStatus compareFirstWeightsBy(Places, const nlsLocale *locale, const char *a, const char *b,
                                const std::uint8_t *weights, std::int16_t *out) {
    return compareOnByWeights(locale, a, b, weights, out);
}
template <typename Places, typename AreOwn>
nlsStatus compareFirstOwnWeightsBy(Places, AreOwn, const nlsLocale *locale, const char *a, const char *b,
                                   const std::uint8_t *weights, std::int16_t *out) {
    return compareOnByWeights(locale, a, b, weights, out);
}

#endif

// For processors with AVX-512; call these only where kWideVectors is proved.
namespace avx512 {

nlsStatus compareFirstBytes(const char *a, const char *b, std::int16_t *out);
nlsStatus compareFirstWeights(const nlsLocale *locale, const char *a, const char *b,
                              const std::uint8_t *weights, std::int16_t *out);
// Under mode 1, where kOwnWeights is proved; where kOwnAsciiWeights is.
nlsStatus compareFirstOwnWeights(const nlsLocale *locale, const char *a, const char *b,
                                 const std::uint8_t *weights, std::int16_t *out);
nlsStatus compareFirstOwnAscii(const nlsLocale *locale, const char *a, const char *b,
                               const std::uint8_t *weights, std::int16_t *out);

} // namespace avx512

} // namespace velnls
