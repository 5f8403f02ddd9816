// The order of characters that a collation is made from.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace velnls::nlsgen {

struct Rank {
    unsigned order;  // place in the whole order
    unsigned letter; // equal for characters that differ in case or form only
    unsigned base;   // equal for characters that differ in accents too
    unsigned form;   // tells forms of one letter apart, whatever their accents: ascending from the plain one
};

// How a character differs from the one before it in the order.
enum class Difference : std::uint8_t {
    kLetter,
    kAccent,
    kForm
};

class CharacterOrder {
public:
    explicit CharacterOrder(std::string source) : source_(std::move(source)) {}

    void append(std::uint32_t codePoint, Difference fromPrevious, unsigned form = 0);

    [[nodiscard]] bool has(std::uint32_t codePoint) const {
        return ranks_.contains(codePoint);
    }
    // Throws Problem, naming the order's source, for a character that it does not list.
    [[nodiscard]] Rank rankOf(std::uint32_t codePoint) const;
    [[nodiscard]] const std::string &source() const {
        return source_;
    }

private:
    std::string source_;
    std::map<std::uint32_t, Rank> ranks_;
    unsigned letters_ = 0;
    unsigned bases_ = 0;
};

// The default order: allkeys.txt of the Unicode Collation Algorithm, by primary, secondary and tertiary
// weights and code; variable elements taken as they stand, zero weights dropped.
CharacterOrder readDefaultOrder(const std::string &path, const std::set<std::uint32_t> &characters);

// A list below data/collation/. Characters in hexadecimal and ascending order, one primary difference a line;
// `<<` stands between letters that differ by accent, `<<<` between forms of one letter. A line `ignorable`
// lists characters without weight, each of which keeps a place of its own. # begins a comment. A list does
// not say which forms of accented letters are alike: all have form 0.
CharacterOrder readOrderList(const std::string &path);

} // namespace velnls::nlsgen
