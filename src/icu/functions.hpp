// What the library needs of ICU's C interface: the shapes of its functions, declared here because ICU is
// found at run time and its headers are not needed to build. The names are those that ICU documents.
#pragma once

#include <cstdint>

namespace velnls::icu {

struct Converter; // UConverter
struct Collator;  // UCollator

using Unit = char16_t;          // UChar
using ErrorCode = std::int32_t; // UErrorCode: above 0 an error, below 0 a warning

inline constexpr ErrorCode kNoError = 0;
inline constexpr ErrorCode kUsingDefault = -127;  // the default stands in for what was asked for
inline constexpr ErrorCode kNotTerminated = -124; // the result fills its buffer to the last unit
inline constexpr ErrorCode kBufferOverflow = 15;  // the result needs more room
inline constexpr std::int32_t kToTerminator = -1; // as a source length

struct ConverterFunctions {
    Converter *(*open)(const char *name, ErrorCode *error);
    void (*close)(Converter *converter);
    void (*fromUnicode)(Converter *converter, char **target, const char *targetEnd, const Unit **source,
                        const Unit *sourceEnd, std::int32_t *offsets, std::int8_t flush, ErrorCode *error);
    void (*toUnicode)(Converter *converter, Unit **target, const Unit *targetEnd, const char **source,
                      const char *sourceEnd, std::int32_t *offsets, std::int8_t flush, ErrorCode *error);
    std::int32_t (*fromUChars)(Converter *converter, char *target, std::int32_t capacity, const Unit *source,
                               std::int32_t length, ErrorCode *error);
    std::int32_t (*toUChars)(Converter *converter, Unit *target, std::int32_t capacity, const char *source,
                             std::int32_t length, ErrorCode *error);
    void (*reset)(Converter *converter);
    void (*resetFromUnicode)(Converter *converter);
    void (*resetToUnicode)(Converter *converter);
    std::int32_t (*flushCache)();
};

struct CollatorFunctions {
    Collator *(*open)(const char *locale, ErrorCode *error);
    const Unit *(*getRules)(const Collator *collator, std::int32_t *length);
    std::int32_t (*getSortKey)(const Collator *collator, const Unit *source, std::int32_t length,
                               std::uint8_t *key, std::int32_t capacity);
    void (*setStrength)(Collator *collator, std::int32_t strength);
    std::int32_t (*strcoll)(const Collator *collator, const Unit *a, std::int32_t lengthA, const Unit *b,
                            std::int32_t lengthB);
    std::int32_t (*countAvailable)();
    const char *(*getAvailable)(std::int32_t index);
    void (*close)(Collator *collator);
    void (*getVersion)(const Collator *collator, std::uint8_t *version); // 4 bytes
};

struct Functions {
    ConverterFunctions converters;
    CollatorFunctions collators;
};

} // namespace velnls::icu
