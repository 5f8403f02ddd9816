#include "count.hpp"

#include <algorithm>

namespace model {

namespace {

constexpr std::int32_t kCut = -4;

unsigned width(const Locale &locale, const Bytes &text, std::size_t at) {
    const unsigned b0 = text[at];
    const unsigned b1 = at + 1 < text.size() ? text[at + 1] : 0;
    const unsigned b2 = at + 2 < text.size() ? text[at + 2] : 0;
    if (locale.trails(text[at]) == 0)
        return 1;
    if (!locale.has(fixture::kUtf8))
        return (locale.characters.attributes[b0] & 8) != 0 ? 1 : 2;
    const auto in = [](unsigned value, unsigned first, unsigned last) {
        return value >= first && value <= last;
    };
    if (b0 == 0xEF && b1 == 0xBB && b2 == 0xBF)
        return 0;
    if (b0 == 0xE0 && b1 == 0xB8 && (b2 == 0xB1 || in(b2, 0xB4, 0xBA)))
        return 0;
    if (b0 == 0xE0 && b1 == 0xB9 && in(b2, 0x87, 0x8E))
        return 0;
    if (b0 < 0xE3)
        return 1;
    if (b0 != 0xEF)
        return 2;
    if (b1 < 0xBA || (b1 == 0xBC && in(b2, 0x80, 0xBF)) || (b1 == 0xBD && in(b2, 0x80, 0x9F)) ||
        (b1 == 0xBF && in(b2, 0x9D, 0xA7)))
        return 2;
    return 1;
}

bool begins(const Locale &locale, const Bytes &text, std::size_t at) {
    if (locale.has(fixture::kUtf8))
        return (text[at] & 0xC0) != 0x80;
    unsigned run = 0;
    for (std::size_t i = at; i > 0 && locale.trails(text[i - 1]) != 0; --i)
        ++run;
    return run % 2 == 0;
}

} // namespace

Counted countBytes(const Locale &locale, const Bytes &text, std::int32_t characters) {
    const auto length = static_cast<std::uint32_t>(text.size());
    if (characters < 0)
        return {16, 0};
    if (static_cast<std::uint32_t>(characters) > length)
        return {0, length};
    Counted answer;
    for (std::int32_t i = 0; i < characters && answer.count < length; ++i) {
        const unsigned whole = locale.trails(text[answer.count]) + 1;
        if (whole > length)
            return {kCut, answer.count};
        answer.count += whole;
    }
    return answer;
}

Counted countCharacters(const Locale &locale, const Bytes &text, std::int32_t bytes) {
    if (bytes < 0)
        return {16, 0};
    const std::uint32_t limit =
        std::min(static_cast<std::uint32_t>(bytes), static_cast<std::uint32_t>(text.size()));
    if (!locale.has(fixture::kMultibyte))
        return {0, limit};
    Counted answer;
    for (std::uint32_t at = 0; at < limit;) {
        const unsigned trails = locale.trails(text[at]);
        if (at + trails >= limit)
            return {kCut, answer.count};
        ++answer.count;
        at += trails + 1;
    }
    return answer;
}

Counted countColumns(const Locale &locale, const Bytes &text, std::int32_t bytes) {
    if (bytes < 0 || static_cast<std::size_t>(bytes) > text.size())
        return {16, 0};
    Counted answer;
    for (std::size_t at = 0; at < static_cast<std::size_t>(bytes); at += locale.trails(text[at]) + 1U)
        answer.count += width(locale, text, at);
    return answer;
}

Cut substring(const Locale &locale, const Bytes &text, std::int32_t start, std::int32_t length) {
    const auto size = static_cast<std::int32_t>(text.size());
    if (start < 1 || start > size || length < 0 || length > size)
        return {16, 0, {}};
    std::int32_t from = start - 1;
    while (from < size && !begins(locale, text, static_cast<std::size_t>(from)))
        ++from;
    const std::int32_t last = start - 1 + length - 1;
    Cut result;
    for (std::int32_t at = from; at < size;) {
        const auto whole = static_cast<std::int32_t>(locale.trails(text[static_cast<std::size_t>(at)]) + 1);
        const std::int32_t end = at + whole - 1;
        if (end > last || end >= size)
            break;
        result.text.insert(result.text.end(), text.begin() + at, text.begin() + at + whole);
        ++result.characters;
        at += whole;
    }
    return result;
}

namespace {

Counted validateUnits16(const Bytes &data, bool bigEndian) {
    Counted answer;
    bool waiting = false;
    for (std::size_t at = 0; at + 2 <= data.size(); at += 2) {
        const unsigned unit = bigEndian ? data[at] * 256U + data[at + 1] : data[at + 1] * 256U + data[at];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const bool low = unit >= 0xDC00 && unit < 0xE000;
        if (unit == 0)
            return {waiting ? 33 : 20, answer.count};
        if (waiting && !low)
            return {33, answer.count};
        if (!waiting && low)
            return {33, answer.count};
        waiting = high;
        if (!high)
            ++answer.count;
    }
    if (waiting)
        answer.status = 33;
    return answer;
}

Counted validateUnits32(const Bytes &data, bool bigEndian) {
    Counted answer;
    for (std::size_t at = 0; at + 4 <= data.size(); at += 4) {
        std::uint32_t unit = 0;
        for (unsigned i = 0; i < 4; ++i)
            unit = unit * 256 + data[at + (bigEndian ? i : 3 - i)];
        if (unit == 0)
            return {20, answer.count};
        if (unit > 0x10FFFF)
            return {16, answer.count};
        ++answer.count;
    }
    return answer;
}

} // namespace

Counted validate(const Locale &locale, const Bytes &data, bool bigEndian) {
    if (!locale.has(fixture::kMultibyte)) {
        const auto nul = std::find(data.begin(), data.end(), 0);
        return {nul == data.end() ? 0 : 20, static_cast<std::uint32_t>(nul - data.begin())};
    }
    if (locale.has(fixture::kWide))
        return validateUnits16(data, bigEndian);
    if (locale.has(fixture::kUnits32))
        return validateUnits32(data, bigEndian);
    if (data.empty())
        return {};
    if (locale.has(fixture::kUtf8) && (data[0] & 0xC0) == 0x80)
        return {16, 0};
    Counted answer;
    for (std::size_t at = 0; at < data.size();) {
        if (data[at] == 0)
            return {20, answer.count};
        const unsigned trails = locale.trails(data[at]);
        if (at + trails >= data.size())
            return {kCut, answer.count};
        for (unsigned i = 1; i <= trails; ++i)
            if (locale.characters.trailValid[data[at + i]] == 0)
                return {16, answer.count};
        ++answer.count;
        at += trails + 1;
    }
    return answer;
}

} // namespace model
