#include "locale/stored_record.hpp"

#include "collate/sort_data.hpp"
#include "core/unaligned.hpp"
#include "icu/collate.hpp"

#include <cstring>

namespace velnls {

namespace {

std::uint32_t wordAt(const void *table, std::size_t offset) {
    return loadNumber<std::uint32_t>(static_cast<const std::uint8_t *>(table) + offset);
}

// Bytes of a case table in a record, and what its pages take in a block besides.
struct CaseSizes {
    std::uint32_t stored;
    std::uint32_t pages;
};
CaseSizes caseSizes(const nlsLocale &locale) {
    if (locale.caseTable == nullptr)
        return {0, 0};
    if (!locale.charTable->has(file::kUtf8))
        return {sizeof(ByteCaseTable), 0};
    return {wordAt(locale.caseTable, 0), wordAt(locale.caseTable, 4)};
}

} // namespace

RecordSizes recordSizes(const nlsLocale &locale, bool newForm) {
    if (!newForm)
        return {kOldRecordSize, sizeof(nlsLocale) + sizeof(Collation)};
    const CaseSizes sizes = caseSizes(locale);
    const std::uint32_t data = kNewRecordSize + sizes.stored;
    return {data, static_cast<std::uint32_t>(sizeof(nlsLocale)) + data + sizes.pages};
}

void writeRecord(const nlsLocale &locale, bool newForm, std::uint8_t *data) {
    Collation collation = *locale.collation;
    icu::clearAddresses(collation);
    if (!newForm) {
        std::memcpy(data, &collation, kOldRecordSize);
        return;
    }
    std::memcpy(data, &collation, sizeof collation);
    CharTable charTable = *locale.charTable;
    std::memset(charTable.reserved, 0, sizeof charTable.reserved);
    std::memcpy(data + sizeof collation, &charTable, sizeof charTable);
    if (locale.caseTable != nullptr)
        std::memcpy(data + kNewRecordSize, locale.caseTable, caseSizes(locale).stored);
}

std::uint64_t blockSizeNeeded(const nlsDbCollation &record, std::uint64_t nameLength) {
    constexpr std::uint32_t kWithoutSortData = 318;
    constexpr std::uint32_t kFlagsPlace = 1500;
    constexpr std::uint32_t kWordsPlace = 1504;
    std::uint64_t size = nameLength + 1 + sizeof(nlsLocale) + sizeof(Collation);
    size += record.sortData == nullptr ? kWithoutSortData : sortDataLength(record.sortData) + kBesideSortData;
    if (!isNewForm(record))
        return size;
    size += sizeof(CharTable);
    if (record.caseTableName[0] == '\0')
        return size;
    const bool readable = record.dataSize >= kWordsPlace + 8;
    if (readable && (wordAt(record.data, kFlagsPlace) & file::kUtf8) != 0)
        return size + wordAt(record.data, kWordsPlace) + std::uint64_t{wordAt(record.data, kWordsPlace + 4)};
    return size + sizeof(ByteCaseTable);
}

} // namespace velnls
