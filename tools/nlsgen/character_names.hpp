// The names of characters, for people to read.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace velnls::nlsgen {

class CharacterNames {
public:
    // `path` is that of UnicodeData.txt. Throws Problem when it cannot be read.
    explicit CharacterNames(const std::string &path);

    // "U+00E4 LATIN SMALL LETTER A WITH DIAERESIS". Controls have their older names; ideographs and Hangul
    // syllables those that their code points stand for.
    [[nodiscard]] std::string describe(std::uint32_t codePoint) const;

private:
    [[nodiscard]] std::string nameOf(std::uint32_t codePoint) const;

    std::map<std::uint32_t, std::string> names_;
    struct Range {
        std::uint32_t last;
        std::string label; // as the file has it: "Hangul Syllable"
    };
    std::map<std::uint32_t, Range> ranges_; // by first
};

} // namespace velnls::nlsgen
