/*
 * icui18n-qmx: the collator functions, and what has changed since the release that they are named after: the
 * names of some locales, the default warning, and a strength that ICU has no number for.
 */
#include "forward.h"

#include <string.h>
#include <unicode/ucol.h>

UCollator *collator_open(const char *locale, UErrorCode *error) NAMED("ucol_open");
const UChar *collator_getRules(const UCollator *collator, int32_t *length) NAMED("ucol_getRules");
int32_t collator_getSortKey(const UCollator *collator, const UChar *source, int32_t length, uint8_t *key,
                            int32_t capacity) NAMED("ucol_getSortKey");
void collator_setStrength(UCollator *collator, int32_t strength) NAMED("ucol_setStrength");
int32_t collator_strcoll(const UCollator *collator, const UChar *a, int32_t lengthA, const UChar *b,
                         int32_t lengthB) NAMED("ucol_strcoll");
int32_t collator_countAvailable(void) NAMED("ucol_countAvailable");
const char *collator_getAvailable(int32_t index) NAMED("ucol_getAvailable");
void collator_close(UCollator *collator) NAMED("ucol_close");
void collator_getVersion(const UCollator *collator, uint8_t *version) NAMED("ucol_getVersion");

/* Orders that were variants of a locale are keywords today, or are the language's only one. */
static const struct {
    const char *then, *now;
} kNames[] = {
    {"de__PHONEBOOK", "de@collation=phonebook"},
    {"es__TRADITIONAL", "es@collation=traditional"},
    {"hi__DIRECT", "hi"},
    {"ja__HQ", "ja"},
    {"sh", "sr_Latn"},
    {"zh__PINYIN", "zh@collation=pinyin"},
};

/* Whether the collator is for a language that ICU knows, if only to order it like all others. */
static UBool isOfItsLanguage(const UCollator *collator) {
    UErrorCode error = U_ZERO_ERROR;
    const char *const valid = ucol_getLocaleByType(collator, ULOC_VALID_LOCALE, &error);
    return U_SUCCESS(error) && valid != NULL && valid[0] != '\0' && strcmp(valid, "root") != 0;
}

UCollator *collator_open(const char *locale, UErrorCode *error) {
    UCollator *collator;
    size_t i;
    for (i = 0; locale != NULL && i < sizeof kNames / sizeof kNames[0]; ++i)
        if (strcmp(locale, kNames[i].then) == 0)
            locale = kNames[i].now;
    collator = ucol_open(locale, error);
    /* A language that has the root's order was one with an order of its own: that is a fallback now. */
    if (collator != NULL && *error == U_USING_DEFAULT_WARNING && isOfItsLanguage(collator))
        *error = U_USING_FALLBACK_WARNING;
    return collator;
}

const UChar *collator_getRules(const UCollator *collator, int32_t *length) {
    return ucol_getRules(collator, length);
}

int32_t collator_getSortKey(const UCollator *collator, const UChar *source, int32_t length, uint8_t *key,
                            int32_t capacity) {
    return ucol_getSortKey(collator, source, length, key, capacity);
}

/* Strength 4 ignores accents but not case: the first level with the case level behind it. */
void collator_setStrength(UCollator *collator, int32_t strength) {
    enum {
        IGNORE_SECONDARY = 4
    };
    UErrorCode error = U_ZERO_ERROR;
    if (strength == IGNORE_SECONDARY) {
        ucol_setStrength(collator, UCOL_PRIMARY);
        ucol_setAttribute(collator, UCOL_CASE_LEVEL, UCOL_ON, &error);
        return;
    }
    /* The case level goes with primary strength: nothing to do for a strength that stays. */
    if (strength != UCOL_PRIMARY && (UCollationStrength)strength == ucol_getStrength(collator))
        return;
    if (ucol_getAttribute(collator, UCOL_CASE_LEVEL, &error) == UCOL_ON)
        ucol_setAttribute(collator, UCOL_CASE_LEVEL, UCOL_DEFAULT, &error);
    ucol_setStrength(collator, (UCollationStrength)strength);
}

int32_t collator_strcoll(const UCollator *collator, const UChar *a, int32_t lengthA, const UChar *b,
                         int32_t lengthB) {
    return ucol_strcoll(collator, a, lengthA, b, lengthB);
}

int32_t collator_countAvailable(void) {
    return ucol_countAvailable();
}

const char *collator_getAvailable(int32_t index) {
    return ucol_getAvailable(index);
}

void collator_close(UCollator *collator) {
    ucol_close(collator);
}

void collator_getVersion(const UCollator *collator, uint8_t *version) {
    ucol_getVersion(collator, version);
}
