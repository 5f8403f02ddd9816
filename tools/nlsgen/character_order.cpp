#include "character_order.hpp"

#include "problem.hpp"
#include "text_file.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace velnls::nlsgen {

void CharacterOrder::append(std::uint32_t codePoint, Difference fromPrevious, unsigned form) {
    if (fromPrevious != Difference::kForm || letters_ == 0)
        letters_++;
    if (fromPrevious == Difference::kLetter || bases_ == 0)
        bases_++;
    ranks_.emplace(codePoint, Rank{static_cast<unsigned>(ranks_.size()), letters_, bases_, form});
}

Rank CharacterOrder::rankOf(std::uint32_t codePoint) const {
    const auto found = ranks_.find(codePoint);
    if (found == ranks_.end())
        throw Problem(source_, 0, "expected a place for " + unicodeName(codePoint) + " in this order");
    return found->second;
}

namespace {

// Weights by level, zeros dropped.
using SortKey = std::array<std::vector<std::uint32_t>, 3>;

// The elements behind the semicolon: [.pppp.ssss.tttt] or [*pppp.ssss.tttt], one or more.
bool readElements(std::string_view text, SortKey &key) {
    bool any = false;
    for (;;) {
        const std::size_t open = text.find('[');
        if (open == std::string_view::npos)
            return any;
        text.remove_prefix(open + 1);
        if (text.empty() || (text[0] != '.' && text[0] != '*'))
            return false;
        for (auto &level : key) {
            text.remove_prefix(1);
            const std::size_t end = text.find_first_of(".]");
            std::uint32_t weight = 0;
            if (end == std::string_view::npos || !parseHexadecimal(text.substr(0, end), weight))
                return false;
            if (weight != 0)
                level.push_back(weight);
            text.remove_prefix(end);
        }
        if (text.empty() || text[0] != ']')
            return false;
        any = true;
    }
}

// Characters that the table does not list sort behind all others, by code.
SortKey implicitKey(std::uint32_t codePoint) {
    return {std::vector<std::uint32_t>{0xFBC0 + (codePoint >> 15), (codePoint & 0x7FFF) | 0x8000},
            std::vector<std::uint32_t>{0x20}, std::vector<std::uint32_t>{2}};
}

} // namespace

CharacterOrder readDefaultOrder(const std::string &path, const std::set<std::uint32_t> &characters) {
    std::map<std::uint32_t, SortKey> keys;
    int line = 0;
    for (const std::string &text : readLines(path)) {
        line++;
        std::string_view view(text);
        view = view.substr(0, view.find('#'));
        const std::size_t semicolon = view.find(';');
        if (view.starts_with('@') || wordsOf(view).empty())
            continue;
        if (semicolon == std::string_view::npos)
            throw Problem(path, line, "expected characters, a semicolon and their collation elements");
        const auto words = wordsOf(view.substr(0, semicolon));
        std::uint32_t codePoint = 0;
        SortKey key;
        if (words.empty() || !parseHexadecimal(words[0], codePoint) ||
            !readElements(view.substr(semicolon + 1), key))
            throw Problem(path, line, "expected characters, a semicolon and their collation elements");
        if (words.size() == 1 && characters.contains(codePoint))
            keys.emplace(codePoint, key);
    }
    if (keys.empty())
        throw Problem(path, 0, "expected collation elements, found none for the characters in use");

    std::vector<std::pair<SortKey, std::uint32_t>> sorted;
    for (const std::uint32_t codePoint : characters) {
        const auto found = keys.find(codePoint);
        sorted.emplace_back(found == keys.end() ? implicitKey(codePoint) : found->second, codePoint);
    }
    std::sort(sorted.begin(), sorted.end());
    CharacterOrder order(path);
    const SortKey *previous = nullptr;
    for (const auto &[key, codePoint] : sorted) {
        const bool ignorable = key[0].empty() && key[1].empty();
        auto difference = Difference::kLetter;
        if (previous != nullptr && !ignorable && key[0] == (*previous)[0])
            difference = key[1] == (*previous)[1] ? Difference::kForm : Difference::kAccent;
        // The accents' own tertiary weights come behind the letter's.
        order.append(codePoint, difference, key[2].empty() ? 0 : key[2][0]);
        previous = &key;
    }
    return order;
}

CharacterOrder readOrderList(const std::string &path) {
    CharacterOrder order(path);
    int line = 0;
    for (const std::string &text : readLines(path)) {
        line++;
        const auto words = wordsOf(std::string_view(text).substr(0, text.find('#')));
        const bool ignorable = !words.empty() && words[0] == "ignorable";
        bool expectCharacter = true;
        auto difference = Difference::kLetter;
        for (std::size_t i = ignorable ? 1 : 0; i < words.size(); i++) {
            if (!expectCharacter) {
                if (words[i] != "<<" && words[i] != "<<<")
                    throw Problem(path, line, "expected << or <<<, found " + std::string(words[i]));
                difference = words[i] == "<<<" ? Difference::kForm : Difference::kAccent;
                expectCharacter = true;
                continue;
            }
            std::uint32_t codePoint = 0;
            if (!parseHexadecimal(words[i], codePoint))
                throw Problem(path, line,
                              "expected a character in hexadecimal, found " + std::string(words[i]));
            if (order.has(codePoint))
                throw Problem(path, line,
                              "expected each character once, found " + unicodeName(codePoint) + " again");
            order.append(codePoint, difference);
            expectCharacter = ignorable;
        }
        if (expectCharacter && !ignorable && !words.empty())
            throw Problem(path, line, "expected a character at the end of the line");
    }
    return order;
}

} // namespace velnls::nlsgen
