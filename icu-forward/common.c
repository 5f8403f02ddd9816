/*
 * icuuc-qmx: the converter functions. Their arguments have not changed since the release that they are named
 * after, and ICU knows the converter names of then.
 */
#include "forward.h"

#include <string.h>
#include <unicode/ucnv.h>

UConverter *converter_open(const char *name, UErrorCode *error) NAMED("ucnv_open");
void converter_close(UConverter *converter) NAMED("ucnv_close");
void converter_fromUnicode(UConverter *converter, char **target, const char *targetEnd, const UChar **source,
                           const UChar *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error)
    NAMED("ucnv_fromUnicode");
void converter_toUnicode(UConverter *converter, UChar **target, const UChar *targetEnd, const char **source,
                         const char *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error)
    NAMED("ucnv_toUnicode");
int32_t converter_fromUChars(UConverter *converter, char *target, int32_t capacity, const UChar *source,
                             int32_t length, UErrorCode *error) NAMED("ucnv_fromUChars");
int32_t converter_toUChars(UConverter *converter, UChar *target, int32_t capacity, const char *source,
                           int32_t length, UErrorCode *error) NAMED("ucnv_toUChars");
void converter_reset(UConverter *converter) NAMED("ucnv_reset");
void converter_resetFromUnicode(UConverter *converter) NAMED("ucnv_resetFromUnicode");
void converter_resetToUnicode(UConverter *converter) NAMED("ucnv_resetToUnicode");
int32_t converter_flushCache(void) NAMED("ucnv_flushCache");

/*
 * Every compare opens a UTF-8 converter and closes it: the one closed last waits for the next. It has no
 * state that a reset does not take back, since nothing here sets a callback.
 */
static UConverter *spare;

UConverter *converter_open(const char *name, UErrorCode *error) {
    if (name != NULL && strcmp(name, "utf8") == 0 && U_SUCCESS(*error)) {
        UConverter *const kept = __atomic_exchange_n(&spare, NULL, __ATOMIC_ACQ_REL);
        if (kept != NULL)
            return kept;
    }
    return ucnv_open(name, error);
}

void converter_close(UConverter *converter) {
    UConverter *none = NULL;
    if (converter != NULL && ucnv_getType(converter) == UCNV_UTF8) {
        ucnv_reset(converter);
        if (__atomic_compare_exchange_n(&spare, &none, converter, 0, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE))
            return;
    }
    ucnv_close(converter);
}

void converter_fromUnicode(UConverter *converter, char **target, const char *targetEnd, const UChar **source,
                           const UChar *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error) {
    ucnv_fromUnicode(converter, target, targetEnd, source, sourceEnd, offsets, flush, error);
}

void converter_toUnicode(UConverter *converter, UChar **target, const UChar *targetEnd, const char **source,
                         const char *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error) {
    ucnv_toUnicode(converter, target, targetEnd, source, sourceEnd, offsets, flush, error);
}

int32_t converter_fromUChars(UConverter *converter, char *target, int32_t capacity, const UChar *source,
                             int32_t length, UErrorCode *error) {
    return ucnv_fromUChars(converter, target, capacity, source, length, error);
}

int32_t converter_toUChars(UConverter *converter, UChar *target, int32_t capacity, const char *source,
                           int32_t length, UErrorCode *error) {
    return ucnv_toUChars(converter, target, capacity, source, length, error);
}

void converter_reset(UConverter *converter) {
    ucnv_reset(converter);
}

void converter_resetFromUnicode(UConverter *converter) {
    ucnv_resetFromUnicode(converter);
}

void converter_resetToUnicode(UConverter *converter) {
    ucnv_resetToUnicode(converter);
}

int32_t converter_flushCache(void) {
    return ucnv_flushCache();
}
