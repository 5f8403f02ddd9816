// What the bytes of a short text say at once of a pattern.
//
// Mostly the bytes of a pattern do not stand in a text, and then no characters do, however both divide into
// characters. Only a character that the text's end cuts may match by other bytes.
#pragma once

#include "core/unaligned.hpp"
#include "core/utf8_boundary.hpp"
#include "string/short_match.hpp"

namespace velnls {
namespace {

// Whether a character may reach across the end of a text, a bit.
template <typename Masks>
[[gnu::always_inline]] inline bool mayBeCut(ShortMatching matching, const Masks &masks, std::uint64_t end,
                                            const std::uint8_t *text) {
    if (matching.page == ShortPage::Bytes)
        return false;
    if (matching.page != ShortPage::Utf8) {
        // Lead bytes side by side are pairs, but for the last one of an odd number. How a text ends nobody
        // could foresee: no jump.
        const std::uint64_t others = ~leadsOf(masks, *matching.facts()) & (end - 1);
        const unsigned begin = others == 0 ? 0 : 64 - static_cast<unsigned>(__builtin_clzll(others));
        return ((placeOf(end) - begin) & 1) != 0;
    }
    const unsigned length = placeOf(end);
    constexpr unsigned kFour = sizeof(std::uint32_t);
    return length < kFour || !nothingReachesAcross(loadNumber<std::uint32_t>(text + length - kFour));
}

// The places of a text that a byte before may announce as a trail byte of its character: at any other one a
// character begins. No page that matches by its bytes has lead bytes of ASCII, and in UTF-8 none of its
// proofs lets a byte announce more than three.
template <typename Masks>
[[gnu::always_inline]] inline std::uint64_t mayBeInside(ShortPage page, const Masks &text) {
    if (page == ShortPage::Bytes)
        return 0;
    const std::uint64_t high = text.high();
    if (page != ShortPage::Utf8)
        return high << 1;
    if (!Masks::kMaps) // without AVX-512 three more masks take more code than the texts between are worth
        return high << 1 | high << 2 | high << 3;
    return text.atLeast(0xC0) << 1 | text.atLeast(0xE0) << 2 | text.atLeast(0xF0) << 3;
}

// As shortPlacesBy(); on a page of other characters than pairs unsettled also where only the bytes stand.
template <typename Masks>
[[gnu::always_inline]] inline ShortPlaces placesAtOnce(ShortMatching matching, const std::uint8_t *pattern,
                                                       const std::uint8_t *text) {
    return withPlaces<Masks>(
        matching, pattern,
        text, [=](const Masks &masks, std::uint64_t end, ShortPlaces found) __attribute__((always_inline)) {
            if (matching.page == ShortPage::Pairs)
                return atCharacters(matching, masks, end, found);
            const bool unsettled = found.places != 0
                                       ? (mayBeInside(matching.page, masks) & (found.places | end)) != 0
                                       : mayBeCut(matching, masks, end, text);
            return unsettled ? kUnsettledPlaces : found;
        });
}

// As shortLikeBy(), but for BytesStand where the bytes of the pattern's first piece stand in the text, and
// those of its last one at its end.
template <typename Masks>
[[gnu::always_inline]] inline ShortLike likeAtOnce(ShortMatching matching, const std::uint8_t *pattern,
                                                   const std::uint8_t *text, LikeSigns signs) {
    return withLikeRead<Masks>(
        matching, pattern, text, signs, [=](const ShortLikeRead<Masks> &read) __attribute__((always_inline)) {
            const std::uint64_t last = read.patternEnd >> 1;
            const std::uint64_t next = lowestOf((read.any & (read.any - 1)) | read.patternEnd);
            const unsigned length = placeOf(next) - 1;
            std::uint64_t places = length == 0 ? 1 : 0;
            if (length != 0 &&
                ((read.any & last) != 0 || (read.sought.placesOf(placeOf(last)) & read.end >> 1) != 0))
                places = read.sought.places(1, length, read.end);
            // By its own bytes alone a character that is cut matches none of the pattern, see mayMeetCut().
            if (places == 0 &&
                (read.order == ShortOrder::Bytes || !mayBeCut(matching, read.masks, read.end, text)))
                return ShortLike::No;
            return next == last && (places & ~mayBeInside(matching.page, read.masks)) != 0
                       ? ShortLike::Yes
                       : ShortLike::BytesStand;
        });
}

// LIKE with a pattern that begins with literals, by those up to its first sign: Yes where that is an
// any-string sign and ends it, Unsettled where more follows. The text may go on behind its block.
template <typename Masks>
[[gnu::always_inline]] inline ShortLike likePrefixBy(ShortMatching matching, const std::uint8_t *pattern,
                                                     const std::uint8_t *text, LikeSigns signs) {
    const Masks masks(text);
    const std::uint64_t end = lowestOf(masks.equal(0));
    ShortPattern<Masks> wanted(pattern);
    if (wanted.end <= 1 || !wanted.divide(matching))
        return ShortLike::Unsettled;
    const std::uint64_t any = wanted.anyStrings(signs);
    const ShortOrder order = wanted.orderIn(matching, masks, end);
    if (any == 0 || order == ShortOrder::Unknown)
        return ShortLike::Unsettled;
    const ShortSought<Masks> sought(masks, wanted, pattern, order, matching.weights());
    const std::uint64_t others = ~(sought.same() & (end - 1)) & (lowestOf(any) - 1);
    if (others == 0)
        return any << 1 == wanted.end ? ShortLike::Yes : ShortLike::Unsettled;
    // Where the text goes on, the character that differs is whole, since behind its first byte the pattern
    // had room for a sign and the end; or it is one of four bytes, and those equal themselves alone.
    return end != 0 && mayBeCut(matching, masks, end, text) ? ShortLike::Unsettled : ShortLike::No;
}

} // namespace
} // namespace velnls
