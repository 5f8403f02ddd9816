#include "charmap.hpp"

#include "problem.hpp"
#include "text_file.hpp"

#include <string_view>

namespace velnls::nlsgen {
namespace {

constexpr std::string_view kOneWayMark = "%IRREVERSIBLE%";

class CharmapReader {
public:
    explicit CharmapReader(const std::string &path) {
        list_.file = path;
    }

    CodeList read() {
        bool inBody = false;
        bool ended = false;
        for (const std::string &text : readLines(list_.file)) {
            line_++;
            if (!inBody) {
                inBody = readHeadLine(text);
                continue;
            }
            if (std::string_view(text).starts_with("END CHARMAP")) {
                ended = true;
                break;
            }
            readBodyLine(text);
        }
        if (!inBody)
            fail("expected a line CHARMAP, found the end of the file");
        if (!ended)
            fail("expected a line END CHARMAP, found the end of the file");
        return list_;
    }

private:
    [[noreturn]] void fail(std::string_view message) const {
        throw Problem(list_.file, line_, message);
    }

    // True for the line that opens the body.
    bool readHeadLine(std::string_view text) {
        const auto words = wordsOf(text);
        if (words.empty())
            return false;
        if (words[0] == "CHARMAP")
            return true;
        char *setting = words[0] == "<escape_char>"    ? &escape_
                        : words[0] == "<comment_char>" ? &comment_
                                                       : nullptr;
        if (setting != nullptr) {
            if (words.size() < 2 || words[1].size() != 1)
                fail("expected one character behind " + std::string(words[0]));
            *setting = words[1][0];
        }
        return false;
    }

    void readBodyLine(std::string_view text) {
        const bool oneWay = text.starts_with(kOneWayMark); // though it begins with a usual comment character
        if (oneWay)
            text.remove_prefix(kOneWayMark.size());
        else if (!text.empty() && text.front() == comment_)
            return;
        const auto words = wordsOf(text);
        if (words.empty())
            return;
        if (words.size() < 2)
            fail("expected a character and the bytes of its code");
        std::uint32_t first = 0;
        std::uint32_t last = 0;
        readCharacters(words[0], first, last);

        std::uint32_t code = 0;
        const int bytes = readBytes(words[1], code);
        if (bytes > 2)
            return;
        if ((code & 0xFF) + (last - first) > 0xFF)
            fail("the last byte of the range counts beyond FF");
        for (std::uint32_t i = 0; i <= last - first; i++)
            list_.lines.push_back({code + i, bytes, first + i, oneWay, line_});
    }

    void readCharacters(std::string_view word, std::uint32_t &first, std::uint32_t &last) const {
        const std::size_t close = word.find('>');
        if (close == std::string_view::npos || !readCharacter(word.substr(0, close + 1), first))
            fail("expected a character as <Uxxxx>, found " + std::string(word));
        last = first;
        std::string_view rest = word.substr(close + 1);
        if (rest.empty())
            return;
        if (!rest.starts_with(".."))
            fail("expected .. and a second character behind the first, found " + std::string(rest));
        rest.remove_prefix(rest.starts_with("...") ? 3 : 2);
        if (!readCharacter(rest, last) || last < first)
            fail("expected the last character of the range, found " + std::string(rest));
    }

    static bool readCharacter(std::string_view word, std::uint32_t &codePoint) {
        if (word.size() < 4 || !word.starts_with("<U") || word.back() != '>')
            return false;
        return parseHexadecimal(word.substr(2, word.size() - 3), codePoint) && codePoint <= kLastCodePoint;
    }

    // The number of bytes; hexadecimal /xHH, decimal /dNNN and octal /OOO, with the charmap's escape
    // character.
    int readBytes(std::string_view word, std::uint32_t &code) const {
        int bytes = 0;
        code = 0;
        std::size_t at = 0;
        while (at < word.size()) {
            if (word[at] != escape_)
                fail("expected the escape character " + std::string(1, escape_) +
                     " before each byte, found " + std::string(word));
            std::size_t end = word.find(escape_, at + 1);
            if (end == std::string_view::npos)
                end = word.size();
            std::string_view digits = word.substr(at + 1, end - at - 1);
            std::uint32_t base = 8;
            if (!digits.empty() && (digits[0] == 'x' || digits[0] == 'd')) {
                base = digits[0] == 'x' ? 16 : 10;
                digits.remove_prefix(1);
            }
            code = code << 8 | readByte(digits, base, word);
            bytes++;
            at = end;
        }
        return bytes;
    }

    [[nodiscard]] std::uint32_t readByte(std::string_view digits, std::uint32_t base,
                                         std::string_view word) const {
        std::uint32_t value = 0;
        bool good = !digits.empty() && digits.size() <= 3;
        for (const char c : digits) {
            std::uint32_t digit = 0;
            good = good && parseHexadecimal(std::string_view(&c, 1), digit) && digit < base;
            value = value * base + digit;
        }
        if (!good || value > 0xFF)
            fail("expected a byte from 00 to FF, found " + std::string(word));
        return value;
    }

    CodeList list_;
    int line_ = 0;
    char escape_ = '\\';
    char comment_ = '#';
};

} // namespace

CodeList readCharmap(const std::string &path) {
    return CharmapReader(path).read();
}

} // namespace velnls::nlsgen
