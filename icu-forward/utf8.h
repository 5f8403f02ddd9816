/*
 * Well-formed UTF-8 to UTF-16: the part of ICU's conversion that has one right answer.
 */
#ifndef VELNLS_ICU_FORWARD_UTF8_H
#define VELNLS_ICU_FORWARD_UTF8_H

#include <stddef.h>
#include <unicode/utypes.h>

/*
 * Decodes `length` bytes into `units`, which has `room` for as many units at least. Returns how many there
 * are; -1 when the text is not well formed. Anything may stand in `units` behind what is returned.
 */
ptrdiff_t decodeUtf8(const unsigned char *text, size_t length, UChar *units, size_t room);

#endif
