#include "reference_converters.hpp"

namespace reference {

using fixture::byteOf;
using fixture::operator+;
using fixture::halfOf;
using fixture::kFiller;
using fixture::kNone;

namespace {

constexpr nlsStatus kFull = 2;
constexpr nlsStatus kInvalid = 16;
constexpr nlsStatus kSurrogate = 33;
constexpr nlsStatus kSubstituted = 0xFFFFFFFD;

// A destination of limited room.
class Output {
public:
    explicit Output(std::uint32_t capacity) {
        result.destination.assign(capacity, kFiller);
        result.written = 0;
    }
    [[nodiscard]] std::uint32_t room() const {
        return static_cast<std::uint32_t>(result.destination.size()) - result.written;
    }
    // Writes all of it or nothing.
    bool put(const Bytes &bytes) {
        if (bytes.size() > room())
            return false;
        for (const unsigned char b : bytes)
            result.destination[result.written++] = b;
        return true;
    }
    Converted done(nlsStatus status) {
        result.status = status;
        return result;
    }
    Converted result;
};

unsigned trailingBytes(unsigned char lead) {
    return lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
}

std::uint32_t unitAt(const Bytes &source, std::size_t at, unsigned width, bool swapped) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < width; ++i)
        value |= static_cast<std::uint32_t>(source[at + i]) << 8 * (swapped ? width - 1 - i : i);
    return value;
}

Bytes unit(std::uint32_t value, unsigned width, bool swapped) {
    Bytes out;
    for (unsigned i = 0; i < width; ++i)
        out.push_back(byteOf(value >> 8 * (swapped ? width - 1 - i : i)));
    return out;
}

bool isHigh(std::uint32_t u) {
    return u >= 0xD800 && u <= 0xDBFF;
}
bool isLow(std::uint32_t u) {
    return u >= 0xDC00 && u <= 0xDFFF;
}
std::uint32_t pairOf(std::uint32_t high, std::uint32_t low) {
    return (high - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000;
}

Bytes utf16Of(std::uint32_t character, bool swapped) {
    if (character > 0x10FFFF)
        character = 0xFFFD;
    if (character < 0x10000)
        return unit(character, 2, swapped);
    const std::uint32_t rest = character - 0x10000;
    return unit(0xD800 + (rest >> 10), 2, swapped) + unit(0xDC00 + (rest & 0x3FF), 2, swapped);
}

// Decodes the character at `at` by adding up its bytes; false when it is cut short. Moves `at` behind it.
bool decodeUtf8(const Bytes &source, std::size_t &at, std::uint32_t &character, unsigned char behind) {
    static const std::uint32_t offsets[] = {0x00000000, 0x00003080, 0x000E2080,
                                            0x03C82080, 0xFA082080, 0x82082080};
    const unsigned extra = trailingBytes(source[at]);
    if (at + extra > source.size())
        return false;
    std::uint32_t value = 0;
    for (unsigned i = 0; i <= extra; ++i) {
        value += at < source.size() ? source[at] : behind;
        if (i < extra)
            value <<= 6;
        ++at;
    }
    character = value - offsets[extra];
    return true;
}

// Units of UTF-16 or UTF-32 one character at a time.
std::uint32_t nextOfUnits(const Bytes &source, std::size_t &at, unsigned width, bool swapped, bool &lone) {
    std::uint32_t character = unitAt(source, at, width, swapped);
    at += width;
    lone = false;
    if (isHigh(character)) {
        lone = true;
        if (at + width <= source.size()) {
            const std::uint32_t second = unitAt(source, at, width, swapped);
            if (isLow(second)) {
                character = pairOf(character, second);
                at += width;
                lone = false;
            }
        }
    } else if (isLow(character)) {
        lone = true;
    }
    return character;
}

Converted unitsToUtf8(const Bytes &source, std::uint32_t capacity, unsigned width, bool swapped,
                      nlsStatus loneStatus) {
    Output out(capacity);
    nlsStatus status = 0;
    for (std::size_t at = 0; at + width <= source.size();) {
        bool lone = false;
        const std::uint32_t character = nextOfUnits(source, at, width, swapped, lone);
        if (lone)
            status = loneStatus;
        if (!out.put(lone ? Bytes{'?'} : utf8Of(character)))
            return out.done(kFull);
    }
    return out.done(status);
}

// One character of a page; moves `at` behind it.
std::uint32_t nextOfPage(const Bytes &source, std::size_t &at, const fixture::ByteTable &attributes) {
    const unsigned trails = attributes[source[at]] & 7;
    if (trails >= 3) {
        at += trails + 1;
        return '?';
    }
    std::uint32_t code = source[at++];
    for (unsigned i = 0; i < trails; ++i) {
        if (at >= source.size() || source[at] == 0)
            break;
        code = (code * 256 + source[at++]) % 65536;
    }
    return code;
}

std::uint32_t unicodeOfCode(std::uint32_t code, const fixture::Mapping &mapping, nlsStatus &status) {
    const std::uint32_t value = mapping.toUnicode(code);
    if (value == kNone && code < 127)
        return code;
    if (value == kNone || value == 0xFFFD) {
        status = kSubstituted;
        return 0xFFFD;
    }
    return value;
}

Bytes pageBytes(std::uint32_t character, const fixture::Mapping &mapping, nlsStatus &status) {
    std::uint32_t code = mapping.toCode(character);
    if (code == kNone) {
        if (character < 127) {
            code = character;
        } else {
            code = mapping.groups[0].substitution;
            status = kSubstituted;
        }
    }
    return code > 255 ? Bytes{byteOf(code >> 8), byteOf(code)} : Bytes{byteOf(code)};
}

} // namespace

Bytes utf8Of(std::uint32_t c) {
    if (c < 0x80)
        return {byteOf(c)};
    const auto tail = [c](unsigned shift) { return byteOf(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x800)
        return {byteOf(0xC0 | c >> 6), tail(0)};
    if (c < 0x10000)
        return {byteOf(0xE0 | c >> 12), tail(6), tail(0)};
    if (c < 0x200000)
        return {byteOf(0xF0 | c >> 18), tail(12), tail(6), tail(0)};
    if (c < 0x4000000)
        return {byteOf(0xF8 | c >> 24), tail(18), tail(12), tail(6), tail(0)};
    return {0xFF, 0xBD};
}

Converted shiftJisToEuc(const Bytes &source, std::uint32_t capacity) {
    Output out(capacity);
    for (std::size_t at = 0; at < source.size(); ++at) {
        const unsigned b = source[at];
        if ((b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xEF)) {
            if (++at == source.size())
                return out.done(kInvalid);
            const unsigned t = source[at];
            Bytes pair = {byteOf(b), byteOf(t)};
            if (t >= 0x40 && t <= 0xFC)
                pair = {byteOf((b - (b < 0xA0 ? 0x70 : 0xB0)) * 2 + 0x80 - (t < 0x9F ? 1 : 0)),
                        byteOf(t + 0x80 -
                               (t < 0x80    ? 0x1F
                                : t <= 0x9E ? 0x20
                                            : 0x7E))};
            if (!out.put(pair))
                return out.done(kFull);
        } else if (b >= 0xA1 && b <= 0xDF) {
            if (!out.put({0x8E, byteOf(b)}))
                return out.done(kFull);
        } else if (!out.put({byteOf(b)})) {
            return out.done(kFull);
        }
    }
    return out.done(0);
}

Converted eucToShiftJis(const Bytes &source, std::uint32_t capacity) {
    Output out(capacity);
    for (std::size_t at = 0; at < source.size(); ++at) {
        const unsigned b = source[at];
        Bytes bytes = {byteOf(b)};
        if (b >= 0xA1 && b <= 0xFE) {
            if (++at == source.size())
                return out.done(kInvalid);
            const unsigned t = source[at];
            bytes.push_back(byteOf(t));
            if (t >= 0xA1 && t <= 0xFE) {
                const unsigned r = b - 0x80;
                const unsigned low = t - 0x80;
                bytes = {byteOf((r + 1) / 2 + (r < 0x5F ? 0x70 : 0xB0)),
                         byteOf(low + (r % 2 == 0    ? 0x7E
                                       : low <= 0x5F ? 0x1F
                                                     : 0x20))};
            }
        } else if (b == 0x8E) {
            if (++at == source.size())
                return out.done(kInvalid);
            const unsigned t = source[at];
            bytes = t >= 0xA1 && t <= 0xDF ? Bytes{byteOf(t)} : Bytes{0x8E, byteOf(t)};
        }
        if (!out.put(bytes))
            return out.done(kFull);
    }
    return out.done(0);
}

Converted byteToUtf8(const Bytes &source, std::uint32_t capacity, const std::vector<std::uint16_t> &units) {
    Output out(capacity);
    const auto overflow = [&] {
        if (capacity == 0)
            return out.done(kFull);
        Bytes &all = out.result.destination;
        all[capacity - 1] = 0;
        for (std::uint32_t i = out.result.written; i + 1 < capacity; ++i)
            all[i] = ' ';
        out.result.written = capacity;
        return out.done(kFull);
    };
    for (std::size_t at = 0; at < source.size(); ++at) {
        const Bytes character = utf8Of(units[source[at]]);
        const std::size_t needed = character.size() == 1 ? 1 : character.size() + 1;
        if (out.room() < needed) {
            const bool last = at + 1 == source.size();
            if (last && character.size() > 1 && out.room() == character.size())
                return out.done(0); // left out without a sign
            return overflow();
        }
        out.put(character);
    }
    const std::uint32_t written = out.result.written;
    if (!source.empty() && source.back() == 0 && (written == 0 || out.result.destination[written - 1] != 0))
        return overflow();
    return out.done(0);
}

Converted utf8ToByte(const Bytes &source, std::uint32_t capacity, const std::vector<std::uint16_t> &units) {
    // The byte tables, filed by lead byte and low six bits.
    std::vector<Bytes> tables(256);
    for (unsigned b = 0; b < 256; ++b) {
        const Bytes character = utf8Of(units[b]);
        const unsigned table = character.size() == 1   ? 0
                               : character.size() == 2 ? character[0]
                                                       : character[1];
        const unsigned slot = character.size() == 1 ? character[0] : character.back() & 63;
        tables[table].resize(256);
        tables[table][slot] = byteOf(b);
    }
    const auto look = [&](unsigned table, unsigned slot) -> unsigned char {
        return tables[table].empty() ? 0 : tables[table][slot];
    };
    Output out(capacity);
    if (!source.empty() && source[0] >= 0x80 && source[0] <= 0xBF) {
        Converted refused = out.done(kInvalid);
        refused.written = fixture::kNotWritten;
        return refused;
    }
    nlsStatus status = 0;
    for (std::size_t at = 0; at < source.size();) {
        const unsigned b = source[at];
        const unsigned trails = b < 0xC0 || b > 0xF4 ? 0 : trailingBytes(byteOf(b));
        if (at + trails >= source.size())
            return out.done(kInvalid);
        unsigned char byte = 0;
        if (b < 0x80)
            byte = look(0, b);
        else if (trails == 1)
            byte = look(b, source[at + 1] & 63U);
        if (byte == 0 && b != 0) {
            byte = '?';
            status = kSubstituted;
        }
        if (!out.put({byte}))
            return out.done(kFull);
        at += trails + 1;
    }
    return out.done(status);
}

Converted utf16ToUtf8(const Bytes &source, std::uint32_t capacity, ByteOrder order) {
    return unitsToUtf8(source, capacity, 2, order.swapSource, kInvalid);
}

Converted utf32ToUtf8(const Bytes &source, std::uint32_t capacity, ByteOrder order) {
    return unitsToUtf8(source, capacity, 4, order.swapSource, kSurrogate);
}

Converted utf8ToUtf16(const Bytes &source, std::uint32_t capacity, ByteOrder order, unsigned char behind) {
    Output out(capacity);
    if (!source.empty() && source[0] >= 0x80 && source[0] <= 0xBF) {
        Converted refused = out.done(kInvalid);
        refused.written = fixture::kNotWritten;
        return refused;
    }
    for (std::size_t at = 0; at < source.size();) {
        std::uint32_t character = 0;
        if (!decodeUtf8(source, at, character, behind))
            return out.done(kInvalid);
        if (!out.put(utf16Of(character, order.swapTarget)))
            return out.done(kFull);
    }
    return out.done(0);
}

Converted utf8ToUtf32(const Bytes &source, std::uint32_t capacity, ByteOrder order, unsigned char behind) {
    Output out(capacity);
    if (!source.empty() && source[0] >= 0x80 && source[0] <= 0xBF) {
        Converted refused = out.done(kInvalid);
        refused.written = fixture::kNotWritten;
        return refused;
    }
    for (std::size_t at = 0; at < source.size();) {
        std::uint32_t character = 0;
        if (!decodeUtf8(source, at, character, behind))
            return out.done(kInvalid);
        if (!out.put(unit(character < 0x110000 ? character : 0xFFFD, 4, order.swapTarget)))
            return out.done(kFull);
    }
    return out.done(0);
}

Converted utf16ToUtf32(const Bytes &source, std::uint32_t capacity, ByteOrder order) {
    Output out(capacity);
    for (std::size_t at = 0; at + 2 <= source.size();) {
        bool lone = false;
        if (!out.put(unit(nextOfUnits(source, at, 2, order.swapSource, lone), 4, order.swapTarget)))
            return out.done(kFull);
    }
    return out.done(0);
}

Converted utf32ToUtf16(const Bytes &source, std::uint32_t capacity, ByteOrder order) {
    Output out(capacity);
    for (std::size_t at = 0; at + 4 <= source.size(); at += 4)
        if (!out.put(utf16Of(unitAt(source, at, 4, order.swapSource), order.swapTarget)))
            return out.done(kFull);
    return out.done(0);
}

Converted pageToUtf8(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                     const fixture::ByteTable &attributes) {
    Output out(capacity);
    nlsStatus status = 0;
    for (std::size_t at = 0; at < source.size();)
        if (!out.put(utf8Of(unicodeOfCode(nextOfPage(source, at, attributes), mapping, status))))
            return out.done(kFull);
    return out.done(status);
}

Converted pageToUtf16(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                      const fixture::ByteTable &attributes, ByteOrder order) {
    Output out(capacity);
    nlsStatus status = 0;
    for (std::size_t at = 0; at < source.size();)
        if (!out.put(utf16Of(unicodeOfCode(nextOfPage(source, at, attributes), mapping, status),
                             order.swapTarget)))
            return out.done(kFull);
    return out.done(status);
}

Converted utf8ToPage(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                     unsigned char behind) {
    Output out(capacity);
    if (!source.empty() && source[0] >= 0x80 && source[0] <= 0xBF) {
        Converted refused = out.done(kInvalid);
        refused.written = fixture::kNotWritten;
        return refused;
    }
    nlsStatus status = 0;
    for (std::size_t at = 0; at < source.size();) {
        std::uint32_t character = 0;
        if (!decodeUtf8(source, at, character, behind))
            return out.done(kInvalid);
        if (!out.put(pageBytes(character < 0x110000 ? character : 0xFFFD, mapping, status)))
            return out.done(kFull);
    }
    return out.done(status);
}

Converted utf16ToPage(const Bytes &source, std::uint32_t capacity, const fixture::Mapping &mapping,
                      ByteOrder order) {
    Output out(capacity);
    nlsStatus status = 0;
    for (std::size_t at = 0; at + 2 <= source.size();) {
        bool lone = false;
        const std::uint32_t character = nextOfUnits(source, at, 2, order.swapSource, lone);
        if (!out.put(pageBytes(character, mapping, status)))
            return out.done(kFull);
    }
    return out.done(status);
}

} // namespace reference
