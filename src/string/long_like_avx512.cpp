// LIKE on texts that go on behind a block, for processors with AVX-512: the pieces of the pattern are looked
// for one behind the other, by their first and last bytes in 64 places at once.
#include "core/utf8_boundary.hpp"
#include "locale/masks_avx512.hpp"
#include "string/short_match_fast.hpp"

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::avx512 {

namespace {

// The block that a byte lies in. Blocks begin where each lies in one page of memory.
[[gnu::always_inline]] inline const std::uint8_t *blockOf(const std::uint8_t *at) {
    return reinterpret_cast<const std::uint8_t *>(reinterpret_cast<std::uintptr_t>(at) &
                                                  ~std::uintptr_t{kShortBlock - 1});
}

// The end of a text whose first kShortBlock bytes hold none.
[[gnu::always_inline]] inline const std::uint8_t *endOf(const std::uint8_t *text) {
    const std::uint8_t *at = blockOf(text + kShortBlock);
    for (;; at += kShortBlock)
        if (const std::uint64_t ends = WideMasks(at).equal(0); ends != 0)
            return at + placeOf(ends);
}

// Whether a character begins at a place, as far as the bytes before it tell; at the text's end, whether it
// cuts none.
[[gnu::noinline]] bool isBoundaryOfLong(const nlsLocale &locale, const std::uint8_t *text,
                                        const std::uint8_t *place) {
    if ((locale.header.proofs & kUtf8Page) != 0)
        return nothingReachesAcross(text, place);
    // Lead bytes side by side are pairs, but for the last one of an odd number.
    const PageFacts &facts = factsOf(*locale.charTable);
    const std::uint8_t *at = place;
    while (at != text && facts.isLead(at[-1]))
        --at;
    return ((place - at) & 1) == 0;
}
[[gnu::always_inline]] inline bool isBoundary(const nlsLocale &locale, const std::uint8_t *text,
                                              const std::uint8_t *place) {
    return (locale.header.proofs & kSingleBytePage) != 0 || isBoundaryOfLong(locale, text, place);
}

// Whether the end of a text of kShortBlock bytes and more cuts no character.
[[gnu::always_inline]] inline bool isWhole(const nlsLocale &locale, const std::uint8_t *text,
                                           const std::uint8_t *end) {
    if ((locale.header.proofs & kSingleBytePage) != 0)
        return true;
    const auto last = loadNumber<std::uint32_t>(end - sizeof(std::uint32_t));
    if ((locale.header.proofs & kUtf8Page) != 0)
        return nothingReachesAcross(last);
    return last >> 31 == 0 || isBoundaryOfLong(locale, text, end); // no lead byte is ASCII
}

// The trail bytes of a pattern that is not all ASCII; all of them where its characters are not what the page
// means, so that no sign is left.
[[gnu::noinline]] std::uint64_t trailsOfPattern(const nlsLocale &locale, const std::uint8_t *pattern) {
    ShortPattern<WideMasks> wanted(pattern);
    return wanted.divide({ShortOrder::Unknown, fast::pageOf(locale), &factsOf(*locale.charTable)})
               ? wanted.trails
               : ~std::uint64_t{0};
}

// Text and pattern as an order makes them.
template <ShortOrder kOrder>
class LongSought {
public:
    [[gnu::always_inline]] LongSought(const std::uint8_t *pattern, const std::uint8_t *weights)
        : pattern_(pattern), weights_(weights) {}

    [[nodiscard]] [[gnu::always_inline]] std::uint8_t orderedByte(std::uint8_t byte) const {
        if constexpr (kOrder == ShortOrder::Bytes)
            return byte;
        else if constexpr (kOrder == ShortOrder::Ascii)
            return byte - unsigned{'A'} < 26 ? byte | 0x20 : byte;
        else
            return weights_[byte] != 0 ? weights_[byte] : weights_[unsigned{'s'}];
    }
    // The first place from `at` on where the pattern's `length` bytes from `from` on stand, at least one,
    // before `limit`; null: there is none.
    [[gnu::always_inline]] const std::uint8_t *find(unsigned from, unsigned length, const std::uint8_t *at,
                                                    const std::uint8_t *limit) const {
        // Nothing is read before the text, though it would be in the same page of memory.
        const std::uint8_t *block = blockOf(at);
        const std::uint64_t inside = ~std::uint64_t{0} << (at - block);
        const Vector first = all(orderedByte(pattern_[from]));
        const Vector last = all(orderedByte(pattern_[from + length - 1]));
        Ends ends = endsIn(_mm512_maskz_loadu_epi8(inside, block), block, first, last, limit);
        ends.first &= inside; // what is not read has a weight too
        for (;;) {
            // Where the last byte of a piece would have to be that begins in this block, it may be in the
            // next.
            const std::uint8_t *const next = block + kShortBlock;
            const Ends behind =
                next < limit ? endsIn(_mm512_load_si512(next), next, first, last, limit) : Ends{0, 0};
            std::uint64_t places =
                ends.first & (ends.last >> (length - 1) | behind.last << 1 << (64 - length));
            for (; places != 0; places &= places - 1)
                if (stands(from, length, block + placeOf(places)))
                    return block + placeOf(places);
            if (next >= limit)
                return nullptr;
            block = next;
            ends = behind;
        }
    }
    // Which of those bytes stand at a place.
    [[nodiscard]] [[gnu::noinline]] std::uint64_t standing(unsigned from, unsigned length,
                                                           const std::uint8_t *place) const {
        const std::uint64_t bytes = lowBits(length);
        return _mm512_mask_cmpeq_epi8_mask(bytes, ordered(_mm512_maskz_loadu_epi8(bytes, place)),
                                           ordered(_mm512_maskz_loadu_epi8(bytes, pattern_ + from)));
    }

private:
    // Where the first and the last byte of a piece stand in a block, before `limit`.
    struct Ends {
        std::uint64_t first;
        std::uint64_t last;
    };
    [[nodiscard]] [[gnu::always_inline]] Ends endsIn(Vector text, const std::uint8_t *block, Vector first,
                                                     Vector last, const std::uint8_t *limit) const {
        const Vector bytes = ordered(text);
        return {_mm512_cmpeq_epi8_mask(bytes, first),
                _mm512_cmpeq_epi8_mask(bytes, last) & lowBits(static_cast<std::size_t>(limit - block))};
    }
    [[nodiscard]] [[gnu::always_inline]] bool stands(unsigned from, unsigned length,
                                                     const std::uint8_t *place) const {
        return length <= 2 || standing(from, length, place) == lowBits(length);
    }
    [[nodiscard]] [[gnu::always_inline]] Vector ordered(Vector bytes) const {
        if constexpr (kOrder == ShortOrder::Weights)
            return WideMasks(bytes).mapped(weights_, weights_[unsigned{'s'}]).bytes();
        else
            return kOrder == ShortOrder::Ascii ? WideMasks(bytes).lowered().bytes() : bytes;
    }

    const std::uint8_t *pattern_;
    const std::uint8_t *weights_;
};

// Whether a text has what capital I with dot begins with.
[[gnu::noinline]] bool mayHaveDottedI(const std::uint8_t *text, const std::uint8_t *end) {
    for (; text < end; text += kShortBlock)
        if (WideMasks(text, static_cast<std::size_t>(end - text)).equal(kDottedILead) != 0)
            return true;
    return false;
}

// For patterns that begin with an any-string sign, have no other signs, and never two of these side by side,
// so that no piece is empty.
template <ShortOrder kOrder>
[[gnu::always_inline]] inline nlsStatus likeLongBy(nlsLocale *locale, const char *pattern_, const char *text_,
                                                   LikeAsked asked) {
    const std::uint8_t *const pattern = bytesOf(pattern_);
    const std::uint8_t *text = bytesOf(text_);
    ShortPattern<WideMasks> wanted(pattern);
    if (wanted.high() != 0)
        wanted.trails = trailsOfPattern(*locale, pattern);
    const std::uint64_t any = wanted.anyStrings(asked.signs());
    if (wanted.end == 0 || any == 0)
        return likeByPage(locale, pattern_, text_, asked);
    const std::uint8_t *end = endOf(text);
    // A first byte that the end cuts off from the rest may match by itself.
    if (!isWhole(*locale, text, end))
        return likeByPage(locale, pattern_, text_, asked);
    const LongSought<kOrder> sought(
        pattern, kOrder == ShortOrder::Weights ? weightsOf(*locale->collation, asked.mode()) : nullptr);
    if constexpr (kOrder == ShortOrder::Ascii) {
        // Most texts end with another character than the pattern. Of ASCII, these match by the case of ASCII.
        const unsigned last = pattern[placeOf(wanted.end) - 1];
        if (last != asked.signs().anyString && (last | end[-1]) < 0x80 && ((last ^ end[-1]) & ~0x20U) != 0)
            return kLikeNo;
        const ShortOrder order =
            wanted.asciiOrderIn(fast::pageOf(*locale), [&] { return mayHaveDottedI(text, end); });
        if (order == ShortOrder::Unknown)
            return likeByPage(locale, pattern_, text_, asked);
        if (order == ShortOrder::Bytes)
            return likeLongByBytes(locale, pattern_, text_, asked);
    }
    const unsigned tail = 64 - static_cast<unsigned>(__builtin_clzll(any)); // behind the last sign
    if (const unsigned length = placeOf(wanted.end) - tail; length != 0) {
        if (sought.orderedByte(end[-1]) != sought.orderedByte(pattern[tail + length - 1]))
            return kLikeNo;
        end -= length;
        // The last literal takes repeats of itself, which may be how the text ends.
        if (sought.standing(tail, length, end) != lowBits(length) ||
            !isBoundary(*locale, bytesOf(text_), end))
            return likeByPage(locale, pattern_, text_, asked);
    }
    unsigned from = 1;
    for (std::uint64_t left = any & (any - 1); left != 0; left &= left - 1) {
        const unsigned stop = placeOf(left);
        const std::uint8_t *const place = sought.find(from, stop - from, text, end);
        if (place == nullptr)
            return kLikeNo;
        if (!isBoundary(*locale, bytesOf(text_), place))
            return likeByPage(locale, pattern_, text_, asked);
        text = place + (stop - from);
        from = stop + 1;
    }
    return kLikeYes;
}

} // namespace

nlsStatus likeLongByBytes(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    return likeLongBy<ShortOrder::Bytes>(locale, pattern, text, asked);
}

nlsStatus likeLongByAscii(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    return likeLongBy<ShortOrder::Ascii>(locale, pattern, text, asked);
}

nlsStatus likeLongByWeights(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    return likeLongBy<ShortOrder::Weights>(locale, pattern, text, asked);
}

} // namespace velnls::avx512

#endif
