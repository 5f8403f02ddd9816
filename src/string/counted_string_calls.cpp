// The counted string record: plain operations on a caller's buffer, capacity and length.
#include "velnls.h"

#include <cstdint>
#include <cstring>

namespace {

// Copies up to `count` bytes, stopping at a NUL, and terminates. Returns the number copied.
std::uint32_t copyText(char *to, const char *text, std::int32_t count) {
    std::int32_t copied = 0;
    while (copied < count && text[copied] != '\0') {
        to[copied] = text[copied];
        ++copied;
    }
    to[copied] = '\0';
    return static_cast<std::uint32_t>(copied);
}

} // namespace

nlsStatus nlsInitString(char *buffer, uint32_t size, nlsStr *string) {
    if (buffer == nullptr || string == nullptr)
        return NLS_E_NULLARG;
    *string = {buffer, size, 0};
    if (size != 0)
        buffer[0] = '\0';
    return NLS_OK;
}

nlsStatus nlsSetString(char *buffer, uint32_t size, uint32_t length, nlsStr *string) {
    if (string == nullptr)
        return NLS_E_NULLARG;
    *string = {buffer, size, length};
    return NLS_OK;
}

nlsStatus nlsAppendString(const char *text, int32_t count, nlsStr *string) {
    if (text == nullptr || string == nullptr || string->buffer == nullptr)
        return NLS_E_NULLARG;
    // One byte is kept for the NUL. The room can be -1, and then not even an empty piece fits.
    const std::int64_t room =
        std::int64_t{static_cast<std::int32_t>(string->size)} - static_cast<std::int32_t>(string->length) - 1;
    if (room < 0 || count > room)
        return NLS_E_BUFFER;
    string->length += copyText(string->buffer + string->length, text, count);
    return NLS_OK;
}

nlsStatus nlsGetBufOfnlsStr(const nlsStr *string, char **buffer) {
    if (string == nullptr || buffer == nullptr)
        return NLS_E_NULLARG;
    *buffer = string->buffer;
    return NLS_OK;
}

nlsStatus nlsGetBufSizeOfnlsStr(const nlsStr *string, uint32_t *size) {
    if (string == nullptr || size == nullptr)
        return NLS_E_NULLARG;
    *size = string->size;
    return NLS_OK;
}

nlsStatus nlsGetStrLengthOfnlsStr(const nlsStr *string, uint32_t *length) {
    if (string == nullptr || length == nullptr)
        return NLS_E_NULLARG;
    *length = string->length;
    return NLS_OK;
}

nlsStatus nlsCopyString(const char *text, int32_t count, nlsStr *string) {
    if (text == nullptr || string == nullptr || string->buffer == nullptr)
        return NLS_E_NULLARG;
    const auto size = static_cast<std::int32_t>(string->size);
    // A count equal to the size is accepted: the NUL then lands one byte behind it, as documented.
    if (size <= 0 || count > size)
        return NLS_E_BUFFER;
    string->length = copyText(string->buffer, text, count);
    return NLS_OK;
}

nlsStatus nlsCopynlsStr(const nlsStr *source, nlsStr *target) {
    if (source == nullptr || target == nullptr)
        return NLS_E_NULLARG;
    return nlsCopyString(source->buffer, static_cast<std::int32_t>(source->length), target);
}
