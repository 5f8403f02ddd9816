// The same strings in a code page, in UTF-8 and in UTF-16, so that each contender reads the form that it
// works on.
#pragma once

#include "contestants.hpp"
#include "measure.hpp"
#include "texts.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// A text taken apart into its characters.
struct CharacterText {
    std::vector<std::string> page; // distinct characters, in the code page
    std::vector<std::string> utf8;
    std::vector<std::uint32_t> text; // indexes of them
};

struct Column {
    Strings page;
    Strings utf8;
    std::vector<std::u16string> utf16;

    [[nodiscard]] std::size_t size() const {
        return page.pieces.size();
    }
    [[nodiscard]] const char *pageText(std::size_t i) const {
        return page.bytes.data() + page.pieces[i].offset;
    }
    [[nodiscard]] const char *utf8Text(std::size_t i) const {
        return utf8.bytes.data() + utf8.pieces[i].offset;
    }
    [[nodiscard]] std::size_t pageLength(std::size_t i) const {
        return page.pieces[i].length;
    }
    [[nodiscard]] std::size_t utf8Length(std::size_t i) const {
        return utf8.pieces[i].length;
    }
};

// The text of a language, without the characters that the page does not have.
CharacterText charactersOf(const std::string &language, const Page &page);

// Leaves out characters, by their index.
void keepOnly(CharacterText &text, const std::function<bool(std::size_t)> &keep);

// Every distinct character as a string of its own.
Column eachCharacter(const CharacterText &text);

// 10^5 strings of 8 to 40 bytes of the page, 20 on average; lines of the text; or 8 MB in one string.
Column columnOf(const CharacterText &text, Size size);

// A string with `piece`, ASCII, behind its last character, for texts that are searched to their end.
void appendToLast(Column &column, const std::string &piece);

// Strings of our own making: ASCII, the same in every form.
Column asciiColumn(const std::vector<std::string> &strings);

} // namespace bench
