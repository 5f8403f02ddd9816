// Single-byte code pages by direct tables: bytes to bytes, bytes to UTF-8 and back.
#include "convert/kernels/unicode_units.hpp"

#include <cstring>

namespace velnls {

namespace {

// A text that did not fit: blanks up to the end of the target, whose last byte is a closing 0.
nlsStatus padAndClose(Target &target) {
    std::memset(target.at, ' ', static_cast<std::size_t>(target.room()));
    target.at = target.end;
    target.end[-1] = 0;
    return NLS_E_BUFFER;
}

} // namespace

void mapBytes(const std::uint8_t *map, Source &source, Target &target) {
    while (source.at < source.end)
        *target.at++ = map[*source.at++];
}

nlsStatus byteToUtf8(const ByteToUtf8Body &body, Source &source, Target &target) {
    if (source.at >= source.end)
        return NLS_OK;
    if (target.room() <= 0)
        return NLS_E_BUFFER;
    const std::uint8_t *const begin = target.at;
    const bool endsWithZero = source.end[-1] == 0;
    while (source.at < source.end) {
        const std::uint32_t character = body.characters[*source.at++];
        const std::ptrdiff_t length = utf8Trails(static_cast<std::uint8_t>(character)) + 1;
        const bool fits = length == 1 ? target.room() >= 1 : target.room() >= length + 1;
        if (!fits) {
            // A last character without the byte that is kept back behind it is dropped without a sign.
            if (length > 1 && target.room() == length && source.at == source.end)
                return NLS_OK;
            return padAndClose(target);
        }
        std::memcpy(target.at, &character, static_cast<std::size_t>(length));
        target.at += length;
    }
    if (endsWithZero && target.at != begin && target.at[-1] != 0)
        return padAndClose(target);
    return NLS_OK;
}

nlsStatus utf8ToByte(const Utf8ToByteBody &body, Source &source, Target &target) {
    nlsStatus status = NLS_OK;
    while (source.at < source.end) {
        const std::uint8_t lead = *source.at;
        // Trail bytes and the bytes from F5 up are no lead bytes: each is one character that has no
        // counterpart.
        const std::ptrdiff_t length = lead < 0xF5 ? utf8Trails(lead) + 1 : 1;
        if (source.left() < length)
            return NLS_E_NULLARG;
        std::uint8_t byte = 0;
        bool known = false;
        if (lead < 0x80) {
            byte = body.tables[0][lead];
            known = byte != 0 || lead == 0;
        } else if (length == 2) {
            byte = body.tables[lead][source.at[1] & 0x3F];
            known = byte != 0;
        }
        if (!known) {
            byte = '?';
            status = NLS_R_SUBSTITUTED;
        }
        source.at += length;
        if (target.room() < 1)
            return NLS_E_BUFFER;
        *target.at++ = byte;
    }
    return status;
}

} // namespace velnls
