#include "locale/create.hpp"

#include "collate/load.hpp"
#include "collate/proofs.hpp"
#include "convert/create.hpp"
#include "core/arena.hpp"
#include "core/file_layout.hpp"
#include "core/objects.hpp"
#include "core/text.hpp"
#include "locale/load.hpp"
#include "locale/page_facts.hpp"

#include <algorithm>

namespace velnls {

namespace {

constexpr char kDefaultCollation[] = "basic";

// The collation name that an existing locale must carry to be shared; empty for none.
const char *collationLookedFor(const char *collationName) {
    if (collationName == NLS_NO_COLLATION)
        return "";
    return collationName == nullptr || *collationName == '\0' ? kDefaultCollation : collationName;
}

// The collation name that a new locale gets. An empty name is looked for as "basic" but creates a locale
// without collation, on purpose.
const char *collationCreated(const char *collationName) {
    if (collationName == NLS_NO_COLLATION)
        return "";
    return collationName == nullptr ? kDefaultCollation : collationName;
}

bool carriesName(const char *field, const char *wanted) {
    return *wanted == '\0' ? *field == '\0' : sameName(field, wanted);
}

nlsLocale *findLocale(const nlsHandle &handle, const char *codePageName, const char *collation,
                      const char *caseTable, Serve serve) {
    for (ObjectHeader *object = handle.newest; object != nullptr; object = object->next) {
        if (object->type != kLocaleObject)
            continue;
        auto *const locale = reinterpret_cast<nlsLocale *>(object);
        if ((serve == Serve::Any || locale->blobSize == 0) && sameName(locale->codePageName, codePageName) &&
            carriesName(locale->collationName, collation) && carriesName(locale->caseTableName, caseTable))
            return locale;
    }
    return nullptr;
}

nlsStatus loadTables(nlsHandle &handle, nlsLocale &locale) {
    const CharTable *charTable = nullptr;
    if (const nlsStatus status = loadCharTable(handle, locale.codePageName, charTable); status != NLS_OK)
        return status;
    locale.charTable = charTable;
    locale.header.proofs = provePage(*charTable);
    if (locale.collationName[0] != '\0') {
        Collation *collation = nullptr;
        const nlsStatus status =
            loadCollation(handle, *charTable, locale.codePageName, locale.collationName, collation);
        if (status != NLS_OK)
            return status;
        locale.collation = collation;
    }
    if (locale.caseTableName[0] != '\0') {
        const void *caseTable = nullptr;
        const nlsStatus status =
            loadCaseTable(handle, *charTable, locale.codePageName, locale.caseTableName, caseTable);
        if (status != NLS_OK)
            return status;
        locale.caseTable = caseTable;
    }
    return NLS_OK;
}

} // namespace

std::uint32_t provePage(const CharTable &table) {
    if (!table.hasTrails())
        return kSingleBytePage;
    unsigned longest = 0;
    bool utf8 = table.has(file::kUtf8);
    for (unsigned byte = 0; byte < 256; ++byte) {
        const unsigned trails = table.trailCount(static_cast<std::uint8_t>(byte));
        const unsigned expected = byte < 0xC0 || byte >= 0xF8 ? 0 : byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        longest = std::max(longest, trails);
        utf8 = utf8 && trails == expected;
    }
    return (utf8 ? kUtf8Page : 0) | longest << kLongestTrailsShift;
}

nlsStatus createCompanion(nlsHandle &handle, nlsLocale &locale) {
    nlsLocale *companion = &locale;
    if (!sameName(locale.codePageName, kShiftJisName)) {
        const nlsStatus status = createLocale(handle, kShiftJisName, locale.collationName,
                                              locale.caseTableName, Serve::Lasting, companion);
        if (status != NLS_OK)
            return status;
    }
    nlsConversion *conversion = nullptr;
    return createConversion(handle, locale, *companion, conversion);
}

nlsStatus createLocale(nlsHandle &handle, const char *codePageName, const char *collationName,
                       const char *caseTableName, Serve serve, nlsLocale *&out) {
    out = findLocale(handle, codePageName, collationLookedFor(collationName),
                     caseTableName == nullptr ? "" : caseTableName, serve);
    if (out != nullptr)
        return NLS_OK;

    BusyScope busy(handle);
    if (!busy.held())
        return NLS_E_BUSY;
    nlsLocale *locale = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *locale, 8, locale); status != NLS_OK)
        return status;
    copyName(locale->codePageName, codePageName);
    copyName(locale->collationName, collationCreated(collationName));
    copyName(locale->caseTableName, caseTableName == nullptr ? "" : caseTableName);
    if (const nlsStatus status = loadTables(handle, *locale); status != NLS_OK)
        return status;
    locale->header.proofs |= proveText(*locale);
    locale->header.proofs |= proveOrder(*locale);
    locale->handle = &handle;
    pushObject(handle, locale->header, kLocaleObject);
    out = locale;
    if (!locale->charTable->has(file::kThroughShiftJis))
        return NLS_OK;
    busy.release();
    return createCompanion(handle, *locale);
}

} // namespace velnls
