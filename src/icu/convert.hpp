// Conversion through an ICU converter, with UTF-16 of either byte order or UTF-8 on the Unicode side.
#pragma once

#include "convert/converter.hpp"
#include "convert/kernels/kernels.hpp"
#include "icu/functions.hpp"

namespace velnls::icu {

// Body of kinds 5 and 6. The converter is closed with the handle.
struct [[gnu::packed]] ConverterBody {
    Converter *converter;
};

// Whether a kind word is that of a converter with such a body.
inline bool isIcuType(std::int32_t type) {
    const std::int32_t masked = (type & ~kVariantBits) & 0xFFFF;
    return masked == kUnicodeToIcu || masked == kIcuToUnicode;
}

// Opens ICU's converter of a name: 0, or 8 when ICU is not there or does not know it.
nlsStatus openConverter(const char *name, Converter *&out);
void closeConverter(Converter *converter);

// Closes the converters that the handle's conversion entries hold.
void closeConvertersOf(const nlsHandle &handle);

// Runs a converter of kind 5 or 6 from source.at to source.end or to the source's NUL, whichever comes first,
// and moves target.at behind the output on success. 0, 2 (no room for the UTF-16 form), 8 (no UTF-8
// converter), 16 (ICU reported an error, or a UTF-8 source begins inside a character).
//
// A UTF-16 source at an odd address or of the other byte order is changed and changed back, together with the
// byte behind its terminator (behind its end where it has none).
nlsStatus convert(const void *converter, Source source, Target &target);

} // namespace velnls::icu
