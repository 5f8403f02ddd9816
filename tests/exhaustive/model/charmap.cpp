// See charmap.hpp.
#include "charmap.hpp"

#include <cctype>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <zlib.h>

namespace model {
namespace {

std::string unpack(const std::string &path) {
    const std::unique_ptr<gzFile_s, int (*)(gzFile)> file(gzopen(path.c_str(), "rb"), gzclose);
    if (!file)
        throw std::runtime_error("cannot open " + path);
    std::string text;
    char block[65536];
    int count = 0;
    while ((count = gzread(file.get(), block, sizeof block)) > 0)
        text.append(block, static_cast<std::size_t>(count));
    if (count < 0)
        throw std::runtime_error("cannot unpack " + path);
    return text;
}

// One line of the map part, read from left to right.
class LineReader {
public:
    LineReader(const std::string &line, char escape) : line_(line), escape_(escape) {}

    bool skipPrefix(const std::string &prefix) {
        if (line_.compare(at_, prefix.size(), prefix) != 0)
            return false;
        at_ += prefix.size();
        return true;
    }

    bool takeCodePoint(std::uint32_t &value) {
        if (!skipPrefix("<U"))
            return false;
        value = 0;
        while (at_ < line_.size() && std::isxdigit(static_cast<unsigned char>(line_[at_])) != 0)
            value = value * 16 + digit(line_[at_++]);
        return skipPrefix(">");
    }

    void skipBlanks() {
        while (at_ < line_.size() && (line_[at_] == ' ' || line_[at_] == '\t'))
            ++at_;
    }

    // Bytes written as escape, 'x' and two hexadecimal digits each.
    unsigned takeCode(std::uint32_t &code) {
        unsigned length = 0;
        code = 0;
        while (at_ + 4 <= line_.size() && line_[at_] == escape_ && line_[at_ + 1] == 'x') {
            code = code * 256 + digit(line_[at_ + 2]) * 16 + digit(line_[at_ + 3]);
            at_ += 4;
            ++length;
        }
        return length;
    }

private:
    static std::uint32_t digit(char c) {
        if (c >= '0' && c <= '9')
            return static_cast<std::uint32_t>(c - '0');
        return static_cast<std::uint32_t>(std::tolower(static_cast<unsigned char>(c)) - 'a' + 10);
    }

    const std::string &line_;
    char escape_;
    std::size_t at_ = 0;
};

} // namespace

std::vector<CharmapLine> readCharmap(const std::string &path) {
    std::istringstream text(unpack(path));
    std::vector<CharmapLine> lines;
    std::string line;
    char escape = '\\';
    char comment = '#';
    bool inside = false;
    while (std::getline(text, line)) {
        if (line.rfind("<escape_char>", 0) == 0)
            escape = line[line.find_first_not_of(" \t", 13)];
        if (line.rfind("<comment_char>", 0) == 0)
            comment = line[line.find_first_not_of(" \t", 14)];
        if (line == "CHARMAP")
            inside = true;
        if (line == "END CHARMAP")
            break;
        if (!inside)
            continue;
        LineReader reader(line, escape);
        const bool oneWay = reader.skipPrefix("%IRREVERSIBLE%");
        if (!oneWay && !line.empty() && line[0] == comment)
            continue;
        std::uint32_t first = 0;
        if (!reader.takeCodePoint(first))
            continue;
        std::uint32_t last = first;
        if (reader.skipPrefix(".."))
            reader.takeCodePoint(last);
        std::uint32_t extra = 0;
        const bool several = reader.takeCodePoint(extra);
        reader.skipBlanks();
        std::uint32_t code = 0;
        const unsigned length = reader.takeCode(code);
        if (several || length == 0)
            continue;
        for (std::uint32_t u = first; u <= last; ++u)
            lines.push_back({code + (u - first), length, u, !oneWay});
    }
    if (lines.empty())
        throw std::runtime_error("no characters in " + path);
    return lines;
}

std::vector<CharmapLine> readPairs(const std::string &path) {
    std::ifstream text(path);
    if (!text)
        throw std::runtime_error("cannot open " + path);
    std::vector<CharmapLine> lines;
    std::string line;
    while (std::getline(text, line)) {
        line = line.substr(0, line.find('#'));
        std::istringstream words(line);
        std::string code;
        std::string unicode;
        if (!(words >> code >> unicode))
            continue;
        const std::size_t dots = code.find("..");
        const auto first = static_cast<std::uint32_t>(std::stoul(code.substr(0, dots), nullptr, 16));
        const std::uint32_t last =
            dots == std::string::npos
                ? first
                : static_cast<std::uint32_t>(std::stoul(code.substr(dots + 2), nullptr, 16));
        const auto start = static_cast<std::uint32_t>(std::stoul(unicode, nullptr, 16));
        for (std::uint32_t value = first; value <= last; ++value)
            lines.push_back({value, value > 0xFF ? 2u : 1u, start + (value - first), true});
    }
    return lines;
}

} // namespace model
