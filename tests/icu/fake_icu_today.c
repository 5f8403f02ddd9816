/*
 * A library that looks like one of the three of an ICU of today: what the forwarding libraries take from it,
 * under the names and with the types of that ICU's headers. Every function hands over to the test program.
 * Compiled in three variants: FAKE_DATA, FAKE_COMMON, FAKE_LANGUAGES.
 */
#include "fake_forward.h"

#include <unicode/ucnv.h>
#include <unicode/ucol.h>

#if defined(FAKE_DATA)
extern const char U_ICUDATA_ENTRY_POINT[];
const char U_ICUDATA_ENTRY_POINT[] = "data of today";
#endif

#define VERSIONED(name) name /* which the headers rename */

/* Forwarded too, and never called by velnls. */
void fake_unexpected(const char *name);
#define UNEXPECTED(result, name, parameters)                                                                 \
    result name parameters {                                                                                 \
        fake_unexpected(#name);                                                                              \
        return (result)0;                                                                                    \
    }
#define UNEXPECTED_VOID(name, parameters)                                                                    \
    void name parameters {                                                                                   \
        fake_unexpected(#name);                                                                              \
    }

#if defined(FAKE_COMMON)
FORWARD(UConverter *, ucnv_open, (const char *name, UErrorCode *error), (name, error))
FORWARD_VOID(ucnv_close, (UConverter * converter), (converter))
FORWARD_VOID(ucnv_reset, (UConverter * converter), (converter))
FORWARD(int32_t, ucnv_fromUChars,
        (UConverter * converter, char *target, int32_t capacity, const UChar *source, int32_t length,
         UErrorCode *error),
        (converter, target, capacity, source, length, error))
FORWARD(int32_t, ucnv_toUChars,
        (UConverter * converter, UChar *target, int32_t capacity, const char *source, int32_t length,
         UErrorCode *error),
        (converter, target, capacity, source, length, error))
UNEXPECTED_VOID(ucnv_fromUnicode,
                (UConverter * converter, char **target, const char *targetEnd, const UChar **source,
                 const UChar *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error))
UNEXPECTED_VOID(ucnv_toUnicode,
                (UConverter * converter, UChar **target, const UChar *targetEnd, const char **source,
                 const char *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error))
UNEXPECTED_VOID(ucnv_resetFromUnicode, (UConverter * converter))
UNEXPECTED_VOID(ucnv_resetToUnicode, (UConverter * converter))
UNEXPECTED(int32_t, ucnv_flushCache, (void))
#endif

#if defined(FAKE_LANGUAGES)
FORWARD(UCollator *, ucol_open, (const char *locale, UErrorCode *error), (locale, error))
FORWARD_VOID(ucol_close, (UCollator * collator), (collator))
FORWARD(const char *, ucol_getLocaleByType,
        (const UCollator *collator, ULocDataLocaleType type, UErrorCode *error), (collator, type, error))
FORWARD(UCollationStrength, ucol_getStrength, (const UCollator *collator), (collator))
FORWARD_VOID(ucol_setStrength, (UCollator * collator, UCollationStrength strength), (collator, strength))
FORWARD(UColAttributeValue, ucol_getAttribute,
        (const UCollator *collator, UColAttribute attribute, UErrorCode *error), (collator, attribute, error))
FORWARD_VOID(ucol_setAttribute,
             (UCollator * collator, UColAttribute attribute, UColAttributeValue value, UErrorCode *error),
             (collator, attribute, value, error))
FORWARD(UCollationResult, ucol_strcoll,
        (const UCollator *collator, const UChar *a, int32_t lengthA, const UChar *b, int32_t lengthB),
        (collator, a, lengthA, b, lengthB))
FORWARD(int32_t, ucol_getSortKey,
        (const UCollator *collator, const UChar *source, int32_t length, uint8_t *key, int32_t capacity),
        (collator, source, length, key, capacity))
FORWARD_VOID(ucol_getVersion, (const UCollator *collator, UVersionInfo version), (collator, version))
UNEXPECTED(const UChar *, ucol_getRules, (const UCollator *collator, int32_t *length))
UNEXPECTED(int32_t, ucol_countAvailable, (void))
UNEXPECTED(const char *, ucol_getAvailable, (int32_t index))
#endif
