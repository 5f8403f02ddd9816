#include "collation_table.hpp"

#include "language_plan.hpp"
#include "number_field.hpp"

#include <algorithm>
#include <bitset>

namespace velnls::nlsgen {
namespace {

constexpr std::size_t kByteCount = 256;
constexpr std::uint8_t kPlainVariant = 1; // never 0: that would write "SS" literally

enum ThaiClass : std::uint8_t {
    kThaiOther,
    kThaiVowelSign = 2,
    kThaiMark = 4,
};

constexpr std::uint8_t kVowelSignBits = 0x78;
constexpr std::uint8_t kMarkBits = 0x07;
constexpr std::uint8_t kNoMark = 2; // what the key has in a cell without a mark: a mark must weigh more

// Only the classes whose weights are bound to bits.
ThaiClass thaiClassOf(std::uint32_t byte) {
    if (byte == 0xD1 || (byte >= 0xD4 && byte <= 0xD9) || byte == 0xED)
        return kThaiVowelSign;
    if (byte >= 0xE7 && byte <= 0xEC)
        return kThaiMark;
    return kThaiOther;
}

file::Collation emptyRecord(file::CollationKind kind) {
    file::Collation record{};
    std::memcpy(record.count, "256 ", sizeof record.count);
    record.kind = kind;
    record.variant = kPlainVariant;
    return record;
}

// The bytes in the order of their characters, those of undefined bytes last; byte 0 left out.
std::vector<std::uint8_t> bytesInOrder(const Page &page, const CharacterOrder &order) {
    std::vector<std::pair<std::uint64_t, std::uint8_t>> sorted;
    for (std::uint32_t byte = 1; byte < kByteCount; byte++) {
        const std::uint32_t character = page.toUnicode(byte);
        const std::uint64_t place =
            character == kNone ? (std::uint64_t{1} << 32) + byte : order.rankOf(character).order;
        sorted.emplace_back(place, static_cast<std::uint8_t>(byte));
    }
    std::sort(sorted.begin(), sorted.end());
    std::vector<std::uint8_t> bytes;
    bytes.reserve(sorted.size());
    for (const auto &[place, byte] : sorted)
        bytes.push_back(byte);
    return bytes;
}

bool isLetterOrDigit(const Page &page, std::uint32_t byte) {
    const std::uint32_t character = page.toUnicode(byte);
    const std::uint32_t folded = character | 0x20;
    return character != kTatweel && (page.classes[byte] != 0 || (folded >= 'a' && folded <= 'z') ||
                                     (character >= '0' && character <= '9'));
}

} // namespace

file::Collation makeWeights(const Page &page, const CharacterOrder &order,
                            const std::set<std::uint32_t> &expanding) {
    file::Collation record = emptyRecord(file::kWeights);
    std::uint8_t weight = 0;
    std::uint32_t previous = kNone;
    std::uint8_t shared = 0;
    for (const std::uint8_t byte : bytesInOrder(page, order)) {
        const std::uint32_t character = page.toUnicode(byte);
        weight++;
        const bool sameLetter = character != kNone && previous != kNone &&
                                order.rankOf(character).letter == order.rankOf(previous).letter;
        if (!sameLetter)
            shared = weight;
        record.caseSensitive[byte] = expanding.contains(character) ? 0 : weight;
        record.caseInsensitive[byte] = expanding.contains(character) ? 0 : shared;
        previous = character;
    }
    return record;
}

file::Collation makeNoAccentsWeights(const Page &page, const CharacterOrder &order) {
    file::Collation record = emptyRecord(file::kWeights);
    std::vector<std::uint8_t> bytes = bytesInOrder(page, order);
    // An undefined byte is a letter of its own.
    const auto placeOf = [&](std::uint8_t byte) {
        const std::uint32_t character = page.toUnicode(byte);
        if (character == kNone)
            return std::pair(0x10000U + byte, 0U);
        const Rank rank = order.rankOf(character);
        return std::pair(rank.base, rank.form);
    };
    std::stable_sort(bytes.begin(), bytes.end(),
                     [&](std::uint8_t a, std::uint8_t b) { return placeOf(a) < placeOf(b); });
    std::uint8_t weight = 0;
    std::uint8_t ofForm = 0;
    std::uint8_t ofBase = 0;
    std::pair<unsigned, unsigned> previous;
    for (const std::uint8_t byte : bytes) {
        const auto place = placeOf(byte);
        weight++;
        if (weight == 1 || place != previous)
            ofForm = weight;
        if (weight == 1 || place.first != previous.first)
            ofBase = weight;
        record.caseSensitive[byte] = ofForm;
        record.caseInsensitive[byte] = ofBase;
        previous = place;
    }
    return record;
}

file::Collation makeThaiWeights(const Page &page, const CharacterOrder &order) {
    file::Collation record = emptyRecord(file::kThai);
    std::uint8_t rank = 0;
    for (const std::uint8_t byte : bytesInOrder(page, order))
        if (thaiClassOf(byte) == kThaiOther)
            record.caseSensitive[byte] = ++rank;
    std::uint8_t vowelSign = 0x08;
    std::uint8_t mark = kNoMark + 1;
    for (std::uint32_t byte = 0; byte < kByteCount; byte++) {
        if (thaiClassOf(byte) == kThaiVowelSign) {
            record.caseSensitive[byte] = vowelSign;
            vowelSign = static_cast<std::uint8_t>(vowelSign + 0x08);
        } else if (thaiClassOf(byte) == kThaiMark) {
            // Six marks, five weights: the last two share one, and no two words differ by that pair.
            record.caseSensitive[byte] = mark;
            mark = std::min<std::uint8_t>(kMarkBits, static_cast<std::uint8_t>(mark + 1));
        }
    }
    std::copy_n(record.caseSensitive, sizeof record.caseSensitive, record.caseInsensitive);
    return record;
}

file::Collation makeBasicCollation() {
    file::Collation record = emptyRecord(file::kBasic);
    std::memcpy(record.caseSensitive, "BASIC", sizeof "BASIC");
    std::memcpy(record.caseInsensitive, "BASIC", sizeof "BASIC");
    return record;
}

void checkCollation(const Page &page, const std::string &name, const file::Collation &collation,
                    const std::set<std::uint32_t> &expanding) {
    const auto fail = [&](std::uint32_t byte, const std::string &message) {
        throw Problem(page.placeOf(byte), "collation \"" + name + "\" of page " + page.name + ", byte " +
                                              hexadecimal(byte, 2) + ": " + message);
    };
    if (collation.kind == file::kBasic) {
        if (page.flags == 0)
            fail(0, "a single-byte page needs weights");
        return;
    }
    if (collation.variant == 0)
        fail(0, "the variant must not be 0: it would write \"SS\" literally");
    const std::uint32_t blank = page.codeOf(' ');
    const bool distinct = name != kNoAccentsName;
    std::bitset<kByteCount> seen;
    for (std::uint32_t byte = 1; byte < kByteCount; byte++) {
        const std::uint8_t weight = collation.caseSensitive[byte];
        const std::uint8_t insensitive = collation.caseInsensitive[byte];
        const bool expands = expanding.contains(page.toUnicode(byte));
        if ((weight == 0) != expands || (insensitive == 0) != expands)
            fail(byte, expands ? "expected weight 0, which expands to \"ss\"" : "expected a weight above 0");
        if (!expands && isLetterOrDigit(page, byte) &&
            (weight <= collation.caseSensitive[blank] || insensitive <= collation.caseInsensitive[blank]))
            fail(byte, "expected a letter or digit to weigh more than the blank");
        if (collation.kind == file::kThai) {
            if (thaiClassOf(byte) == kThaiVowelSign && (weight & ~kVowelSignBits) != 0)
                fail(byte,
                     "expected a vowel sign's weight within the bits 78, found " + hexadecimal(weight, 2));
            if (thaiClassOf(byte) == kThaiMark && (weight <= kNoMark || weight > kMarkBits))
                fail(byte, "expected a mark's weight from 3 to 7, found " + hexadecimal(weight, 2));
            if (weight != insensitive)
                fail(byte, "expected the same weight in both tables");
        } else if (!expands && distinct) {
            if (seen[weight])
                fail(byte, "expected a weight of its own in the case-sensitive table, found " +
                               hexadecimal(weight, 2) + " again");
            seen[weight] = true;
        }
    }
}

} // namespace velnls::nlsgen
