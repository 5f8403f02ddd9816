#include "order.hpp"

#include "case.hpp"

#include <algorithm>
#include <cctype>
#include <utility>

namespace model {

namespace {

const ByteTable *tableOf(const fixture::CollationTable &collation, unsigned mode) {
    if (collation.kind == 4)
        return mode != 0 ? &collation.sensitive : &collation.insensitive;
    return mode == 1 ? &collation.sensitive : mode == 0 ? &collation.insensitive : nullptr;
}

// The end rule of every order, from the places where two walks have stopped.
int compareRests(const Bytes &a, std::size_t atA, const Bytes &b, std::size_t atB) {
    if (atA >= a.size() && atB >= b.size())
        return 0;
    const bool aHasMore = atA < a.size();
    const Bytes &more = aHasMore ? a : b;
    std::size_t at = aHasMore ? atA : atB;
    while (at < more.size() && more[at] == 0x20)
        ++at;
    if (at == more.size())
        return 0;
    return aHasMore ? 1 : -1;
}

// One step each until either string has ended. A step that is still to come keeps a string going.
template <typename Side>
int compareSides(Side a, Side b) {
    while (!a.ended() && !b.ended()) {
        const std::uint32_t x = a.next();
        const std::uint32_t y = b.next();
        if (x != y)
            return x < y ? -1 : 1;
    }
    return compareRests(a.text, a.at, b.text, b.at);
}

struct WeightSide {
    const Locale &locale;
    const ByteTable &weights;
    const Bytes &text;
    std::size_t at = 0;
    static constexpr unsigned kNoSecond = 256;
    unsigned second = kNoSecond;

    [[nodiscard]] bool ended() const {
        return second == kNoSecond && at >= text.size();
    }
    std::uint32_t next() {
        if (second != kNoSecond)
            return std::exchange(second, kNoSecond);
        const unsigned char byte = text[at++];
        if (locale.trails(byte) != 0) {
            Bytes pair{byte};
            if (at < text.size())
                pair.push_back(text[at++]);
            if (locale.has(fixture::kThroughShiftJis))
                pair = shiftJisOf(pair);
            if (pair.size() > 1)
                second = pair[1];
            return weights[pair[0]];
        }
        if (weights[byte] != 0)
            return weights[byte];
        second = weights['s'];
        return weights['s'];
    }
};

struct FoldedSide {
    const Locale &locale;
    const Bytes &text;
    std::size_t at = 0;

    [[nodiscard]] bool ended() const {
        return at >= text.size();
    }
    std::uint32_t next() {
        const unsigned length = locale.trails(text[at]) + 1;
        std::uint32_t value = 0;
        unsigned taken = 0;
        for (; taken < length && at < text.size(); ++taken)
            value = value * 256 + text[at++];
        if (length > 4)
            return 63;
        return fold(value);
    }
    [[nodiscard]] std::uint32_t fold(std::uint32_t value) const {
        if (value >= 0x1000000)
            return value;
        if (locale.pagedCase())
            return mapNumber(*locale.casePages, value, false);
        // Other pages have a case for single bytes only.
        if (value > 0xFF)
            return value;
        if (locale.byteCase.has_value())
            return locale.byteCase->lower[value];
        return static_cast<unsigned char>(std::tolower(static_cast<int>(value)));
    }
};

struct ByteSide {
    const Bytes &text;
    std::size_t at = 0;

    [[nodiscard]] bool ended() const {
        return at >= text.size();
    }
    std::uint32_t next() {
        return text[at++];
    }
};

unsigned thaiClass(unsigned char byte) {
    struct Range {
        unsigned char first;
        unsigned char last;
        unsigned kind;
    };
    static constexpr Range kRanges[] = {{0xA1, 0xCE, 1}, {0xD0, 0xD0, 1}, {0xD2, 0xD3, 1}, {0xDA, 0xDB, 1},
                                        {0xDD, 0xDF, 1}, {0xE5, 0xE5, 1}, {0xEE, 0xEE, 1}, {0xFC, 0xFF, 1},
                                        {0xD1, 0xD1, 2}, {0xD4, 0xD9, 2}, {0xED, 0xED, 2}, {0xE0, 0xE4, 3},
                                        {0xE7, 0xEC, 4}};
    for (const Range &range : kRanges)
        if (byte >= range.first && byte <= range.last)
            return range.kind;
    return 0;
}

struct ThaiSide {
    const ByteTable &weights;
    const Bytes &text;
    std::size_t at = 0;

    [[nodiscard]] bool ended() const {
        return at >= text.size();
    }
    std::uint32_t next() {
        if (thaiClass(text[at]) == 0)
            return std::uint32_t{weights[text[at++]]} << 24;
        std::uint32_t cell = 2;
        unsigned seen = 0; // one bit per class
        for (; at < text.size(); ++at) {
            const unsigned kind = thaiClass(text[at]);
            const std::uint32_t weight = weights[text[at]];
            if (kind == 0 || (seen >> kind & 1) != 0 || (kind == 3 && (seen >> 1 & 1) != 0))
                break;
            seen |= 1U << kind;
            if (kind == 1)
                cell |= weight << 24;
            else if (kind == 3)
                cell |= weight << 16;
            else if (kind == 2)
                cell |= weight << 8;
            else
                cell = (cell & ~2U) | weight;
        }
        return cell;
    }
};

Bytes thaiKey(const ByteTable &weights, const Bytes &text) {
    Bytes key;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char byte = text[i];
        const unsigned kind = thaiClass(byte);
        const unsigned char weight = weights[byte];
        if (kind == 0) {
            key.push_back(weight);
        } else if (kind == 1) {
            key = key + Bytes{weight, 2};
        } else if (kind == 3) {
            if (i + 1 < text.size() && thaiClass(text[i + 1]) == 1) {
                ++i;
                key = key + Bytes{weights[text[i]], 128, weight, 2};
            } else {
                key = key + Bytes{weight, 2};
            }
        } else {
            if (i == 0 || thaiClass(text[i - 1]) == 0)
                key = key + Bytes{128, 2};
            unsigned char &last = key.back();
            if (kind == 2 && (last & 0x78) != 0)
                key = key + Bytes{128, fixture::byteOf(weight | 2U)};
            else if (kind == 2)
                last = fixture::byteOf(last | weight);
            else if ((last & 7) != 2)
                key = key + Bytes{128, weight};
            else
                last = fixture::byteOf((last & 0xF8U) | weight);
        }
    }
    return key;
}

void cutTo(Bytes &key, std::size_t length) {
    if (key.size() > length)
        key.resize(length);
}

Bytes weights(const fixture::CharacterTable &characters, const ByteTable &table, bool literalSs,
              const Bytes &text) {
    Bytes key;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char byte = text[i];
        if ((characters.attributes[byte] & 7) != 0) {
            key.push_back(table[byte]);
            if (++i < text.size())
                key.push_back(text[i]);
        } else if (table[byte] != 0) {
            key.push_back(table[byte]);
        } else {
            key.insert(key.end(), 2, literalSs ? 0x53 : table['s']);
        }
    }
    return key;
}

bool literalSs(const Locale &locale) {
    return locale.collation->kind == 1 && locale.collation->variant == 0;
}

} // namespace

Bytes shiftJisOf(const Bytes &text) {
    Bytes out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned b = text[i];
        const bool wide = b >= 0xA1 && b <= 0xFE;
        if ((!wide && b != 0x8E) || i + 1 == text.size()) {
            out.push_back(fixture::byteOf(b));
            continue;
        }
        const unsigned t = text[++i];
        if (!wide) {
            if (t < 0xA1 || t > 0xDF)
                out.push_back(0x8E);
            out.push_back(fixture::byteOf(t));
        } else if (t >= 0xA1 && t <= 0xFE) {
            const unsigned row = b - 0x80;
            const unsigned cell = t - 0x80;
            out.push_back(fixture::byteOf((row + 1) / 2 + (row < 0x5F ? 0x70 : 0xB0)));
            out.push_back(fixture::byteOf(cell + (row % 2 == 0 ? 0x7E : cell <= 0x5F ? 0x1F : 0x20)));
        } else {
            out.push_back(fixture::byteOf(b));
            out.push_back(fixture::byteOf(t));
        }
    }
    return out;
}

Compared compare(const Locale &locale, const Bytes &a, const Bytes &b, unsigned mode) {
    const fixture::CollationTable &collation = *locale.collation;
    if (collation.kind == 3) {
        if (mode != 0)
            return {0, compareSides(ByteSide{a}, ByteSide{b})};
        return {0, compareSides(FoldedSide{locale, a}, FoldedSide{locale, b})};
    }
    const ByteTable *const table = tableOf(collation, mode);
    if (table == nullptr)
        return {16, 0};
    if (collation.kind == 4)
        return {0, compareSides(ThaiSide{*table, a}, ThaiSide{*table, b})};
    return {0, compareSides(WeightSide{locale, *table, a}, WeightSide{locale, *table, b})};
}

Bytes weightKey(const Locale &locale, const Bytes &source, std::size_t size, unsigned mode) {
    const ByteTable *const table = tableOf(*locale.collation, mode & 0x9FFF);
    Bytes key;
    if (table != nullptr && locale.has(fixture::kThroughShiftJis))
        key = weights(*locale.companion, *table, literalSs(locale), shiftJisOf(source));
    else if (table != nullptr)
        key = weights(locale.characters, *table, literalSs(locale), source);
    cutTo(key, size - 1);
    return key;
}

Keyed sortKey(const Locale &locale, const Bytes &source, std::size_t size, unsigned mode, bool trim) {
    const unsigned selected = mode & 0x9FFF;
    Bytes text = source;
    while (trim && !literalSs(locale) && !text.empty() && text.back() == 0x20)
        text.pop_back();
    Keyed result;
    if (locale.collation->kind == 4) {
        result.key = thaiKey(*tableOf(*locale.collation, selected), text);
        cutTo(result.key, size - 1);
        return result;
    }
    if (locale.collation->kind != 3) {
        result.key = weightKey(locale, text, size, selected);
        while (trim && literalSs(locale) && !result.key.empty() && result.key.back() == 0x20)
            result.key.pop_back();
        return result;
    }
    const bool converted = locale.has(fixture::kThroughShiftJis);
    if (converted)
        text = shiftJisOf(text);
    if (selected > 1 || (!converted && text.size() >= size)) {
        result.written = false;
        return result;
    }
    if (selected == 0 && converted) {
        Locale companion = locale;
        companion.characters = *locale.companion;
        text = mapCase(companion, text, text.size(), false).text;
    } else if (selected == 0) {
        text = mapCase(locale, text, size - 1, false).text;
    }
    // Of a converted text as many bytes as fit.
    cutTo(text, size - 1);
    result.key = text;
    return result;
}

} // namespace model
