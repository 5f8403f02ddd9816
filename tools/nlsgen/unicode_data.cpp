#include "unicode_data.hpp"

#include "problem.hpp"
#include "text_file.hpp"

#include <string_view>
#include <vector>

namespace velnls::nlsgen {
namespace {

enum Field : std::size_t {
    kCodePoint,
    kName,
    kCategory,
    kSimpleUpper = 12,
    kSimpleLower = 13,
    kFieldCount = 15,
};

std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t end = line.find(';');
        fields.push_back(line.substr(0, end));
        if (end == std::string_view::npos)
            return fields;
        line.remove_prefix(end + 1);
    }
}

} // namespace

UnicodeData::UnicodeData(const std::string &path) {
    int line = 0;
    for (const std::string &text : readLines(path)) {
        line++;
        const auto fields = fieldsOf(text);
        std::uint32_t codePoint = 0;
        Character character{};
        const auto optionalValue = [&](std::size_t field, std::uint32_t &value) {
            return fields[field].empty() || parseHexadecimal(fields[field], value);
        };
        if (fields.size() != kFieldCount || !parseHexadecimal(fields[kCodePoint], codePoint) ||
            fields[kCategory].size() != 2 || !optionalValue(kSimpleUpper, character.upper) ||
            !optionalValue(kSimpleLower, character.lower))
            throw Problem(path, line, "expected fifteen fields of the Unicode character database");
        if (fields[kName].ends_with(", Last>")) {
            if (characters_.empty())
                throw Problem(path, line, "expected the first line of the range before its last");
            characters_.rbegin()->second.last = codePoint;
            continue;
        }
        character.last = codePoint;
        character.letter = fields[kCategory][0] == 'L';
        characters_.emplace(codePoint, character);
    }
    if (characters_.empty())
        throw Problem(path, 0, "expected the Unicode character database, found an empty file");
}

const UnicodeData::Character *UnicodeData::find(std::uint32_t codePoint) const {
    auto at = characters_.upper_bound(codePoint);
    if (at == characters_.begin())
        return nullptr;
    --at;
    return codePoint <= at->second.last ? &at->second : nullptr;
}

bool UnicodeData::isLetter(std::uint32_t codePoint) const {
    const Character *character = find(codePoint);
    return character != nullptr && character->letter;
}

std::uint32_t UnicodeData::upper(std::uint32_t codePoint) const {
    const Character *character = find(codePoint);
    return character != nullptr && character->upper != 0 ? character->upper : codePoint;
}

std::uint32_t UnicodeData::lower(std::uint32_t codePoint) const {
    const Character *character = find(codePoint);
    return character != nullptr && character->lower != 0 ? character->lower : codePoint;
}

} // namespace velnls::nlsgen
