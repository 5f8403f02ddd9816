// nlsLocaleToDbCollation, nlsDbCollationToLocale.
#include "collate/checks.hpp"
#include "locale/rebuild.hpp"
#include "locale/stored_record.hpp"

#include <cstring>

using namespace velnls;

namespace {
constexpr std::int32_t kFirstNewLevel = 6;
}

nlsStatus nlsLocaleToDbCollation(nlsLocale *locale, int32_t level, uint32_t roomInData,
                                 nlsDbCollation *record) {
    if (const nlsStatus status = checkOrder(locale, record != nullptr && record->data != nullptr);
        status != NLS_OK)
        return status;
    const bool newForm = level >= kFirstNewLevel;
    const RecordSizes sizes = recordSizes(*locale, newForm);
    if (sizes.data > roomInData)
        return NLS_E_BUFFER;
    std::memcpy(record->codePageName, locale->codePageName, sizeof record->codePageName);
    std::memcpy(record->collationName, locale->collationName, sizeof record->collationName);
    std::memcpy(record->caseTableName, locale->caseTableName, sizeof record->caseTableName);
    writeRecord(*locale, newForm, record->data);
    record->collationKind = static_cast<std::uint32_t>(locale->collation->kind);
    record->collationWord = static_cast<std::uint32_t>(locale->collation->variant);
    record->dataSize = sizes.data;
    record->blockSize = sizes.block;
    return NLS_OK;
}

nlsStatus nlsDbCollationToLocale(nlsHandle *handle, const nlsDbCollation *record, const char *name,
                                 uint32_t *blockSize, void *block, nlsLocale **locale) {
    if (!isLive(handle))
        return NLS_E_HANDLE;
    if (record == nullptr || record->data == nullptr || name == nullptr || blockSize == nullptr ||
        locale == nullptr)
        return NLS_E_NULLARG;
    const BusyScope busy(*handle);
    if (!busy.held())
        return NLS_E_BUSY;
    const std::uint64_t needed = blockSizeNeeded(*record, std::strlen(name));
    if (needed > *blockSize) {
        *blockSize = static_cast<std::uint32_t>(needed);
        return NLS_E_BUFFER;
    }
    if (block == nullptr)
        return NLS_E_NULLARG;
    nlsLocale *rebuilt = nullptr;
    const nlsStatus status = rebuildLocale(*handle, *record, name, *blockSize, block, rebuilt);
    if (status == NLS_OK)
        *locale = rebuilt;
    return status;
}
