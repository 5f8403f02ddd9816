#include "collate/load.hpp"

#include "collate/record_list.hpp"
#include "collate/sort_exit.hpp"
#include "convert/build.hpp"
#include "convert/converter.hpp"
#include "core/arena.hpp"
#include "core/collation_names.hpp"
#include "core/data_file.hpp"
#include "core/file_layout.hpp"
#include "core/text.hpp"
#include "icu/collate.hpp"

#include <algorithm>
#include <cstring>

namespace velnls {

namespace {

// The record of an "ICU-" collation, which has a collator of its own. Where that does not open, the record is
// listed as unusable and the load fails.
nlsStatus loadIcuCollation(nlsHandle &handle, const char *charSetName, const char *collationName,
                           Collation *&out) {
    Collation *record = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *record, 1, record); status != NLS_OK)
        return status;
    copyName(record->charSetName, charSetName);
    copyName(record->name, collationName);
    const nlsStatus status = icu::openCollator(*record);
    pushCollation(*record);
    out = record;
    return status;
}

// The record keeps the names as they were asked for.
nlsStatus loadEntry(nlsHandle &handle, Entry &entry, const char *charSetName, const char *collationName,
                    Collation *&out) {
    if (entry.table != nullptr) {
        out = static_cast<Collation *>(const_cast<void *>(entry.table));
        return NLS_OK;
    }
    file::Collation raw;
    if (!readAt(handle, entry.offset, &raw, sizeof raw))
        return NLS_E_TABLE;
    if (raw.kind == file::kBasic && !readsBasic(raw.caseSensitive, raw.caseInsensitive))
        return NLS_E_NOSORT;
    if (raw.kind == file::kSortExit) {
        if (const nlsStatus status = loadSortExit(handle, entry.name2); status != NLS_OK)
            return status;
    }
    Collation *record = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *record, 1, record); status != NLS_OK)
        return status;
    record->count = parseNumber(raw.count, sizeof raw.count);
    const auto copied = static_cast<std::size_t>(std::clamp<std::int32_t>(record->count, 0, 256));
    std::memcpy(record->caseSensitive, raw.caseSensitive, copied);
    std::memcpy(record->caseInsensitive, raw.caseInsensitive, copied);
    record->kind = raw.kind;
    record->variant = raw.variant;
    copyName(record->charSetName, charSetName);
    copyName(record->name, collationName);
    entry.table = record;
    pushCollation(*record);
    out = record;
    return NLS_OK;
}

// The first collation of that name whose page has a single-byte conversion, marked for it, into this page.
Entry *findLender(const nlsHandle &handle, const char *charSetName, const char *collationName) {
    for (Entry &lender : directoryOf(handle)) {
        if (lender.kind != file::kCollation || !sameName(lender.name2, collationName))
            continue;
        for (const Entry &way : directoryOf(handle)) {
            if (way.kind == file::kConversion && way.format == file::kBorrowFormat &&
                sameName(way.name, lender.name) && sameName(way.name2, charSetName))
                return &lender;
        }
    }
    return nullptr;
}

// A borrowed record is made anew on each request: no directory entry keeps it.
nlsStatus borrowCollation(nlsHandle &handle, const char *charSetName, const char *collationName,
                          Collation *&out) {
    Entry *const lender = findLender(handle, charSetName, collationName);
    if (lender == nullptr)
        return NLS_E_NOCOLLATION;
    Collation *lent = nullptr;
    if (loadEntry(handle, *lender, lender->name, collationName, lent) != NLS_OK)
        return NLS_E_NOCOLLATION;
    Collation *record = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *record, 1, record); status != NLS_OK)
        return status;
    std::memcpy(record->caseSensitive, lent->caseSensitive, sizeof record->caseSensitive);
    std::memcpy(record->caseInsensitive, lent->caseInsensitive, sizeof record->caseInsensitive);
    record->count = lent->count;
    record->kind = lent->kind;
    record->variant = lent->variant;
    copyName(record->charSetName, charSetName);
    copyName(record->name, collationName);

    const void *converter = nullptr;
    if (buildConverter(handle, lender->name, charSetName, 0, converter) != NLS_OK)
        return NLS_E_NOCOLLATION;
    if (const std::uint8_t *const map = byteMapOf(converter); map != nullptr) {
        moveByMap(record->caseSensitive, map);
        moveByMap(record->caseInsensitive, map);
    }
    pushCollation(*record);
    out = record;
    return NLS_OK;
}

} // namespace

nlsStatus loadCollation(nlsHandle &handle, const CharTable &charTable, const char *charSetName,
                        const char *collationName, Collation *&out) {
    if (std::strncmp(collationName, kIcuPrefix.data(), kIcuPrefix.size()) == 0)
        return loadIcuCollation(handle, charSetName, collationName, out);
    if (Entry *const entry = findEntry(handle, file::kCollation, charSetName, collationName);
        entry != nullptr)
        return loadEntry(handle, *entry, charSetName, collationName, out);
    if (!charTable.has(file::kBorrowsCollation))
        return NLS_E_NOCOLLATION;
    return borrowCollation(handle, charSetName, collationName, out);
}

} // namespace velnls
