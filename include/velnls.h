/*
 * velnls - National Language Support: code pages, characters, conversion, collation and text.
 *
 * The C interface and its manual. Usable from C99 and C++; needs nothing but this header.
 */
#ifndef VELNLS_H
#define VELNLS_H

#include <stdint.h>

#if defined(_WIN32)
#if defined(VELNLS_BUILDING)
#define NLS_API __declspec(dllexport)
#else
#define NLS_API
#endif
#else
#define NLS_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef uint32_t nlsStatus;                 /* 0 = success */
typedef struct nlsHandle nlsHandle;         /* opaque */
typedef struct nlsLocale nlsLocale;         /* opaque */
typedef struct nlsConversion nlsConversion; /* opaque */

#define NLS_OK ((nlsStatus)0)
#define NLS_E_NOMEM ((nlsStatus)1)
#define NLS_E_BUFFER ((nlsStatus)2)
#define NLS_E_READ ((nlsStatus)4)
#define NLS_E_MAGIC ((nlsStatus)5)
#define NLS_E_VERSION ((nlsStatus)6)
#define NLS_E_NOSJIS ((nlsStatus)7)
#define NLS_E_ICU ((nlsStatus)8)
#define NLS_E_NOCHARSET ((nlsStatus)9)
#define NLS_E_NOCOLLATION ((nlsStatus)10)
#define NLS_E_NOCASETABLE ((nlsStatus)11)
#define NLS_E_BADID ((nlsStatus)12)
#define NLS_E_HANDLE ((nlsStatus)13)
#define NLS_E_NULLARG ((nlsStatus)16)
#define NLS_E_BADCHAR ((nlsStatus)17)
#define NLS_E_ICULOAD ((nlsStatus)18)
#define NLS_E_CONVSTATE ((nlsStatus)19)
#define NLS_E_END ((nlsStatus)20)
#define NLS_E_TABLE ((nlsStatus)21)
#define NLS_E_BADTABLE ((nlsStatus)22)
#define NLS_E_BUSY ((nlsStatus)23)
#define NLS_E_NOTLOCALE ((nlsStatus)24)
#define NLS_E_NOSORT ((nlsStatus)25)
#define NLS_E_NOTCONV ((nlsStatus)26)
#define NLS_E_NOCHARTAB ((nlsStatus)27)
#define NLS_E_OSLOCALE ((nlsStatus)28)
#define NLS_E_NOSORTTAB ((nlsStatus)32)
#define NLS_E_SURROGATE ((nlsStatus)33)

#define NLS_R_CHANGED ((nlsStatus)-2)
#define NLS_R_SUBSTITUTED ((nlsStatus)-3)
#define NLS_R_CUT ((nlsStatus)-4)

typedef struct nlsStr {
    char *buffer;
    uint32_t size;
    uint32_t length;
} nlsStr;

typedef uint32_t (*nlsReadCallback)(uint32_t file, uint32_t offset, unsigned char *buffer, uint32_t length);

typedef struct nlsDbCollation {
    char codePageName[20];
    char collationName[20];
    char caseTableName[20];
    uint32_t collationKind;
    uint32_t collationWord;
    uint32_t dataSize;
    uint32_t blockSize;
    unsigned char *data;      /* supplied by the caller */
    const uint16_t *sortData; /* may be null */
    nlsLocale *sortTarget;    /* may be null */
} nlsDbCollation;

#define NLS_NO_COLLATION ((const char *)(intptr_t)-1) /* the all-ones pointer */

NLS_API nlsStatus nlsInit(uint32_t file, void *memory, int32_t size, nlsReadCallback read,
                          nlsHandle **handle);
NLS_API nlsStatus nlsAddBuffer(nlsHandle *handle, void *memory, int32_t size);
NLS_API nlsStatus nlsClose(nlsHandle *handle);
NLS_API nlsStatus nlsGetIntNLSProperty(nlsHandle *handle, int32_t property, uint32_t *value);
NLS_API nlsStatus nlsGetStrNLSProperty(nlsHandle *handle, uint32_t property, nlsStr *text);
NLS_API nlsStatus nlsGetOSCharset(char *out);
NLS_API nlsStatus nlsGetVelCharset(nlsHandle *handle, nlsLocale *locale, const char *osName, char *out);
NLS_API nlsStatus nlsCreateLocale(nlsHandle *handle, const char *codePageName, const char *collationName,
                                  const char *caseTableName, nlsLocale **locale);
NLS_API nlsStatus nlsCloseDBLocale(nlsLocale *locale, void **block, uint32_t *size);
NLS_API nlsStatus nlsGetIntLocaleProperty(nlsLocale *locale, int32_t id, uint32_t *value);
NLS_API nlsStatus nlsGetStrLocaleProperty(nlsLocale *locale, int32_t id, nlsStr *text);
NLS_API nlsStatus nlsLocaleToDbCollation(nlsLocale *locale, int32_t level, uint32_t roomInData,
                                         nlsDbCollation *record);
NLS_API nlsStatus nlsDbCollationToLocale(nlsHandle *handle, const nlsDbCollation *record, const char *name,
                                         uint32_t *blockSize, void *block, nlsLocale **locale);
NLS_API nlsStatus nlsGetNextChar(nlsLocale *locale, const char *p, char **next);
NLS_API nlsStatus nlsGetPrevChar(nlsLocale *locale, const char *p, const char *start, char **prev);
NLS_API nlsStatus nlsGetCharProperty(nlsLocale *locale, const char *ch, int32_t classValue, uint32_t *value);
NLS_API nlsStatus nlsCharToLChar(nlsLocale *locale, char **pp, uint32_t *lchar);
NLS_API nlsStatus nlsLCharToChar(nlsLocale *locale, uint32_t lchar, char **pp, uint16_t *length);
NLS_API nlsStatus nlsFindCharForw(nlsLocale *locale, const uint32_t *lchar, const char *str,
                                  uint16_t caseFlag, uint32_t *position, char **found);
NLS_API nlsStatus nlsFindCharBack(nlsLocale *locale, const uint32_t *lchar, const char *str, int32_t length,
                                  uint16_t caseFlag, uint32_t *position, char **found);
NLS_API nlsStatus nlsFindLtrimPtrForw(nlsLocale *locale, const char *trimSet, const char *str,
                                      uint16_t caseFlag, uint32_t *position, char **result);
NLS_API nlsStatus nlsFindRtrimPtrBack(nlsLocale *locale, const char *trimSet, char *str, int32_t length,
                                      uint16_t caseFlag, uint32_t *position, char **result);
NLS_API nlsStatus nlsCreateConversion(nlsHandle *handle, nlsLocale *source, nlsLocale *target,
                                      nlsConversion **conversion);
NLS_API nlsStatus nlsGetIntConversionProperty(nlsConversion *conversion, int32_t id, uint32_t *value);
NLS_API nlsStatus nlsGetStrConversionProperty(nlsConversion *conversion, int32_t id, nlsStr *text);
NLS_API nlsStatus nlsConvertNLS(nlsConversion *conversion, const nlsStr *source, nlsStr *intermediate,
                                nlsStr *destination);
NLS_API nlsStatus nlsConvertNLSCheck(nlsConversion *conversion, const nlsStr *source, nlsStr *destination);
NLS_API nlsStatus nlsConvertLChar(nlsConversion *conversion, uint32_t character, uint32_t *result);
NLS_API nlsStatus nlsConvertFromUCS2(nlsConversion *conversion, const void *source, uint32_t length,
                                     nlsStr *destination);
NLS_API nlsStatus nlsConvertToUCS2(nlsConversion *conversion, const nlsStr *source, uint32_t capacity,
                                   void *destination, uint32_t *written);
NLS_API nlsStatus nlsSortKey(nlsLocale *locale, char *source, uint16_t keySize, uint16_t mode, uint16_t trim,
                             unsigned char *key, uint16_t *keyLength);
NLS_API nlsStatus nlsCompare(nlsLocale *locale, const char *a, const char *b, int16_t mode, int16_t *result);
NLS_API nlsStatus nlsCompareN(nlsLocale *locale, const char *a, const char *b, int32_t lengthA,
                              uint32_t lengthB, uint16_t mode, int16_t *result);
NLS_API nlsStatus nlsIsSortNeeded(nlsLocale *locale, uint32_t *flag);
NLS_API nlsStatus nlsGetNextWord(nlsLocale *locale, char **string, int16_t mode, char *word, int32_t size,
                                 uint32_t *length);
NLS_API nlsStatus nlsInitString(char *buffer, uint32_t size, nlsStr *string);
NLS_API nlsStatus nlsSetString(char *buffer, uint32_t size, uint32_t length, nlsStr *string);
NLS_API nlsStatus nlsAppendString(const char *text, int32_t count, nlsStr *string);
NLS_API nlsStatus nlsGetBufOfnlsStr(const nlsStr *string, char **buffer);
NLS_API nlsStatus nlsGetBufSizeOfnlsStr(const nlsStr *string, uint32_t *size);
NLS_API nlsStatus nlsGetStrLengthOfnlsStr(const nlsStr *string, uint32_t *length);
NLS_API nlsStatus nlsCopyString(const char *text, int32_t count, nlsStr *string);
NLS_API nlsStatus nlsCopynlsStr(const nlsStr *source, nlsStr *target);
NLS_API nlsStatus nlsUpperCase(nlsLocale *locale, const nlsStr *source, nlsStr *destination);
NLS_API nlsStatus nlsLowerCase(nlsLocale *locale, const nlsStr *source, nlsStr *destination);
NLS_API nlsStatus nlsSqlLike(nlsLocale *locale, const char *pattern, const char *string, uint16_t mode,
                             uint32_t escape, uint32_t oneChar, uint32_t anyString);
NLS_API nlsStatus nlsSearchForw(nlsLocale *locale, const char *pattern, const char *text, uint16_t caseFlag,
                                uint32_t *position, uint32_t *endOffset, char **found);
NLS_API nlsStatus nlsSearchBack(nlsLocale *locale, const char *pattern, const char *text, int32_t textLength,
                                uint16_t caseFlag, uint32_t *position, char **found);
NLS_API nlsStatus nlsReplace(nlsLocale *locale, const char *pattern, const char *replacement,
                             const char *text, uint16_t caseFlag, nlsStr *out, uint32_t *position,
                             uint32_t *endOffset, char **found);
NLS_API nlsStatus nlsReplaceAll(nlsLocale *locale, const char *pattern, const char *replacement,
                                const char *text, uint16_t caseFlag, nlsStr *out, uint32_t *count);
NLS_API nlsStatus nlsCountBytes(nlsLocale *locale, const char *str, int32_t chars, uint32_t *bytes);
NLS_API nlsStatus nlsCountChars(nlsLocale *locale, const char *str, int32_t bytes, uint32_t *chars);
NLS_API nlsStatus nlsCountColumns(nlsLocale *locale, const char *str, int32_t bytes, uint32_t *columns);
NLS_API nlsStatus nlsSubstr(nlsLocale *locale, const char *str, int32_t start, int32_t length,
                            uint32_t *chars, nlsStr *out);
NLS_API nlsStatus nlsExtract(nlsLocale *locale, const char *str, uint32_t chars, nlsStr *out);
NLS_API nlsStatus nlsValidateString(nlsLocale *locale, const void *data, int32_t length, uint32_t byteOrder,
                                    uint32_t *count);

#ifdef __cplusplus
}
#endif

#endif /* VELNLS_H */
