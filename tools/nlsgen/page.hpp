// A code page in memory: how its bytes form characters and what its codes stand for.
#pragma once

#include "code_list.hpp"
#include "page_plan.hpp"
#include "problem.hpp"
#include "unicode_data.hpp"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace velnls::nlsgen {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;
inline constexpr std::size_t kCodeCount = 0x10000;

class Page {
public:
    explicit Page(std::string name);

    std::string name;
    std::uint8_t flags = 0; // file::CodePageFlag
    std::array<std::uint8_t, 256> classes{};
    std::array<std::uint8_t, 256> attributes{};
    std::array<std::uint8_t, 256> trailValid{};

    // Adds the lines of a list; a code that is there already takes the new meaning.
    void add(const CodeList &list);
    void set(std::uint32_t code, std::uint32_t unicode, bool oneWay, const Place &place);

    void remove(std::uint32_t code);

    // Chooses the code that each character turns back to. Throws Problem when two codes claim a character.
    void finish(const UnicodeData &unicode);

    [[nodiscard]] std::uint32_t toUnicode(std::uint32_t code) const {
        return toUnicode_[code];
    }
    [[nodiscard]] const std::map<std::uint32_t, std::uint16_t> &fromUnicode() const {
        return fromUnicode_;
    }
    // The code of a character, or kNone.
    [[nodiscard]] std::uint32_t codeOf(std::uint32_t unicode) const;
    [[nodiscard]] bool isOneWay(std::uint32_t code) const {
        return oneWay_[code];
    }
    [[nodiscard]] std::size_t codeCount() const;

    [[nodiscard]] bool isMultibyte() const {
        return (flags & file::kMultibyte) != 0;
    }
    // Whether the bytes below 7F are ASCII, which the look-ups take for granted.
    [[nodiscard]] bool isAscii() const;
    // What an unmapped character becomes: "?".
    [[nodiscard]] std::uint8_t substitution() const;

    // Where a code's meaning was read; for an undefined code the page's first source.
    [[nodiscard]] Place placeOf(std::uint32_t code) const;

private:
    std::vector<std::uint32_t> toUnicode_;
    std::vector<bool> oneWay_;
    std::map<std::uint32_t, std::uint16_t> fromUnicode_;
    std::map<std::uint32_t, Place> places_;
    std::string firstSource_;
};

// Where the sources lie.
struct Sources {
    std::string charmaps; // folder of <name>.gz
    std::string unicode;  // folder of UnicodeData.txt and allkeys.txt
    std::string data;     // folder of this system's own files
    std::string site;     // folder of pages of the user's own, <name>.map
};

Page makeSingleBytePage(const SingleBytePlan &plan, const Sources &sources, const UnicodeData &unicode);
// `shiftJis` is what EUCJIS is computed from.
Page makeMultibytePage(const MultibytePlan &plan, const Sources &sources, const UnicodeData &unicode,
                       const Page *shiftJis);
Page makeRulePage(const RulePlan &plan);

} // namespace velnls::nlsgen
