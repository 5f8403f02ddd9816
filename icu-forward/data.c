/*
 * icudata-qmx: loaded before the others so that they find their data. It is linked with ICU's data library,
 * which is all that this takes.
 */
#include "forward.h"

/* ICU's data itself; a reference, so that the link is not optimised away. */
extern IMPORTED const char U_ICUDATA_ENTRY_POINT[];

EXPORTED const void *icudata_qmx(void);

const void *icudata_qmx(void) {
    return U_ICUDATA_ENTRY_POINT;
}
