// The first checks of every export that takes a locale or a conversion.
#pragma once

#include "convert/converter.hpp"
#include "core/objects.hpp"
#include "locale/locale.hpp"

namespace velnls {

// The handle that an object of any type belongs to.
inline const nlsHandle *ownerOf(const ObjectHeader &object) {
    switch (object.type) {
    case kHandleObject:
        return reinterpret_cast<const nlsHandle *>(&object);
    case kConversionObject:
        return reinterpret_cast<const nlsConversion *>(&object)->source->handle;
    default:
        return reinterpret_cast<const nlsLocale *>(&object)->handle;
    }
}

// Whether a call may use a locale; refuseLocale tells what is wrong with any other.
inline bool isOpenLocale(const nlsLocale *locale) {
    return locale != nullptr && locale->header.type == kLocaleObject && isLive(*locale->handle);
}

// 13 (null, or of a closed handle) or 24. Out of the way of the calls that go on.
[[gnu::cold, gnu::noinline]] inline nlsStatus refuseLocale(const nlsLocale *locale) {
    if (locale == nullptr || !isLive(ownerOf(locale->header)))
        return NLS_E_HANDLE;
    return NLS_E_NOTLOCALE;
}

// What a refusal says: never 0, so that a call which returns it needs nothing kept across.
[[gnu::always_inline]] inline nlsStatus refused(nlsStatus status) {
    if (status == NLS_OK)
        __builtin_unreachable();
    return status;
}

// 0, 13 or 24.
inline nlsStatus checkLocale(const nlsLocale *locale) {
    if (isOpenLocale(locale)) [[likely]]
        return NLS_OK;
    return refused(refuseLocale(locale));
}

// Whether a call may use a conversion; refuseConversion tells what is wrong with any other.
inline bool isOpenConversion(const nlsConversion *conversion) {
    return conversion != nullptr && conversion->header.type == kConversionObject &&
           isLive(*conversion->source->handle) && isLive(*conversion->target->handle);
}

// 13 (null, or a locale of a closed handle) or 26.
[[gnu::cold, gnu::noinline]] inline nlsStatus refuseConversion(const nlsConversion *conversion) {
    if (conversion == nullptr || !isLive(ownerOf(conversion->header)))
        return NLS_E_HANDLE;
    return conversion->header.type == kConversionObject ? NLS_E_HANDLE : NLS_E_NOTCONV;
}

// 0, 13 or 26.
inline nlsStatus checkConversion(const nlsConversion *conversion) {
    if (isOpenConversion(conversion)) [[likely]]
        return NLS_OK;
    return refused(refuseConversion(conversion));
}

} // namespace velnls
