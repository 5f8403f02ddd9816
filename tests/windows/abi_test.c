/* The interface as a C program on Windows sees it that loads velnls.dll while it runs: every call is found by
   its plain name, shapes and constants are those that callers were compiled with, and the file names its
   version. */
#include "velnls.h"

#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include <windows.h>

static int failures = 0;

static void expect(int holds, const char *what) {
    if (!holds) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

#define EXPECT(condition) expect((condition) != 0, #condition)

static const char *const calls[] = {
    "nlsInit",
    "nlsAddBuffer",
    "nlsClose",
    "nlsGetIntNLSProperty",
    "nlsGetStrNLSProperty",
    "nlsGetOSCharset",
    "nlsGetVelCharset",
    "nlsCreateLocale",
    "nlsCloseDBLocale",
    "nlsGetIntLocaleProperty",
    "nlsGetStrLocaleProperty",
    "nlsLocaleToDbCollation",
    "nlsDbCollationToLocale",
    "nlsGetNextChar",
    "nlsGetPrevChar",
    "nlsGetCharProperty",
    "nlsCharToLChar",
    "nlsLCharToChar",
    "nlsFindCharForw",
    "nlsFindCharBack",
    "nlsFindLtrimPtrForw",
    "nlsFindRtrimPtrBack",
    "nlsCreateConversion",
    "nlsGetIntConversionProperty",
    "nlsGetStrConversionProperty",
    "nlsConvertNLS",
    "nlsConvertNLSCheck",
    "nlsConvertLChar",
    "nlsConvertFromUCS2",
    "nlsConvertToUCS2",
    "nlsSortKey",
    "nlsCompare",
    "nlsCompareN",
    "nlsIsSortNeeded",
    "nlsGetNextWord",
    "nlsInitString",
    "nlsSetString",
    "nlsAppendString",
    "nlsGetBufOfnlsStr",
    "nlsGetBufSizeOfnlsStr",
    "nlsGetStrLengthOfnlsStr",
    "nlsCopyString",
    "nlsCopynlsStr",
    "nlsUpperCase",
    "nlsLowerCase",
    "nlsSqlLike",
    "nlsSearchForw",
    "nlsSearchBack",
    "nlsReplace",
    "nlsReplaceAll",
    "nlsCountBytes",
    "nlsCountChars",
    "nlsCountColumns",
    "nlsSubstr",
    "nlsExtract",
    "nlsValidateString",
};

static void callsAreFoundByName(HMODULE library) {
    size_t i;
    EXPECT(sizeof calls / sizeof calls[0] == 56);
    for (i = 0; i < sizeof calls / sizeof calls[0]; ++i)
        expect(GetProcAddress(library, calls[i]) != NULL, calls[i]);
    expect(GetProcAddress(library, "DllMain") == NULL, "nothing else is exported");
}

static void callsWorkThroughTheirAddress(HMODULE library) {
    nlsStatus (*init)(char *, uint32_t, nlsStr *) = NULL;
    nlsStatus (*append)(const char *, int32_t, nlsStr *) = NULL;
    FARPROC address = GetProcAddress(library, "nlsInitString");
    char room[8];
    nlsStr text;
    memcpy(&init, &address, sizeof init);
    address = GetProcAddress(library, "nlsAppendString");
    memcpy(&append, &address, sizeof append);
    if (init == NULL || append == NULL)
        return;
    EXPECT(init(room, sizeof room, &text) == NLS_OK);
    EXPECT(append("abc", 3, &text) == NLS_OK);
    EXPECT(append("defgh", 5, &text) == NLS_E_BUFFER);
    EXPECT(text.length == 3 && strcmp(room, "abc") == 0);
}

static void shapesAreFixed(void) {
    EXPECT(sizeof(nlsStatus) == 4);
    EXPECT(sizeof(nlsStr) == 16);
    EXPECT(offsetof(nlsStr, size) == 8 && offsetof(nlsStr, length) == 12);
    EXPECT(sizeof(nlsDbCollation) == 104);
    EXPECT(offsetof(nlsDbCollation, collationKind) == 60);
    EXPECT(offsetof(nlsDbCollation, data) == 80);
    EXPECT(offsetof(nlsDbCollation, sortTarget) == 96);
}

static void constantsAreFixed(void) {
    EXPECT(NLS_OK == 0 && NLS_E_NOMEM == 1 && NLS_E_BUFFER == 2 && NLS_E_HANDLE == 13 && NLS_E_NULLARG == 16);
    EXPECT(NLS_E_END == 20 && NLS_E_BUSY == 23 && NLS_E_NOTLOCALE == 24 && NLS_E_OSLOCALE == 28);
    EXPECT(NLS_R_CHANGED == 0xFFFFFFFEu && NLS_R_SUBSTITUTED == 0xFFFFFFFDu && NLS_R_CUT == 0xFFFFFFFCu);
    EXPECT((intptr_t)NLS_NO_COLLATION == -1);
}

static void fileNamesItsVersion(const char *path) {
    static unsigned char facts[4096];
    char *version = NULL;
    UINT length = 0;
    EXPECT(GetFileVersionInfoA(path, 0, sizeof facts, facts));
    EXPECT(VerQueryValueA(facts, "\\StringFileInfo\\040904B0\\FileVersion", (void **)&version, &length));
    EXPECT(version != NULL && strcmp(version, VELNLS_VERSION) == 0);
}

int main(void) {
    const HMODULE library = LoadLibraryA("velnls.dll");
    if (library == NULL) {
        printf("velnls.dll does not load: %lu\n", GetLastError());
        return 1;
    }
    callsAreFoundByName(library);
    callsWorkThroughTheirAddress(library);
    shapesAreFixed();
    constantsAreFixed();
    fileNamesItsVersion("velnls.dll");
    EXPECT(FreeLibrary(library));
    printf("%d failures\n", failures);
    return failures != 0;
}
