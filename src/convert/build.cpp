#include "convert/build.hpp"

#include "convert/build_byte_tables.hpp"
#include "convert/build_mapping.hpp"
#include "convert/file_types.hpp"
#include "core/arena.hpp"
#include "core/data_file.hpp"
#include "core/instruction_sets.hpp"
#include "core/text.hpp"
#include "icu/convert.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace velnls {

namespace {

constexpr char kUtf8Name[] = "UTF-8";
constexpr char kUndefinedName[] = "undefined";

// The entries under construction, innermost first: an entry that leads back to one of them cannot be built.
struct Pending {
    const Entry *entry;
    const Pending *outer;

    [[nodiscard]] bool contains(const Entry *wanted) const {
        return entry == wanted || (outer != nullptr && outer->contains(wanted));
    }
};

nlsStatus buildPair(nlsHandle &handle, const char *source, const char *target, std::uint32_t flags,
                    const Pending *outer, const void *&out);

// Of what stops a part of a construction, only exhausted memory is told apart.
nlsStatus partStatus(nlsStatus status) {
    return status == NLS_OK || status == NLS_E_NOMEM ? status : NLS_E_ICU;
}

// Takes room for a header and a body and writes the header.
template <typename Body>
nlsStatus newConverter(nlsHandle &handle, std::int32_t bodySize, std::int32_t type, Body *&body) {
    ConverterHeader *header = nullptr;
    const auto size = static_cast<std::int32_t>(sizeof *header) + bodySize;
    if (const nlsStatus status = allocate(handle, size, 8, header); status != NLS_OK)
        return status;
    header->type = type;
    body = reinterpret_cast<Body *>(header + 1);
    return NLS_OK;
}

// Kinds 29 and 30: the page's mapping, reached through the table of its UTF-8 leg.
nlsStatus buildUtf8Leg(nlsHandle &handle, const Entry &entry, std::int32_t type, std::uint32_t flags,
                       const Pending &pending, const void *&out) {
    const bool fromPage = (type & ~kVariantBits) == kPageToUtf16;
    const void *leg = nullptr;
    const nlsStatus status = fromPage ? buildPair(handle, entry.name, kUtf8Name, flags, &pending, leg)
                                      : buildPair(handle, kUtf8Name, entry.name2, flags, &pending, leg);
    if (status != NLS_OK)
        return partStatus(status);
    if (!isMapping(leg))
        return NLS_E_ICU;
    Utf8LegBody *body = nullptr;
    if (const nlsStatus made = newConverter(handle, sizeof *body, type, body); made != NLS_OK)
        return made;
    body->mapping = static_cast<const MappingBody *>(leg);
    out = body;
    return NLS_OK;
}

// Kinds 5 and 6: ICU's converter for the page that is not Unicode.
nlsStatus buildIcu(nlsHandle &handle, const char *page, std::int32_t type, const void *&out) {
    icu::Converter *converter = nullptr;
    if (icu::openConverter(page, converter) != NLS_OK)
        return NLS_E_ICU;
    icu::ConverterBody *body = nullptr;
    if (const nlsStatus status = newConverter(handle, sizeof *body, type, body); status != NLS_OK) {
        icu::closeConverter(converter);
        return status;
    }
    body->converter = converter;
    out = body;
    return NLS_OK;
}

// Type 20: building the opposite direction stores this one's table on this entry.
nlsStatus buildOpposite(nlsHandle &handle, const Entry &entry, const Pending &pending, const void *&out) {
    const void *opposite = nullptr;
    if (const nlsStatus status = buildPair(handle, entry.name2, entry.name, 0, &pending, opposite);
        status != NLS_OK)
        return partStatus(status);
    out = entry.table;
    return out == nullptr ? NLS_E_ICU : NLS_OK;
}

// Any other type: the body as the file has it. The room follows the stated length, the copy what was read.
nlsStatus buildCopy(nlsHandle &handle, const file::Conversion &record, std::int32_t length, std::int32_t type,
                    const void *&out) {
    constexpr auto kBodyOffset = static_cast<std::int32_t>(offsetof(file::Conversion, body));
    length = std::max(length, 0);
    std::uint8_t *body = nullptr;
    if (const nlsStatus status = newConverter(handle, length, type, body); status != NLS_OK)
        return status;
    const auto copied = std::min(length, static_cast<std::int32_t>(sizeof record) - kBodyOffset);
    std::memcpy(body, reinterpret_cast<const std::uint8_t *>(&record) + kBodyOffset,
                static_cast<std::size_t>(copied));
    if (length >= kByteMapSize)
        reinterpret_cast<ConverterHeader *>(body)[-1].proofs |= kWholeByteMap;
    out = body;
    return NLS_OK;
}

nlsStatus buildByType(nlsHandle &handle, Entry &entry, const file::Conversion &record, std::int32_t length,
                      std::int32_t type, std::uint32_t flags, const Pending &pending, const void *&out) {
    const std::int32_t masked = type & ~kVariantBits;
    if (masked == kPageToUtf16 || masked == kUtf16ToPage)
        return buildUtf8Leg(handle, entry, type, flags, pending, out);
    switch (type) {
    case kPageToUtf8:
    case kPageToUtf8Wide:
    case kPageToUtf8Widest:
    case kUtf8ToPage:
    case kUtf8ToBytePage:
        return buildMapping(handle, entry, type, out);
    case kByteToUtf8:
    case kByteToUtf8Wide:
        return buildByteTables(handle, entry.name, entry.name2, type, record, out);
    default:
        break;
    }
    if (icu::isIcuType(type))
        return buildIcu(handle, masked == kUnicodeToIcu ? entry.name2 : entry.name, type, out);
    if (type == kUtf8ToByte)
        return buildOpposite(handle, entry, pending, out);
    return buildCopy(handle, record, length, type, out);
}

nlsStatus buildEntry(nlsHandle &handle, Entry &entry, std::uint32_t flags, const Pending &pending,
                     const void *&out) {
    file::Conversion record{};
    std::int32_t fileType = entry.format;
    std::int32_t length = 0;
    if (entry.offset != 0) {
        if (!readAt(handle, entry.offset, &record, sizeof record))
            return NLS_E_TABLE;
        fileType = record.type();
        length = parseNumber(record.length, sizeof record.length);
    }
    bool valid = false;
    const std::int32_t type = kindWordOfFileType(fileType, valid);
    if (!valid)
        return NLS_E_ICU;
    const nlsStatus status = buildByType(handle, entry, record, length, type, flags, pending, out);
    if (status == NLS_OK) {
        if (out != nullptr)
            const_cast<ConverterHeader &>(headerOf(out)).proofs |= instructionSets();
        entry.table = out;
    }
    return status;
}

bool isUnicodeName(const char *name) {
    constexpr const char *kNames[] = {"UTF-8", "UCS2", "UTF-16", "UTF-32"};
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [name](const char *known) { return hasPrefix(name, known); });
}

// One step of a route: a part of it that cannot be built only rules that middle page out, but exhausted
// memory stops the search, since the caller can lend more.
nlsStatus buildRouteOver(nlsHandle &handle, const char *source, const char *middle, const char *target,
                         std::uint32_t flags, const Pending *outer, const void *&out) {
    if (sameName(middle, source) || sameName(middle, target) ||
        findEntry(handle, file::kConversion, source, middle) == nullptr ||
        findEntry(handle, file::kConversion, middle, target) == nullptr)
        return NLS_E_ICU;
    const void *first = nullptr;
    const void *second = nullptr;
    if (const nlsStatus status = buildPair(handle, source, middle, flags, outer, first); status != NLS_OK)
        return partStatus(status);
    if (const nlsStatus status = buildPair(handle, middle, target, flags, outer, second); status != NLS_OK)
        return partStatus(status);
    if (first == nullptr || second == nullptr)
        return NLS_E_ICU;
    ChainBody *chain = nullptr;
    if (const nlsStatus status = newConverter(handle, sizeof *chain, kChain, chain); status != NLS_OK)
        return status;
    chain->first = first;
    chain->second = second;
    out = chain;
    return NLS_OK;
}

// A pair without an entry, one side of which is a Unicode page: a chain over a page that has entries from the
// source and to the target. UTF-8 is tried first, since nothing is lost in it; then any page, in directory
// order.
nlsStatus buildRoute(nlsHandle &handle, const char *source, const char *target, std::uint32_t flags,
                     const Pending *outer, const void *&out) {
    if (!isUnicodeName(source) && !isUnicodeName(target))
        return NLS_E_ICU;
    nlsStatus status = buildRouteOver(handle, source, kUtf8Name, target, flags, outer, out);
    for (const Entry &entry : directoryOf(handle)) {
        if (status == NLS_OK || status == NLS_E_NOMEM)
            break;
        if (entry.kind == file::kConversion && sameName(entry.name, source) &&
            !sameName(entry.name2, kUtf8Name))
            status = buildRouteOver(handle, source, entry.name2, target, flags, outer, out);
    }
    return status;
}

nlsStatus buildPair(nlsHandle &handle, const char *source, const char *target, std::uint32_t flags,
                    const Pending *outer, const void *&out) {
    out = nullptr;
    if (sameName(source, target) || sameName(source, kUndefinedName) || sameName(target, kUndefinedName))
        return NLS_OK;
    Entry *const entry = findEntry(handle, file::kConversion, source, target);
    if (entry == nullptr)
        return outer == nullptr ? buildRoute(handle, source, target, flags, outer, out) : NLS_E_ICU;
    if (entry->format == file::kBorrowFormat && entry->variant == 0 && (flags & kStrict) != 0)
        return NLS_E_ICU;
    if (entry->table != nullptr) {
        out = entry->table;
        return NLS_OK;
    }
    if (outer != nullptr && outer->contains(entry))
        return NLS_E_ICU;
    const Pending pending{entry, outer};
    return buildEntry(handle, *entry, flags, pending, out);
}

} // namespace

nlsStatus buildConverter(nlsHandle &handle, const char *source, const char *target, std::uint32_t flags,
                         const void *&out) {
    return buildPair(handle, source, target, flags, nullptr, out);
}

} // namespace velnls
