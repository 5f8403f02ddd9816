// The words of a line, as the library cuts them for a database's word index.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "library.hpp"
#include "page.hpp"
#include "stored_record.hpp"

namespace velnls::tool {

// Words are found in a locale that is rebuilt from a collation record with word classes. Letters and digits
// form words; a character of three or four bytes, or of two in a double-byte page, is a word by itself. An
// apostrophe between letters and a point or comma between digits belong to the word.
class WordWalker {
public:
    // The page is one that the library walks; it and the library outlive this object. Throws StatusError.
    WordWalker(Library &library, const Page &page);
    WordWalker(const WordWalker &) = delete;
    WordWalker &operator=(const WordWalker &) = delete;

    // Begins a line; a NUL byte separates words.
    void start(std::string_view line);
    // The next word, which stands until the next call; nothing at the line's end. Throws StatusError.
    std::optional<std::string_view> next();

private:
    // Of a character of up to three bytes, packed; nothing where it is not known.
    std::optional<std::uint32_t> codePoint(std::uint32_t character);
    void blankPunctuation();

    std::string_view trim(std::string_view text) const;

    const Page &page_;
    std::array<unsigned char, 256> trailCounts_;
    std::array<bool, 256> inWords_ = {};
    nlsLocale *locale_ = nullptr;
    nlsConversion *toUtf8_; // null: none, or the page is UTF-8 itself
    std::array<char, 256> word_ = {};
    std::string line_; // punctuation beyond ASCII and NUL bytes are blanks in it
    std::size_t at_ = 0;
};

} // namespace velnls::tool
