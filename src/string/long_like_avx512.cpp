// LIKE on texts that go on behind a block, for processors with AVX-512: the pieces of the pattern are looked
// for one behind the other, by their first and last bytes in 64 places at once.
#include "locale/masks_avx512.hpp"
#include "string/short_match_fast.hpp"
#include "string/utf8_boundary.hpp"

#include <cstring>

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::avx512 {

namespace {

// Text and pattern as their order makes them.
class LongSought {
public:
    LongSought(ShortOrder order, const std::uint8_t *weights, const std::uint8_t *pattern,
               const WideMasks &masks)
        : order_(order), weights_(weights), at_(pattern), pattern_(ordered(masks)) {}

    // The first place from `at` on where the pattern's `length` bytes from `from` on stand, before `limit`;
    // null: there is none.
    const std::uint8_t *find(unsigned from, unsigned length, const std::uint8_t *at,
                             const std::uint8_t *limit) const {
        const Vector first = oneOf(from);
        const Vector last = oneOf(from + length - 1);
        for (; limit - at >= static_cast<std::ptrdiff_t>(length); at += kShortBlock) {
            const std::uint64_t inside = lowBits(static_cast<std::size_t>(limit - at) - length + 1);
            std::uint64_t places = equal(inside, at, first) & equal(inside, at + length - 1, last);
            for (; places != 0; places &= places - 1)
                if (const std::uint8_t *const place = at + placeOf(places);
                    standing(from, length, place) == lowBits(length))
                    return place;
        }
        return nullptr;
    }
    // Which of those bytes stand at a place.
    [[nodiscard]] std::uint64_t standing(unsigned from, unsigned length, const std::uint8_t *place) const {
        return equal(lowBits(length), place, ordered(WideMasks(at_ + from, length)).bytes());
    }

private:
    [[nodiscard]] WideMasks ordered(const WideMasks &bytes) const {
        if (order_ == ShortOrder::Weights)
            return bytes.mapped(weights_, weights_[unsigned{'s'}]);
        return order_ == ShortOrder::Ascii ? bytes.lowered() : bytes;
    }
    [[nodiscard]] Vector oneOf(unsigned place) const {
        return _mm512_permutexvar_epi8(all(place), pattern_.bytes());
    }
    [[nodiscard]] std::uint64_t equal(std::uint64_t inside, const std::uint8_t *text, Vector wanted) const {
        return _mm512_mask_cmpeq_epi8_mask(
            inside, ordered(WideMasks(_mm512_maskz_loadu_epi8(inside, text))).bytes(), wanted);
    }

    ShortOrder order_;
    const std::uint8_t *weights_;
    const std::uint8_t *at_; // the pattern
    WideMasks pattern_;
};

// The end of a text. Blocks that begin where they may lie in one page of memory.
const std::uint8_t *endOf(const std::uint8_t *text) {
    const auto *at = reinterpret_cast<const std::uint8_t *>(reinterpret_cast<std::uintptr_t>(text + kShortBlock) & ~std::uintptr_t{kShortBlock - 1});
    for (;; at += kShortBlock)
        if (const std::uint64_t ends = WideMasks(at).equal(0); ends != 0)
            return at + placeOf(ends);
}

// Whether a character begins at a place, as far as the bytes before it tell; at the text's end, whether it
// cuts none.
bool isBoundary(ShortMatching matching, const std::uint8_t *text, const std::uint8_t *place) {
    if (matching.page == ShortPage::Bytes)
        return true;
    if (matching.page == ShortPage::Utf8)
        return nothingReachesAcross(text, place);
    // Lead bytes side by side are pairs, but for the last one of an odd number.
    const std::uint8_t *at = place;
    while (at != text && matching.facts()->isLead(at[-1]))
        --at;
    return ((place - at) & 1) == 0;
}

[[gnu::always_inline]] inline ShortLike longLike(ShortMatching matching, const std::uint8_t *pattern,
                                                 const std::uint8_t *text, LikeSigns signs) {
    ShortPattern<WideMasks> wanted(pattern);
    if (!wanted.divide(matching))
        return ShortLike::Unsettled;
    const std::uint8_t *end = endOf(text);
    // A first byte that the end cuts off from the rest may match by itself.
    if (!isBoundary(matching, text, end))
        return ShortLike::Unsettled;
    ShortOrder order = matching.order;
    if (order == ShortOrder::Ascii &&
        (!wanted.foldsAsAscii(matching.page, order) ||
         (wanted.mayMeetDottedI(matching.page) &&
          std::memchr(text, kDottedILead, static_cast<std::size_t>(end - text)) != nullptr)))
        return ShortLike::Unsettled;
    const std::uint64_t any = wanted.masks.equal(signs.anyString) & (wanted.end - 1) & ~wanted.trails;
    const LongSought sought(order, matching.weights(), pattern, wanted.masks);
    const unsigned tail = 64 - static_cast<unsigned>(__builtin_clzll(any)); // behind the last sign
    if (const unsigned length = placeOf(wanted.end) - tail; length != 0) {
        end -= length;
        const std::uint64_t standing = sought.standing(tail, length, end);
        if ((standing >> (length - 1)) == 0)
            return ShortLike::No;
        // The last literal takes repeats of itself, which may be how the text ends.
        if (standing != lowBits(length) || !isBoundary(matching, text, end))
            return ShortLike::Unsettled;
    }
    unsigned from = 1;
    for (std::uint64_t left = any & (any - 1); left != 0; left &= left - 1) {
        const unsigned stop = placeOf(left);
        const std::uint8_t *const place = sought.find(from, stop - from, text, end);
        if (place == nullptr)
            return ShortLike::No;
        if (!isBoundary(matching, text, place))
            return ShortLike::Unsettled;
        text = place + (stop - from);
        from = stop + 1;
    }
    return ShortLike::Yes;
}

} // namespace

nlsStatus likeLong(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    ShortMatching matching = fast::matchingOf(*locale, asked.mode());
    if (matching.order == ShortOrder::Unknown)
        matching = {ShortOrder::Weights, ShortPage::Bytes, weightsOf(*locale->collation, asked.mode())};
    const ShortLike said = longLike(matching, bytesOf(pattern), bytesOf(text), asked.signs());
    return fast::isAnswer(said) ? fast::answerOf(said) : likeByPage(locale, pattern, text, asked);
}

} // namespace velnls::avx512

#endif
