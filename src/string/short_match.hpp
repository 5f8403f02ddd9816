// Where a pattern stands in a text, and LIKE, for texts and patterns that end within 64 bytes: by masks of
// one block each.
//
// Whoever calls has seen that both blocks may be loaded, and how characters match. What is left
// unsettled goes the general ways, such as a text or a pattern that is not what its page means.
#pragma once

#include "locale/case_fast.hpp"
#include "locale/case_map.hpp"
#include "string/like_call.hpp"
#include "string/short_text.hpp"

namespace velnls {

// A pattern of at least one byte in a text: all places where it stands.
struct ShortPlaces {
    std::uint64_t places;
    std::uint64_t lengths; // the pattern's, and in the upper half the text's; 0: unsettled

    [[nodiscard]] bool settled() const {
        return lengths != 0;
    }
    [[nodiscard]] std::uint32_t patternLength() const {
        return static_cast<std::uint32_t>(lengths);
    }
    [[nodiscard]] std::uint32_t textLength() const {
        return static_cast<std::uint32_t>(lengths >> 32);
    }
};

enum class ShortLike {
    No,
    Yes,
    Unsettled,
    TextGoesOn, // behind the block
    BytesStand, // those of the pattern in the text: whether its characters do is not settled
};

// What capital I with dot begins with, in UTF-8.
inline constexpr std::uint8_t kDottedILead = kDottedI >> 8;

// How characters match: by their bytes, by those under the case of ASCII, or single bytes by their weights,
// those without one by that of "s".
enum class ShortOrder : std::uint32_t {
    Unknown,
    Bytes,
    Ascii,
    Weights,
    AsciiAlone // as Ascii where pattern and text are ASCII, else Unknown
};

// What is proved of a locale and of how its characters match under a mode. Fits two registers.
struct ShortMatching {
    ShortOrder order;
    ShortPage page;
    const void *table; // the facts of a page of pairs, or the weights of the mode for ShortOrder::Weights

    [[nodiscard]] const PageFacts *facts() const {
        return static_cast<const PageFacts *>(table);
    }
    [[nodiscard]] const std::uint8_t *weights() const {
        return static_cast<const std::uint8_t *>(table);
    }
};

namespace {

template <typename Masks>
[[gnu::always_inline]] inline ShortStructure structureOf(ShortMatching matching, const Masks &masks,
                                                         std::uint64_t stop) {
    // Single bytes have no facts.
    return matching.page == ShortPage::Bytes ? ShortStructure{0, 0}
                                             : structureOf(matching.page, *matching.facts(), masks, stop);
}

// A pattern, up to its NUL at `end`, a bit.
template <typename Masks>
struct ShortPattern {
    Masks masks;
    std::uint64_t end;
    std::uint64_t trails;

    [[gnu::always_inline]] explicit ShortPattern(const std::uint8_t *at)
        : masks(at), end(lowestOf(masks.equal(0))), trails(0) {}

    // The bytes that are not ASCII.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t high() const {
        return masks.high() & (end - 1);
    }
    // Divides it into characters: false where they are not what the page means.
    [[gnu::always_inline]] bool divide(ShortMatching matching) {
        if (high() == 0)
            return true;
        const ShortStructure structure = structureOf(matching, masks, end);
        trails = structure.trails;
        return (structure.wrong | (trails & end)) == 0;
    }
    // Whether it has a character that one which a text's end cuts may match by its bytes: blanks count as the
    // end, and a trail byte may be one. It has been divided.
    [[nodiscard]] [[gnu::always_inline]] bool mayMeetCut(ShortPage page) const {
        return page == ShortPage::Pairs && (trails & masks.equal(' ')) != 0;
    }
    // Whether characters that match under the case of ASCII do so by their bytes, changed as ASCII or as they
    // are: `order` becomes which. It has been divided.
    [[gnu::always_inline]] bool foldsAsAscii(ShortPage page, ShortOrder &order) const {
        if (high() == 0) [[unlikely]] // the others have more to do, and go straight on
            return true;
        if (page == ShortPage::Bytes)
            return false;
        // No byte of a longer character is a letter.
        if (page == ShortPage::Utf8)
            return (high() & ~trails & ~masks.inRange(kFirstCaseless, kCaselessSpan)) == 0;
        // Characters of two bytes equal themselves alone, and their second byte may look like a letter;
        // single bytes that are not ASCII fold by the table.
        order = ShortOrder::Bytes;
        const std::uint64_t single = ~(trails | trails >> 1) & (end - 1);
        return single == 0 || ((high() | masks.lowered().inRange('a', 25)) & single) == 0;
    }
    // Whether it may match capital I with dot, which may fold to "i".
    [[nodiscard]] [[gnu::always_inline]] bool mayMeetDottedI(ShortPage page) const {
        return page == ShortPage::Utf8 && (masks.lowered().equal('i') & (end - 1)) != 0;
    }
    // The any-string signs, where it has no other signs; 0 where it has. It has been divided.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t anyStrings(LikeSigns signs) const {
        const std::uint64_t begins = (end - 1) & ~trails;
        const std::uint64_t any = masks.equal(signs.anyString) & begins;
        const std::uint64_t others = (masks.equal(signs.oneCharacter) | masks.equal(signs.escape)) & begins;
        // Two any-string signs side by side mean more than one.
        return (others | (any & any << 1)) != 0 ? 0 : any;
    }
    // The order of matching as foldsAsAscii() has it, of a text that ends at `textEnd`; Unknown where there
    // is none.
    [[gnu::always_inline]] ShortOrder orderIn(ShortMatching matching, const Masks &text,
                                              std::uint64_t textEnd) const {
        const ShortOrder order = matching.order;
        if (order == ShortOrder::AsciiAlone)
            return (high() | (text.high() & (textEnd - 1))) == 0 ? ShortOrder::Ascii : ShortOrder::Unknown;
        if (order != ShortOrder::Ascii)
            return order;
        return asciiOrderIn(
            matching.page, [&]() __attribute__((always_inline)) {
                return (text.equal(kDottedILead) & (textEnd - 1)) != 0;
            });
    }
    // The same for characters that match under the case of ASCII. `hasDottedI()`: whether the text may have
    // capital I with dot.
    template <typename HasDottedI>
    [[nodiscard]] [[gnu::always_inline]] ShortOrder asciiOrderIn(ShortPage page,
                                                                 HasDottedI hasDottedI) const {
        ShortOrder order = ShortOrder::Ascii;
        return foldsAsAscii(page, order) && !(mayMeetDottedI(page) && hasDottedI()) ? order
                                                                                    : ShortOrder::Unknown;
    }
};

// A text in which the bytes of a pattern are looked for, both as their order makes them.
template <typename Masks>
class ShortSought {
public:
    // `at`: where the pattern stands, which has been divided.
    [[gnu::always_inline]] ShortSought(const Masks &text, const ShortPattern<Masks> &pattern,
                                       const std::uint8_t *at, ShortOrder order, const std::uint8_t *weights)
        : text_(ordered(text, order, weights)), pattern_(ordered(pattern.masks, order, weights)),
          trails_(pattern.trails), at_(at), order_(order) {}

    // Where `length` bytes of the pattern stand, at least one, the first of them at `from`, that end below
    // `end`, a bit.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t places(unsigned from, unsigned length,
                                                              std::uint64_t end) const {
        // The last bytes of the first and of the last character: those of one script begin alike.
        const unsigned near = placeOf(~(trails_ >> from >> 1));
        const unsigned far = length - 1;
        std::uint64_t found = (placesOf(from + far) & (end - 1)) >> far;
        if (near != far)
            found &= placesOf(from + near) >> near;
        // Mostly nothing is left here.
        for (unsigned i = near == 0 ? 1 : 0; found != 0 && i < far; ++i)
            found &= placesOf(from + i) >> i;
        return found;
    }
    // Where the pattern's byte at `place` stands.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t placesOf(unsigned place) const {
        if (order_ == ShortOrder::Bytes)
            return text_.equal(at_[place]);
        if constexpr (Masks::kMaps) {
            return text_.equalToOneOf(pattern_, place);
        } else {
            const unsigned wanted = at_[place];
            return text_.equal(wanted - 'A' < 26 ? wanted | 0x20 : wanted);
        }
    }

    // Where the same bytes stand in both.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t same() const {
        return text_.equal(pattern_);
    }

private:
    [[gnu::always_inline]] static Masks ordered(const Masks &bytes, ShortOrder order,
                                                const std::uint8_t *weights) {
        if constexpr (Masks::kMaps)
            if (order == ShortOrder::Weights)
                return bytes.mapped(weights, weights[unsigned{'s'}]);
        if (order == ShortOrder::Ascii)
            return bytes.lowered();
        return bytes;
    }

    Masks text_;
    Masks pattern_;
    std::uint64_t trails_;
    const std::uint8_t *at_;
    ShortOrder order_;
};

// ---- What is asked --------------------------------------------------------------------------------------

inline constexpr ShortPlaces kUnsettledPlaces{0, 0};

// With the lengths of pattern and text.
[[gnu::always_inline]] inline ShortPlaces settledPlaces(std::uint64_t places, unsigned pattern,
                                                        unsigned text) {
    return {places, pattern | std::uint64_t{text} << 32};
}

// Calls `settle(masks, end, found)` with the text's masks and end, a bit, and all places where the pattern's
// bytes stand, where both are for the short ways.
template <typename Masks, typename Settle>
[[gnu::always_inline]] inline ShortPlaces withPlaces(ShortMatching matching, const std::uint8_t *pattern,
                                                     const std::uint8_t *text, Settle settle) {
    ShortPattern<Masks> wanted(pattern);
    const Masks masks(text);
    const std::uint64_t end = lowestOf(masks.equal(0));
    if (wanted.end <= 1 || end == 0 || !wanted.divide(matching))
        return kUnsettledPlaces;
    const ShortOrder order = wanted.orderIn(matching, masks, end);
    if (order == ShortOrder::Unknown)
        return kUnsettledPlaces;
    const unsigned length = placeOf(wanted.end);
    const ShortSought<Masks> sought(masks, wanted, pattern, order, matching.weights());
    return settle(masks, end, settledPlaces(sought.places(0, length, end), length, placeOf(end)));
}

// Those of the places at which a character begins.
template <typename Masks>
[[gnu::always_inline]] inline ShortPlaces atCharacters(ShortMatching matching, const Masks &masks,
                                                       std::uint64_t end, ShortPlaces found) {
    const ShortStructure structure = structureOf(matching, masks, end);
    if ((structure.wrong | (structure.trails & end)) != 0)
        return kUnsettledPlaces;
    found.places &= ~structure.trails;
    return found;
}

template <typename Masks>
[[gnu::always_inline]] inline ShortPlaces shortPlacesBy(ShortMatching matching, const std::uint8_t *pattern,
                                                        const std::uint8_t *text) {
    return withPlaces<Masks>(
        matching, pattern, text,
        [matching](const Masks &masks, std::uint64_t end, ShortPlaces found)
            __attribute__((always_inline)) { return atCharacters(matching, masks, end, found); });
}

// The literals of a pattern that begins with an any-string sign: pieces between such signs, each of which
// stands behind the one before, and perhaps a last one that ends where the text does.
template <typename Masks>
[[gnu::always_inline]] inline ShortLike hasPieces(const ShortSought<Masks> &text, std::uint64_t trails,
                                                  std::uint64_t end, std::uint64_t signs,
                                                  std::uint64_t patternEnd) {
    const std::uint64_t tail = (signs & patternEnd >> 1) == 0 ? patternEnd : 0;
    if (tail != 0 && (text.placesOf(placeOf(tail) - 1) & end >> 1) == 0)
        return ShortLike::No;
    std::uint64_t open = ~trails; // places where a piece may stand
    unsigned from = 1;
    for (std::uint64_t left = (signs & (signs - 1)) | tail; left != 0; left &= left - 1) {
        const unsigned stop = placeOf(left);
        const unsigned length = stop - from;
        const std::uint64_t places = text.places(from, length, end) & open;
        // The last literal takes repeats of itself, so that other places may do too.
        if (left == tail)
            return (places & end >> length) != 0 ? ShortLike::Yes : ShortLike::Unsettled;
        if (places == 0)
            return ShortLike::No;
        // The first place leaves most behind it.
        open &= (0 - lowestOf(places)) << (length - 1) << 1;
        from = stop + 1;
    }
    return ShortLike::Yes;
}

// A pattern that begins with an any-string sign and has no other sign than those, and a text that is not
// empty.
template <typename Masks>
struct ShortLikeRead {
    Masks masks;       // of the text
    std::uint64_t end; // of the text, a bit
    std::uint64_t any; // the signs
    std::uint64_t patternEnd;
    ShortOrder order;
    ShortSought<Masks> sought;
};

// Calls `settle` with them, where both are for the short ways. The pattern begins with an any-string sign.
template <typename Masks, typename Settle>
[[gnu::always_inline]] inline ShortLike withLikeRead(ShortMatching matching, const std::uint8_t *pattern,
                                                     const std::uint8_t *text, LikeSigns signs,
                                                     Settle settle) {
    const Masks masks(text);
    const std::uint64_t end = lowestOf(masks.equal(0));
    if (end <= 1)
        return end == 0 ? ShortLike::TextGoesOn : ShortLike::Unsettled;
    ShortPattern<Masks> wanted(pattern);
    if (wanted.end <= 1 || !wanted.divide(matching) || wanted.mayMeetCut(matching.page))
        return ShortLike::Unsettled;
    const std::uint64_t any = wanted.anyStrings(signs);
    if (any == 0)
        return ShortLike::Unsettled;
    const ShortOrder order = wanted.orderIn(matching, masks, end);
    if (order == ShortOrder::Unknown)
        return ShortLike::Unsettled;
    return settle(ShortLikeRead<Masks>{
        masks, end, any, wanted.end, order, {masks, wanted, pattern, order, matching.weights()}});
}

template <typename Masks>
[[gnu::always_inline]] inline ShortLike likeByCharacters(ShortMatching matching,
                                                         const ShortLikeRead<Masks> &read) {
    const ShortStructure structure = structureOf(matching, read.masks, read.end);
    if ((structure.wrong | (structure.trails & read.end)) != 0)
        return ShortLike::Unsettled;
    return hasPieces(read.sought, structure.trails, read.end, read.any, read.patternEnd);
}

template <typename Masks>
[[gnu::always_inline]] inline ShortLike shortLikeBy(ShortMatching matching, const std::uint8_t *pattern,
                                                    const std::uint8_t *text, LikeSigns signs) {
    return withLikeRead<Masks>(
        matching, pattern, text,
        signs, [matching](const ShortLikeRead<Masks> &read) __attribute__((always_inline)) {
            return likeByCharacters(matching, read);
        });
}

} // namespace
} // namespace velnls
