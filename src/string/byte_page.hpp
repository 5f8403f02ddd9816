// The characters of a single-byte code page under weights, for matching.
#pragma once

#include "locale/page_facts.hpp"
#include "string/characters.hpp"
#include "string/place_filter.hpp"
#include "velnls.h"

namespace velnls {

// Single bytes under weights: those of one weight are equal. A weight of 0 counts as that of "s"; the end of
// the string equals a blank.
class BytePage {
public:
    static constexpr bool kQuick = true;
    static constexpr bool kFirstByteDecides = false;
    static constexpr std::ptrdiff_t kFilterWorth = 8; // bytes of text that repay the making of a filter
    static constexpr std::ptrdiff_t kSearchWorth =
        160; // the same where the bytes of a weight must be looked for among all others
    static constexpr std::ptrdiff_t kUnfiltered = 0; // bytes at the text's end that no filter may judge

    // Under mode 0, `proofs` of the weights tell what is known of ASCII.
    explicit BytePage(const std::uint8_t *weights, std::uint32_t proofs = 0)
        : weights_(weights), zeroWeight_(weights[unsigned{'s'}]),
          asciiIsKnown_((proofs & kAsciiAmongWeights) != 0), asciiIsApart_((proofs & kAsciiWeights) != 0) {}
    [[nodiscard]] const SingleBytes &characters() const {
        return characters_;
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        if (a.length != 0 && b.length != 0)
            equal = weightOf(*a.at) == weightOf(*b.at);
        else
            equal = isBlankOrEnd(a) && isBlankOrEnd(b);
        return NLS_OK;
    }
    // A character as seek() looks for it.
    using Sought = std::uint8_t;
    [[nodiscard]] Sought soughtFor(Character character, std::ptrdiff_t) const {
        return weightOf(*character.at);
    }
    // The first character from `at` on that equals `sought`, or the text's end.
    [[nodiscard]] const std::uint8_t *seek(const std::uint8_t *, const std::uint8_t *at,
                                           const std::uint8_t *end, Sought sought) const {
        while (at != end && weightOf(*at) != sought)
            ++at;
        return at;
    }
    // Whether the characters from `wanted` to its end, none of them cut, stand at `at`, which then moves
    // behind them.
    [[nodiscard]] Standing stands(const std::uint8_t *wanted, const std::uint8_t *wantedEnd,
                                  const std::uint8_t *&at, const std::uint8_t *end) const {
        const std::ptrdiff_t length = wantedEnd - wanted;
        if (end - at < length)
            return Standing::TextEnded;
        for (std::ptrdiff_t i = 0; i < length; ++i)
            if (weightOf(wanted[i]) != weightOf(at[i]))
                return Standing::No;
        at += length;
        return Standing::Yes;
    }
    // A sieve for the places where the characters from `run` to its end, at least one, may stand.
    bool makeFilter(const std::uint8_t *run, const std::uint8_t *runEnd, std::ptrdiff_t length,
                    PlaceFilter &filter) const {
        const bool searches = length >= kSearchWorth;
        if (!formsOf(*run, searches, filter.near))
            return false;
        filter.farDistance = static_cast<std::size_t>(runEnd - run) - 1;
        if (filter.farDistance == 0 || !formsOf(runEnd[-1], searches, filter.far))
            filter.far.count = 0;
        return true;
    }

private:
    [[nodiscard]] std::uint8_t weightOf(std::uint8_t byte) const {
        const std::uint8_t weight = weights_[byte];
        return weight != 0 ? weight : zeroWeight_;
    }
    // The bytes that equal one; false where there are many, or where they are not known and not searched for.
    bool formsOf(std::uint8_t byte, bool searches, ByteForms &forms) const {
        if (asciiIsKnown_ && byte < 0x80) {
            forms.addAscii(byte);
            return asciiIsApart_ || searchForms(true, weightOf(byte), forms);
        }
        return searches && searchForms(false, weightOf(byte), forms);
    }
    bool searchForms(bool beyondAscii, std::uint8_t weight, ByteForms &forms) const {
        return addIndexesOf(weights_, beyondAscii, weight, forms) &&
               (weight != zeroWeight_ || addIndexesOf(weights_, beyondAscii, 0, forms));
    }
    static bool isBlankOrEnd(Character character) {
        return character.length == 0 || *character.at == ' ';
    }

    SingleBytes characters_;
    const std::uint8_t *weights_;
    std::uint8_t zeroWeight_;
    bool asciiIsKnown_;
    bool asciiIsApart_;
};

} // namespace velnls
