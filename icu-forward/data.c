/*
 * icudata-qmx: loaded before the others so that they find their data. It is linked with ICU's data library,
 * which is all that this takes.
 */
#include "forward.h"

/* ICU's data itself; a reference, so that the link is not optimised away. */
extern const char icudata[] __asm__(VELNLS_ICU_DATA_SYMBOL);

const void *icudata_qmx(void) __attribute__((visibility("default")));

const void *icudata_qmx(void) {
    return icudata;
}
