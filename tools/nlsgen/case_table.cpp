#include "case_table.hpp"

#include "number_field.hpp"

#include <array>
#include <set>

namespace velnls::nlsgen {
namespace {

constexpr std::uint32_t kMicroSign = 0x00B5; // a symbol; its upper case would be a Greek letter
constexpr std::uint32_t kDottedUpper = 0x0130;
constexpr std::uint32_t kDotlessLower = 0x0131;
constexpr std::size_t kPairLimit = 743;

// Scripts that stay out of the lists, in both directions: the lists hold 743 pairs.
constexpr Range kLeftOut[] = {
    {0x10D0, 0x10FF},                   // Georgian, whose upper case is a style of whole words
    {0x1C90, 0x1CBF}, {0x2C80, 0x2CFF}, // Coptic
    {0x2C00, 0x2C5F},                   // Glagolitic
    {0x24B6, 0x24E9},                   // circled letters
    {0x2160, 0x217F},                   // Roman numerals
    {0x2183, 0x2184},                   // the last of them
};

std::uint32_t turkishUpper(std::uint32_t codePoint, std::uint32_t usual) {
    return codePoint == 'i' ? kDottedUpper : codePoint == kDotlessLower ? 'I' : usual;
}

std::uint32_t turkishLower(std::uint32_t codePoint, std::uint32_t usual) {
    return codePoint == 'I' ? kDotlessLower : codePoint == kDottedUpper ? 'i' : usual;
}

// Bytes of a character in UTF-8, as a big-endian number; of U+0000 to U+FFFF.
std::uint32_t utf8Of(std::uint32_t codePoint) {
    if (codePoint < 0x80)
        return codePoint;
    if (codePoint < 0x800)
        return (0xC0 | codePoint >> 6) << 8 | (0x80 | (codePoint & 0x3F));
    return (0xE0 | codePoint >> 12) << 16 | (0x80 | (codePoint >> 6 & 0x3F)) << 8 |
           (0x80 | (codePoint & 0x3F));
}

std::uint32_t leadOfThree(std::uint32_t codePoint) {
    return codePoint < 0x800 ? 0 : utf8Of(codePoint) >> 16;
}

// Only these lead bytes have pages of their own; what has another lead byte falls on pages 128 to 191.
bool hasPage(std::uint32_t codePoint) {
    const std::uint32_t lead = leadOfThree(codePoint);
    return lead == 0 || lead == 0xE1 || lead == 0xE2 || lead == 0xEF;
}

// The place where the library files a character: page and index.
std::uint32_t slotOf(std::uint32_t codePoint) {
    std::uint32_t number = utf8Of(codePoint);
    switch (leadOfThree(codePoint)) {
    case 0xE1:
        number -= 0xE17F80;
        break;
    case 0xE2:
        number -= 0xE23F80;
        break;
    case 0xEF:
        number -= 0xEEFF80;
        break;
    default:
        number &= 0xFFFF;
    }
    return (number >> 8 & 0xFF) << 7 | (number & 0x7F);
}

// The counterpart's low 16 bits are stored; the character's own lead byte is put before them.
bool representable(std::uint32_t codePoint, std::uint32_t counterpart) {
    return codePoint <= 0xFFFF && counterpart <= 0xFFFF && hasPage(codePoint) &&
           leadOfThree(codePoint) == leadOfThree(counterpart);
}

bool leftOut(std::uint32_t codePoint) {
    for (const Range &range : kLeftOut)
        if (range.has(codePoint))
            return true;
    return false;
}

template <typename Counterpart>
void fillList(file::CasePair *list, const UnicodeData &unicode, Counterpart counterpartOf) {
    std::size_t count = 0;
    for (const auto &[codePoint, character] : unicode.characters()) {
        if (codePoint == 0 || codePoint > 0xFFFF)
            continue;
        const std::uint32_t counterpart = counterpartOf(codePoint);
        if (counterpart == codePoint || leftOut(codePoint) || !representable(codePoint, counterpart))
            continue;
        if (count == kPairLimit)
            throw Problem("UnicodeData.txt", 0,
                          "case lists: expected at most 743 pairs, " + unicodeName(codePoint) +
                              " is one more");
        list[count].character = static_cast<std::uint16_t>(codePoint);
        list[count].counterpart = static_cast<std::uint16_t>(counterpart);
        count++;
    }
}

std::optional<CaseListFault> faultOfList(const file::CasePair *list, bool upper) {
    std::set<std::uint32_t> slots;
    for (std::size_t pair = 0;; pair++) {
        const std::uint32_t character = list[pair].character;
        const std::uint32_t counterpart = list[pair].counterpart;
        if (character == 0)
            return std::nullopt;
        if (pair == kPairLimit)
            return CaseListFault{upper, pair, "at most 743 pairs and their end"};
        const auto isSurrogate = [](std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; };
        if (isSurrogate(character) || isSurrogate(counterpart))
            return CaseListFault{upper, pair, "characters that are no surrogates"};
        if (!hasPage(character))
            return CaseListFault{upper, pair,
                                 "a character of one or two bytes or of the lead bytes E1, E2, EF"};
        if (counterpart == 0 || leadOfThree(character) != leadOfThree(counterpart))
            return CaseListFault{
                upper, pair, "a counterpart of the character's lead byte, or of at most two bytes as it is"};
        if (!slots.insert(slotOf(character)).second)
            return CaseListFault{upper, pair, "a character whose slot no other of the list has"};
    }
}

} // namespace

file::CaseTable makeByteCaseTable(const Page &page, const UnicodeData &unicode, bool turkish) {
    file::CaseTable table{};
    std::memcpy(table.count, "256 ", sizeof table.count);
    for (std::uint32_t byte = 0; byte < 256; byte++) {
        table.upper[byte] = table.lower[byte] = static_cast<std::uint8_t>(byte);
        const std::uint32_t character = page.toUnicode(byte);
        const bool mapped = page.isMultibyte() ? byte < 0x80 : character != kNone;
        if (!mapped)
            continue;
        const std::uint32_t own = page.isMultibyte() ? byte : character;
        if (!unicode.isLetter(own) || own == kMicroSign)
            continue;
        const auto byteOf = [&](std::uint32_t counterpart) {
            const std::uint32_t code = page.isMultibyte() ? counterpart : page.codeOf(counterpart);
            return code < (page.isMultibyte() ? 0x80U : 0x100U) ? static_cast<std::uint8_t>(code)
                                                                : static_cast<std::uint8_t>(byte);
        };
        const std::uint32_t upper = unicode.upper(own);
        const std::uint32_t lower = unicode.lower(own);
        table.upper[byte] = byteOf(turkish ? turkishUpper(own, upper) : upper);
        table.lower[byte] = byteOf(turkish ? turkishLower(own, lower) : lower);
    }
    return table;
}

file::UnicodeCaseTable makeUnicodeCaseTable(const UnicodeData &unicode, bool turkish) {
    file::UnicodeCaseTable table{};
    // The head is not interpreted; it says what the other records' heads say.
    std::memcpy(table.head, "743   ", sizeof table.head);
    fillList(table.upper, unicode, [&](std::uint32_t codePoint) {
        const std::uint32_t usual = unicode.upper(codePoint);
        return turkish ? turkishUpper(codePoint, usual) : usual;
    });
    fillList(table.lower, unicode, [&](std::uint32_t codePoint) {
        const std::uint32_t usual = unicode.lower(codePoint);
        return turkish ? turkishLower(codePoint, usual) : usual;
    });
    return table;
}

std::optional<CaseListFault> faultOfUnicodeCaseTable(const file::UnicodeCaseTable &table) {
    // Copies: the lists stand unaligned in the record.
    std::array<file::CasePair, kPairLimit + 1> list;
    std::memcpy(list.data(), table.upper, sizeof table.upper);
    if (auto fault = faultOfList(list.data(), true))
        return fault;
    std::memcpy(list.data(), table.lower, sizeof table.lower);
    return faultOfList(list.data(), false);
}

void checkUnicodeCaseTable(const file::UnicodeCaseTable &table, const Place &place) {
    const auto fault = faultOfUnicodeCaseTable(table);
    if (!fault)
        return;
    const file::CasePair &pair = (fault->upper ? table.upper : table.lower)[fault->pair];
    throw Problem(place, std::string(fault->upper ? "upper" : "lower") + "-case list, pair " +
                             std::to_string(fault->pair + 1) + " (" + unicodeName(pair.character) + " to " +
                             unicodeName(pair.counterpart) + "): expected " + fault->expected);
}

} // namespace velnls::nlsgen
