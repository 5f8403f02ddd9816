#include "collate/shift_jis.hpp"

#include "convert/engine.hpp"
#include "core/text.hpp"

namespace velnls {

nlsStatus findShiftJisWay(const nlsLocale &locale, ShiftJisWay &way) {
    way = {nullptr, nullptr};
    bool hasConversion = false;
    for (const ObjectHeader *object = locale.handle->newest; object != nullptr; object = object->next) {
        if (object->type == kLocaleObject && way.chars == nullptr) {
            const auto &found = *reinterpret_cast<const nlsLocale *>(object);
            if (sameName(found.codePageName, kShiftJisName))
                way.chars = found.charTable;
        } else if (object->type == kConversionObject && !hasConversion) {
            const auto &found = *reinterpret_cast<const nlsConversion *>(object);
            if (sameName(found.source->codePageName, locale.codePageName) &&
                sameName(found.target->codePageName, kShiftJisName)) {
                way.converter = found.converter;
                hasConversion = true;
            }
        }
    }
    if (way.chars == nullptr)
        return NLS_E_NOSJIS;
    return hasConversion ? NLS_OK : NLS_E_ICU;
}

unsigned takeAsShiftJis(const CharTable &pageChars, const ShiftJisWay &way, Text &text,
                        std::uint8_t (&out)[2]) {
    // Room behind the character for decoders that may look one byte further.
    std::uint8_t character[4] = {*text.at++, 0, 0, 0};
    std::int32_t length = 1;
    if (pageChars.trailCount(character[0]) != 0 && !text.ended())
        character[length++] = *text.at++;
    std::uint32_t written = 0;
    const nlsStatus status = convert({.destination = out,
                                      .capacity = sizeof out,
                                      .source = character,
                                      .sourceLength = length,
                                      .converter = way.converter,
                                      .written = &written});
    if ((status == NLS_OK || status == NLS_R_SUBSTITUTED) && written >= 1 && written <= sizeof out)
        return written;
    // What cannot be converted is weighed as it stands.
    out[0] = character[0];
    out[1] = character[1];
    return static_cast<unsigned>(length);
}

} // namespace velnls
