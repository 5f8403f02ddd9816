// Orders that are settled by what was proved of a locale when it was made, and strings that differ in their
// first block: compared on the spot. Everything else is left to the general way.
#pragma once

#include "collate/basic.hpp"
#include "collate/prefix.hpp"
#include "collate/proofs.hpp"
#include "core/objects.hpp"

namespace velnls {

// The proofs of a locale that passes all checks of a call that orders strings; 0 for any other.
[[gnu::always_inline]] inline std::uint32_t provedOrder(const nlsLocale *locale) {
    if (locale == nullptr || locale->header.type != kLocaleObject || !isLive(locale->handle)) [[unlikely]]
        return 0;
    if (locale->charTable == nullptr || locale->collation == nullptr) [[unlikely]]
        return 0;
    return locale->header.proofs;
}

// The weight table of a mode that has one.
inline const std::uint8_t *provedWeights(const nlsLocale &locale, unsigned mode) {
    return mode != 0 ? locale.collation->caseSensitive : locale.collation->caseInsensitive;
}

// What two strings give by their first difference: -1, 0, 1, or kUnsettled where that alone does not say. The
// end of a string ranks below every byte, but a blank on the other side may be the first of blanks at an end.
inline constexpr int kUnsettled = 2;

inline int signOf(int difference) {
    return (difference > 0) - (difference < 0);
}

// A byte that both strings have gives both the same steps, and none of them is left over for the byte behind
// it. `a` and `b` differ, or are both NUL.
[[gnu::always_inline]] inline int byteOrder(unsigned a, unsigned b) {
    return (a | b) == ' ' ? kUnsettled : signOf(static_cast<int>(a - b));
}

// Where kAsciiFolds is proved, lower case is an order by weights too as long as bytes are ASCII: those of
// this table. The other bytes have the weight 0 and leave the order to whole characters.
struct LowerCaseWeights {
    std::uint8_t weights[256];
};
inline constexpr LowerCaseWeights kLowerCase = [] {
    LowerCaseWeights table{};
    for (unsigned byte = 0; byte < 0x80; ++byte)
        table.weights[byte] = static_cast<std::uint8_t>(asciiLower(byte));
    return table;
}();

#if defined(VELNLS_READS_AHEAD)

// The places of two strings' first block where their bytes differ or are both NUL; none where the block does
// not lie in one page.
[[gnu::always_inline]] inline std::uint32_t firstDifferences(const std::uint8_t *a, const std::uint8_t *b) {
    return staysInPage(a) && staysInPage(b) ? differencesAhead(a, b) : 0;
}

// The order of two strings by weights, with 0 for that of NUL, as far as their first block goes. Bytes of one
// weight are gone over; a byte of the weight 0 leaves the order to whole characters or to expansions.
// `kCharacters`: a byte that is not ASCII may begin a character of up to four bytes, and what it may reach in
// broken text is left as well.
template <bool kCharacters>
[[gnu::always_inline]] inline int orderInBlock(const std::uint8_t *weights, const std::uint8_t *a,
                                               const std::uint8_t *b) {
    for (std::uint32_t places = firstDifferences(a, b); places != 0; places &= places - 1) {
        const unsigned at = firstOf(places);
        if (kCharacters && (std::uint64_t{highAhead(a)} << 3 >> at & 7) != 0) [[unlikely]]
            return kUnsettled;
        const unsigned weightA = weights[a[at]];
        const unsigned weightB = weights[b[at]];
        if (weightA != weightB && weightA != 0 && weightB != 0) [[likely]]
            return orderOf(weightA, weightB);
        if (a[at] == 0 || b[at] == 0)
            return byteOrder(a[at], b[at]);
        if (weightA != weightB || weightA == 0)
            return kUnsettled;
    }
    return kUnsettled;
}

// The same by the bytes themselves.
[[gnu::always_inline]] inline int orderOfBytesInBlock(const std::uint8_t *a, const std::uint8_t *b) {
    const std::uint32_t places = firstDifferences(a, b);
    if (places == 0) [[unlikely]]
        return kUnsettled;
    const unsigned at = firstOf(places);
    return byteOrder(a[at], b[at]);
}

#else

template <bool kCharacters>
int orderInBlock(const std::uint8_t *, const std::uint8_t *, const std::uint8_t *) {
    return kUnsettled;
}
inline int orderOfBytesInBlock(const std::uint8_t *, const std::uint8_t *) {
    return kUnsettled;
}

#endif

} // namespace velnls
