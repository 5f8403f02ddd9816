/*
 * What the forwarding libraries share: a function that carries the suffix of the one ICU release that velnls
 * looks up (a build setting) and hands over to the ICU that it is linked with.
 */
#ifndef VELNLS_ICU_FORWARD_H
#define VELNLS_ICU_FORWARD_H

#include <unicode/utypes.h>

#if defined(_WIN32)
#define EXPORTED __attribute__((dllexport))
#define IMPORTED __attribute__((dllimport)) /* for data: functions are found without */
#else
#define EXPORTED __attribute__((visibility("default")))
#define IMPORTED
#endif

/* ICU's headers rename its functions by macros, so the exported name is spelled for the assembler. */
#define NAMED(name) __asm__(name VELNLS_ICU_SUFFIX) EXPORTED

#endif
