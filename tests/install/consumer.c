/*
 * A C99 user of the installed library: looks around, converts, and prints the result.
 */
#include <velnls.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static FILE *dataFile;

static uint32_t readData(uint32_t file, uint32_t offset, unsigned char *buffer, uint32_t length) {
    if (file != 7 || fseek(dataFile, (long)offset, SEEK_SET) != 0)
        return 0;
    return (uint32_t)fread(buffer, 1, length, dataFile);
}

static void require(nlsStatus status, const char *call) {
    if (status != NLS_OK) {
        fprintf(stderr, "%s: %lu\n", call, (unsigned long)status);
        exit(1);
    }
}

int main(int argc, char **argv) {
    static char list[1 << 16], result[64];
    char text[] = "\x93\xFA\x96\x7B"; /* two kanji in SHIFT-JIS */
    const int32_t size = 1 << 18;
    void *const memory = malloc((size_t)size);
    nlsHandle *handle = NULL;
    nlsLocale *from = NULL, *to = NULL;
    nlsConversion *conversion = NULL;
    nlsStr pages, source, target;
    uint32_t length = 0;

    dataFile = argc == 2 ? fopen(argv[1], "rb") : NULL;
    if (dataFile == NULL || memory == NULL)
        return 2;
    require(nlsInit(7, memory, size, readData, &handle), "nlsInit");

    require(nlsInitString(list, sizeof list, &pages), "nlsInitString");
    require(nlsGetStrNLSProperty(handle, 2, &pages), "nlsGetStrNLSProperty");
    require(nlsGetIntNLSProperty(handle, 1, &length), "nlsGetIntNLSProperty");
    if (length != pages.length || strstr(list, "SHIFT-JIS") == NULL)
        return 3;

    require(nlsCreateLocale(handle, "shift-jis", NLS_NO_COLLATION, NULL, &from), "nlsCreateLocale");
    require(nlsCreateLocale(handle, "UTF-8", NLS_NO_COLLATION, NULL, &to), "nlsCreateLocale");
    require(nlsCreateConversion(handle, from, to, &conversion), "nlsCreateConversion");
    require(nlsSetString(text, sizeof text, (uint32_t)strlen(text), &source), "nlsSetString");
    require(nlsInitString(result, sizeof result, &target), "nlsInitString");
    require(nlsConvertNLS(conversion, &source, NULL, &target), "nlsConvertNLS");
    printf("%s\n", result);

    require(nlsClose(handle), "nlsClose");
    if (nlsClose(handle) != NLS_E_HANDLE)
        return 4;
    free(memory);
    return fclose(dataFile) == 0 ? 0 : 5;
}
