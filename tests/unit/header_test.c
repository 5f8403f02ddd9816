/* The interface as a C99 program sees it: sizes, constants, and the type of every call. */
#include "velnls.h"

#include <stddef.h>
#include <stdio.h>

/* Fails to compile unless the call has exactly this type. Nothing is called or linked: some of the calls may
   not be part of the library that is being built. */
#define HAS_TYPE(name, ...) ((void)sizeof((nlsStatus(*)(__VA_ARGS__)){0} = name))

static void checkTypes(void) {
    HAS_TYPE(nlsInit, uint32_t, void *, int32_t, nlsReadCallback, nlsHandle **);
    HAS_TYPE(nlsAddBuffer, nlsHandle *, void *, int32_t);
    HAS_TYPE(nlsClose, nlsHandle *);
    HAS_TYPE(nlsGetIntNLSProperty, nlsHandle *, int32_t, uint32_t *);
    HAS_TYPE(nlsGetStrNLSProperty, nlsHandle *, uint32_t, nlsStr *);
    HAS_TYPE(nlsGetOSCharset, char *);
    HAS_TYPE(nlsGetVelCharset, nlsHandle *, nlsLocale *, const char *, char *);
    HAS_TYPE(nlsCreateLocale, nlsHandle *, const char *, const char *, const char *, nlsLocale **);
    HAS_TYPE(nlsCloseDBLocale, nlsLocale *, void **, uint32_t *);
    HAS_TYPE(nlsGetIntLocaleProperty, nlsLocale *, int32_t, uint32_t *);
    HAS_TYPE(nlsGetStrLocaleProperty, nlsLocale *, int32_t, nlsStr *);
    HAS_TYPE(nlsLocaleToDbCollation, nlsLocale *, int32_t, uint32_t, nlsDbCollation *);
    HAS_TYPE(nlsDbCollationToLocale, nlsHandle *, const nlsDbCollation *, const char *, uint32_t *, void *,
             nlsLocale **);
    HAS_TYPE(nlsGetNextChar, nlsLocale *, const char *, char **);
    HAS_TYPE(nlsGetPrevChar, nlsLocale *, const char *, const char *, char **);
    HAS_TYPE(nlsGetCharProperty, nlsLocale *, const char *, int32_t, uint32_t *);
    HAS_TYPE(nlsCharToLChar, nlsLocale *, char **, uint32_t *);
    HAS_TYPE(nlsLCharToChar, nlsLocale *, uint32_t, char **, uint16_t *);
    HAS_TYPE(nlsFindCharForw, nlsLocale *, const uint32_t *, const char *, uint16_t, uint32_t *, char **);
    HAS_TYPE(nlsFindCharBack, nlsLocale *, const uint32_t *, const char *, int32_t, uint16_t, uint32_t *,
             char **);
    HAS_TYPE(nlsFindLtrimPtrForw, nlsLocale *, const char *, const char *, uint16_t, uint32_t *, char **);
    HAS_TYPE(nlsFindRtrimPtrBack, nlsLocale *, const char *, char *, int32_t, uint16_t, uint32_t *, char **);
    HAS_TYPE(nlsCreateConversion, nlsHandle *, nlsLocale *, nlsLocale *, nlsConversion **);
    HAS_TYPE(nlsGetIntConversionProperty, nlsConversion *, int32_t, uint32_t *);
    HAS_TYPE(nlsGetStrConversionProperty, nlsConversion *, int32_t, nlsStr *);
    HAS_TYPE(nlsConvertNLS, nlsConversion *, const nlsStr *, nlsStr *, nlsStr *);
    HAS_TYPE(nlsConvertNLSCheck, nlsConversion *, const nlsStr *, nlsStr *);
    HAS_TYPE(nlsConvertLChar, nlsConversion *, uint32_t, uint32_t *);
    HAS_TYPE(nlsConvertFromUCS2, nlsConversion *, const void *, uint32_t, nlsStr *);
    HAS_TYPE(nlsConvertToUCS2, nlsConversion *, const nlsStr *, uint32_t, void *, uint32_t *);
    HAS_TYPE(nlsSortKey, nlsLocale *, char *, uint16_t, uint16_t, uint16_t, unsigned char *, uint16_t *);
    HAS_TYPE(nlsCompare, nlsLocale *, const char *, const char *, int16_t, int16_t *);
    HAS_TYPE(nlsCompareN, nlsLocale *, const char *, const char *, int32_t, uint32_t, uint16_t, int16_t *);
    HAS_TYPE(nlsIsSortNeeded, nlsLocale *, uint32_t *);
    HAS_TYPE(nlsGetNextWord, nlsLocale *, char **, int16_t, char *, int32_t, uint32_t *);
    HAS_TYPE(nlsInitString, char *, uint32_t, nlsStr *);
    HAS_TYPE(nlsSetString, char *, uint32_t, uint32_t, nlsStr *);
    HAS_TYPE(nlsAppendString, const char *, int32_t, nlsStr *);
    HAS_TYPE(nlsGetBufOfnlsStr, const nlsStr *, char **);
    HAS_TYPE(nlsGetBufSizeOfnlsStr, const nlsStr *, uint32_t *);
    HAS_TYPE(nlsGetStrLengthOfnlsStr, const nlsStr *, uint32_t *);
    HAS_TYPE(nlsCopyString, const char *, int32_t, nlsStr *);
    HAS_TYPE(nlsCopynlsStr, const nlsStr *, nlsStr *);
    HAS_TYPE(nlsUpperCase, nlsLocale *, const nlsStr *, nlsStr *);
    HAS_TYPE(nlsLowerCase, nlsLocale *, const nlsStr *, nlsStr *);
    HAS_TYPE(nlsSqlLike, nlsLocale *, const char *, const char *, uint16_t, uint32_t, uint32_t, uint32_t);
    HAS_TYPE(nlsSearchForw, nlsLocale *, const char *, const char *, uint16_t, uint32_t *, uint32_t *,
             char **);
    HAS_TYPE(nlsSearchBack, nlsLocale *, const char *, const char *, int32_t, uint16_t, uint32_t *, char **);
    HAS_TYPE(nlsReplace, nlsLocale *, const char *, const char *, const char *, uint16_t, nlsStr *,
             uint32_t *, uint32_t *, char **);
    HAS_TYPE(nlsReplaceAll, nlsLocale *, const char *, const char *, const char *, uint16_t, nlsStr *,
             uint32_t *);
    HAS_TYPE(nlsCountBytes, nlsLocale *, const char *, int32_t, uint32_t *);
    HAS_TYPE(nlsCountChars, nlsLocale *, const char *, int32_t, uint32_t *);
    HAS_TYPE(nlsCountColumns, nlsLocale *, const char *, int32_t, uint32_t *);
    HAS_TYPE(nlsSubstr, nlsLocale *, const char *, int32_t, int32_t, uint32_t *, nlsStr *);
    HAS_TYPE(nlsExtract, nlsLocale *, const char *, uint32_t, nlsStr *);
    HAS_TYPE(nlsValidateString, nlsLocale *, const void *, int32_t, uint32_t, uint32_t *);
}

static int failures = 0;

static void expect(int holds, const char *what) {
    if (!holds) {
        fprintf(stderr, "does not hold: %s\n", what);
        ++failures;
    }
}

#define EXPECT(condition) expect((condition), #condition)

int main(void) {
    checkTypes();
    EXPECT(sizeof(nlsStatus) == 4);
    EXPECT(sizeof(nlsStr) == 16);
    EXPECT(offsetof(nlsStr, buffer) == 0);
    EXPECT(offsetof(nlsStr, size) == 8);
    EXPECT(offsetof(nlsStr, length) == 12);
    EXPECT(offsetof(nlsDbCollation, codePageName) == 0);
    EXPECT(offsetof(nlsDbCollation, collationName) == 20);
    EXPECT(offsetof(nlsDbCollation, caseTableName) == 40);
    EXPECT(offsetof(nlsDbCollation, collationKind) == 60);
    EXPECT(offsetof(nlsDbCollation, collationWord) == 64);
    EXPECT(offsetof(nlsDbCollation, dataSize) == 68);
    EXPECT(offsetof(nlsDbCollation, blockSize) == 72);
    EXPECT(offsetof(nlsDbCollation, data) == 80);
    EXPECT(offsetof(nlsDbCollation, sortData) == 88);
    EXPECT(offsetof(nlsDbCollation, sortTarget) == 96);
    EXPECT(sizeof(nlsDbCollation) == 104);
    EXPECT((uintptr_t)NLS_NO_COLLATION == UINTPTR_MAX);
    EXPECT(NLS_OK == 0 && NLS_E_NOMEM == 1 && NLS_E_BUFFER == 2 && NLS_E_READ == 4 && NLS_E_MAGIC == 5);
    EXPECT(NLS_E_VERSION == 6 && NLS_E_NOSJIS == 7 && NLS_E_ICU == 8 && NLS_E_NOCHARSET == 9);
    EXPECT(NLS_E_NOCOLLATION == 10 && NLS_E_NOCASETABLE == 11 && NLS_E_BADID == 12 && NLS_E_HANDLE == 13);
    EXPECT(NLS_E_NULLARG == 16 && NLS_E_BADCHAR == 17 && NLS_E_ICULOAD == 18 && NLS_E_CONVSTATE == 19);
    EXPECT(NLS_E_END == 20 && NLS_E_TABLE == 21 && NLS_E_BADTABLE == 22 && NLS_E_BUSY == 23);
    EXPECT(NLS_E_NOTLOCALE == 24 && NLS_E_NOSORT == 25 && NLS_E_NOTCONV == 26 && NLS_E_NOCHARTAB == 27);
    EXPECT(NLS_E_OSLOCALE == 28 && NLS_E_NOSORTTAB == 32 && NLS_E_SURROGATE == 33);
    EXPECT(NLS_R_CHANGED == 0xFFFFFFFEu && NLS_R_SUBSTITUTED == 0xFFFFFFFDu && NLS_R_CUT == 0xFFFFFFFCu);
    /* A call that links, so that the library is there at all. */
    {
        char text[8];
        nlsStr string;
        EXPECT(nlsInitString(text, sizeof text, &string) == NLS_OK && string.size == sizeof text);
    }
    return failures == 0 ? 0 : 1;
}
