// nlsCreateConversion and the properties of a conversion.
#include "convert/create.hpp"
#include "locale/checks.hpp"

#include <cstring>
#include <initializer_list>

using namespace velnls;

namespace {

enum ConversionProperty : std::int32_t {
    kSourceName = 15,
    kTargetName = 16,
    kExpansion = 17,
    kOutputWidth = 24,
    kIsChain = 28,
};

// The most bytes that one input byte can become.
nlsStatus expansion(const void *converter, std::uint32_t &value) {
    switch (kindOf(converter)) {
    case kByteMap:
    case kIdentity:
    case kEucToShiftJis:
    case kUtf8ToByte:
    case kUtf8ToBytePage:
        value = 1;
        return NLS_OK;
    case kShiftJisToEuc:
    case kUtf8ToPage:
    case kUcs2ToUtf8:
    case kUtf8ToUcs2:
    case kUtf16ToUtf8:
    case kUtf8ToUtf16:
    case kUtf16ToUtf32:
    case kPageToUtf16:
    case kByteToUtf8Wide:
        value = 2;
        return NLS_OK;
    case kPageToUtf8:
    case kByteToUtf8:
    case kPageToUtf8Wide:
        value = 3;
        return NLS_OK;
    case kUnicodeToIcu:
    case kIcuToUnicode:
    case kPageToUtf8Widest:
        value = 4;
        return NLS_OK;
    case kChain: {
        const auto &chain = *static_cast<const ChainBody *>(converter);
        std::uint32_t first = 0;
        std::uint32_t second = 0;
        if (const nlsStatus status = expansion(chain.first, first); status != NLS_OK)
            return status;
        if (const nlsStatus status = expansion(chain.second, second); status != NLS_OK)
            return status;
        value = first * second;
        return NLS_OK;
    }
    default:
        return NLS_E_NULLARG;
    }
}

// The most bytes of one character in the output; `byteMapWidth` is that of the target page.
nlsStatus outputWidth(const void *converter, std::uint32_t byteMapWidth, std::uint32_t &value) {
    switch (kindOf(lastStepOf(converter))) {
    case kByteMap:
        value = byteMapWidth;
        return NLS_OK;
    case kIdentity:
    case kUtf8ToByte:
        value = 1;
        return NLS_OK;
    case kShiftJisToEuc:
    case kEucToShiftJis:
    case kUtf8ToPage:
    case kUtf8ToUcs2:
    case kUtf16ToPage:
    case kUtf8ToBytePage:
    case kByteToUtf8Wide:
        value = 2;
        return NLS_OK;
    case kPageToUtf8:
    case kByteToUtf8:
        value = 3;
        return NLS_OK;
    case kUcs2ToUtf8:
    case kUtf16ToUtf8:
    case kUtf8ToUtf16:
    case kUtf32ToUtf8:
    case kUtf8ToUtf32:
    case kUtf16ToUtf32:
    case kUtf32ToUtf16:
    case kPageToUtf16:
    case kPageToUtf8Wide:
    case kPageToUtf8Widest:
        value = 4;
        return NLS_OK;
    default:
        return NLS_E_NULLARG;
    }
}

nlsStatus copyPageName(const nlsLocale &locale, nlsStr &text) {
    return nlsCopyString(locale.codePageName, static_cast<std::int32_t>(std::strlen(locale.codePageName)),
                         &text);
}

} // namespace

nlsStatus nlsCreateConversion(nlsHandle *handle, nlsLocale *source, nlsLocale *target,
                              nlsConversion **conversion) {
    if (handle == nullptr)
        return NLS_E_HANDLE;
    for (const nlsLocale *const locale : {source, target}) {
        if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
            return status;
    }
    if (conversion == nullptr)
        return NLS_E_NULLARG;
    nlsConversion *made = nullptr;
    const nlsStatus status = createConversion(*handle, *source, *target, made);
    if (status == NLS_OK)
        *conversion = made;
    return status;
}

nlsStatus nlsGetIntConversionProperty(nlsConversion *conversion, int32_t id, uint32_t *value) {
    if (const nlsStatus status = checkConversion(conversion); status != NLS_OK)
        return status;
    if (value == nullptr)
        return NLS_E_NULLARG;
    const void *const converter = conversion->converter;
    switch (id) {
    case kExpansion:
        return expansion(converter, *value);
    case kOutputWidth:
        // The target is looked at first, whatever the kind.
        if (const nlsStatus status = checkLocale(conversion->target); status != NLS_OK)
            return status;
        return outputWidth(converter, maxBytes(*conversion->target->charTable), *value);
    case kIsChain:
        *value = kindOf(converter) == kChain;
        return NLS_OK;
    default:
        return NLS_E_BADID;
    }
}

nlsStatus nlsGetStrConversionProperty(nlsConversion *conversion, int32_t id, nlsStr *text) {
    if (const nlsStatus status = checkConversion(conversion); status != NLS_OK)
        return status;
    if (text == nullptr)
        return NLS_E_NULLARG;
    switch (id) {
    case kSourceName:
        return copyPageName(*conversion->source, *text);
    case kTargetName:
        return copyPageName(*conversion->target, *text);
    default:
        return NLS_E_BADID;
    }
}
