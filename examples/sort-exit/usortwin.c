/*
 * A user sort exit: numbers inside texts order by their value, "file9" before "file10". Everything else
 * orders by the weights that the data file has for the collation. README.md says how to build, install and
 * name it.
 *
 * Every text is read as a row of weights, of which none is 0, by one reader: comparing two rows and writing
 * one as a key then agree by themselves.
 */
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#if defined(_WIN32)
#define EXPORT __declspec(dllexport)
#else
#define EXPORT __attribute__((visibility("default")))
#endif

EXPORT int32_t UserSortInit(const char *collation, void **user);
EXPORT void UserSortTerm(void *user);
EXPORT int32_t UserSortComp(const char *a, const char *b, const unsigned char *insensitive,
                            const unsigned char *sensitive, uint32_t mode, void *user);
EXPORT void UserSortCopy(unsigned char *key, const char *text, uint32_t size,
                         const unsigned char *insensitive, const unsigned char *sensitive, uint32_t mode,
                         void *user);

/* What this exit keeps of a collation between its calls. The library hands it back to each of them. */
struct options {
    int valueOfNumbers; /* not 0: digits count as numbers */
};

struct reader {
    const unsigned char *at, *end; /* text that is left, blanks at its end not counted */
    const unsigned char *weights;
    int numbers;
    int inNumber; /* 0: no, 1: its length comes next, 2: its digits */
    size_t digitsLeft;
};

enum {
    LONGEST_NUMBER = 254
};

static struct reader start(const char *text, const unsigned char *insensitive, const unsigned char *sensitive,
                           uint32_t mode, const struct options *options) {
    struct reader reader;
    memset(&reader, 0, sizeof reader);
    reader.at = (const unsigned char *)text;
    reader.end = reader.at + strlen(text);
    while (reader.end != reader.at && reader.end[-1] == ' ')
        --reader.end;
    reader.weights = mode == 0 ? insensitive : sensitive;
    reader.numbers = options->valueOfNumbers;
    return reader;
}

static int isDigit(unsigned char c) {
    return c >= '0' && c <= '9';
}

/* A weight of 0 would end a key. */
static unsigned weightOf(const struct reader *reader, unsigned char c) {
    return reader->weights[c] == 0 ? 1 : reader->weights[c];
}

/* The next weight; 0 at the end. A number is the weight of "0", how many digits it has, and the digits. */
static unsigned next(struct reader *reader) {
    if (reader->inNumber == 1) {
        reader->inNumber = reader->digitsLeft == 0 ? 0 : 2;
        return 1 + (unsigned)reader->digitsLeft;
    }
    if (reader->inNumber == 2) {
        if (--reader->digitsLeft == 0)
            reader->inNumber = 0;
        return *reader->at++;
    }
    if (reader->at == reader->end)
        return 0;
    if (reader->numbers && isDigit(*reader->at)) {
        while (reader->at != reader->end && *reader->at == '0')
            ++reader->at;
        while (reader->digitsLeft < LONGEST_NUMBER && reader->at + reader->digitsLeft != reader->end &&
               isDigit(reader->at[reader->digitsLeft]))
            ++reader->digitsLeft;
        reader->inNumber = 1;
        return weightOf(reader, '0');
    }
    return weightOf(reader, *reader->at++);
}

/* Called when the first collation of a handle is loaded. Not 0 refuses: creating the locale then gives 25. */
int32_t UserSortInit(const char *collation, void **user) {
    struct options *options = malloc(sizeof *options);
    if (options == NULL)
        return 1;
    options->valueOfNumbers = strcmp(collation, "plain") != 0;
    *user = options;
    return 0;
}

/* Called when the handle is closed. */
void UserSortTerm(void *user) {
    free(user);
}

/* Negative, 0 or positive; only the low 16 bits are looked at. */
int32_t UserSortComp(const char *a, const char *b, const unsigned char *insensitive,
                     const unsigned char *sensitive, uint32_t mode, void *user) {
    struct reader readerA = start(a, insensitive, sensitive, mode, user);
    struct reader readerB = start(b, insensitive, sensitive, mode, user);
    for (;;) {
        const unsigned weightA = next(&readerA);
        const unsigned weightB = next(&readerB);
        if (weightA != weightB)
            return weightA < weightB ? -1 : 1;
        if (weightA == 0)
            return 0;
    }
}

/* Writes at most `size` bytes, the NUL at the end included. */
void UserSortCopy(unsigned char *key, const char *text, uint32_t size, const unsigned char *insensitive,
                  const unsigned char *sensitive, uint32_t mode, void *user) {
    struct reader reader = start(text, insensitive, sensitive, mode, user);
    uint32_t length = 0;
    unsigned weight;
    if (size == 0)
        return;
    while (length < size - 1 && (weight = next(&reader)) != 0)
        key[length++] = (unsigned char)weight;
    key[length] = 0;
}
