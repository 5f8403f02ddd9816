#include "string/count.hpp"

#include "locale/walk.hpp"

namespace velnls {

namespace {

// Columns of a multibyte UTF-8 character, by its first three bytes alone.
unsigned utf8Columns(unsigned b0, unsigned b1, unsigned b2) {
    if (b0 == 0xEF && b1 == 0xBB && b2 == 0xBF)
        return 0; // the byte-order mark
    if (b0 == 0xE0 && ((b1 == 0xB8 && (b2 == 0xB1 || (b2 >= 0xB4 && b2 <= 0xBA))) ||
                       (b1 == 0xB9 && b2 >= 0x87 && b2 <= 0x8E)))
        return 0; // Thai combining marks
    if (b0 < 0xE3)
        return 1;
    if (b0 != 0xEF)
        return 2;
    const bool wide = b1 < 0xBA || (b1 == 0xBC && b2 >= 0x80 && b2 <= 0xBF) ||
                      (b1 == 0xBD && b2 >= 0x80 && b2 <= 0x9F) || (b1 == 0xBF && b2 >= 0x9D && b2 <= 0xA7);
    return wide ? 2 : 1;
}

unsigned columnsOf(const CharTable &table, const std::uint8_t *at, unsigned available) {
    if (table.trailCount(*at) == 0)
        return 1;
    if (table.has(file::kUtf8))
        return utf8Columns(at[0], available > 1 ? at[1] : 0, available > 2 ? at[2] : 0);
    return (table.attributes[*at] & file::kOneColumn) != 0 ? 1 : 2;
}

} // namespace

nlsStatus countCharacters(const CharTable &table, const std::uint8_t *text, std::uint32_t limit,
                          std::uint32_t &count) {
    count = 0;
    std::uint32_t at = 0;
    while (at < limit) {
        const unsigned trails = table.trailCount(text[at]);
        if (limit - at <= trails)
            return NLS_R_CUT;
        ++count;
        at += trails + 1;
    }
    return NLS_OK;
}

nlsStatus countBytes(const CharTable &table, const std::uint8_t *text, std::uint32_t length,
                     std::uint32_t wanted, std::uint32_t &bytes) {
    bytes = 0;
    while (wanted > 0 && bytes < length) {
        const unsigned whole = table.trailCount(text[bytes]) + 1;
        if (whole > length)
            return NLS_R_CUT;
        bytes += whole;
        --wanted;
    }
    return NLS_OK;
}

std::uint32_t countColumns(const CharTable &table, const std::uint8_t *text, std::uint32_t limit) {
    std::uint32_t columns = 0;
    for (std::uint32_t at = 0; at < limit; at += table.trailCount(text[at]) + 1)
        columns += columnsOf(table, text + at, terminatedText(text + at).available(3));
    return columns;
}

nlsStatus validateBytes(const CharTable &table, const std::uint8_t *data, std::int32_t length,
                        std::uint32_t &count) {
    count = 0;
    if (length < 1)
        return NLS_OK;
    if (table.has(file::kUtf8) && isUtf8Trail(*data))
        return NLS_E_NULLARG;
    const auto whole = static_cast<std::uint32_t>(length);
    for (std::uint32_t at = 0; at < whole;) {
        if (data[at] == 0)
            return NLS_E_END;
        const unsigned trails = table.trailCount(data[at]);
        if (whole - at <= trails)
            return NLS_R_CUT;
        for (unsigned i = 1; i <= trails; ++i) {
            if (table.trailValid[data[at + i]] == 0)
                return NLS_E_NULLARG;
        }
        ++count;
        at += trails + 1;
    }
    return NLS_OK;
}

nlsStatus validateUtf16(const std::uint8_t *data, std::int32_t length, bool bigEndian, std::uint32_t &count) {
    count = 0;
    bool waiting = false; // for the low surrogate of a pair
    for (std::int32_t at = 0; at + 2 <= length; at += 2) {
        const unsigned high = data[at + (bigEndian ? 0 : 1)];
        const unsigned low = data[at + (bigEndian ? 1 : 0)];
        if (high == 0 && low == 0)
            return waiting ? NLS_E_SURROGATE : NLS_E_END;
        const bool isLow = high >= 0xDC && high <= 0xDF;
        if (waiting != isLow)
            return NLS_E_SURROGATE;
        waiting = high >= 0xD8 && high <= 0xDB;
        if (!waiting)
            ++count;
    }
    return waiting ? NLS_E_SURROGATE : NLS_OK;
}

nlsStatus validateUtf32(const std::uint8_t *data, std::int32_t length, bool bigEndian, std::uint32_t &count) {
    count = 0;
    for (std::int32_t at = 0; at + 4 <= length; at += 4) {
        const std::uint8_t *const unit = data + at;
        if ((unit[0] | unit[1] | unit[2] | unit[3]) == 0)
            return NLS_E_END;
        const std::uint8_t highest = unit[bigEndian ? 0 : 3];
        const std::uint8_t plane = unit[bigEndian ? 1 : 2];
        if (highest != 0 || plane > 0x10)
            return NLS_E_NULLARG;
        ++count;
    }
    return NLS_OK;
}

} // namespace velnls
