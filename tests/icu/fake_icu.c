/*
 * A library that looks like one of ICU's three: every function hands over to the test program. Compiled in
 * variants: which of the three (FAKE_DATA, FAKE_COMMON, FAKE_LANGUAGES), and the suffix of its functions.
 */
#define PASTE(name, suffix) name##suffix
#define VERSIONED_(name, suffix) PASTE(name, suffix)
#define VERSIONED(name) VERSIONED_(name, FAKE_SUFFIX)

#include "fake_forward.h"

#include <stdint.h>

#if defined(FAKE_DATA)
const char icudt_fake[] = "data";
#endif

#if defined(FAKE_COMMON)
FORWARD(void *, ucnv_open, (const char *name, int32_t *error), (name, error))
FORWARD_VOID(ucnv_close, (void *converter), (converter))
FORWARD(int32_t, ucnv_fromUChars,
        (void *converter, char *target, int32_t capacity, const uint16_t *source, int32_t length,
         int32_t *error),
        (converter, target, capacity, source, length, error))
FORWARD(int32_t, ucnv_toUChars,
        (void *converter, uint16_t *target, int32_t capacity, const char *source, int32_t length,
         int32_t *error),
        (converter, target, capacity, source, length, error))

/* Looked up and never called. */
void fake_unexpected(const char *name);
#define UNEXPECTED(name)                                                                                     \
    void VERSIONED(name)(void);                                                                              \
    void VERSIONED(name)(void) {                                                                             \
        fake_unexpected(#name);                                                                              \
    }
UNEXPECTED(ucnv_fromUnicode)
UNEXPECTED(ucnv_toUnicode)
UNEXPECTED(ucnv_reset)
UNEXPECTED(ucnv_resetFromUnicode)
UNEXPECTED(ucnv_resetToUnicode)
UNEXPECTED(ucnv_flushCache)
#endif

#if defined(FAKE_LANGUAGES)
FORWARD(void *, ucol_open, (const char *locale, int32_t *error), (locale, error))
FORWARD_VOID(ucol_close, (void *collator), (collator))
FORWARD_VOID(ucol_setStrength, (void *collator, int32_t strength), (collator, strength))
FORWARD(int32_t, ucol_strcoll,
        (const void *collator, const uint16_t *a, int32_t lengthA, const uint16_t *b, int32_t lengthB),
        (collator, a, lengthA, b, lengthB))
FORWARD(int32_t, ucol_getSortKey,
        (const void *collator, const uint16_t *source, int32_t length, uint8_t *key, int32_t capacity),
        (collator, source, length, key, capacity))
FORWARD_VOID(ucol_getVersion, (const void *collator, uint8_t *version), (collator, version))

void fake_unexpected(const char *name);
#define UNEXPECTED(name)                                                                                     \
    void VERSIONED(name)(void);                                                                              \
    void VERSIONED(name)(void) {                                                                             \
        fake_unexpected(#name);                                                                              \
    }
UNEXPECTED(ucol_getRules)
UNEXPECTED(ucol_countAvailable)
UNEXPECTED(ucol_getAvailable)
#endif
