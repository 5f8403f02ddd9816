/*
 * The converters of the fake of today's ICU where no test program stands behind it: pages that hold each unit
 * of ASCII as the one before, and UTF-8.
 */
#include <unicode/ucnv.h>

#include <stdlib.h>
#include <string.h>

void fake_unexpected(const char *name);
UConverter *fake_ucnv_open(const char *name, UErrorCode *error);
void fake_ucnv_close(UConverter *converter);
void fake_ucnv_reset(UConverter *converter);
int32_t fake_ucnv_fromUChars(UConverter *converter, char *target, int32_t capacity, const UChar *source,
                             int32_t length, UErrorCode *error);
int32_t fake_ucnv_toUChars(UConverter *converter, UChar *target, int32_t capacity, const char *source,
                           int32_t length, UErrorCode *error);

void fake_unexpected(const char *name) {
    (void)name;
    abort();
}

/* What a converter adds to a byte lies where the converter is. */
static int utf8 = 0, page = 1;

UConverter *fake_ucnv_open(const char *name, UErrorCode *error) {
    (void)error;
    return (UConverter *)(strcmp(name, "utf8") == 0 ? &utf8 : &page);
}

void fake_ucnv_close(UConverter *converter) {
    (void)converter;
}

void fake_ucnv_reset(UConverter *converter) {
    (void)converter;
}

int32_t fake_ucnv_fromUChars(UConverter *converter, char *target, int32_t capacity, const UChar *source,
                             int32_t length, UErrorCode *error) {
    const int added = *(const int *)converter;
    int32_t i;
    for (i = 0; length < 0 ? source[i] != 0 : i < length; ++i)
        if (i < capacity)
            target[i] = (char)(source[i] - added);
    if (i < capacity)
        target[i] = 0;
    else if (i > capacity)
        *error = U_BUFFER_OVERFLOW_ERROR;
    return i;
}

int32_t fake_ucnv_toUChars(UConverter *converter, UChar *target, int32_t capacity, const char *source,
                           int32_t length, UErrorCode *error) {
    const int added = *(const int *)converter;
    int32_t i;
    for (i = 0; length < 0 ? source[i] != 0 : i < length; ++i)
        if (i < capacity)
            target[i] = (UChar)(source[i] + added);
    if (i < capacity)
        target[i] = 0;
    else if (i > capacity)
        *error = U_BUFFER_OVERFLOW_ERROR;
    return i;
}
