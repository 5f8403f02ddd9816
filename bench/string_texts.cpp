#include "string_texts.hpp"

#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <unordered_map>

namespace bench {
namespace {

// The length of the well-formed character at a place; 0 where there is none, as manual pages have it where an
// escape was cut out.
std::size_t lengthOfUtf8(const std::string &text, std::size_t at) {
    std::int32_t next = 0;
    UChar32 character = 0;
    const auto available = static_cast<std::int32_t>(std::min<std::size_t>(text.size() - at, 4));
    U8_NEXT(reinterpret_cast<const std::uint8_t *>(text.data()) + at, next, available, character);
    return character < 0 ? 0 : static_cast<std::size_t>(next);
}

std::u16string utf16Of(const std::string &utf8) {
    std::u16string units(utf8.size() + 1, u'\0');
    std::int32_t count = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &count, utf8.data(),
                  static_cast<std::int32_t>(utf8.size()), &error);
    units.resize(static_cast<std::size_t>(count));
    return units;
}

void add(Column &column, const std::string &page, const std::string &utf8) {
    column.page.add(page);
    column.utf8.add(utf8);
    column.utf16.push_back(utf16Of(utf8));
}

} // namespace

CharacterText charactersOf(const std::string &language, const Page &page) {
    const std::string &utf8 = textOf(language).utf8;
    std::unique_ptr<Contestant> encoder;
    if (!isUtf8(page))
        encoder = openVelnls(pageNamed("UTF-8"), page);
    constexpr std::uint32_t kDropped = 0xFFFFFFFF;
    std::unordered_map<std::string, std::uint32_t> known;
    CharacterText text;
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t length = lengthOfUtf8(utf8, i);
        if (length == 0) {
            ++i;
            continue;
        }
        const std::string character = utf8.substr(i, length);
        i += length;
        auto found = known.find(character);
        if (found == known.end()) {
            std::string encoded = character;
            const bool usable = encoder == nullptr || encoder->convert(character, encoded);
            found = known.emplace(character, usable ? static_cast<std::uint32_t>(text.page.size()) : kDropped)
                        .first;
            if (usable) {
                text.page.push_back(encoded);
                text.utf8.push_back(character);
            }
        }
        if (found->second != kDropped)
            text.text.push_back(found->second);
    }
    return text;
}

void keepOnly(CharacterText &text, const std::function<bool(std::size_t)> &keep) {
    std::vector<bool> kept;
    for (std::size_t i = 0; i < text.page.size(); ++i)
        kept.push_back(keep(i));
    std::vector<std::uint32_t> rest;
    for (const std::uint32_t character : text.text)
        if (kept[character])
            rest.push_back(character);
    text.text = rest;
}

Column eachCharacter(const CharacterText &text) {
    Column column;
    for (std::size_t i = 0; i < text.page.size(); ++i)
        add(column, text.page[i], text.utf8[i]);
    return column;
}

Column columnOf(const CharacterText &text, Size size) {
    Column column;
    std::string page;
    std::string utf8;
    const auto take = [&](std::uint32_t character) {
        page += text.page[character];
        utf8 += text.utf8[character];
    };
    const auto isLineFeed = [&](std::uint32_t character) { return text.page[character] == "\n"; };
    if (size == Size::buffer) {
        for (std::size_t i = 0; page.size() < kBufferBytes; ++i)
            take(text.text[i % text.text.size()]);
        add(column, page, utf8);
        return column;
    }
    if (size == Size::lines) {
        constexpr std::size_t kEnough = 2u << 20;
        std::size_t sum = 0;
        for (std::size_t i = 0; i < text.text.size() && sum < kEnough; ++i) {
            if (!isLineFeed(text.text[i])) {
                take(text.text[i]);
                continue;
            }
            if (!page.empty())
                add(column, page, utf8);
            sum += page.size();
            page.clear();
            utf8.clear();
        }
        return column;
    }
    constexpr std::size_t kCount = 100'000;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> uniform(0, 1);
    std::size_t position = 0;
    while (column.size() < kCount) {
        // 8 + 32 u^(5/3) has the mean 20
        const auto wanted = static_cast<std::size_t>(8.5 + 32 * std::pow(uniform(random), 5.0 / 3));
        page.clear();
        utf8.clear();
        while (page.size() < wanted) {
            const std::uint32_t character = text.text[position++ % text.text.size()];
            if (isLineFeed(character) || page.size() + text.page[character].size() > 40)
                break;
            take(character);
        }
        if (page.size() >= 8)
            add(column, page, utf8);
    }
    return column;
}

void appendToLast(Column &column, const std::string &piece) {
    const auto append = [&](Strings &strings) {
        Strings::Piece &last = strings.pieces.back();
        std::string text = strings.bytes.substr(last.offset, last.length) + piece;
        strings.bytes.resize(last.offset);
        strings.pieces.pop_back();
        strings.add(text);
    };
    append(column.page);
    append(column.utf8);
    column.utf16.back() += utf16Of(piece);
}

Column asciiColumn(const std::vector<std::string> &strings) {
    Column column;
    for (const std::string &text : strings)
        add(column, text, text);
    return column;
}

} // namespace bench
