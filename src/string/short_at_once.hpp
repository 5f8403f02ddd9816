// What the bytes of a short text say at once of a pattern.
//
// Mostly the bytes of a pattern do not stand in a text, and then no characters do, however both divide into
// characters. Only a character that the text's end cuts may match by other bytes.
#pragma once

#include "core/unaligned.hpp"
#include "string/short_match.hpp"

namespace velnls {
namespace {

// Whether a character may reach across the end of a text.
[[gnu::always_inline]] inline bool mayBeCut(ShortPage page, const std::uint8_t *text, unsigned length) {
    if (page != ShortPage::Utf8 || length < sizeof(std::uint32_t))
        return page == ShortPage::Utf8;
    // A last byte from C0 up begins a character that goes on, the one before it does from E0 up, and the one
    // before that from F0 up: all of these bits are set.
    const auto last = loadNumber<std::uint32_t>(text + length - sizeof(std::uint32_t));
    const std::uint32_t clear = (~last & 0xC0E0F000) | 0xFF;
    return ((clear - 0x01010101) & ~clear & 0x80808080) != 0;
}

// Whether every byte of a text below `end` is a character.
template <typename Masks>
[[gnu::always_inline]] inline bool isOfBytes(ShortPage page, const Masks &text, std::uint64_t end) {
    return page == ShortPage::Bytes || (text.high() & (end - 1)) == 0;
}

// As shortPlacesBy(), for UTF-8 and single bytes; unsettled also where only the bytes stand.
template <typename Masks>
[[gnu::always_inline]] inline ShortPlaces placesAtOnce(ShortMatching matching, const std::uint8_t *pattern,
                                                       const std::uint8_t *text) {
    ShortPattern<Masks> wanted(pattern);
    const Masks masks(text);
    const std::uint64_t end = lowestOf(masks.equal(0));
    if (wanted.end <= 1 || end == 0 || !wanted.divide(matching))
        return kUnsettledPlaces;
    const ShortOrder order = wanted.orderIn(matching, masks, end);
    if (order == ShortOrder::Unknown)
        return kUnsettledPlaces;
    const unsigned length = placeOf(wanted.end);
    const unsigned textLength = placeOf(end);
    const ShortSought<Masks> sought(masks, wanted.masks, pattern, order, matching.weights());
    const std::uint64_t places = sought.places(0, length, end);
    if (places != 0 ? !isOfBytes(matching.page, masks, end) : mayBeCut(matching.page, text, textLength))
        return kUnsettledPlaces;
    return settledPlaces(places, length, textLength);
}

// As shortLikeBy(), for UTF-8 and single bytes; BytesStand where the bytes of the pattern's first piece stand
// in the text, and those of its last one at its end.
template <typename Masks>
[[gnu::always_inline]] inline ShortLike likeAtOnce(ShortMatching matching, const std::uint8_t *pattern,
                                                   const std::uint8_t *text, const ShortSigns &signs) {
    ShortPattern<Masks> wanted(pattern);
    const std::uint64_t any = wanted.anyStrings(matching, signs);
    if (any == 0)
        return ShortLike::Unsettled;
    const Masks masks(text);
    const std::uint64_t end = lowestOf(masks.equal(0));
    if (end <= 1)
        return end == 0 ? ShortLike::TextGoesOn : ShortLike::Unsettled;
    const ShortOrder order = wanted.orderIn(matching, masks, end);
    if (order == ShortOrder::Unknown)
        return ShortLike::Unsettled;
    const ShortSought<Masks> sought(masks, wanted.masks, pattern, order, matching.weights());
    const std::uint64_t last = wanted.end >> 1;
    const std::uint64_t next = lowestOf((any & (any - 1)) | wanted.end);
    const unsigned length = placeOf(next) - 1;
    bool stands = length == 0;
    if (!stands && ((any & last) != 0 || (sought.placesOf(placeOf(last)) & end >> 1) != 0))
        stands = sought.places(1, length, end) != 0;
    if (stands)
        return next == last && isOfBytes(matching.page, masks, end) ? ShortLike::Yes : ShortLike::BytesStand;
    // By its own bytes alone a character that is cut matches none.
    if (order != ShortOrder::Bytes && mayBeCut(matching.page, text, placeOf(end)))
        return ShortLike::BytesStand;
    return ShortLike::No;
}

} // namespace
} // namespace velnls
