/*
 * The whole way in ten lines: open the data file, name two code pages, convert a text, close.
 *
 * Usage: convert velnls.dat
 */
#include <stdio.h>

#include "velnls.h"

static FILE *dataFile;

static uint32_t readData(uint32_t file, uint32_t offset, unsigned char *buffer, uint32_t length) {
    (void)file;
    return fseek(dataFile, (long)offset, SEEK_SET) ? 0 : (uint32_t)fread(buffer, 1, length, dataFile);
}

int main(int argc, char **argv) {
    dataFile = argc == 2 ? fopen(argv[1], "rb") : NULL;
    if (dataFile == NULL) {
        fputs("usage: convert velnls.dat\n", stderr);
        return 2;
    }
    /* [example] */
    static char memory[1 << 18], text[] = "\x93\xFA\x96\x7B", result[64]; /* two kanji in SHIFT-JIS */
    nlsHandle *handle;
    nlsLocale *from, *to;
    nlsConversion *conversion;
    nlsStr source = {text, sizeof text, 4}, target = {result, sizeof result, 0};
    int failed = nlsInit(0, memory, sizeof memory, readData, &handle) || /* all the memory there will be */
                 nlsCreateLocale(handle, "SHIFT-JIS", NLS_NO_COLLATION, NULL, &from) ||
                 nlsCreateLocale(handle, "UTF-8", NLS_NO_COLLATION, NULL, &to) ||
                 nlsCreateConversion(handle, from, to, &conversion) ||
                 nlsConvertNLS(conversion, &source, NULL, &target) || puts(result) < 0 || nlsClose(handle);
    /* [example] */
    return fclose(dataFile) != 0 || failed;
}
