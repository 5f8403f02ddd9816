#include "locale/rebuild.hpp"

#include "collate/proofs.hpp"
#include "collate/record.hpp"
#include "collate/sort_data.hpp"
#include "collate/sort_exit.hpp"
#include "convert/create.hpp"
#include "core/objects.hpp"
#include "core/text.hpp"
#include "icu/kept_collators.hpp"
#include "locale/create.hpp"
#include "locale/page_facts.hpp"
#include "locale/stored_record.hpp"
#include "locale/unicode_case.hpp"

#include <cstring>

namespace velnls {

namespace {

// Hands out the block from front to back; its end is kept for the name.
class BlockCarver {
public:
    BlockCarver(void *block, std::uint64_t size) : at_(static_cast<std::uint8_t *>(block)), left_(size) {}
    std::uint8_t *take(std::uint64_t size) {
        if (size > left_)
            return nullptr;
        std::uint8_t *const taken = at_;
        at_ += size;
        left_ -= size;
        return taken;
    }
    [[nodiscard]] std::uint8_t *rest() const {
        return at_;
    }
    [[nodiscard]] std::uint64_t left() const {
        return left_;
    }

private:
    std::uint8_t *at_;
    std::uint64_t left_;
};

// The new form: the tables are copies of the record's.
nlsStatus takeRecordTables(const nlsDbCollation &record, BlockCarver &carver, nlsLocale &locale) {
    if (record.dataSize < kNewRecordSize)
        return NLS_E_TABLE;
    std::uint8_t *const copy = carver.take(record.dataSize);
    if (copy == nullptr)
        return NLS_E_NOMEM;
    std::memcpy(copy, record.data, record.dataSize);
    locale.collation = reinterpret_cast<Collation *>(copy);
    locale.collation->next = nullptr;
    locale.collation->collatorOpen = 0;
    locale.collation->charSetName[sizeof locale.collation->charSetName - 1] = '\0';
    locale.collation->name[sizeof locale.collation->name - 1] = '\0';
    auto *const charTable = reinterpret_cast<CharTable *>(copy + sizeof(Collation));
    findFacts(*charTable);
    locale.charTable = charTable;
    if (record.caseTableName[0] == '\0')
        return NLS_OK;
    std::uint8_t *const caseTable = copy + kNewRecordSize;
    const std::uint32_t caseSize = record.dataSize - kNewRecordSize;
    locale.caseTable = caseTable;
    if (!charTable->has(file::kUtf8))
        return caseSize >= sizeof(ByteCaseTable) ? NLS_OK : NLS_E_TABLE;
    if (caseSize != offsetof(UnicodeCaseTable, pages))
        return NLS_E_TABLE;
    auto &table = *reinterpret_cast<UnicodeCaseTable *>(caseTable);
    std::uint8_t *const pages = carver.take(sizeof table.pages);
    if (pages == nullptr)
        return NLS_E_NOMEM;
    std::memset(pages, 0, sizeof table.pages);
    const file::UnicodeCaseTable lists = table.record;
    return fillUnicodeCaseTable(lists, table, [&carver](std::int32_t size, void *&page) {
        page = carver.take(static_cast<std::uint64_t>(size));
        if (page == nullptr)
            return NLS_E_NOMEM;
        std::memset(page, 0, static_cast<std::size_t>(size));
        return NLS_OK;
    });
}

// A locale in the arena, which takes the busy flag for itself.
nlsStatus createLasting(nlsHandle &handle, const char *codePageName, const char *collationName,
                        const char *caseTableName, nlsLocale *&out) {
    const BusyPause pause(handle);
    return createLocale(handle, codePageName, collationName, caseTableName, Serve::Lasting, out);
}

// The old form holds weights alone: characters and case come from the data file of today.
nlsStatus takeOldTables(nlsHandle &handle, const nlsDbCollation &record, BlockCarver &carver,
                        nlsLocale &locale) {
    nlsLocale *page = nullptr;
    if (const nlsStatus status = createLasting(handle, record.codePageName, NLS_NO_COLLATION, "basic", page);
        status != NLS_OK)
        return status;
    locale.charTable = page->charTable;
    locale.caseTable = page->caseTable;
    std::uint8_t *const room = carver.take(sizeof(Collation));
    if (room == nullptr || record.dataSize < kOldRecordSize)
        return NLS_E_TABLE;
    Collation collation{};
    std::memcpy(collation.caseSensitive, record.data, sizeof collation.caseSensitive);
    std::memcpy(collation.caseInsensitive, record.data + sizeof collation.caseSensitive,
                sizeof collation.caseInsensitive);
    collation.count = 256;
    collation.kind = static_cast<std::int32_t>(record.collationKind);
    collation.variant = static_cast<std::int32_t>(record.collationWord);
    copyName(collation.charSetName, record.codePageName);
    copyName(collation.name, record.collationName);
    std::memcpy(room, &collation, sizeof collation);
    locale.collation = reinterpret_cast<Collation *>(room);
    return NLS_OK;
}

// Makes the collation ready for use: ICU's collator and the user sort exit are of this process.
nlsStatus openCollation(nlsHandle &handle, Collation &collation) {
    switch (collation.kind) {
    case file::kBasic:
        return readsBasic(collation.caseSensitive, collation.caseInsensitive) ? NLS_OK : NLS_E_NOSORT;
    case file::kIcu:
        return icu::openKeptCollator(handle, collation);
    case file::kSortExit: {
        const nlsStatus status = loadSortExit(handle, collation.name);
        return status == NLS_E_NOSORT ? NLS_E_NOCOLLATION : status;
    }
    default:
        return NLS_OK;
    }
}

// Conversions outlive the caller's block, so they start from a locale of the same page in the arena. Null
// converter with 0: none is needed.
nlsStatus createConversionOf(nlsHandle &handle, const nlsLocale &locale, nlsLocale &target,
                             const void *&converter) {
    nlsLocale *page = nullptr;
    if (const nlsStatus status = createLasting(handle, locale.codePageName, NLS_NO_COLLATION, nullptr, page);
        status != NLS_OK)
        return status;
    const BusyPause pause(handle);
    nlsConversion *conversion = nullptr;
    const nlsStatus status = createConversion(handle, *page, target, conversion);
    if (status == NLS_OK)
        converter = conversion->converter;
    return status;
}

// The Shift-JIS locale with this one's names, and the conversion to it. In Shift-JIS itself the page takes
// the place of both.
nlsStatus createCompanionOf(nlsHandle &handle, const nlsLocale &locale) {
    const bool itself = sameName(locale.codePageName, kShiftJisName);
    nlsLocale *companion = nullptr;
    if (const nlsStatus status =
            createLasting(handle, kShiftJisName, itself ? NLS_NO_COLLATION : locale.collationName,
                          itself ? nullptr : locale.caseTableName, companion);
        status != NLS_OK)
        return status;
    const void *converter = nullptr;
    return createConversionOf(handle, locale, *companion, converter);
}

// Creates what a locale goes with: its companion in Shift-JIS, its sort data.
nlsStatus finishLocale(nlsHandle &handle, const nlsDbCollation &record, const BlockCarver &carver,
                       nlsLocale &locale) {
    if (locale.charTable->has(file::kThroughShiftJis)) {
        if (const nlsStatus status = createCompanionOf(handle, locale); status != NLS_OK)
            return status;
    }
    if (record.sortData == nullptr)
        return NLS_OK;
    const void *converter = nullptr;
    if (record.sortTarget != nullptr) {
        if (const nlsStatus status = createConversionOf(handle, locale, *record.sortTarget, converter);
            status != NLS_OK)
            return status;
    }
    locale.blobExtra = carver.rest();
    return buildSortData(locale, record.sortData, record.sortTarget, converter, carver.rest(), carver.left());
}

} // namespace

nlsStatus rebuildLocale(nlsHandle &handle, const nlsDbCollation &record, const char *name,
                        std::uint32_t blockSize, void *block, nlsLocale *&out) {
    const std::size_t nameSize = std::strlen(name) + 1;
    BlockCarver carver(block, blockSize - nameSize);
    auto *const locale = reinterpret_cast<nlsLocale *>(carver.take(sizeof(nlsLocale)));
    if (locale == nullptr)
        return NLS_E_BUFFER;
    std::memset(locale, 0, sizeof *locale);
    if (const nlsStatus status = isNewForm(record) ? takeRecordTables(record, carver, *locale)
                                                   : takeOldTables(handle, record, carver, *locale);
        status != NLS_OK)
        return status;
    if (const nlsStatus status = openCollation(handle, *locale->collation); status != NLS_OK)
        return status;

    copyName(locale->codePageName, record.codePageName);
    copyName(locale->collationName, record.collationName);
    copyName(locale->caseTableName, record.caseTableName);
    locale->header.proofs = provePage(*locale->charTable);
    locale->header.proofs |= proveText(*locale);
    locale->header.proofs |= proveOrder(*locale);
    locale->handle = &handle;
    locale->blobSize = blockSize;
    locale->blobName = static_cast<char *>(block) + (blockSize - nameSize);
    std::memcpy(locale->blobName, name, nameSize);
    if (const nlsStatus status = finishLocale(handle, record, carver, *locale); status != NLS_OK) {
        icu::closeKeptCollator(handle, *locale->collation);
        return status;
    }
    pushObject(handle, locale->header, kLocaleObject);
    out = locale;
    return NLS_OK;
}

} // namespace velnls
