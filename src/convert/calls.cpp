// The five conversion calls.
#include "convert/at_once.hpp"
#include "convert/engine.hpp"
#include "locale/checks.hpp"

using namespace velnls;

namespace {

std::uint8_t *bytes(char *text) {
    return reinterpret_cast<std::uint8_t *>(text);
}

// Whether a record has the buffer that it needs: an empty source may do without.
bool lacksBuffer(const nlsStr &string) {
    return string.buffer == nullptr && string.length != 0;
}

} // namespace

nlsStatus nlsConvertNLS(nlsConversion *conversion, const nlsStr *source, nlsStr *intermediate,
                        nlsStr *destination) {
    if (const nlsStatus status = checkConversion(conversion); status != NLS_OK)
        return status;
    if (source == nullptr || destination == nullptr || lacksBuffer(*source) || destination->buffer == nullptr)
        return NLS_E_NULLARG;
    if (const std::uint32_t way = conversion->header.proofs; way != 0 && source->length - 1 < kMostAtOnce)
        return convertAtOnce(way, conversion->converter, *source, intermediate, *destination);
    return convertText(conversion->converter, *source, intermediate, *destination);
}

nlsStatus nlsConvertNLSCheck(nlsConversion *conversion, const nlsStr *source, nlsStr *destination) {
    if (const nlsStatus status = checkConversion(conversion); status != NLS_OK)
        return status;
    if (source == nullptr || destination == nullptr || source == destination || source->buffer == nullptr ||
        destination->buffer == nullptr)
        return NLS_E_NULLARG;
    destination->length = 0;
    const nlsStatus status = convert({.destination = bytes(destination->buffer),
                                      .capacity = destination->size,
                                      .source = bytes(source->buffer),
                                      .sourceLength = static_cast<std::int32_t>(source->length + 1),
                                      .converter = conversion->converter,
                                      .written = &destination->length,
                                      .check = true,
                                      .behind = 0});
    const std::uint32_t length = destination->length;
    if (length != 0 && length <= destination->size && destination->buffer[length - 1] == '\0')
        destination->length = length - 1;
    return status;
}

nlsStatus nlsConvertLChar(nlsConversion *conversion, uint32_t character, uint32_t *result) {
    if (const nlsStatus status = checkConversion(conversion); status != NLS_OK)
        return status;
    if (result == nullptr)
        return NLS_E_NULLARG;
    return convertCharacter(conversion->converter, character, *result);
}

nlsStatus nlsConvertFromUCS2(nlsConversion *conversion, const void *source, uint32_t length,
                             nlsStr *destination) {
    if (const nlsStatus status = checkConversion(conversion); status != NLS_OK)
        return status;
    if (source == nullptr || destination == nullptr || destination->buffer == nullptr)
        return NLS_E_NULLARG;
    destination->length = 0;
    return convert({.destination = bytes(destination->buffer),
                    .capacity = destination->size,
                    .source = static_cast<const std::uint8_t *>(source),
                    .sourceLength = static_cast<std::int32_t>(length),
                    .converter = conversion->converter,
                    .written = &destination->length});
}

nlsStatus nlsConvertToUCS2(nlsConversion *conversion, const nlsStr *source, uint32_t capacity,
                           void *destination, uint32_t *written) {
    if (const nlsStatus status = checkConversion(conversion); status != NLS_OK)
        return status;
    if (source == nullptr || source->buffer == nullptr || destination == nullptr || written == nullptr)
        return NLS_E_NULLARG;
    return convert({.destination = static_cast<std::uint8_t *>(destination),
                    .capacity = capacity,
                    .source = bytes(source->buffer),
                    .sourceLength = static_cast<std::int32_t>(source->length + 1),
                    .converter = conversion->converter,
                    .written = written,
                    .behind = 0});
}
