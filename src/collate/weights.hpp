// The order of single-byte weight tables: one weight per step from each string, the first difference decides.
#pragma once

#include "collate/prefix.hpp"
#include "collate/shift_jis.hpp"
#include "locale/tables.hpp"
#include "locale/text.hpp"

#include <cstddef>

namespace velnls {

// A table of 256 weights with the page it is for. A character of weight 0 expands to two weights of "s".
struct WeightOrder {
    const std::uint8_t *weights;
    const CharTable *chars;

    [[nodiscard]] std::uint8_t expansion() const {
        return weights[static_cast<unsigned char>('s')];
    }
};

// -1, 0 or 1. A lead byte gives its weight and then its trail byte as it stands.
int compareByWeights(const WeightOrder &order, Text a, Text b);

// The same where the whole page is single bytes, from places where both strings are at a step of their own.
int compareByByteWeightsOn(const WeightOrder &order, Text a, Text b);

// A byte that both have alike gives both the same steps, and none of them is left over for the byte behind
// it: so the walk may begin at the first difference.
[[gnu::always_inline]] inline int compareByByteWeights(const WeightOrder &order, Text a, Text b) {
    const std::size_t alike = equalBytes(a, b);
    a.at += alike;
    b.at += alike;
    if (!a.ended() && !b.ended()) [[likely]] {
        const unsigned weightA = order.weights[*a.at];
        const unsigned weightB = order.weights[*b.at];
        if (weightA != weightB && weightA != 0 && weightB != 0) [[likely]]
            return orderOf(weightA, weightB);
    }
    return compareByByteWeightsOn(order, a, b);
}

// The same for a page that collates through Shift-JIS: each character is converted first. A character that
// becomes a single byte gives that byte's weight alone.
int compareThroughShiftJis(const WeightOrder &order, const ShiftJisWay &way, Text a, Text b);

// How a key spells a character of weight 0: the weight of "s" twice, or the letters "SS" themselves.
enum class Expansion {
    Weights,
    Literal
};

// Writes one byte per step, at most `room`, and gives their number. A pair may be cut after its first byte.
std::size_t writeWeightKey(const WeightOrder &order, Expansion expansion, Text text, std::uint8_t *key,
                           std::size_t room);

// The same of the Shift-JIS form of a text, whose lead bytes are those of Shift-JIS.
std::size_t writeWeightKeyThroughShiftJis(const WeightOrder &order, const ShiftJisWay &way,
                                          Expansion expansion, Text text, std::uint8_t *key,
                                          std::size_t room);

} // namespace velnls
