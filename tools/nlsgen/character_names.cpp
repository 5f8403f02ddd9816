#include "character_names.hpp"

#include "problem.hpp"
#include "text_file.hpp"

#include <iterator>
#include <string_view>

namespace velnls::nlsgen {
namespace {

constexpr std::size_t kNameField = 1;
constexpr std::size_t kOlderNameField = 10;

std::string_view fieldOf(std::string_view line, std::size_t field) {
    for (; field > 0; field--) {
        const std::size_t end = line.find(';');
        line = end == std::string_view::npos ? std::string_view() : line.substr(end + 1);
    }
    return line.substr(0, line.find(';'));
}

std::string hangulName(std::uint32_t codePoint) {
    static constexpr const char *kInitials[] = {"G",  "GG", "N", "D",  "DD", "R", "M", "B", "BB", "S",
                                                "SS", "",   "J", "JJ", "C",  "K", "T", "P", "H"};
    static constexpr const char *kVowels[] = {"A",   "AE", "YA", "YAE", "EO", "E",  "YEO",
                                              "YE",  "O",  "WA", "WAE", "OE", "YO", "U",
                                              "WEO", "WE", "WI", "YU",  "EU", "YI", "I"};
    static constexpr const char *kFinals[] = {"",   "G",  "GG", "GS", "N",  "NJ", "NH", "D", "L",  "LG",
                                              "LM", "LB", "LS", "LT", "LP", "LH", "M",  "B", "BS", "S",
                                              "SS", "NG", "J",  "C",  "K",  "T",  "P",  "H"};
    constexpr std::uint32_t kFirstSyllable = 0xAC00;
    const std::uint32_t index = codePoint - kFirstSyllable;
    const auto finals = static_cast<std::uint32_t>(std::size(kFinals));
    const auto vowels = static_cast<std::uint32_t>(std::size(kVowels));
    return std::string("HANGUL SYLLABLE ") + kInitials[index / (vowels * finals)] +
           kVowels[index / finals % vowels] + kFinals[index % finals];
}

} // namespace

CharacterNames::CharacterNames(const std::string &path) {
    int line = 0;
    std::uint32_t first = 0;
    for (const std::string &text : readLines(path)) {
        line++;
        std::uint32_t codePoint = 0;
        const std::string_view name = fieldOf(text, kNameField);
        if (!parseHexadecimal(fieldOf(text, 0), codePoint) || name.empty())
            throw Problem(path, line, "expected a code point and a name of the Unicode character database");
        if (name.ends_with(", First>")) {
            first = codePoint;
        } else if (name.ends_with(", Last>")) {
            const std::string_view label = name.substr(1, name.find(',') - 1);
            ranges_.emplace(first, Range{codePoint, std::string(label)});
        } else if (name == "<control>") {
            const std::string_view older = fieldOf(text, kOlderNameField);
            names_.emplace(codePoint, older.empty() ? "control" : older);
        } else {
            names_.emplace(codePoint, name);
        }
    }
}

std::string CharacterNames::nameOf(std::uint32_t codePoint) const {
    if (const auto found = names_.find(codePoint); found != names_.end())
        return found->second;
    auto range = ranges_.upper_bound(codePoint);
    if (range == ranges_.begin() || codePoint > (--range)->second.last)
        return "no character";
    const std::string &label = range->second.label;
    if (label == "Hangul Syllable")
        return hangulName(codePoint);
    if (label.starts_with("CJK Ideograph"))
        return "CJK UNIFIED IDEOGRAPH-" + hexadecimal(codePoint, 4);
    return label.find("Private Use") != std::string::npos ? "private use" : label;
}

std::string CharacterNames::describe(std::uint32_t codePoint) const {
    return unicodeName(codePoint) + " " + nameOf(codePoint);
}

} // namespace velnls::nlsgen
