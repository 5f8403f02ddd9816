// nlsCreateLocale, nlsCloseDBLocale.
#include "collate/record_list.hpp"
#include "core/objects.hpp"
#include "icu/kept_collators.hpp"
#include "locale/checks.hpp"
#include "locale/create.hpp"

using namespace velnls;

namespace {

// Conversions of a locale whose memory goes back to the caller: nothing may find them any more.
void unlinkConversionsOf(nlsHandle &handle, const nlsLocale &locale) {
    for (ObjectHeader *object = handle.newest; object != nullptr; object = object->next) {
        if (object->type != kConversionObject)
            continue;
        const auto &conversion = *reinterpret_cast<const nlsConversion *>(object);
        if (conversion.source == &locale || conversion.target == &locale)
            unlinkObject(handle, *object);
    }
}

} // namespace

nlsStatus nlsCreateLocale(nlsHandle *handle, const char *codePageName, const char *collationName,
                          const char *caseTableName, nlsLocale **locale) {
    if (!isLive(handle))
        return NLS_E_HANDLE;
    if (codePageName == nullptr || locale == nullptr)
        return NLS_E_NULLARG;
    nlsLocale *made = nullptr;
    const nlsStatus status =
        createLocale(*handle, codePageName, collationName, caseTableName, Serve::Any, made);
    if (made != nullptr) // also where only its companion failed: the locale is on the list and usable
        *locale = made;
    return status;
}

nlsStatus nlsCloseDBLocale(nlsLocale *locale, void **block, uint32_t *size) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (block == nullptr || size == nullptr)
        return NLS_E_NULLARG;
    if (locale->blobSize == 0) {
        *block = nullptr;
        *size = 0;
        return NLS_OK;
    }
    nlsHandle &handle = *locale->handle;
    const BusyScope busy(handle);
    if (!busy.held())
        return NLS_E_BUSY;
    for (ObjectHeader *object = handle.newest; object != nullptr; object = object->next) {
        if (object != &locale->header)
            continue;
        unlinkObject(handle, *object);
        unlinkConversionsOf(handle, *locale);
        if (locale->collation != nullptr) {
            forgetCollation(*locale->collation);
            icu::closeKeptCollator(handle, *locale->collation);
        }
        *size = locale->blobSize;
        *block = locale;
        object->type = kClosed;
        break;
    }
    return NLS_OK;
}
