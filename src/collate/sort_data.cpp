#include "collate/sort_data.hpp"

#include "collate/record.hpp"
#include "core/text.hpp"

#include <cstring>

namespace velnls {

namespace {

constexpr char kUtf8Name[] = "utf-8";
constexpr std::uint8_t kOneColumnClass = 11;
constexpr std::uint8_t kFirstTrailClass = 8; // plus the trail count

// Letters 2, digits 3, all else 1.
void classByLetters(const CharTable &letters, std::uint8_t (&map)[256]) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const bool digit = byte >= '0' && byte <= '9';
        map[byte] = letters.classes[byte] != 0 ? 2 : digit ? 3 : 1;
    }
}

void classByTrails(const CharTable &chars, std::uint8_t (&map)[256]) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const unsigned trails = chars.trailCount(static_cast<std::uint8_t>(byte));
        if (trails != 0)
            map[byte] = static_cast<std::uint8_t>(kFirstTrailClass + trails);
        else if ((chars.attributes[byte] & file::kOneColumn) != 0)
            map[byte] = kOneColumnClass;
    }
}

} // namespace

nlsStatus buildSortData(const nlsLocale &locale, const std::uint16_t *sortData, const nlsLocale *target,
                        const void *converter, std::uint8_t *block, std::uint64_t room) {
    const std::uint32_t length = sortDataLength(sortData);
    if (length < sizeof(SortDataHead))
        return NLS_E_TABLE;
    if (length > room)
        return NLS_E_NOMEM;
    std::memset(block, 0, static_cast<std::size_t>(room)); // the class map may reach behind the data
    std::memcpy(block, sortData, length);
    auto &head = *reinterpret_cast<SortDataHead *>(block);
    if (head.classMap < sizeof head)
        return NLS_E_TABLE;
    if (head.classMap + 256u > room) // the data is to blame when it does not fit the size asked for either
        return head.classMap + 256u > length + kBesideSortData ? NLS_E_TABLE : NLS_E_NOMEM;

    const CharTable &chars = *locale.charTable;
    const bool utf8 = chars.has(file::kUtf8);
    const bool targetLetters = head.format < kTwoByteFormat && !utf8 && target != nullptr;
    std::uint8_t built[256];
    classByLetters(targetLetters ? *target->charTable : chars, built);
    if (chars.has(file::kMultibyte) && (utf8 || head.format == kTwoByteFormat))
        classByTrails(chars, built);
    std::uint8_t *const map = block + head.classMap;
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (map[byte] == 0)
            map[byte] = built[byte];
    }
    if (utf8)
        head.flags |= kUtf8Locale;
    if (target == nullptr)
        return NLS_OK;
    if (sameName(locale.codePageName, kUtf8Name))
        head.flags |= kFromUtf8;
    else if (sameName(target->codePageName, kUtf8Name))
        head.flags |= kToUtf8;
    else if (const std::uint8_t *const byteMap = byteMapOf(converter);
             head.format == kTwoByteFormat && byteMap != nullptr)
        moveByMap(map, byteMap);
    return NLS_OK;
}

} // namespace velnls
