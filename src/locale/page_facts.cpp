#include "locale/page_facts.hpp"

#include "core/instruction_sets.hpp"
#include "locale/case_fast.hpp"

#include <cstring>

namespace velnls {

namespace {

// One bit for each: two proofs that share one would each be taken for the other.
constexpr std::uint32_t kProofs[] = {kPairPage,       kNarrowLeads,       kUtf8Trails,     kOwnWeights,
                                     kAsciiWeights,   kAsciiAmongWeights, kMatchesBytes,   kMatchesAscii,
                                     kMatchesWeights, kAsciiCase,         kCommonCase,     kFoldsApart,
                                     kPairCase,       kKeepsBytes,        kInstructionSets};
static_assert([] {
    std::uint32_t seen = 0xFFFF; // those of the page and of the order
    for (const std::uint32_t proof : kProofs) {
        if ((seen & proof) != 0)
            return false;
        seen |= proof;
    }
    return true;
}());

// Collects the bytes that `isIn` names as ranges: how many there are, or more than fit.
template <typename IsIn, unsigned kMost>
unsigned findRanges(ByteRange (&ranges)[kMost], IsIn isIn) {
    unsigned count = 0;
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (!isIn(byte))
            continue;
        const unsigned first = byte;
        while (byte < 255 && isIn(byte + 1))
            ++byte;
        if (count == kMost)
            return kMost + 1;
        ranges[count++] = {static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(byte - first)};
    }
    for (unsigned i = count; count != 0 && i < kMost; ++i)
        ranges[i] = ranges[0];
    return count;
}

template <unsigned kMost>
bool contains(const ByteRange (&ranges)[kMost], unsigned byte) {
    for (const ByteRange &range : ranges)
        if (range.contains(byte))
            return true;
    return false;
}

bool isNarrow(const CharTable &table, unsigned byte) {
    return (table.attributes[byte] & file::kTrailCountMask) != 0 &&
           (table.attributes[byte] & file::kOneColumn) != 0;
}

// The facts are looked at against the table once more: they may come with a table from elsewhere.
std::uint32_t provePairs(const CharTable &table) {
    const PageFacts &facts = factsOf(table);
    bool narrow = false;
    if (table.trailCount(0) != 0) // a NUL ends a text, whatever a record says of it
        return 0;
    for (unsigned byte = 0; byte < 256; ++byte) {
        const unsigned trails = table.trailCount(static_cast<std::uint8_t>(byte));
        if (trails != (facts.isLead(byte) ? 1 : 0) ||
            (table.trailValid[byte] != 0) != contains(facts.trails, byte))
            return 0;
        if (trails == 0)
            continue;
        narrow = narrow || isNarrow(table, byte);
    }
    for (unsigned byte = 0; narrow && byte < 256; ++byte)
        if (isNarrow(table, byte) != facts.narrow.contains(byte))
            return 0;
    return kPairPage | (narrow ? kNarrowLeads : 0);
}

std::uint32_t proveUtf8Trails(const CharTable &table) {
    return std::memchr(table.trailValid + 0x80, 0, 0x40) == nullptr ? kUtf8Trails : 0;
}

// How many of the bytes below an end have each weight; those of weight 0 count as "s" does.
void countWeights(const std::uint8_t (&weights)[256], unsigned end, std::uint16_t (&counts)[256]) {
    std::memset(counts, 0, sizeof counts);
    for (unsigned byte = 1; byte < end; ++byte)
        ++counts[weights[byte] != 0 ? weights[byte] : weights[unsigned{'s'}]];
}

// Whether, of the bytes below an end, a letter of ASCII shares its weight with its other case alone, and any
// other character of ASCII with none.
bool asciiIsApart(const std::uint8_t (&weights)[256], unsigned end) {
    std::uint16_t counts[256];
    countWeights(weights, end, counts);
    for (unsigned byte = 1; byte < 0x80; ++byte) {
        const bool letter = (byte | 0x20) - unsigned{'a'} < 26;
        if (weights[byte] == 0 || counts[weights[byte]] != (letter ? 2 : 1) ||
            (letter && weights[byte] != weights[byte ^ 0x20]))
            return false;
    }
    return true;
}

std::uint32_t proveWeights(const Collation &collation) {
    std::uint32_t proofs = 0;
    std::uint16_t counts[256];
    countWeights(collation.caseSensitive, 256, counts);
    const auto isShared = [&](unsigned byte) { return counts[collation.caseSensitive[byte]] != 1; };
    unsigned byte = 1;
    while (byte < 256 && collation.caseSensitive[byte] != 0 && !isShared(byte))
        ++byte;
    if (byte == 256)
        proofs |= kOwnWeights;
    if (!asciiIsApart(collation.caseInsensitive, 0x80))
        return proofs;
    return proofs | kAsciiAmongWeights | (asciiIsApart(collation.caseInsensitive, 256) ? kAsciiWeights : 0);
}

bool hasByteWeights(const nlsLocale &locale) {
    if (locale.collation == nullptr || (locale.header.proofs & kSingleBytePage) == 0)
        return false;
    switch (locale.collation->kind) {
    case file::kBasic:
    case file::kThai:
    case file::kSortExit:
    case file::kIcu:
    case kUnusable:
        return false;
    default:
        return true;
    }
}

// What is proved of a page and of its order says how characters match.
std::uint32_t proveMatching(const nlsLocale &locale, std::uint32_t proofs) {
    const CharTable &table = *locale.charTable;
    const bool single = (proofs & kSingleBytePage) != 0;
    if (locale.collation == nullptr || (proofs & (kUtf8Page | kPairPage | kSingleBytePage)) == 0 ||
        (!single && !table.has(file::kMultibyte)))
        return 0;
    if ((proofs & kPairPage) != 0)
        for (const ByteRange &leads : factsOf(table).leads)
            if (leads.first < 0x80)
                return 0;
    if (locale.collation->kind == file::kBasic)
        return kMatchesBytes | ((proofs & kFoldsApart) != 0 ? kMatchesAscii : 0);
    if (!hasByteWeights(locale) || table.has(file::kThroughShiftJis))
        return 0;
    return kMatchesWeights | ((proofs & kOwnWeights) != 0 ? kMatchesBytes : 0) |
           ((proofs & kAsciiWeights) != 0 ? kMatchesAscii : 0);
}

} // namespace

void findFacts(CharTable &table) {
    std::memset(table.reserved, 0, sizeof table.reserved);
    if (table.has(file::kUtf8) || !table.hasTrails())
        return;
    PageFacts facts{};
    ByteRange narrow[1]{};
    const unsigned leads = findRanges(
        facts.leads, [&](unsigned byte) { return table.trailCount(static_cast<std::uint8_t>(byte)) != 0; });
    const unsigned trails =
        findRanges(facts.trails, [&](unsigned byte) { return table.trailValid[byte] != 0; });
    findRanges(narrow, [&](unsigned byte) { return isNarrow(table, byte); });
    facts.narrow = narrow[0];
    if (leads != 0 && leads <= 2 && trails != 0 && trails <= 3)
        std::memcpy(table.reserved, &facts, sizeof facts);
}

std::uint32_t proveText(const nlsLocale &locale) {
    const CharTable &table = *locale.charTable;
    std::uint32_t proofs = instructionSets();
    if ((locale.header.proofs & kUtf8Page) != 0)
        proofs |= proveUtf8Trails(table);
    else if ((locale.header.proofs & kSingleBytePage) == 0 && !table.has(file::kUtf8))
        proofs |= provePairs(table);
    if (hasByteWeights(locale))
        proofs |= proveWeights(*locale.collation);
    if (locale.caseTable != nullptr) {
        if ((locale.header.proofs & kUtf8Page) != 0)
            proofs |= proveUtf8Case(*static_cast<const UnicodeCaseTable *>(locale.caseTable));
        else if (!table.has(file::kUtf8))
            proofs |= proveByteCase(table, *static_cast<const ByteCaseTable *>(locale.caseTable));
    }
    return proofs | proveMatching(locale, locale.header.proofs | proofs);
}

} // namespace velnls
