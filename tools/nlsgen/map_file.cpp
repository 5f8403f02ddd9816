#include "map_file.hpp"

#include "problem.hpp"
#include "text_file.hpp"

#include <string_view>

namespace velnls::nlsgen {
namespace {

// The code's length in bytes, or 0 when it is none.
int parseCode(std::string_view word, std::uint32_t &code) {
    if ((word.size() != 2 && word.size() != 4) || !parseHexadecimal(word, code))
        return 0;
    return static_cast<int>(word.size() / 2);
}

void readCodeLine(const std::vector<std::string_view> &words, int line, CodeList &codes) {
    std::string_view firstWord = words[0];
    std::string_view lastWord = words[0];
    if (const std::size_t dots = firstWord.find(".."); dots != std::string_view::npos) {
        lastWord = firstWord.substr(dots + 2);
        firstWord = firstWord.substr(0, dots);
    }
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    const int bytes = parseCode(firstWord, first);
    if (bytes == 0 || parseCode(lastWord, last) != bytes)
        throw Problem(codes.file, line,
                      "expected a code of two or four hexadecimal digits, found " + std::string(words[0]));
    if (last < first || first >> 8 != last >> 8)
        throw Problem(codes.file, line,
                      "expected a range that only counts the last byte up, found " + std::string(words[0]));
    std::uint32_t unicode = 0;
    if (words.size() < 2 || !parseHexadecimal(words[1], unicode) || unicode > kLastCodePoint)
        throw Problem(codes.file, line, "expected a Unicode value of at most 10FFFF behind the code");
    const bool oneWay = words.size() == 3 && words[2] == "one-way";
    if (words.size() > 2 && !oneWay)
        throw Problem(codes.file, line, "expected nothing more or one-way, found " + std::string(words[2]));
    for (std::uint32_t i = 0; i <= last - first; i++)
        codes.lines.push_back({first + i, bytes, unicode + i, oneWay, line});
}

} // namespace

MapFile readMapFile(const std::string &path) {
    MapFile map;
    map.codes.file = path;
    int line = 0;
    for (const std::string &text : readLines(path)) {
        line++;
        const auto words = wordsOf(std::string_view(text).substr(0, text.find('#')));
        if (words.empty())
            continue;
        if (words[0] == "window") {
            std::uint32_t low = 0;
            std::uint32_t high = 0;
            if (words.size() != 3 || !parseHexadecimal(words[1], low) || !parseHexadecimal(words[2], high) ||
                low > high || high > 0xFFFF)
                throw Problem(path, line, "expected window, a low and a high Unicode value up to FFFF");
            map.window = {low, high};
        } else {
            readCodeLine(words, line, map.codes);
        }
    }
    return map;
}

} // namespace velnls::nlsgen
