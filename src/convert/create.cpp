#include "convert/create.hpp"

#include "convert/at_once.hpp"
#include "convert/build.hpp"
#include "core/arena.hpp"
#include "core/objects.hpp"
#include "core/text.hpp"

namespace velnls {

namespace {

// Whether a conversion's locale may stand for another of its name: one that was rebuilt from a stored record
// goes with its caller's block, so it serves itself alone.
bool servesFor(const nlsLocale &held, const nlsLocale &wanted) {
    return sameName(held.codePageName, wanted.codePageName) && (held.blobSize == 0 || &held == &wanted);
}

// The names decide, not the locale objects.
nlsConversion *findConversion(const nlsHandle &handle, const nlsLocale &source, const nlsLocale &target) {
    for (ObjectHeader *object = handle.newest; object != nullptr; object = object->next) {
        if (object->type != kConversionObject)
            continue;
        auto *const conversion = reinterpret_cast<nlsConversion *>(object);
        if (servesFor(*conversion->source, source) && servesFor(*conversion->target, target))
            return conversion;
    }
    return nullptr;
}

} // namespace

nlsStatus createConversion(nlsHandle &handle, nlsLocale &source, nlsLocale &target, nlsConversion *&out) {
    out = findConversion(handle, source, target);
    if (out != nullptr)
        return NLS_OK;
    const BusyScope busy(handle);
    if (!busy.held())
        return NLS_E_BUSY;
    nlsConversion *conversion = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *conversion, 8, conversion); status != NLS_OK)
        return status;
    conversion->source = &source;
    conversion->target = &target;
    const void *converter = nullptr;
    const nlsStatus status = buildConverter(handle, source.codePageName, target.codePageName, 0, converter);
    if (status != NLS_OK)
        return status;
    conversion->converter = converter;
    conversion->header.proofs = wayAtOnce(converter);
    pushObject(handle, conversion->header, kConversionObject);
    out = conversion;
    return NLS_OK;
}

} // namespace velnls
