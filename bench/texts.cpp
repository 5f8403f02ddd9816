#include "texts.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>
#include <zlib.h>

namespace bench {
namespace {

std::string readPacked(const std::filesystem::path &path) {
    std::string text;
    gzFile file = gzopen(path.c_str(), "rb"); // reads plain files as they are
    if (file == nullptr)
        return text;
    char block[65536];
    for (int count; (count = gzread(file, block, sizeof block)) > 0;)
        text.append(block, static_cast<std::size_t>(count));
    gzclose(file);
    return text;
}

// The prose of a manual page: lines that are requests go, font changes and escapes go, paragraphs stay.
void appendProse(const std::string &page, std::string &prose) {
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '.' || line[0] == '\'')
            continue;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const char c = line[i];
            if (c != '\\' || i + 1 == line.size()) {
                prose += c == '\t' ? ' ' : c;
                continue;
            }
            const char escape = line[++i];
            if (escape == 'f' && i + 1 < line.size())
                i += line[i + 1] == '(' ? 3 : 1;
            else if (escape == '(')
                i += 2;
            else if (escape == '-')
                prose += '-';
        }
        prose += '\n';
    }
}

bool isWellFormedUtf8(const std::string &text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80   ? 1
                                   : lead < 0xC2 ? 0
                                   : lead < 0xE0 ? 2
                                   : lead < 0xF0 ? 3
                                   : lead < 0xF5 ? 4
                                                 : 0;
        if (length == 0 || i + length > text.size())
            return false;
        for (std::size_t k = 1; k < length; ++k)
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80)
                return false;
        i += length;
    }
    return true;
}

std::string manualPages(const std::string &language) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator it("/usr/share/man/" + language, error), end;
         !error && it != end; it.increment(error))
        if (it->is_regular_file() && !it->is_symlink())
            files.push_back(it->path());
    std::sort(files.begin(), files.end()); // the same text on every run
    std::string prose;
    for (const std::filesystem::path &file : files) {
        const std::string page = readPacked(file);
        if (isWellFormedUtf8(page)) // a few pages are in an older encoding
            appendProse(page, prose);
        if (prose.size() > kBufferBytes)
            break;
    }
    return prose;
}

Text load(const std::string &language) {
    // Less than this is not the package but the pages that other packages bring along.
    constexpr std::size_t kEnough = 100'000;
    Text text;
    if (language == "en") {
        text.origin = "/usr/share/unicode/NamesList.txt";
        text.utf8 = readPacked(text.origin);
        std::replace(text.utf8.begin(), text.utf8.end(), '\t', ' ');
    } else {
        text.origin = "/usr/share/man/" + language;
        text.utf8 = manualPages(language);
    }
    if (text.utf8.size() < kEnough) {
        text.origin = "samples/" + language + ".txt";
        text.utf8 = readPacked(std::string(VELNLS_BENCH_SAMPLES "/") + language + ".txt");
    }
    if (text.utf8.empty())
        text.utf8 = "The quick brown fox jumps over the lazy dog.\n";
    const std::string once = text.utf8;
    while (text.utf8.size() < kBufferBytes)
        text.utf8 += once;
    return text;
}

} // namespace

const Text &textOf(std::string_view language) {
    static std::map<std::string, Text, std::less<>> texts;
    const auto found = texts.find(language);
    if (found != texts.end())
        return found->second;
    return texts.emplace(std::string(language), load(std::string(language))).first->second;
}

} // namespace bench
