#include "text_file.hpp"

#include "problem.hpp"

#include <zlib.h>

#include <array>
#include <memory>

namespace velnls::nlsgen {

std::vector<std::string> readLines(const std::string &path) {
    const std::unique_ptr<gzFile_s, int (*)(gzFile)> file(gzopen(path.c_str(), "rb"), gzclose);
    if (!file)
        throw Problem(path, 0, "cannot be opened for reading");
    std::vector<std::string> lines;
    std::string line;
    std::array<char, 65536> block;
    for (;;) {
        const int count = gzread(file.get(), block.data(), block.size());
        int error = Z_OK;
        gzerror(file.get(), &error);
        if (count < 0 || (count == 0 && error != Z_OK))
            throw Problem(path, static_cast<int>(lines.size()) + 1, "cannot be read: damaged or cut short");
        if (count == 0)
            break;
        for (int i = 0; i < count; i++) {
            const char c = block[static_cast<std::size_t>(i)];
            if (c == '\n') {
                if (!line.empty() && line.back() == '\r')
                    line.pop_back();
                lines.push_back(line);
                line.clear();
            } else {
                line.push_back(c);
            }
        }
    }
    if (!line.empty())
        lines.push_back(line);
    return lines;
}

std::vector<std::string_view> wordsOf(std::string_view line) {
    std::vector<std::string_view> words;
    std::size_t at = 0;
    for (;;) {
        at = line.find_first_not_of(" \t", at);
        if (at == std::string_view::npos)
            return words;
        const std::size_t end = line.find_first_of(" \t", at);
        words.push_back(line.substr(at, end == std::string_view::npos ? end : end - at));
        if (end == std::string_view::npos)
            return words;
        at = end;
    }
}

bool parseHexadecimal(std::string_view digits, std::uint32_t &value) {
    if (digits.empty() || digits.size() > 8)
        return false;
    std::uint32_t result = 0;
    for (const char c : digits) {
        std::uint32_t digit = 0;
        if (c >= '0' && c <= '9')
            digit = static_cast<std::uint32_t>(c - '0');
        else if (c >= 'A' && c <= 'F')
            digit = static_cast<std::uint32_t>(c - 'A' + 10);
        else if (c >= 'a' && c <= 'f')
            digit = static_cast<std::uint32_t>(c - 'a' + 10);
        else
            return false;
        result = result * 16 + digit;
    }
    value = result;
    return true;
}

} // namespace velnls::nlsgen
