// Names of code pages, compared the way people confuse them.
#include "page_names.hpp"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>

namespace velnls::tool {

namespace {

constexpr std::size_t kMostSuggestions = 5;

// What other programs call our pages, where the names have nothing in common. Written as bareName() leaves
// them.
constexpr std::pair<const char *, const char *> kOtherNames[] = {
    {"LATIN1", "ISO8859-1"},      {"L1", "ISO8859-1"},
    {"LATIN2", "ISO8859-2"},      {"LATIN9", "ISO8859-15"},
    {"LATIN0", "ISO8859-15"},     {"CYRILLIC", "ISO8859-5"},
    {"HEBREW", "ISO8859-8"},      {"SJIS", "SHIFT-JIS"},
    {"932", "SHIFT-JIS"},         {"943", "SHIFT-JIS"},
    {"31J", "SHIFT-JIS"},         {"KANJI", "SHIFT-JIS"},
    {"EUCJP", "EUCJIS"},          {"UJIS", "EUCJIS"},
    {"EUCKR", "KSC5601"},         {"UHC", "CP949"},
    {"EUCCN", "GB2312"},          {"GBK", "CP936"},
    {"BIG5HKSCS", "CP950-HKSCS"}, {"HKSCS", "CP950-HKSCS"},
    {"JOHAB", "CP1361"},          {"TIS620", "620-2533"},
    {"874", "620-2533"},          {"1162", "620-2533"},
    {"ASCII", "UTF-8"},           {"USASCII", "UTF-8"},
    {"UTF16LE", "UTF-16"},        {"UTF32LE", "UTF-32"},
    {"UCS4", "UTF-32"},           {"UNICODE", "UTF-16"},
    {"HPROMAN8", "ROMAN-8"},      {"8859", "ISO8859-1"},
    {"ASMO708", "708"},           {"KOI8", "KOI8-R"},
};

char upper(char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

std::string trimmedUpper(const std::string &name) {
    std::string result(name);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    result.erase(result.find_last_not_of(' ') + 1);
    return result;
}

// The name without punctuation and without the prefixes that vendors put before a number.
std::string bareName(const std::string &name) {
    std::string bare;
    for (const char c : name) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            bare += upper(c);
        }
    }
    for (const char *prefix : {"WINDOWS", "CODEPAGE", "WIN", "IBM", "ISO", "MS", "CP"}) {
        const std::string text(prefix);
        if (bare.size() > text.size() && bare.compare(0, text.size(), text) == 0) {
            return bare.substr(text.size());
        }
    }
    return bare;
}

// Least number of letters to insert, delete or replace.
std::size_t editDistance(const std::string &a, const std::string &b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

} // namespace

std::vector<std::string> nearNames(const std::string &wanted, const std::vector<std::string> &names) {
    const std::string bare = bareName(wanted);
    std::vector<std::pair<std::size_t, std::string>> found; // with how far away they are
    for (const std::string &name : names) {
        const bool known = std::any_of(std::begin(kOtherNames), std::end(kOtherNames), [&](const auto &pair) {
            return bare == pair.first && name == pair.second;
        });
        const std::size_t distance = known ? 0 : editDistance(bare, bareName(name));
        // Short names are mostly numbers: one wrong digit is all that may be forgiven.
        const std::size_t allowed = bare.size() <= 4 ? 1 : 2;
        if (distance <= allowed && distance < bare.size()) {
            found.emplace_back(distance, name);
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::string> result;
    for (const auto &[distance, name] : found) {
        // Names that say the same but for punctuation leave no doubt.
        if (result.size() == kMostSuggestions || (distance != 0 && found.front().first == 0)) {
            break;
        }
        result.push_back(name);
    }
    return result;
}

std::string resolvePage(const Library &library, const std::string &wanted) {
    const std::vector<std::string> names = library.list(NameList::CodePages);
    const std::string sought = trimmedUpper(wanted);
    for (const std::string &name : names) {
        if (trimmedUpper(name) == sought) {
            return name;
        }
    }
    std::string message = "unknown code page '" + wanted + "'";
    const std::vector<std::string> near = nearNames(wanted, names);
    for (std::size_t i = 0; i < near.size(); ++i) {
        message += (i == 0 ? "; did you mean " : i + 1 == near.size() ? " or " : ", ") + near[i];
    }
    message += near.empty() ? "; 'velnls list charsets' names all" : "? 'velnls list charsets' names all";
    throw UnknownPage(message);
}

} // namespace velnls::tool
