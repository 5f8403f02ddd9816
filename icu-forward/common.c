/*
 * icuuc-qmx: the converter functions. Their arguments have not changed since the release that they are named
 * after, and ICU knows the converter names of then.
 */
#include "forward.h"
#include "utf8.h"

#include <unicode/ucnv.h>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

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
 * Every compare and every key opens a UTF-8 converter, decodes with it, and closes it. What those calls get
 * is one of these slots, which keep their converter open; it has no state that a reset does not take back,
 * since nothing here sets a callback. When all slots are taken, and for every other name, it is a converter
 * itself.
 *
 * A slot belongs to the thread that took it. Each has a cache line, and a thread begins to look at one that
 * follows from where its stack lies, so that threads seldom meet.
 */
typedef struct {
    UConverter *converter; /* null until the slot is first taken */
    int taken;
    int used; /* the converter has been handed to ICU since it was last reset */
} __attribute__((aligned(64))) Slot;

enum {
    SLOTS = 16
};
static Slot slots[SLOTS];

static Slot *slotOf(UConverter *converter) {
    return (uintptr_t)converter - (uintptr_t)slots < sizeof slots ? (Slot *)converter : NULL;
}

/* What ICU is to be handed. */
static UConverter *icuConverter(UConverter *converter) {
    Slot *const slot = slotOf(converter);
    if (slot == NULL)
        return converter;
    slot->used = 1;
    return slot->converter;
}

static Slot *takeSlot(void) {
    const char here = 0;
    const unsigned first = (unsigned)((uintptr_t)&here >> 16) * 0x9E3779B9u >> 28;
    unsigned i;
    for (i = 0; i < SLOTS; ++i) {
        Slot *const slot = &slots[(first + i) % SLOTS];
        if (__atomic_load_n(&slot->taken, __ATOMIC_RELAXED) == 0 &&
            __atomic_exchange_n(&slot->taken, 1, __ATOMIC_ACQUIRE) == 0)
            return slot;
    }
    return NULL;
}

static void freeSlot(Slot *slot) {
    __atomic_store_n(&slot->taken, 0, __ATOMIC_RELEASE);
}

/* Spelled as velnls spells it. */
static int isUtf8(const char *name) {
    return name != NULL && name[0] == 'u' && name[1] == 't' && name[2] == 'f' && name[3] == '8' &&
           name[4] == '\0';
}

UConverter *converter_open(const char *name, UErrorCode *error) {
    Slot *slot;
    if (!isUtf8(name) || error == NULL || U_FAILURE(*error) || (slot = takeSlot()) == NULL)
        return ucnv_open(name, error);
    if (slot->converter == NULL) {
        slot->converter = ucnv_open(name, error);
        slot->used = 0;
    }
    if (slot->converter != NULL)
        return (UConverter *)slot;
    freeSlot(slot);
    return NULL;
}

void converter_close(UConverter *converter) {
    Slot *const slot = slotOf(converter);
    if (slot == NULL) {
        ucnv_close(converter);
        return;
    }
    if (slot->used) {
        ucnv_reset(slot->converter);
        slot->used = 0;
    }
    freeSlot(slot);
}

/* When the library is unloaded. A slot that is still taken then is someone's leak. */
static void closeSlots(void) {
    unsigned i;
    for (i = 0; i < SLOTS; ++i) {
        if (__atomic_exchange_n(&slots[i].taken, 1, __ATOMIC_ACQUIRE) == 0)
            ucnv_close(slots[i].converter);
    }
}

#if defined(_WIN32)
/*
 * Not when the program ends: its other threads were stopped then wherever they were, perhaps inside ICU, and
 * the system takes all memory back.
 */
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID programEnds) {
    (void)library;
    if (reason == DLL_PROCESS_DETACH && programEnds == NULL)
        closeSlots();
    return TRUE;
}
#else
/* When the program ends too. */
__attribute__((destructor)) static void atUnload(void) {
    closeSlots();
}
#endif

void converter_fromUnicode(UConverter *converter, char **target, const char *targetEnd, const UChar **source,
                           const UChar *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error) {
    ucnv_fromUnicode(icuConverter(converter), target, targetEnd, source, sourceEnd, offsets, flush, error);
}

void converter_toUnicode(UConverter *converter, UChar **target, const UChar *targetEnd, const char **source,
                         const char *sourceEnd, int32_t *offsets, UBool flush, UErrorCode *error) {
    ucnv_toUnicode(icuConverter(converter), target, targetEnd, source, sourceEnd, offsets, flush, error);
}

int32_t converter_fromUChars(UConverter *converter, char *target, int32_t capacity, const UChar *source,
                             int32_t length, UErrorCode *error) {
    return ucnv_fromUChars(icuConverter(converter), target, capacity, source, length, error);
}

/*
 * Well-formed UTF-8 whose units fit whatever they are is decoded here: there ICU gives the same units, after
 * many more steps. All else is ICU's to judge, from the beginning.
 */
int32_t converter_toUChars(UConverter *converter, UChar *target, int32_t capacity, const char *source,
                           int32_t length, UErrorCode *error) {
    const Slot *const slot = slotOf(converter);
    if (slot != NULL && !slot->used && error != NULL && *error == U_ZERO_ERROR && length > 0 &&
        capacity >= length && source != NULL && target != NULL) {
        const ptrdiff_t count =
            decodeUtf8((const unsigned char *)source, (size_t)length, target, (size_t)capacity);
        if (count >= 0) {
            if (count < capacity)
                target[count] = 0;
            else
                *error = U_STRING_NOT_TERMINATED_WARNING;
            return (int32_t)count;
        }
    }
    return ucnv_toUChars(icuConverter(converter), target, capacity, source, length, error);
}

void converter_reset(UConverter *converter) {
    ucnv_reset(icuConverter(converter));
}

void converter_resetFromUnicode(UConverter *converter) {
    ucnv_resetFromUnicode(icuConverter(converter));
}

void converter_resetToUnicode(UConverter *converter) {
    ucnv_resetToUnicode(icuConverter(converter));
}

int32_t converter_flushCache(void) {
    return ucnv_flushCache();
}
