#include "words.hpp"

namespace model {

namespace {

constexpr std::size_t kLongest = 184;

} // namespace

WordText nextWord(const Locale &locale, const WordMap &map, const Bytes &text) {
    const bool plain = locale.has(fixture::kMultibyte) && !locale.has(fixture::kUtf8) &&
                       !locale.has(fixture::kWide) && !locale.has(fixture::kUnits32);
    const bool option1 = map.format == 9 && plain;
    const bool option2 = locale.has(fixture::kUtf8);
    Bytes word;
    std::size_t at = 0;
    const auto take = [&](std::size_t count) {
        for (; count > 0 && at < text.size(); --count)
            word.push_back(text[at++]);
    };
    bool ended = false;
    while (!ended && at < text.size()) {
        const unsigned kind = map.classes[text[at]];
        const unsigned next = at + 1 < text.size() ? map.classes[text[at + 1]] : 0;
        if (kind == 1) {
            if (word.empty())
                ++at;
            else
                ended = true;
        } else if (kind >= 2 && kind <= 4) {
            take(1);
        } else if (kind >= 5 && kind <= 7) {
            const bool kept = (next == 3 && kind != 5) || (next == 2 && kind != 6);
            if (kept) {
                take(1);
            } else {
                ++at;
                ended = !word.empty();
            }
        } else if (kind == 9 && !option1) {
            take(2);
        } else if (kind == 9) {
            if (word.empty())
                take(2);
            ended = true;
        } else if (kind == 10) {
            if (word.empty())
                take(3);
            ended = true;
        } else if (kind == 11 && !option2) {
            take(2);
        } else if (kind == 11) {
            if (word.empty())
                take(4);
            ended = true;
        } else {
            ++at;
        }
    }
    WordText result;
    result.cut = word.size() > kLongest;
    if (result.cut)
        word.resize(kLongest);
    result.word = word;
    result.consumed = at;
    return result;
}

ByteTable builtClasses(const Locale &locale, const fixture::CharacterTable *target, unsigned char format) {
    const bool utf8 = locale.has(fixture::kUtf8);
    const fixture::CharacterTable &letters =
        format < 9 && !utf8 && target != nullptr ? *target : locale.characters;
    ByteTable map{};
    for (unsigned b = 0; b < 256; ++b) {
        map[b] = letters.classes[b] != 0 ? 2 : b >= '0' && b <= '9' ? 3 : 1;
        if (!locale.has(fixture::kMultibyte) || (!utf8 && format != 9))
            continue;
        const auto first = static_cast<unsigned char>(b);
        if (locale.trails(first) != 0)
            map[b] = fixture::byteOf(8 + locale.trails(first));
        else if ((locale.characters.attributes[b] & 8) != 0)
            map[b] = 11;
    }
    return map;
}

} // namespace model
