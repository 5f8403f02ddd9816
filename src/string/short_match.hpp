// Where a pattern stands in a text, and LIKE, for texts and patterns that end within 64 bytes: by masks of
// one block each.
//
// Whoever calls has seen that both blocks lie in one page of memory, and how characters match. What is left
// unsettled goes the general ways, such as a text or a pattern that is not what its page means.
#pragma once

#include "string/short_text.hpp"

namespace velnls {

// A pattern of at least one byte in a text: all places where it stands.
struct ShortPlaces {
    std::uint64_t places;
    std::uint32_t patternLength; // 0: unsettled
    std::uint32_t textLength;

    [[nodiscard]] bool settled() const {
        return patternLength != 0;
    }
};

// The signs of LIKE, each an ASCII character; an escape of 0 is none.
struct ShortSigns {
    std::uint8_t escape;
    std::uint8_t oneCharacter;
    std::uint8_t anyString;
};

enum class ShortLike {
    No,
    Yes,
    Unsettled,
};

// What is proved of a locale and of how its characters match under a mode.
struct ShortMatching {
    std::uint32_t proofs; // with how characters match, by the bits for the call's mode
    const PageFacts &facts;
    const std::uint8_t *weights; // of the mode; null: characters do not match by weights
    bool folds;                  // under the case of ASCII
};

namespace {

// A text whose bytes are looked for, by what is made of them: `value` makes the same of a wanted one.
template <typename Masks, typename Value>
class ShortSought {
public:
    [[gnu::always_inline]] ShortSought(const Masks &masks, Value value) : masks_(masks), value_(value) {}

    // Where `length` bytes stand, at least one, that end below `end`, a bit.
    [[gnu::always_inline]] std::uint64_t places(const std::uint8_t *wanted, unsigned length,
                                                std::uint64_t end) const {
        std::uint64_t found = (bytes(wanted[length - 1]) & (end - 1)) >> (length - 1);
        if (length > 1)
            found &= bytes(wanted[0]);
        // Mostly nothing is left here.
        for (unsigned i = 1; found != 0 && i + 1 < length; ++i)
            found &= bytes(wanted[i]) >> i;
        return found;
    }

private:
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t bytes(unsigned wanted) const {
        return masks_.equal(value_(wanted));
    }

    Masks masks_;
    Value value_;
};

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
    template <typename Page>
    [[gnu::always_inline]] bool divide(const Page &page) {
        const ShortStructure structure = page.structure(masks, end);
        trails = structure.trails;
        return (structure.wrong | (trails & end)) == 0;
    }
};

// ---- How characters match
// ----------------------------------------------------------------------------------
// Each calls `use` with the text as it is to be looked at, and gives false where it does not say how. A
// pattern that is not all ASCII has been divided into characters.

// By their bytes.
struct ShortByBytes {
    template <typename Page, typename Masks, typename Use>
    [[gnu::always_inline]] bool look(const Page &, const ShortPattern<Masks> &, const Masks &text,
                                     std::uint64_t, Use use) const {
        use(ShortSought(text, [](unsigned byte) { return byte; }));
        return true;
    }
};

// By their bytes under the case of ASCII.
class ShortByAscii {
public:
    // UTF-8: characters of three bytes from the lead byte E3 up to EE equal themselves alone, and no byte of
    // a longer character is a letter. Capital I with dot, which begins with C4, may fold to "i".
    template <typename Masks, typename Use>
    [[gnu::always_inline]] bool look(const ShortUtf8 &, const ShortPattern<Masks> &pattern, const Masks &text,
                                     std::uint64_t end, Use use) const {
        const std::uint64_t high = pattern.high();
        if (high != 0 && (high & ~pattern.trails & ~pattern.masks.inRange(0xE3, 0xEE - 0xE3)) != 0)
            return false;
        const std::uint64_t dotted = pattern.masks.lowered().equal('i') & (pattern.end - 1);
        if (dotted != 0 && (text.equal(0xC4) & (end - 1)) != 0)
            return false;
        return folded(text, use);
    }
    // Characters of two bytes equal themselves alone, and their second byte may look like a letter; single
    // bytes that are not ASCII fold by the table.
    template <typename Masks, typename Use>
    [[gnu::always_inline]] bool look(const ShortPairs<false> &page, const ShortPattern<Masks> &pattern,
                                     const Masks &text, std::uint64_t end, Use use) const {
        const std::uint64_t high = pattern.high();
        if (high == 0)
            return folded(text, use);
        const std::uint64_t pairs = pattern.trails | pattern.trails >> 1;
        const std::uint64_t letters = pattern.masks.lowered().inRange('a', 25) & (pattern.end - 1);
        return ((high | letters) & ~pairs) == 0 && ShortByBytes().look(page, pattern, text, end, use);
    }
    template <typename Masks, typename Use>
    [[gnu::always_inline]] bool look(const ShortBytes &, const ShortPattern<Masks> &pattern,
                                     const Masks &text, std::uint64_t, Use use) const {
        return pattern.high() == 0 && folded(text, use);
    }

private:
    template <typename Masks, typename Use>
    [[gnu::always_inline]] static bool folded(const Masks &text, Use use) {
        use(ShortSought(text.lowered(), [](unsigned byte) { return byte - 'A' < 26 ? byte | 0x20 : byte; }));
        return true;
    }
};

// Single bytes by their weights, those without one by that of "s".
class ShortByWeights {
public:
    explicit ShortByWeights(const std::uint8_t *weights) : weights_(weights) {}

    template <typename Masks, typename Use>
    [[gnu::always_inline]] bool look(const ShortBytes &, const ShortPattern<Masks> &, const Masks &text,
                                     std::uint64_t, Use use) const {
        const unsigned none = weights_[unsigned{'s'}];
        use(ShortSought(text.mapped(weights_, none), [weights = weights_, none](unsigned byte) {
            return weights[byte] != 0 ? weights[byte] : none;
        }));
        return true;
    }

private:
    const std::uint8_t *weights_;
};

// ---- What is asked
// -----------------------------------------------------------------------------------------

inline constexpr ShortPlaces kUnsettledPlaces{0, 0, 0};

template <typename Masks, typename Page, typename Order>
[[gnu::always_inline]] inline ShortPlaces
shortPlacesBy(const Page &page, const Order &order, const std::uint8_t *pattern, const std::uint8_t *text) {
    ShortPattern<Masks> wanted(pattern);
    const Masks masks(text);
    const std::uint64_t end = lowestOf(masks.equal(0));
    const ShortStructure structure = page.structure(masks, end);
    if (wanted.end <= 1 || end == 0 || (structure.wrong | (structure.trails & end)) != 0)
        return kUnsettledPlaces;
    if (wanted.high() != 0 && !wanted.divide(page))
        return kUnsettledPlaces;
    const unsigned length = placeOf(wanted.end);
    std::uint64_t places = 0;
    if (!order.look(page, wanted, masks, end,
                    [&](const auto &sought) { places = sought.places(pattern, length, end); }))
        return kUnsettledPlaces;
    return {places & ~structure.trails, length, placeOf(end)};
}

// The pieces between the any-string signs of a pattern, which begin and end it: each stands behind the one
// before.
template <typename Sought>
[[gnu::always_inline]] inline bool hasPieces(const Sought &text, std::uint64_t trails, std::uint64_t end,
                                             const std::uint8_t *pattern, std::uint64_t signs) {
    std::uint64_t open = ~trails; // places where a piece may stand
    unsigned from = 1;
    for (std::uint64_t left = signs & (signs - 1); left != 0; left &= left - 1) {
        const unsigned sign = placeOf(left);
        const unsigned length = sign - from;
        const std::uint64_t places = text.places(pattern + from, length, end) & open;
        if (places == 0)
            return false;
        // The first place leaves most behind it.
        open &= (0 - lowestOf(places)) << (length - 1) << 1;
        from = sign + 1;
    }
    return true;
}

// Patterns of pieces between any-string signs, one of which begins and one ends them, and texts that are not
// empty.
template <typename Masks, typename Page, typename Order>
[[gnu::always_inline]] inline ShortLike shortLikeBy(const Page &page, const Order &order,
                                                    const std::uint8_t *pattern, const std::uint8_t *text,
                                                    const ShortSigns &signs) {
    ShortPattern<Masks> wanted(pattern);
    if (wanted.end <= 1 || (wanted.high() != 0 && !wanted.divide(page)))
        return ShortLike::Unsettled;
    const std::uint64_t begins = (wanted.end - 1) & ~wanted.trails;
    const std::uint64_t any = wanted.masks.equal(signs.anyString) & begins;
    const std::uint64_t others =
        (wanted.masks.equal(signs.oneCharacter) | wanted.masks.equal(signs.escape)) & begins;
    // Two any-string signs side by side mean more than one.
    if ((any & 1) == 0 || (any & wanted.end >> 1) == 0 || (others | (any & any << 1)) != 0)
        return ShortLike::Unsettled;
    const Masks masks(text);
    const std::uint64_t end = lowestOf(masks.equal(0));
    const ShortStructure structure = page.structure(masks, end);
    if (end <= 1 || (structure.wrong | (structure.trails & end)) != 0)
        return ShortLike::Unsettled;
    bool matches = false;
    if (!order.look(page, wanted, masks, end, [&](const auto &sought) {
            matches = hasPieces(sought, structure.trails, end, pattern, any);
        }))
        return ShortLike::Unsettled;
    return matches ? ShortLike::Yes : ShortLike::No;
}

// ---- By what is proved of a locale
// -------------------------------------------------------------------------

// Calls `use` with the page and the order that are proved.
template <typename Use>
[[gnu::always_inline]] inline auto onPage(const ShortMatching &matching, Use use) {
    if ((matching.proofs & kUtf8Page) != 0)
        return matching.folds ? use(ShortUtf8(), ShortByAscii()) : use(ShortUtf8(), ShortByBytes());
    if ((matching.proofs & kSingleBytePage) != 0)
        return matching.folds ? use(ShortBytes(), ShortByAscii()) : use(ShortBytes(), ShortByBytes());
    const ShortPairs<false> pairs(matching.facts);
    return matching.folds ? use(pairs, ShortByAscii()) : use(pairs, ShortByBytes());
}

} // namespace
} // namespace velnls
