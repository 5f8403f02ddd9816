// Orders that are settled by what was proved of a locale when it was made, and strings that differ within
// their first bytes: compared on the spot. Everything else is left to the general way.
#pragma once

#include "collate/basic.hpp"
#include "collate/prefix.hpp"
#include "collate/proofs.hpp"
#include "core/objects.hpp"

namespace velnls {

// The proofs of a locale that passes all checks of a call that orders strings; for any other, none of the
// proofs of an order. Those are there only where a collation is.
[[gnu::always_inline]] inline std::uint32_t provedOrder(const nlsLocale *locale) {
    if (locale == nullptr || locale->header.type != kLocaleObject) [[unlikely]]
        return 0;
    const std::uint32_t proofs = locale->header.proofs;
    if ((proofs & (kByteWeights | kBasicOrder)) == 0 || !isLive(*locale->handle) ||
        locale->charTable == nullptr) [[unlikely]]
        return 0;
    return proofs;
}

// The weight table of a mode that has one.
inline const std::uint8_t *provedWeights(const nlsLocale &locale, unsigned mode) {
    return mode != 0 ? locale.collation->caseSensitive : locale.collation->caseInsensitive;
}

// What two strings give by their first difference: -1, 0, 1, or kUnsettled where that alone does not say. The
// end of a string ranks below every byte, but a blank on the other side may be the first of blanks at an end.
inline constexpr int kUnsettled = 2;

[[gnu::always_inline]] inline int signOf(int difference) {
    return (difference > 0) - (difference < 0);
}

// A byte that both strings have gives both the same steps, and none of them is left over for the byte behind
// it. `a` and `b` differ, or are both NUL.
[[gnu::always_inline]] inline int byteOrder(unsigned a, unsigned b) {
    return (a | b) == ' ' ? kUnsettled : signOf(static_cast<int>(a - b));
}

// Of two weights that are not alike, and where none is 0.
[[gnu::always_inline]] inline int orderOfWeights(unsigned weightA, unsigned weightB) {
    return weightA != weightB && weightA * weightB != 0 ? orderOf(weightA, weightB) : kUnsettled;
}

#if defined(VELNLS_READS_AHEAD)

// Whether the first bytes of both strings, kAheadBytes of each, can be loaded.
[[gnu::always_inline]] inline bool canLookAhead(const std::uint8_t *a, const std::uint8_t *b) {
    return staysInPage(a) && staysInPage(b);
}

inline constexpr unsigned kUnknownPlace = ~0U;

// The order by characters folded to lower case, where bytes of ASCII are characters of their own.
// `page.orderOfFirst(a, b)`: the order of texts whose first characters settle it already.
// `page.isPlain(text, place)`: whether the characters before a place are ASCII, as far as they may reach it.
// `page.beginOf(text, place)`: where in a text the character begins that the byte at `place` belongs to, of
// a place in the first block; kUnknownPlace where that takes a closer look. `page.fold(at, number)`: the
// folded number of the character at a place; false for one that is left to the general way.
template <typename Page>
[[gnu::always_inline]] inline int orderOfFirstCharacters(const Page &page, const std::uint8_t *a,
                                                         const std::uint8_t *b) {
    if (const int order = page.orderOfFirst(a, b); order != kUnsettled)
        return order;
    if (!canLookAhead(a, b)) [[unlikely]]
        return kUnsettled;
    for (unsigned from = 0; from != kAheadBytes; from += kHalfBytes) {
        for (std::uint32_t places = differencesInHalf(a + from, b + from); places != 0;
             places &= places - 1) {
            const unsigned at = from + firstOf(places);
            const unsigned byteA = a[at];
            const unsigned byteB = b[at];
            if ((byteA | byteB) < 0x80 && page.isPlain(a, at)) [[likely]] {
                if (byteA == 0 || byteB == 0)
                    return byteOrder(byteA, byteB);
                const unsigned foldA = asciiLower(byteA);
                const unsigned foldB = asciiLower(byteB);
                if (foldA != foldB) [[likely]]
                    return orderOf(foldA, foldB);
                continue;
            }
            const unsigned begin = page.beginOf(a, at);
            std::uint32_t foldA = 0;
            std::uint32_t foldB = 0;
            if (begin == kUnknownPlace || !page.fold(a + begin, foldA) || !page.fold(b + begin, foldB))
                return kUnsettled;
            return foldA != foldB ? orderOf(foldA, foldB) : kUnsettled;
        }
    }
    return kUnsettled;
}

#else

template <typename Page>
int orderOfFirstCharacters(const Page &, const std::uint8_t *, const std::uint8_t *) {
    return kUnsettled;
}

#endif

} // namespace velnls
