#include "string/count.hpp"

#include "locale/text.hpp"
#include "locale/walk.hpp"
#include "string/count_fast.hpp"

#include <algorithm>
#include <cstring>

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

// Looks behind the character's first byte in UTF-8 alone, and never past the NUL.
unsigned columnsOf(const CharTable &table, const std::uint8_t *at) {
    if (table.trailCount(*at) == 0)
        return 1;
    if (table.has(file::kUtf8)) {
        const unsigned available = terminatedText(at).available(3);
        return utf8Columns(at[0], available > 1 ? at[1] : 0, available > 2 ? at[2] : 0);
    }
    return (table.attributes[*at] & file::kOneColumn) != 0 ? 1 : 2;
}

constexpr std::size_t kReadAhead = 1 << 14; // bytes that are searched for a NUL at once
constexpr std::size_t kPlainBytes = 16;     // that the plain loop goes over where the fast one stopped
constexpr std::size_t kLongestCharacter = 8;

// Walks a text up to its limit or NUL, by blocks and by characters. `blocks(at, length)` goes over whole
// characters and gives their bytes; `character(at, length)` goes over one, of `length` bytes at most, and
// gives its bytes, or 0 for no further. A character that reaches behind the bytes that are known yet is asked
// for again when more are. Gives the bytes that were gone over; `end` becomes where limit or NUL are, as far
// as that is known.
template <typename Blocks, typename Character>
[[gnu::always_inline]] inline std::size_t walkText(const std::uint8_t *text, std::size_t limit,
                                                   std::size_t &end, Blocks blocks, Character character) {
    std::size_t at = 0;
    std::size_t known = 0;
    for (bool all = false;;) {
        if (!all && known - at < 2 * kLongestCharacter) {
            const std::size_t wanted = std::min(limit - known, kReadAhead);
            const std::size_t found = ::strnlen(reinterpret_cast<const char *>(text) + known, wanted);
            known += found;
            all = found < wanted || known == limit;
            end = known;
        }
        at += blocks(text + at, known - at);
        const std::size_t stop = std::min(known, at + kPlainBytes);
        while (at < stop && (all || known - at >= kLongestCharacter)) {
            const std::size_t bytes = character(text + at, known - at);
            if (bytes == 0)
                return at;
            at += bytes;
        }
        if (all && at >= known)
            return at;
    }
}

} // namespace

std::uint32_t countWhole(const nlsLocale &locale, const std::uint8_t *text, std::uint32_t limit,
                         std::uint32_t &count) {
    const CharTable &table = *locale.charTable;
    std::size_t sum = 0;
    std::size_t end = 0;
    const std::size_t bytes = walkText(
        text, limit, end,
        [&](const std::uint8_t *at, std::size_t length) {
            const Passed passed = fast::countCharacters(locale, at, length);
            sum += passed.count;
            return passed.bytes;
        },
        [&](const std::uint8_t *at, std::size_t length) -> std::size_t {
            const unsigned trails = table.trailCount(*at);
            if (length <= trails)
                return 0;
            ++sum;
            return trails + 1;
        });
    count = static_cast<std::uint32_t>(sum);
    return static_cast<std::uint32_t>(bytes);
}

nlsStatus countCharacters(const nlsLocale &locale, const std::uint8_t *text, std::uint32_t limit,
                          std::uint32_t &count) {
    const std::uint32_t bytes = countWhole(locale, text, limit, count);
    return bytes == limit || text[bytes] == 0 ? NLS_OK : NLS_R_CUT;
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

bool countColumns(const nlsLocale &locale, const std::uint8_t *text, std::uint32_t limit,
                  std::uint32_t &columns) {
    const CharTable &table = *locale.charTable;
    if ((locale.header.proofs & (kSingleBytePage | kPairPage | kNarrowLeads)) != 0 &&
        (locale.header.proofs & kNarrowLeads) == 0) {
        // As many columns as bytes: only the last character may be cut.
        if (::strnlen(reinterpret_cast<const char *>(text), limit) < limit)
            return false;
        const bool cut =
            (locale.header.proofs & kPairPage) != 0 && !beginsCharacter(table, text + limit, text);
        columns = limit + (cut ? 1 : 0);
        return true;
    }
    std::size_t sum = 0;
    std::size_t end = 0;
    walkText(
        text, limit, end,
        [&](const std::uint8_t *at, std::size_t length) {
            const Passed passed = fast::countColumns(locale, at, length);
            sum += passed.count;
            return passed.bytes;
        },
        [&](const std::uint8_t *at, std::size_t) -> std::size_t {
            sum += columnsOf(table, at);
            return table.trailCount(*at) + 1;
        });
    if (end < limit)
        return false;
    columns = static_cast<std::uint32_t>(sum);
    return true;
}

nlsStatus validateBytes(const nlsLocale &locale, const std::uint8_t *data, std::int32_t length,
                        std::uint32_t &count) {
    const CharTable &table = *locale.charTable;
    count = 0;
    if (length < 1)
        return NLS_OK;
    if (table.has(file::kUtf8) && isUtf8Trail(*data))
        return NLS_E_NULLARG;
    const auto whole = static_cast<std::size_t>(length);
    std::size_t sum = 0;
    nlsStatus verdict = NLS_OK;
    std::size_t at = 0;
    std::size_t end = 0;
    do {
        const std::uint8_t *const begin = data + at;
        const std::size_t rest = whole - at;
        at += walkText(
            begin, rest, end,
            [&](const std::uint8_t *place, std::size_t known) {
                const Passed passed = fast::countValid(locale, place, known);
                sum += passed.count;
                return passed.bytes;
            },
            [&](const std::uint8_t *place, std::size_t) -> std::size_t {
                const unsigned trails = table.trailCount(*place);
                if (begin + rest - place <= static_cast<std::ptrdiff_t>(trails)) {
                    verdict = NLS_R_CUT;
                    return 0;
                }
                for (unsigned i = 1; i <= trails; ++i) {
                    if (table.trailValid[place[i]] == 0) {
                        verdict = NLS_E_NULLARG;
                        return 0;
                    }
                }
                ++sum;
                return trails + 1;
            });
        end += static_cast<std::size_t>(begin - data);
    } while (verdict == NLS_OK && at < whole && at > end); // a NUL that may be a trail byte was one
    count = static_cast<std::uint32_t>(sum);
    return verdict == NLS_OK && at < whole ? NLS_E_END : verdict;
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
