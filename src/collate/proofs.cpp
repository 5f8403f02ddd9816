#include "collate/proofs.hpp"

#include "collate/basic.hpp"
#include "core/file_layout.hpp"

#include <cstring>

namespace velnls {

namespace {

// Without a case table the C runtime decides, and its locale may change.
bool asciiFolds(const nlsLocale &locale) {
    constexpr std::uint32_t kMostTrails = 3;
    if (locale.caseTable == nullptr ||
        (locale.header.proofs & kLongestTrails) >> kLongestTrailsShift > kMostTrails ||
        locale.charTable->trailCount(0) != 0)
        return false;
    for (std::uint8_t byte = 1; byte < 0x80; ++byte)
        if (locale.charTable->trailCount(byte) != 0 || foldNumber(locale, byte) != asciiLower(byte))
            return false;
    return true;
}

bool bytesFold(const nlsLocale &locale) {
    if ((locale.header.proofs & kSingleBytePage) == 0 || locale.caseTable == nullptr ||
        locale.charTable->has(file::kUtf8))
        return false;
    const std::uint8_t *const lower = static_cast<const ByteCaseTable *>(locale.caseTable)->lower;
    return lower[0] == 0 && std::memchr(lower + 1, 0, 0xFF) == nullptr;
}

bool asciiHasOwnWeights(const std::uint8_t *weights) {
    bool taken[0x100] = {};
    for (unsigned byte = 0; byte != 0x80; ++byte) {
        if (taken[weights[byte]])
            return false;
        taken[weights[byte]] = true;
    }
    return true;
}

} // namespace

std::uint32_t proveOrder(const nlsLocale &locale) {
    const std::uint32_t page = locale.header.proofs;
    if (locale.collation == nullptr)
        return 0;
    const Collation &collation = *locale.collation;
    switch (collation.kind) {
    case file::kThai:
    case file::kSortExit:
    case file::kIcu:
    case kUnusable:
        return 0;
    case file::kBasic:
        return kBasicOrder | (asciiFolds(locale) ? kAsciiOrder : 0) | (bytesFold(locale) ? kByteOrder : 0) |
               (locale.charTable->has(file::kThroughShiftJis) ? 0 : kBasicKeys);
    default:
        break;
    }
    const bool decide = (page & kSingleBytePage) != 0 && !locale.charTable->has(file::kThroughShiftJis) &&
                        collation.caseSensitive[0] == 0 && collation.caseInsensitive[0] == 0;
    if (!decide)
        return 0;
    return kByteWeights | (asciiHasOwnWeights(collation.caseSensitive) ? kOwnAsciiWeights : 0);
}

} // namespace velnls
