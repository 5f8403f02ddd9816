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
    return withPlaces<Masks>(
        matching, pattern,
        text, [=](const Masks &masks, std::uint64_t end, ShortPlaces found) __attribute__((always_inline)) {
            const bool unsettled = found.places != 0 ? !isOfBytes(matching.page, masks, end)
                                                     : mayBeCut(matching.page, text, found.textLength());
            return unsettled ? kUnsettledPlaces : found;
        });
}

// As shortLikeBy(), for UTF-8 and single bytes; BytesStand where the bytes of the pattern's first piece stand
// in the text, and those of its last one at its end.
template <typename Masks>
[[gnu::always_inline]] inline ShortLike likeAtOnce(ShortMatching matching, const std::uint8_t *pattern,
                                                   const std::uint8_t *text, LikeSigns signs) {
    return withLikeRead<Masks>(
        matching, pattern, text, signs, [=](const ShortLikeRead<Masks> &read) __attribute__((always_inline)) {
            const std::uint64_t last = read.patternEnd >> 1;
            const std::uint64_t next = lowestOf((read.any & (read.any - 1)) | read.patternEnd);
            const unsigned length = placeOf(next) - 1;
            bool stands = length == 0;
            if (!stands &&
                ((read.any & last) != 0 || (read.sought.placesOf(placeOf(last)) & read.end >> 1) != 0))
                stands = read.sought.places(1, length, read.end) != 0;
            if (stands)
                return next == last && isOfBytes(matching.page, read.masks, read.end) ? ShortLike::Yes
                                                                                      : ShortLike::BytesStand;
            // By its own bytes alone a character that is cut matches none.
            if (read.order != ShortOrder::Bytes && mayBeCut(matching.page, text, placeOf(read.end)))
                return ShortLike::BytesStand;
            return ShortLike::No;
        });
}

} // namespace
} // namespace velnls
