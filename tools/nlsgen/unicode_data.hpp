// UnicodeData.txt: which characters are letters and their simple upper and lower case.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace velnls::nlsgen {

class UnicodeData {
public:
    explicit UnicodeData(const std::string &path);

    [[nodiscard]] bool isLetter(std::uint32_t codePoint) const;

    // The simple case mappings; a character without one stands for itself.
    [[nodiscard]] std::uint32_t upper(std::uint32_t codePoint) const;
    [[nodiscard]] std::uint32_t lower(std::uint32_t codePoint) const;

    struct Character {
        std::uint32_t last; // of a range of alike characters; the character itself otherwise
        bool letter;
        std::uint32_t upper; // 0 = none
        std::uint32_t lower;
    };
    // By code point, ascending; of a range its first.
    [[nodiscard]] const std::map<std::uint32_t, Character> &characters() const {
        return characters_;
    }

private:
    [[nodiscard]] const Character *find(std::uint32_t codePoint) const;

    std::map<std::uint32_t, Character> characters_;
};

} // namespace velnls::nlsgen
