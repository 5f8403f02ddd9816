/*
 * velnls - National Language Support: code pages, characters, conversion, collation and text.
 *
 * The C interface and its manual. Usable from C99 and C++; needs nothing but this header.
 *
 * In short: lend a block of memory and a callback that reads the data file (nlsInit), name the code pages
 * (nlsCreateLocale), name the pairs to convert between (nlsCreateConversion), call, and at the end take the
 * memory back (nlsClose). examples/convert.c does all of it in ten lines.
 *
 * What holds for every call
 *
 *   Results     Every call returns an nlsStatus. 0 is success. Results come out through pointers; where a
 *               call fails, what its outputs hold is not guaranteed unless the call says so. The library
 *               prints nothing, ends no process and sets no errno on purpose.
 *
 *   Checks      run in one order: the handle (13), the object (24 for a locale, 26 for a conversion), null
 *               pointers (16), then the call's own. Where a call differs, its list says so: each list below
 *               is in the order of the checks, and the first that applies is returned. A null handle,
 *               locale or conversion is answered as a closed one: 13. An object whose handle was closed is
 *               answered with 13 as long as its memory stands.
 *
 *   Memory      All objects live in memory lent by the caller (section Memory). Nothing is freed one by
 *               one. Buffers for results are the caller's. The library takes no heap memory, with one
 *               exception: strings of more than 2000 bytes that are compared or keyed through an ICU
 *               collation.
 *
 *   Text        is bytes of a code page, ended by a NUL byte unless a length is taken. Calls on locales
 *               walk bytes: text in UTF-16 and UTF-32, whose units may hold zero bytes, is converted and
 *               validated, not walked. The caller's text is read only; where a pointer argument is not
 *               const although the call only reads, the call says when its bytes are written. Up to 63
 *               bytes behind the NUL that ends a string may be loaded with it, never past its 4096-byte
 *               page of memory, and are never used; a build with VELNLS_EXACT_READS loads none.
 *
 *   Units       Sizes, lengths and offsets are bytes unless "characters" or "columns" is said. Positions
 *               are byte positions that start at 1: the first byte of a string has position 1. An end
 *               offset starts at 0 and names the first byte behind a match.
 *
 *   Characters  A character is 1 to 8 bytes; its first byte alone decides how many, by the code page. A
 *               packed character ("lchar") is a number of the character's bytes, first byte highest: 0x41,
 *               0x88EA, 0xE282AC. Characters of more than four bytes have no number and read as 63, "?".
 *
 *   Names       of code pages, collations and case tables are compared without regard to letter case (of
 *               ASCII letters) and to blanks at the end. They have at most 19 bytes; longer names are cut.
 *
 *   Threads     The library starts no thread and holds no lock over a call. Handles are independent:
 *               threads that use a handle each need no care. With one handle among threads, calls that only
 *               read (characters, conversion, counting, text) may run at the same time on shared locales
 *               and conversions; calls that change the handle (nlsAddBuffer, nlsClose, nlsCreateLocale,
 *               nlsCloseDBLocale, nlsDbCollationToLocale, nlsCreateConversion) must have the handle to
 *               themselves. So must calls that convert through ICU, that compare or make keys through an ICU
 *               collation, through the user sort exit (there, of all handles that load it), or in a code
 *               page that collates through Shift-JIS (locale property 12). The busy flag that gives 23
 *               catches re-entry, such as a call from the read callback; it is no lock.
 */
#ifndef VELNLS_H
#define VELNLS_H

#include <stdint.h>

#if defined(_WIN32)
#define NLS_API /* velnls.dll has a list of its exports; an import library serves its callers */
#else
#define NLS_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ====================================================================================================== */
/*                                                 Types                                                  */
/* ====================================================================================================== */

typedef uint32_t nlsStatus;                 /* 0 = success */
typedef struct nlsHandle nlsHandle;         /* opaque */
typedef struct nlsLocale nlsLocale;         /* opaque */
typedef struct nlsConversion nlsConversion; /* opaque */

/* ====================================================================================================== */
/*                                              Status codes                                              */
/* ====================================================================================================== */

/*
 * The library has no message texts; a program maps these numbers to words of its own. 3, 14, 15, 30 and 31
 * are never returned. 29 is returned by nlsGetNextWord alone, for a word that was cut, and has no name.
 */

#define NLS_OK ((nlsStatus)0)             /* success */
#define NLS_E_NOMEM ((nlsStatus)1)        /* lent memory used up or too small; ICU collation fails */
#define NLS_E_BUFFER ((nlsStatus)2)       /* the caller's buffer is too small */
#define NLS_E_READ ((nlsStatus)4)         /* the directory could not be read or has a bad entry */
#define NLS_E_MAGIC ((nlsStatus)5)        /* not a data file */
#define NLS_E_VERSION ((nlsStatus)6)      /* a data file of another version; sort data of an unknown kind */
#define NLS_E_NOSJIS ((nlsStatus)7)       /* the handle has no "shift-jis" locale to collate with */
#define NLS_E_ICU ((nlsStatus)8)          /* no such conversion, or ICU is missing or failed */
#define NLS_E_NOCHARSET ((nlsStatus)9)    /* the data file has no such code page */
#define NLS_E_NOCOLLATION ((nlsStatus)10) /* no such collation for the code page */
#define NLS_E_NOCASETABLE ((nlsStatus)11) /* no such case table for the code page */
#define NLS_E_BADID ((nlsStatus)12)       /* unknown property number */
#define NLS_E_HANDLE ((nlsStatus)13)      /* no live handle behind the argument */
#define NLS_E_NULLARG ((nlsStatus)16)     /* a null pointer, an argument out of range, or malformed text */
#define NLS_E_BADCHAR ((nlsStatus)17)     /* not a character of the code page */
#define NLS_E_ICULOAD ((nlsStatus)18)     /* ICU could not be loaded; calls report this as 1, 8 or 16 */
#define NLS_E_CONVSTATE ((nlsStatus)19)   /* kept for converters; no call returns it */
#define NLS_E_END ((nlsStatus)20)         /* end of the text, or nothing found: no error in most calls */
#define NLS_E_TABLE ((nlsStatus)21)       /* a table of the data file could not be read in full */
#define NLS_E_BADTABLE ((nlsStatus)22)    /* a table states what cannot be built; ICU could not compare */
#define NLS_E_BUSY ((nlsStatus)23)        /* the handle is inside another call that changes it */
#define NLS_E_NOTLOCALE ((nlsStatus)24)   /* the argument is not a live locale */
#define NLS_E_NOSORT ((nlsStatus)25)      /* the locale has no usable collation */
#define NLS_E_NOTCONV ((nlsStatus)26)     /* the argument is not a conversion */
#define NLS_E_NOCHARTAB ((nlsStatus)27)   /* the locale has no character table */
#define NLS_E_OSLOCALE ((nlsStatus)28)    /* the operating system names no code page for the thread */
#define NLS_E_NOSORTTAB ((nlsStatus)32)   /* the locale carries no sort data */
#define NLS_E_SURROGATE ((nlsStatus)33)   /* a UTF-16 surrogate out of pair */

/*
 * Results that are no errors. nlsGetCharProperty and nlsSqlLike have small sets of their own that reuse -1,
 * -2 and 1; they are listed there.
 */
#define NLS_R_CHANGED ((nlsStatus)-2)     /* nlsConvertNLSCheck: the conversion changes the text */
#define NLS_R_SUBSTITUTED ((nlsStatus)-3) /* conversions: complete, with substitutions */
#define NLS_R_CUT ((nlsStatus)-4)         /* counts and validation: the limit falls inside a character */

/* ====================================================================================================== */
/*                                                 Memory                                                 */
/* ====================================================================================================== */

/*
 * A handle lives at the start of the block lent to nlsInit; the directory of the data file, locales,
 * conversions and every table read from the file are carved from that block, one behind the other. When a
 * call returns 1, nothing is lost: lend another block with nlsAddBuffer and call again. What was left of
 * the older block is not used any more, and a call that failed starts again in the new block, so a block
 * must hold the largest single table on its own.
 *
 *   First block     at least 25000 bytes. 120 of them and 64 for each entry of the directory are needed
 *                   before anything else: lend 128 KB or more for velnls.dat; velnls-small.dat opens in
 *                   25000 bytes.
 *   Further blocks  at least 76000 bytes; 128 KB where CP936, CP949, CP950, CP950-HKSCS or CP1361 is
 *                   converted.
 *   Alignment       none is required; blocks that start on a multiple of 8 lose no bytes to padding.
 *   Contents        a block is set to zero when it is lent.
 *   Lifetime        a block must stay where it is, and stay unchanged, until nlsClose has returned 0. After
 *                   that, the caller frees or reuses all of them; the library frees nothing.
 *
 * docs/memory.md has the sizes of what is carved and advice on how much to lend.
 */

/*
 * Reads from the data file for the library, which never opens a file itself.
 *
 * Copies up to 'length' bytes that stand at 'offset', counted from the file's start, to 'buffer' and
 * returns how many were copied. 'file' is the token that was given to nlsInit, for the callback's own use.
 * A count below 'length' is taken as a failure to read.
 *
 * The callback is called from nlsInit, nlsCreateLocale, nlsCreateConversion and nlsDbCollationToLocale, in
 * the thread of the caller, and must stay valid until nlsClose. Calls back into the library with the same
 * handle that would change it return 23.
 */
typedef uint32_t (*nlsReadCallback)(uint32_t file, uint32_t offset, unsigned char *buffer, uint32_t length);

/* ====================================================================================================== */
/*                                                 Handle                                                 */
/* ====================================================================================================== */

/*
 * nlsInit() opens a data file and makes a handle in lent memory.
 *
 * 'file' is passed to every call of 'read' and not looked at. 'memory' is the first block, 'size' its
 * bytes. 'read' is the callback above. '*handle' receives the handle, which is the address 'memory' itself;
 * it is written only on success.
 *
 * Returns:
 *   16  'memory', 'read' or 'handle' is null; nothing is written
 *   1   'size' is below 25000; nothing is written
 *   5   the first 16 bytes could not be read, or do not begin with 4242
 *   6   the file's version is neither 4 nor 5
 *   1   the directory does not fit into the block (or states a negative number of entries)
 *   4   an entry of the directory could not be read, or names no place although it must
 *   0   the handle is live
 *
 * After a failure the block holds no handle and must not be used as one. A block of exactly 25000 bytes is
 * accepted. A file whose directory is empty is accepted; then every look-up by name fails.
 */
NLS_API nlsStatus nlsInit(uint32_t file, void *memory, int32_t size, nlsReadCallback read,
                          nlsHandle **handle);

/*
 * nlsAddBuffer() lends a handle another block of memory.
 *
 * The rest of the block in use so far is given up, so call this when a call returned 1 and not earlier.
 *
 * Returns:
 *   13  'handle' is null or closed
 *   16  'memory' is null
 *   23  the handle is busy
 *   1   'size' is below 76000; the handle stays as it was
 *   0   the block is in use
 */
NLS_API nlsStatus nlsAddBuffer(nlsHandle *handle, void *memory, int32_t size);

/*
 * nlsClose() ends a handle and everything made from it.
 *
 * Closes what the handle opened outside lent memory: ICU converters and collators, the user sort exit.
 * Afterwards the handle, its locales and its conversions are refused with 13 while their memory stands, and
 * the caller may free every block it lent.
 *
 * Returns:
 *   13  'handle' is null or closed already
 *   23  the handle is busy (as when the read callback calls this)
 *   0   closed
 */
NLS_API nlsStatus nlsClose(nlsHandle *handle);

/* ====================================================================================================== */
/*                                            Counted strings                                             */
/* ====================================================================================================== */

/*
 * A buffer of the caller's, its size and the length of the text in it. Calls that return text fill one. The
 * library never allocates, frees or moves 'buffer'. 'size' and 'length' are compared as signed numbers:
 * sizes up to 2147483647 can be used. Calls that fill a string keep the byte at buffer + length 0.
 */
typedef struct nlsStr {
    char *buffer;
    uint32_t size;   /* bytes of the buffer, the terminating NUL included */
    uint32_t length; /* bytes of text, the terminating NUL not included */
} nlsStr;

/*
 * nlsInitString() makes an empty string of a buffer: 'buffer' and 'size' are stored, the length is 0 and,
 * unless 'size' is 0, the first byte of the buffer becomes 0.
 *
 * Returns:
 *   16  'buffer' or 'string' is null
 *   0   stored
 */
NLS_API nlsStatus nlsInitString(char *buffer, uint32_t size, nlsStr *string);

/*
 * nlsSetString() wraps text that stands in a buffer already: the three numbers are stored as they are
 * given, the buffer is not looked at and not written to. A null 'buffer' is stored too.
 *
 * Returns:
 *   16  'string' is null
 *   0   stored
 */
NLS_API nlsStatus nlsSetString(char *buffer, uint32_t size, uint32_t length, nlsStr *string);

/*
 * nlsAppendString() appends up to 'count' bytes of 'text', stopping at a NUL, behind the string's length,
 * and a NUL behind them. A 'count' of 0 or less appends nothing.
 *
 * Returns:
 *   16  'text', 'string' or its buffer is null
 *   2   'count' exceeds size - length - 1, or that room is negative; the string stays as it was. 'count'
 *       decides, not the length of 'text'
 *   0   appended; the length has grown by the bytes copied
 */
NLS_API nlsStatus nlsAppendString(const char *text, int32_t count, nlsStr *string);

/*
 * nlsGetBufOfnlsStr(), nlsGetBufSizeOfnlsStr() and nlsGetStrLengthOfnlsStr() hand out the three members.
 *
 * Returns:
 *   16  an argument is null
 *   0   '*buffer', '*size' or '*length' is written
 */
NLS_API nlsStatus nlsGetBufOfnlsStr(const nlsStr *string, char **buffer);
NLS_API nlsStatus nlsGetBufSizeOfnlsStr(const nlsStr *string, uint32_t *size);
NLS_API nlsStatus nlsGetStrLengthOfnlsStr(const nlsStr *string, uint32_t *length);

/*
 * nlsCopyString() replaces the string's text by up to 'count' bytes of 'text', stopping at a NUL.
 *
 * Returns:
 *   16  'text', 'string' or its buffer is null
 *   2   the string's size is 0, or 'count' exceeds it; the string stays as it was
 *   0   copied; the length is that of the new text
 *
 * ONE-BYTE OVERRUN: A 'count' EQUAL TO THE SIZE IS ACCEPTED. WHEN THE TEXT HAS THAT MANY BYTES, THE
 * TERMINATING NUL IS WRITTEN ONE BYTE BEHIND THE STATED SIZE. GIVE EVERY BUFFER ONE BYTE MORE THAN IS
 * STATED. The calls that return text through this one share the overrun; they say "as nlsCopyString".
 */
NLS_API nlsStatus nlsCopyString(const char *text, int32_t count, nlsStr *string);

/*
 * nlsCopynlsStr() replaces the text of 'target' by that of 'source': at most its length, stopping at a NUL.
 *
 * Returns:
 *   16  an argument or a buffer is null
 *   2   the target's size is 0 or less than the source's length; the target stays as it was
 *   0   copied
 *
 * ONE-BYTE OVERRUN AS nlsCopyString: EQUAL SIZES ARE ACCEPTED, AND THE NUL THEN STANDS ONE BYTE BEHIND THE
 * TARGET'S STATED SIZE.
 */
NLS_API nlsStatus nlsCopynlsStr(const nlsStr *source, nlsStr *target);

/* ====================================================================================================== */
/*                                           Library properties                                           */
/* ====================================================================================================== */

/*
 * nlsGetIntNLSProperty() answers a question about the handle and its data file with a number.
 *
 *   'property'  '*value'
 *   1           length of text property 2, without its NUL
 *   4           a length that text property 7 does not exceed (room for the ICU names is always counted in)
 *   5           length of text property 8
 *   6           length of text property 9
 *   10          16
 *   21          bytes left in the lent block that is in use
 *   23          712, the bytes of a locale and one collation
 *
 * Returns:
 *   13  'handle' is null or closed
 *   16  'value' is null
 *   12  any other property
 *   0   '*value' is written
 */
NLS_API nlsStatus nlsGetIntNLSProperty(nlsHandle *handle, int32_t property, uint32_t *value);

/*
 * nlsGetStrNLSProperty() lists what the data file offers, in the file's order, items separated by ",".
 *
 *   'property'  each item
 *   2           a code page
 *   7           a code page, " ", a collation. Behind the item of "UTF-8" follow ",UTF-8 ICU-UCA" and so
 *               on: the 55 names of ICU collations, whether or not ICU is there
 *   8           a code page, " ", a case table
 *   9           a code page, " -> ", a code page: a conversion
 *
 * Whether the handle is live is not checked: it must be.
 *
 * Returns:
 *   13  'handle' is null
 *   16  'text' or its buffer is null
 *   12  any other property; 'text' is empty then
 *   2   the list does not fit; 'text' holds its beginning, cut between parts of items
 *   0   'text' holds the list, which may be empty
 */
NLS_API nlsStatus nlsGetStrNLSProperty(nlsHandle *handle, uint32_t property, nlsStr *text);

/* ====================================================================================================== */
/*                                      Charset names of the system                                       */
/* ====================================================================================================== */

/*
 * nlsGetOSCharset() writes the ANSI code page of the calling thread to 'out' as decimal digits and a NUL,
 * for example 1252. 'out' must have room for 20 bytes; at most 20 are written.
 *
 * Windows is asked for the thread's locale. Elsewhere the page is the one that Windows has for the language
 * and territory of the locale that uselocale() set for the thread, or setlocale() for all threads; where
 * that names no language ("C"), of LC_ALL, LC_CTYPE or LANG, whichever is set first. Languages that Windows
 * writes in Unicode alone, such as Hindi, have page 0.
 *
 * Needs no handle and may be called from any thread, but not while another one changes the environment.
 *
 * Returns:
 *   16  'out' is null
 *   28  the system names no code page (no locale with a language is set); 'out' is empty then
 *   0   'out' is written
 */
NLS_API nlsStatus nlsGetOSCharset(char *out);

/*
 * nlsGetVelCharset() turns a code page number of the system, or a charset name, into the library's name for
 * it.
 *
 * Two lists are searched in order: the numbers (1250 to 1254, 1256 and 1257 keep their name; 1255 gives
 * ISO8859-8, 932 SHIFT-JIS, 1361 CP1361, 949 CP949, 936 CP936, 874 620-2533, CP950 itself), then the
 * library's own names, which give themselves in their listed spelling. Where 'handle' is null, names are
 * compared without regard to letter case and trailing blanks, and 'locale' is not read; else by nlsCompare
 * in 'locale' without regard to letter case (mode 0), and the first name that the collation calls equal is
 * taken. That a name is returned does not mean that the data file has the page.
 *
 * 'osName' "950" has a rule of its own: CP950-HKSCS when the English name of the country of the thread's
 * locale begins with "Hong Kong" and, where a handle is given, its data file lists that page (in a list of
 * code pages of less than 700 bytes); else CP950. 'locale' is not looked at.
 *
 * 'out' must have room for 12 bytes. It is written on success only, and may be 'osName' itself.
 *
 * Without a handle this may be called from any thread; with one, where nlsCompare may be.
 *
 * Returns:
 *   16  'osName' or 'out' is null
 *   0   for "950": every problem there leaves CP950
 *   13  a handle is given and 'locale' is null or its handle closed
 *   24  a handle is given and 'locale' is not a locale
 *       a status of nlsCompare, passed on: 27 or 25 for a locale that cannot compare, among others
 *   20  the name is in neither list
 *   0   'out' is written
 */
NLS_API nlsStatus nlsGetVelCharset(nlsHandle *handle, nlsLocale *locale, const char *osName, char *out);

/* ====================================================================================================== */
/*                                                Locales                                                 */
/* ====================================================================================================== */

/* As 'collationName' of nlsCreateLocale: a locale without a collation. */
#define NLS_NO_COLLATION ((const char *)(intptr_t)-1) /* the all-ones pointer */

/*
 * nlsCreateLocale() finds or makes the locale of a code page, a collation and a case table.
 *
 * 'codePageName' is one of library property 2. 'collationName' is the name of a collation of that page,
 * null for "basic", or NLS_NO_COLLATION. 'caseTableName' is the name of a case table of that page, or null
 * for none. '*locale' receives the locale, which lives until the handle is closed.
 *
 * Locales are shared: asking again with the same three names gives the same locale, also while the handle
 * is busy. An empty 'collationName' is looked up as "basic" but, where no such locale exists, makes one
 * without collation: each such call makes another. Use NLS_NO_COLLATION instead.
 *
 * A page that collates through Shift-JIS (locale property 12) gets a "SHIFT-JIS" locale and a conversion to
 * it made beside it, with the same collation and case table names.
 *
 * Returns:
 *   13  'handle' is null or closed
 *   16  'codePageName' or 'locale' is null
 *   0   an existing locale is handed out
 *   23  the handle is busy
 *   1   the lent memory is used up
 *   9   no such code page
 *   21  the page's table could not be read in full
 *   1   an ICU collation does not open; more memory does not help
 *   10  no such collation for the page
 *   25  the collation cannot be used: a BASIC record that does not say so, a user sort exit that does not
 *       load
 *   21  the collation could not be read in full
 *   11  no such case table for the page
 *   21  the case table could not be read in full
 *   22  the case table cannot be built
 *       for a page that collates through Shift-JIS: what making the companion or the conversion returned.
 *       '*locale' is written then and the locale can be used for everything but its collation
 *   0   '*locale' is written
 *
 * 1 can come from every step that makes something; memory taken before a failure stays taken. Nothing else
 * of a failed call remains.
 */
NLS_API nlsStatus nlsCreateLocale(nlsHandle *handle, const char *codePageName, const char *collationName,
                                  const char *caseTableName, nlsLocale **locale);

/*
 * nlsCloseDBLocale() retires a locale that nlsDbCollationToLocale made and gives its block back.
 *
 * '*block' receives the block (the locale's own address) and '*size' the size that was given with it; the
 * locale is refused with 24 from then on and the caller may free the block. For any other locale nothing
 * changes: '*block' becomes null, '*size' 0, and the call returns 0. Conversions made with the locale must
 * not be used any more. The locale's ICU collator is closed.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'block' or 'size' is null
 *   0   an ordinary locale
 *   23  the handle is busy
 *   0   retired
 */
NLS_API nlsStatus nlsCloseDBLocale(nlsLocale *locale, void **block, uint32_t *size);

/*
 * nlsGetIntLocaleProperty() answers a question about a locale with a number.
 *
 *   'id'  '*value'
 *   3     most bytes of a character as the page is filed: 4 for the Unicode forms, 2 for other multibyte
 *         pages, else 1
 *   4     length of text property 7, without its NUL
 *   5     length of text property 8
 *   6     length of text property 9
 *   11    1 for a multibyte page (the Unicode forms are filed as such), else 0
 *   12    1 for a page that collates through Shift-JIS, else 0
 *   13    1 for UTF-8, else 0
 *   14    1 for a page of 16-bit units (UTF-16, UCS2), else 0
 *   22    a size of the locale's tables: 576 for every collation that the data file or ICU provides; for a
 *         rebuilt locale of another kind 1368, with a case table 1884, with a Unicode case table 1368 and
 *         that table's size
 *   25    1 for a multibyte page that is no Unicode form, else 0
 *   26    1 for a page of 32-bit units (UTF-32), else 0
 *   27    1 for UTF-8, 2 for other multibyte pages, 3 for single-byte pages
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'value' is null
 *   12  any other id
 *   25  id 22 of a locale without collation
 *   0   '*value' is written
 */
NLS_API nlsStatus nlsGetIntLocaleProperty(nlsLocale *locale, int32_t id, uint32_t *value);

/*
 * nlsGetStrLocaleProperty() answers a question about a locale with text.
 *
 *   'id'  'text'
 *   7     the collations of the page, separated by ",". UTF-16 and UTF-32 use those of "UTF-8", UCS2 its
 *         own. A list of "UTF-8" ends with the 55 names of ICU collations, whether or not ICU is there
 *   8     the case tables of the page, separated by ","
 *   9     the conversions from and to the page, each as two names with " -> " between, separated by ","
 *   18    the name of the code page, as the locale's maker spelled it
 *   19    the name of the collation; empty when there is none
 *   20    the name of the case table; empty when there is none
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'text' or its buffer is null
 *   12  any other id
 *   2   the text does not fit. Lists (7, 8, 9) leave their beginning, cut between parts of items; names
 *       leave 'text' as it was
 *   0   'text' is written
 *
 * Ids 18, 19 and 20: ONE-BYTE OVERRUN AS nlsCopyString.
 */
NLS_API nlsStatus nlsGetStrLocaleProperty(nlsLocale *locale, int32_t id, nlsStr *text);

/* ====================================================================================================== */
/*                                        Stored collation records                                        */
/* ====================================================================================================== */

/*
 * A collation as a database keeps it with its data: self-contained, so that the order stays what it was
 * when the data file changes. The caller supplies 'data', and 'sortData' and 'sortTarget' for rebuilding;
 * the library fills the rest. The layout is part of the interface and is stored as it is.
 */
typedef struct nlsDbCollation {
    char codePageName[20];
    char collationName[20];
    char caseTableName[20];
    uint32_t collationKind;
    uint32_t collationWord;
    uint32_t dataSize;        /* bytes used in 'data' */
    uint32_t blockSize;       /* bytes of block that the data needs, name and sort data not counted */
    unsigned char *data;      /* supplied by the caller */
    const uint16_t *sortData; /* may be null; the second number is its length in bytes */
    nlsLocale *sortTarget;    /* may be null */
} nlsDbCollation;

/*
 * nlsLocaleToDbCollation() writes a locale's names and tables into a record.
 *
 * 'level' below 6 asks for the old form, any other for the new. 'roomInData' is the size of the area at
 * 'record->data'.
 *
 *   form                       dataSize   blockSize
 *   old                        512        712
 *   new, no case table         1368       1504
 *   new, byte case table       1884       2020
 *   new, Unicode case table    1368 + n   1504 + n + m; n, m: the case table's first two 32-bit words
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'record' or 'record->data' is null
 *   27  the locale has no character table
 *   25  the locale has no collation
 *   2   the data needs more than 'roomInData'; nothing is written
 *   0   the record and its data are written
 */
NLS_API nlsStatus nlsLocaleToDbCollation(nlsLocale *locale, int32_t level, uint32_t roomInData,
                                         nlsDbCollation *record);

/*
 * nlsDbCollationToLocale() rebuilds a locale from a record, inside one block of the caller's.
 *
 * 'name' is the name that the locale carries at the end of its block. '*blockSize' is the size of 'block'.
 * '*locale' receives the locale, whose address is 'block'. A record whose 'dataSize' is 512 or less is of
 * the old form; its character table and "basic" case table come from the data file. The block must stay
 * until nlsCloseDBLocale hands it back, or nlsClose.
 *
 * The size needed is the length of 'name' + 1 + 712, the sort data's length + 62 (318 without sort data),
 * and for the new form 792 and the size of the case table.
 *
 * Returns:
 *   13  'handle' is null or closed
 *   16  'record', its data, 'name', 'blockSize' or 'locale' is null
 *   23  the handle is busy
 *   2   the block is too small; '*blockSize' receives the size needed
 *   16  'block' is null (so a null 'block' with '*blockSize' 0 asks for the size)
 *   1, 9, 11, 21, 22  as nlsCreateLocale, for an old record; 1, 21 and 22 for a new one with bad tables
 *   25  a BASIC record that does not say so
 *   10  the record's user sort exit does not load
 *   1   the record's ICU collation does not open
 *       the statuses of nlsCreateLocale and nlsCreateConversion for the Shift-JIS companion and for
 *       'sortTarget'
 *   0   '*locale' is written
 *
 * After a failure the locale does not exist and the block, partly written, is the caller's again. A locale
 * rebuilt without sort data answers 32 to nlsIsSortNeeded and nlsGetNextWord.
 */
NLS_API nlsStatus nlsDbCollationToLocale(nlsHandle *handle, const nlsDbCollation *record, const char *name,
                                         uint32_t *blockSize, void *block, nlsLocale **locale);

/* ====================================================================================================== */
/*                                               Characters                                               */
/* ====================================================================================================== */

/*
 * Walking takes text as it is: a lead byte takes as many bytes as the code page says, valid or not, but a
 * NUL among the first three bytes behind it ends the walk on that NUL. A character of five to eight bytes
 * is stepped over without a look, so text must hold it whole. nlsValidateString tells whether text is well
 * formed.
 */

/*
 * nlsGetNextChar() steps over the character at 'p'.
 *
 * '*next' receives the address of the next character, or of the terminating NUL.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'p' or 'next' is null
 *   27  the locale has no character table; '*next' is null
 *   20  '*next' is the terminating NUL (also when 'p' was)
 *   0   another character stands at '*next'
 */
NLS_API nlsStatus nlsGetNextChar(nlsLocale *locale, const char *p, char **next);

/*
 * nlsGetPrevChar() finds the character before 'p' in the text that begins at 'start'.
 *
 * In UTF-8 that is the nearest byte before 'p' that is no continuation byte. In other pages the bytes that
 * could lead a character are counted backwards, never before 'start': the answer is exact for pages of one-
 * and two-byte characters. 'p' may be the terminating NUL.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'p', 'start' or 'prev' is null
 *   27  the locale has no character table; '*prev' is null
 *   20  'p' is 'start' (or before it); '*prev' is 'start'
 *   0   '*prev' is the start of a character
 */
NLS_API nlsStatus nlsGetPrevChar(nlsLocale *locale, const char *p, const char *start, char **prev);

/*
 * nlsGetCharProperty() classifies the character at 'ch'.
 *
 * 'classValue' is the class to expect, normally 0; only its low byte is compared. The class of a byte is 1
 * for a letter of a single-byte page beyond the ASCII letters, else 0, in the data files that nlsgen makes.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'ch' or 'value' is null
 *   27  the locale has no character table
 *   -1  the byte is of another class: '*value' is 'classValue' + 1
 *   -1  it leads a multibyte character: '*value' is the character's length in bytes
 *   -2  it is one of the ASCII codes of "0" to "9": '*value' is 0 to 9
 *   0   any other: '*value' is the byte
 */
NLS_API nlsStatus nlsGetCharProperty(nlsLocale *locale, const char *ch, int32_t classValue, uint32_t *value);

/*
 * nlsCharToLChar() reads the character at '*pp' as a number and steps over it.
 *
 * '*lchar' receives the packed character: 0 at the end of the text, 63 for a character of more than four
 * bytes, and the bytes that are there for a character cut by a NUL.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'pp', '*pp' or 'lchar' is null
 *   27  the locale has no character table; '*lchar' is 0
 *   20  '*pp' now is at a NUL
 *   0   another character stands at '*pp'
 */
NLS_API nlsStatus nlsCharToLChar(nlsLocale *locale, char **pp, uint32_t *lchar);

/*
 * nlsLCharToChar() writes a packed character to '*pp' and moves '*pp' behind it. No NUL is written behind
 * it.
 *
 * '*length' receives the bytes written. Numbers below 256 are written as one byte, up to 65534 as two, from
 * 0xE08080 to 0xF4BFC0 as three: these are all that can be written. Room for 3 bytes is enough.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'pp', '*pp' or 'length' is null
 *   27  the locale has no character table
 *   17  'lchar' is no character of the page. '*pp' has not moved, but bytes may have been written there,
 *       and when only a trail byte is wrong '*length' is set
 *   0   written
 *
 * In UTF-8 the numbers 128 to 255 give 17. In other pages a number below 256 is written whatever the page.
 */
NLS_API nlsStatus nlsLCharToChar(nlsLocale *locale, uint32_t lchar, char **pp, uint16_t *length);

/* ====================================================================================================== */
/*                                     Character search and trimming                                      */
/* ====================================================================================================== */

/*
 * Characters are compared by nlsCompareN under 'caseFlag' (its 'mode'), so these calls need a locale with a
 * collation.
 */

/*
 * nlsFindCharForw() finds the first character of 'str' that equals '*lchar'.
 *
 * '*position' receives its position, '*found' its address; 0 and null when there is none, and before
 * anything is checked. A '*lchar' of 0 finds the terminating NUL.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'lchar', 'str', 'position' or 'found' is null
 *   27  the locale has no character table
 *       a status of nlsCompareN, passed on
 *   0   found or not
 */
NLS_API nlsStatus nlsFindCharForw(nlsLocale *locale, const uint32_t *lchar, const char *str,
                                  uint16_t caseFlag, uint32_t *position, char **found);

/*
 * nlsFindCharBack() is nlsFindCharForw() from the other end: the last character within the first 'length'
 * bytes that equals '*lchar'. With 'length' 0 nothing is found. A '*lchar' of 0 finds the terminating NUL
 * of the whole string, whatever 'length'. 'str' ends with a NUL behind the 'length' bytes in any case: the
 * last character is looked at whole.
 *
 * Returns: as nlsFindCharForw; also 16 for a negative 'length', unless '*lchar' is 0.
 */
NLS_API nlsStatus nlsFindCharBack(nlsLocale *locale, const uint32_t *lchar, const char *str, int32_t length,
                                  uint16_t caseFlag, uint32_t *position, char **found);

/*
 * nlsFindLtrimPtrForw() finds where 'str' begins once the characters of 'trimSet' are taken off its left
 * end. A null 'trimSet' is one blank.
 *
 * '*result' receives the address of the first character that stays, or of the terminating NUL; '*position'
 * its position. Nothing is written to 'str'.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'str', 'position' or 'result' is null
 *   27  the locale has no character table; '*result' is null
 *       a status of nlsCompareN, passed on
 *   0   '*result' and '*position' are written
 */
NLS_API nlsStatus nlsFindLtrimPtrForw(nlsLocale *locale, const char *trimSet, const char *str,
                                      uint16_t caseFlag, uint32_t *position, char **result);

/*
 * nlsFindRtrimPtrBack() finds where the first 'length' bytes of 'str' end once the characters of 'trimSet'
 * are taken off their right end. A null 'trimSet' is one blank.
 *
 * '*result' receives the address behind the last character that stays, or 'str'; '*position' its position,
 * so '*position' - 1 is the length that stays. 'str' is written to only where the locale's collation is the
 * user sort exit: then single bytes are 0 for a moment and restored.
 *
 * Returns: as nlsFindLtrimPtrForw, with the statuses of nlsSearchForw for those of nlsCompareN; also 16 for
 * a negative 'length'.
 */
NLS_API nlsStatus nlsFindRtrimPtrBack(nlsLocale *locale, const char *trimSet, char *str, int32_t length,
                                      uint16_t caseFlag, uint32_t *position, char **result);

/* ====================================================================================================== */
/*                                               Conversion                                               */
/* ====================================================================================================== */

/*
 * nlsCreateConversion() finds or makes the conversion between the code pages of two locales.
 *
 * '*conversion' receives it; it lives until the handle of 'source' is closed. Conversions are shared by the
 * names of the two pages: other locales of the same pages get the same conversion.
 *
 * Two locales of one page give a plain copy. A pair that the data file does not list can be made where one
 * side is a Unicode form: through a third page, as a chain (property 28). Any other pair is refused with 8;
 * go through UTF-8 with two conversions then.
 *
 * Returns:
 *   13  'handle' is null; 'source' is null or its handle closed
 *   24  'source' is not a live locale
 *   13  'target' is null or its handle closed
 *   24  'target' is not a live locale
 *   16  'conversion' is null
 *   0   an existing conversion is handed out, also while the handle is busy
 *   23  the handle is busy
 *   1   the lent memory is used up
 *   8   there is no such conversion, or its tables cannot be used
 *   21  a table could not be read in full
 *   22  the characters of a byte table cannot be told apart
 *   0   '*conversion' is written
 *
 * After 1, 8, 21 and 22 the memory taken stays taken, and a later call tries again from the start.
 */
NLS_API nlsStatus nlsCreateConversion(nlsHandle *handle, nlsLocale *source, nlsLocale *target,
                                      nlsConversion **conversion);

/*
 * nlsGetIntConversionProperty() answers a question about a conversion with a number.
 *
 *   'id'  '*value'
 *   17    most bytes of output for a byte of input, by the converter's kind
 *   24    most bytes of a character of the output, by the converter's kind
 *   28    1 for a chain, whose nlsConvertNLS needs an intermediate buffer, else 0
 *
 *   converter (kinds)                                        17    24
 *   plain copy, two locales of one page                      1     1
 *   byte to byte (1)                                         1     property 3 of the target's locale
 *   Shift_JIS to EUC-JP (3), and back (4)                    2, 1  2
 *   through ICU, from Unicode (5), to Unicode (6)            4     -
 *   page to UTF-8 (17), with four-byte results (81), (89)    3, 3, 4   3, 4, 4
 *   UTF-8 to a multibyte page (18), to a single-byte (50)    2, 1  2
 *   page to UTF-8 by bytes (19), (51), and back (20)         3, 2, 1   3, 2, 1
 *   UTF-16 to UTF-8 (21, 23)                                 2     4
 *   UTF-8 to UTF-16 (24), to UCS2 (22)                       2     4, 2
 *   UTF-32 to UTF-8 (25), UTF-8 to UTF-32 (26)               -     4
 *   UTF-16 to UTF-32 (27), UTF-32 to UTF-16 (28)             2, -  4
 *   page to UTF-16 (29), UTF-16 to page (30)                 2, -  4, 2
 *   chain (7)                                                both steps' product; the second's value
 *
 * For every converter, also where 17 has no value (-), a destination of 4 times the source's bytes and 4
 * more is large enough for the output and its terminator; so is property 17 times the source's bytes
 * and 4 more where it has one, but for kind 51. Pages of ICU's that put marks or escape sequences between
 * their characters, or have characters of more than four bytes, may take more.
 *
 * Returns:
 *   13  'conversion' is null or the handle of one of its locales closed
 *   26  'conversion' is not a conversion
 *   16  'value' is null
 *   12  any other id
 *   16  the kind has no such value
 *   0   '*value' is written
 */
NLS_API nlsStatus nlsGetIntConversionProperty(nlsConversion *conversion, int32_t id, uint32_t *value);

/*
 * nlsGetStrConversionProperty() names the two ends of a conversion.
 *
 *   'id'  'text'
 *   15    the name of the source's code page, as the maker of its locale spelled it
 *   16    the name of the target's code page
 *
 * Returns:
 *   13  'conversion' is null or the handle of one of its locales closed
 *   26  'conversion' is not a conversion
 *   16  'text' or its buffer is null
 *   12  any other id
 *   2   the name does not fit; 'text' stays as it was
 *   0   'text' is written
 *
 * ONE-BYTE OVERRUN AS nlsCopyString.
 */
NLS_API nlsStatus nlsGetStrConversionProperty(nlsConversion *conversion, int32_t id, nlsStr *text);

/*
 * What all conversion calls share
 *
 *   Substitution  A character without counterpart becomes "?" (0x6F in the EBCDIC pages) in a byte page and
 *                 U+FFFD in a Unicode form; the output is complete and the result is -3. Two exceptions
 *                 report nothing: byte to byte tables, which put "?" where a byte has no counterpart, and
 *                 the first step of a chain.
 *   Malformed     UTF-8 that begins with a continuation byte gives 16, and nothing is converted. A
 *                 character cut by the end of the input gives 16 from UTF-8 (but see below) and between
 *                 SHIFT-JIS and EUCJIS; from other multibyte pages the bytes that are there are taken as a
 *                 code, which has no counterpart as a rule and is substituted. Else UTF-8 is decoded
 *                 leniently, without a check for overlong forms, surrogates or bad trail bytes: use
 *                 nlsValidateString, or the velnls command, to find such text. Surrogates out of pair
 *                 become "?" on the way to UTF-8, with 16 from UTF-16 and 33 from UTF-32, the output
 *                 complete; between UTF-16 and UTF-32 they pass unchanged. Values above U+10FFFF become
 *                 U+FFFD in UTF-16 and in UTF-32 from UTF-8; from UTF-32 to UTF-8 they are written in four
 *                 or five bytes, from 0x4000000 up as FF BD. A unit cut by the end of UTF-16 or UTF-32
 *                 input ends the input.
 *   Small buffer  2: what fitted is written and counted, whole characters only. Three differ: byte to byte
 *                 tables write nothing; the page to UTF-8 converters by bytes (kinds 19, 51) fill the rest
 *                 with blanks and a 0; the plain copy writes as many bytes as there is room for, whatever
 *                 characters they cut.
 *   Byte order    is that of the machine for UTF-16, UTF-32 and UCS2, high byte first for UTF-16BE and
 *                 UTF-32BE. No byte-order mark is read, skipped or written.
 *   Buffers       'source' and 'destination' must not overlap.
 *   ICU           converters (kinds 5 and 6) end the text at its first NUL too. Between UTF-8 and such a
 *                 page the destination must have room for the UTF-16 form beside a first byte, twice the
 *                 source's bytes and 3 more: else the call gives 2 and nothing is converted; so it does
 *                 for texts of 2000 bytes and more whose output would overtake that form, which lies at
 *                 the destination's end. Whatever ICU calls an error is 16, too small a destination among
 *                 it, and then nothing is counted. What ICU substitutes is not
 *                 reported. A UTF-16 SOURCE AT AN ODD ADDRESS OR OF THE OTHER BYTE ORDER IS CHANGED IN
 *                 PLACE AND CHANGED BACK; AT AN ODD ADDRESS SO IS THE BYTE BEHIND ITS TERMINATOR (BEHIND
 *                 ITS LENGTH WHERE IT HAS NONE): IT MUST BE WRITABLE.
 *
 * ONE BYTE BEHIND THE SOURCE IS READ BY CONVERSIONS FROM UTF-8 WHEN ITS LAST CHARACTER IS SHORT BY EXACTLY
 * ONE BYTE, AND TAKEN AS ITS LAST BYTE: IT MUST BE THE TEXT'S TERMINATING NUL, OR AT LEAST READABLE. SO IS
 * THE BYTE BEHIND A SOURCE OF BYTES THAT ICU CONVERTS, TO SEE WHETHER IT IS THE NUL. The
 * calls that convert the terminator too (nlsConvertNLSCheck, nlsConvertToUCS2) read nothing behind it.
 */

/*
 * nlsConvertNLS() converts a counted string and terminates the result.
 *
 * 'source' is read by its buffer and length. 'destination' must have buffer and size; its text is replaced.
 * 'intermediate' is scratch for chains (property 28), as large as the text between the two steps; its
 * buffer and size are used and its contents overwritten. For other conversions it is not looked at and may
 * be null.
 *
 * Behind the output stands a terminator that is not counted in the length: 2 zero bytes behind UTF-16, 4
 * behind UTF-32, else 1.
 *
 * Returns:
 *   13  'conversion' is null or the handle of one of its locales closed
 *   26  'conversion' is not a conversion
 *   16  'source', 'destination' or one of their buffers is null (an empty source needs no buffer)
 *   2   the output and its terminator do not fit: what fitted stands and the length counts it. A terminator
 *       follows only where there is room for it. This is reported before the results below
 *   16  a chain without intermediate buffer, or with one of size 0
 *   16  malformed input, see above
 *   33  surrogates out of pair in UTF-32
 *   8   ICU has no UTF-8 converter
 *   -3  complete, with substitutions
 *   0   complete
 */
NLS_API nlsStatus nlsConvertNLS(nlsConversion *conversion, const nlsStr *source, nlsStr *intermediate,
                                nlsStr *destination);

/*
 * nlsConvertNLSCheck() converts a counted string and tells whether that changed it.
 *
 * The source's terminating NUL is converted with it, and taken off the destination's length again; SO THE
 * BYTE BEHIND THE SOURCE'S LENGTH IS READ AND MUST BE ITS NUL. Chains cannot be checked.
 *
 * Returns:
 *   13  'conversion' is null or the handle of one of its locales closed
 *   26  'conversion' is not a conversion
 *   16  'source', 'destination' or one of their buffers is null
 *   16  'source' and 'destination' are one string (or, for some converters, one buffer); a chain
 *   2, 16, 33, 8  as nlsConvertNLS
 *   -2  the conversion changes the text. Between different encodings that is reported for all text that is
 *       not empty: only the plain copy, byte tables (kinds 1, 19, 20, 51) and the two Japanese converters
 *       compare
 *   -3  substitutions by a conversion from UTF-8 by bytes (kind 20); other kinds report them as -2
 *   0   the converted text equals the source
 */
NLS_API nlsStatus nlsConvertNLSCheck(nlsConversion *conversion, const nlsStr *source, nlsStr *destination);

/*
 * nlsConvertLChar() converts one packed character.
 *
 * '*result' receives the packed character of the target, high byte first. From UTF-8 to UTF-32 it is the
 * first byte of the output only.
 *
 * Returns:
 *   13  'conversion' is null or the handle of one of its locales closed
 *   26  'conversion' is not a conversion
 *   16  'result' is null
 *   16  the output has no byte or more than four; a chain; malformed input
 *   2, 33, 8, -3  as nlsConvertNLS, with four bytes of room
 *   0   converted; between two locales of one page the character is handed back unchanged
 */
NLS_API nlsStatus nlsConvertLChar(nlsConversion *conversion, uint32_t character, uint32_t *result);

/*
 * nlsConvertFromUCS2() converts 'length' bytes at 'source', without a terminator on either side.
 *
 * Nothing in the call looks at the encodings: it runs whatever converter the conversion holds.
 * 'destination' receives the output and its length; NO NUL IS WRITTEN BEHIND IT.
 *
 * Returns:
 *   13  'conversion' is null or the handle of one of its locales closed
 *   26  'conversion' is not a conversion
 *   16  'source', 'destination' or its buffer is null
 *   16  a chain; malformed input
 *   2, 33, 8, -3, 0  as nlsConvertNLS, no terminator counted
 */
NLS_API nlsStatus nlsConvertFromUCS2(nlsConversion *conversion, const void *source, uint32_t length,
                                     nlsStr *destination);

/*
 * nlsConvertToUCS2() converts a counted string, its terminating NUL included, into a plain buffer.
 *
 * 'capacity' is the size of 'destination' in bytes; an odd one never lets half a unit through. '*written'
 * receives the bytes written, the converted NUL counted. THE BYTE BEHIND THE SOURCE'S LENGTH IS READ AND
 * MUST BE ITS NUL.
 *
 * Returns:
 *   13  'conversion' is null or the handle of one of its locales closed
 *   26  'conversion' is not a conversion
 *   16  'source', its buffer, 'destination' or 'written' is null
 *   16  a chain; malformed input
 *   2, 33, 8, -3, 0  as nlsConvertNLS, no further terminator counted
 */
NLS_API nlsStatus nlsConvertToUCS2(nlsConversion *conversion, const nlsStr *source, uint32_t capacity,
                                   void *destination, uint32_t *written);

/* ====================================================================================================== */
/*                                               Collation                                                */
/* ====================================================================================================== */

/*
 * What all collation calls share
 *
 *   Modes         1 is the case-sensitive order, 0 the case-insensitive one. With a weight table any other
 *                 mode gives 16 from the compares and an empty sort key; BASIC compares byte by byte in
 *                 every mode but 0. ICU collations compare with tertiary (1) or secondary (0) strength; 4,
 *                 5, 6 and 8 set the strength values 0, 1, 2 and 4, and any other mode returns 0 and leaves
 *                 the result unwritten. A Thai collation takes every mode but 0 as 1. The user sort exit
 *                 gets the mode as it is.
 *   Blanks        at the end of a string do not count: "abc" equals "abc  " in every collation.
 *   Names         "basic" exists for every page of the data file. A name that begins with "ICU-" (in this
 *                 spelling) asks ICU, loaded at run time from the directory bin below BINPATHX, else by
 *                 bare file name; text is then taken as UTF-8, whatever the page. Each locale with such a
 *                 name opens a collator of its own. Collations that the data file hands to the user sort
 *                 exit load the library usortwin (.so, .dll, .dylib) from the first directory of PATH
 *                 that has a file of that name, once for each handle.
 *   Expansion     A character of weight 0 in a weight table ("german": U+00DF) equals "ss". A second step
 *                 that stands last is dropped, so it also equals a single "s".
 */

/*
 * nlsSortKey() makes a key of 'source': keys compared by memcmp order as the strings do.
 *
 * 'key' has room for 'keySize' bytes, and the key in it ends with a NUL; '*keyLength' receives its length
 * without the NUL. 'trim' not 0 leaves the blanks at the source's end out of the key. The bit 0x4000 of
 * 'mode' asks an ICU collation for primary strength, and ICU keys also take the modes 4 to 8 for the
 * strength values 0 to 4; 0x2000 and 0x4000 are otherwise not looked at. 'source' is written to only where
 * the collation is the user sort exit: then a byte is 0 for a moment and restored.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'source', 'key' or 'keyLength' is null
 *   27  the locale has no character table
 *   25  the locale has no collation
 *   7   the page collates through Shift-JIS and the handle has no such locale
 *   8   the same, and there is no conversion to it
 *   2   the key fills the buffer, or ICU had to cut it
 *   0   the key is written
 *
 * A key of a weight table that does not fit is cut to 'keySize' - 1 bytes, and the call returns 0. A
 * mode that selects no table gives an empty key under weights. A source that is too long for a BASIC
 * key, and a mode that BASIC does not know, leave 'key' as it was, and the length of what stands there
 * is returned.
 *
 * Keys and compares order alike but for these cases, each by the rules of both:
 *   - an expanding character at the end of a string, and collations whose variant writes "SS" for it in keys;
 *   - where one string is the beginning of the other: what follows there and ranks with or below the blank;
 *   - BASIC with mode 0: in UTF-8 with a case table, characters of four bytes are "?" in keys, as in
 *     nlsLowerCase, and their bytes in compares, so that keys of different characters can be equal; in
 *     double-byte pages a compare puts every single byte below every character of two;
 *   - BASIC in a page that collates through Shift-JIS: the key is made of the Shift-JIS text, a compare looks
 *     at the text as it stands.
 *
 * Behind the NUL, what 'key' holds up to 'keySize' bytes is not specified.
 */
NLS_API nlsStatus nlsSortKey(nlsLocale *locale, char *source, uint16_t keySize, uint16_t mode, uint16_t trim,
                             unsigned char *key, uint16_t *keyLength);

/*
 * nlsCompare() compares two strings; '*result' receives -1, 0 or 1 (from a user sort exit, the number it
 * answers). The order is that of the strings' keys but for the cases that nlsSortKey lists.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'a', 'b' or 'result' is null
 *   27  the locale has no character table
 *   25  the locale has no collation
 *   16  a mode that a weight table does not know; ICU has no UTF-8 converter
 *   7   the page collates through Shift-JIS and the handle has no such locale
 *   8   the same, and there is no conversion to it
 *   2   no memory for a long string (ICU collations)
 *   22  ICU could not compare
 *   0   compared
 */
NLS_API nlsStatus nlsCompare(nlsLocale *locale, const char *a, const char *b, int16_t mode, int16_t *result);

/*
 * nlsCompareN() compares the first 'lengthA' bytes of 'a' with the first 'lengthB' of 'b'. A length of -1
 * (for 'lengthB' (uint32_t)-1) means up to the NUL; a string ends at its NUL in any case. Strings are
 * written to only where the collation is the user sort exit: then the byte behind a length inside the
 * string is 0 for a moment and restored.
 *
 * Returns: as nlsCompare.
 */
NLS_API nlsStatus nlsCompareN(nlsLocale *locale, const char *a, const char *b, int32_t lengthA,
                              uint32_t lengthB, uint16_t mode, int16_t *result);

/*
 * nlsIsSortNeeded() tells for a locale rebuilt with sort data whether sorting differs from the order of its
 * bytes.
 *
 * '*flag' receives 0 for UTF-8 and for sort data of kind 9 or 128, 1 for kind 7.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'flag' is null
 *   32  the locale carries no sort data
 *   6   sort data of another kind
 *   0   '*flag' is written
 */
NLS_API nlsStatus nlsIsSortNeeded(nlsLocale *locale, uint32_t *flag);

/*
 * nlsGetNextWord() takes the next word from '*string' and moves '*string' behind it, by the word classes in
 * the sort data of a rebuilt locale.
 *
 * 'word' has room for 'size' bytes. It receives the word with a NUL, as it stands where the sort data's
 * kind is below 8 and the page is not UTF-8; otherwise the word's sort key under 'mode'. '*length' receives
 * the length of what 'word' holds. Nothing is written behind 'size' bytes.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'string', '*string', 'word' or 'length' is null
 *   32  the locale carries no sort data
 *   20  no further word; '*string' has not moved
 *   2   the word does not fit; '*string' has not moved. 'word' holds what fits of a word that is returned as
 *       it stands, and is not written where keys are
 *   7   a key is asked for, the page collates through Shift-JIS and the handle has no such locale
 *   8   the same, and there is no conversion to it
 *   29  a word of more than 184 bytes was cut to 184; '*string' is behind the whole word
 *   0   a word
 *
 * Keys are ICU's under an ICU collation, and under any other made from weights alone: under BASIC, which has
 * none, the key is empty.
 */
NLS_API nlsStatus nlsGetNextWord(nlsLocale *locale, char **string, int16_t mode, char *word, int32_t size,
                                 uint32_t *length);

/* ====================================================================================================== */
/*                                              Case mapping                                              */
/* ====================================================================================================== */

/*
 * nlsUpperCase() writes 'source' in upper case to 'destination'.
 *
 * The source is read up to its NUL; its length is not looked at. Three ways, by what the locale carries:
 * without a case table, single bytes by toupper() of the C runtime; with one, single bytes by the table; in
 * UTF-8 with a case table, characters of one to three bytes by the table, which may change their length.
 * Multibyte characters of other pages are copied. A character of four bytes or more comes out as "?" in the
 * third way. A character cut by the NUL ends the text.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   27  the locale has no character table
 *   16  'source', 'destination' or one of their buffers is null
 *   2   the destination is too small; what was written stands
 *   0   the destination's length is set
 *
 * ONE-BYTE OVERRUN: A TEXT THAT FILLS THE DESTINATION'S SIZE EXACTLY IS ACCEPTED, AND ITS NUL IS WRITTEN
 * ONE BYTE BEHIND THE STATED SIZE.
 */
NLS_API nlsStatus nlsUpperCase(nlsLocale *locale, const nlsStr *source, nlsStr *destination);

/*
 * nlsLowerCase() is nlsUpperCase() for lower case, by tolower() where that uses toupper(). When the
 * destination is too small in the middle of a multibyte character, a NUL stands where the character would
 * have begun, and the length is as it was.
 *
 * Returns: as nlsUpperCase.
 *
 * ONE-BYTE OVERRUN AS nlsUpperCase.
 */
NLS_API nlsStatus nlsLowerCase(nlsLocale *locale, const nlsStr *source, nlsStr *destination);

/* ====================================================================================================== */
/*                                                  LIKE                                                  */
/* ====================================================================================================== */

/*
 * nlsSqlLike() tells whether 'string' matches the SQL LIKE pattern 'pattern'.
 *
 * 'oneChar' and 'anyString' are the wildcards (commonly "_" and "%") and 'escape' the escape character, as
 * packed characters; 'escape' 0 is none. Literals are compared by nlsCompareN under 'mode'.
 *
 * The result is no status:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'pattern' or 'string' is null
 *   27  the locale has no character table
 *   1   the string matches
 *   0   it does not
 *   -1  the walk reached an escape character before something else than itself or a wildcard
 *       any other: a status of nlsCompareN, passed on when the walk reaches it; behind an any-string
 *       wildcard it counts as "no match there"
 *
 * Rules that differ from what one may expect: the last literal absorbs repeats of itself ("ab" matches
 * "abbb" and not "abc"). An any-string wildcard that is not last does not match the empty end: "%%" does
 * not match "", "%" does. A literal blank equals the end of the string, and the empty pattern matches
 * strings of blanks, by the rule for blanks.
 */
NLS_API nlsStatus nlsSqlLike(nlsLocale *locale, const char *pattern, const char *string, uint16_t mode,
                             uint32_t escape, uint32_t oneChar, uint32_t anyString);

/* ====================================================================================================== */
/*                                           Search and replace                                           */
/* ====================================================================================================== */

/*
 * Text is matched character by character through nlsCompareN under 'caseFlag' (its 'mode'), so these calls
 * need a locale with a collation.
 */

/*
 * nlsSearchForw() finds the first place where 'pattern' stands in 'text'.
 *
 * '*position' receives its position, '*endOffset' the offset behind its last byte, '*found' its address.
 * When it is not there, '*position' is 0 and '*found' null. An empty pattern is found at the terminating
 * NUL, with position and end offset the text's length + 1.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'pattern', 'text', 'position', 'endOffset' or 'found' is null
 *   27  the locale has no character table; '*found' is null
 *   -4  the pattern or the text ends inside a character
 *       a status of nlsCompareN, passed on
 *   0   found or not
 */
NLS_API nlsStatus nlsSearchForw(nlsLocale *locale, const char *pattern, const char *text, uint16_t caseFlag,
                                uint32_t *position, uint32_t *endOffset, char **found);

/*
 * nlsSearchBack() finds the last place where 'pattern' stands in the first 'textLength' bytes of 'text'.
 *
 * '*position' and '*found' as in nlsSearchForw. An empty pattern is found at text + textLength, with the
 * position there, wherever the text's NUL is.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'pattern', 'text', 'position' or 'found' is null, or 'textLength' is negative
 *   27  the locale has no character table; '*found' is null
 *   -4  the pattern, or the text within 'textLength', ends inside a character
 *   20  'textLength' is 0 and the pattern is not empty
 *       a status of nlsCompareN, passed on
 *   0   found or not
 */
NLS_API nlsStatus nlsSearchBack(nlsLocale *locale, const char *pattern, const char *text, int32_t textLength,
                                uint16_t caseFlag, uint32_t *position, char **found);

/*
 * nlsReplace() copies 'text' to 'out' with the first occurrence of 'pattern' replaced by 'replacement'.
 *
 * '*position', '*endOffset' and '*found' report the match in 'text', as nlsSearchForw does. Without a match
 * 'out' receives the text as it is. An empty pattern gives the text and the replacement behind it. The
 * buffer of 'out' must not overlap the strings.
 *
 * Returns:
 *   13, 24, 16, 27, -4 and the statuses of nlsCompareN as nlsSearchForw
 *   16  'replacement', 'out' or its buffer is null
 *   2   the result does not fit; 'out' stays as it was when the text before the match exceeds its size,
 *       else it is empty and what stood in it is overwritten with blanks
 *   0   'out' is written
 *
 * Without a match: ONE-BYTE OVERRUN AS nlsCopyString.
 */
NLS_API nlsStatus nlsReplace(nlsLocale *locale, const char *pattern, const char *replacement,
                             const char *text, uint16_t caseFlag, nlsStr *out, uint32_t *position,
                             uint32_t *endOffset, char **found);

/*
 * nlsReplaceAll() copies 'text' to 'out' with every occurrence of 'pattern' replaced by 'replacement';
 * '*count' receives how many were replaced. Matches do not overlap. The buffer of 'out' must not overlap the
 * strings, and what stands in it behind the result's NUL, within its size, may be written over.
 *
 * When a replacement or the text before it does not fit, replacing stops and the rest of the text follows
 * as it is: the call returns 0 when that fits, and '*count' tells.
 *
 * Returns:
 *   13, 24, 16, 27, -4 and the statuses of nlsCompareN as nlsSearchForw, for the first search
 *   16  'replacement', 'out', its buffer or 'count' is null, or 'pattern' is empty
 *   2   the rest of the text does not fit; 'out' is empty then, its former text overwritten with blanks
 *   0   'out' is written
 *
 * Without a match: ONE-BYTE OVERRUN AS nlsCopyString.
 */
NLS_API nlsStatus nlsReplaceAll(nlsLocale *locale, const char *pattern, const char *replacement,
                                const char *text, uint16_t caseFlag, nlsStr *out, uint32_t *count);

/* ====================================================================================================== */
/*                                  Counting, substrings and validation                                   */
/* ====================================================================================================== */

/*
 * nlsCountBytes() counts the bytes of the first 'chars' characters of 'str'.
 *
 * '*bytes' receives them. When the text ends earlier, or 'chars' exceeds its length in bytes, that is its
 * whole length.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'str' or 'bytes' is null, or 'chars' is negative; '*bytes' is 0
 *   27  the locale has no character table
 *   -4  a character is longer than the whole text
 *   0   counted
 */
NLS_API nlsStatus nlsCountBytes(nlsLocale *locale, const char *str, int32_t chars, uint32_t *bytes);

/*
 * nlsCountChars() counts the characters in the first 'bytes' bytes of 'str', or in all of it when it is
 * shorter.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'str' or 'chars' is null, or 'bytes' is negative; '*chars' is 0
 *   27  the locale has no character table
 *   -4  the limit falls inside a character; '*chars' counts those before it
 *   0   counted
 */
NLS_API nlsStatus nlsCountChars(nlsLocale *locale, const char *str, int32_t bytes, uint32_t *chars);

/*
 * nlsCountColumns() counts the display columns of the characters that begin in the first 'bytes' bytes of
 * 'str'. A NUL ends 'str' within or behind them: the last character is looked at whole.
 *
 * A single-byte character takes one column, a multibyte one two, or one where its lead byte is marked so
 * (half-width katakana behind 8E in EUC-JP, the accented letters of ISO 6937). UTF-8: 0 for the byte-order
 * mark and the Thai combining marks; 1 below U+3000; 2 from there on, but 1 for U+FE80 to U+FEFE, U+FF60 to
 * U+FFDC and U+FFE8 to U+FFFF; 2 for all four-byte characters. Other combining marks are not known.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'str' or 'columns' is null, or 'bytes' is negative or exceeds the text's length; '*columns' is 0
 *   27  the locale has no character table
 *   0   counted
 */
NLS_API nlsStatus nlsCountColumns(nlsLocale *locale, const char *str, int32_t bytes, uint32_t *columns);

/*
 * nlsSubstr() copies the characters that lie wholly within 'length' bytes from position 'start' to 'out'.
 *
 * A character cut by either end of the range is left out. '*chars' receives the number of characters
 * copied.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'str', 'chars', 'out' or its buffer is null; 'start' is below 1 or beyond the text's length;
 *       'length' is negative or exceeds the text's length
 *   27  the locale has no character table
 *   2   as nlsCopyString
 *   0   'out' is written
 *
 * ONE-BYTE OVERRUN AS nlsCopyString.
 */
NLS_API nlsStatus nlsSubstr(nlsLocale *locale, const char *str, int32_t start, int32_t length,
                            uint32_t *chars, nlsStr *out);

/*
 * nlsExtract() copies the first 'chars' characters of 'str' to 'out'.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'str', 'out' or its buffer is null
 *   27  the locale has no character table
 *   16, -4  as nlsCountBytes
 *   2   as nlsCopyString
 *   0   'out' is written
 *
 * ONE-BYTE OVERRUN AS nlsCopyString.
 */
NLS_API nlsStatus nlsExtract(nlsLocale *locale, const char *str, uint32_t chars, nlsStr *out);

/*
 * nlsValidateString() tells whether 'length' bytes at 'data' are text of the locale's code page.
 *
 * '*count' receives the characters accepted before the result was decided (bytes for a single-byte page,
 * units for UTF-32, a surrogate pair as one for UTF-16). 'byteOrder' matters for UTF-16, UCS2 and UTF-32
 * only: greater than 0 for most significant byte first, otherwise least.
 *
 * What is checked: that every character is whole and its trail bytes may be trail bytes; for UTF-16 that
 * surrogates come in pairs; for UTF-32 that units are at most U+10FFFF. Overlong UTF-8, encoded surrogates
 * and unassigned codes pass.
 *
 * Returns:
 *   13  'locale' is null or its handle closed
 *   24  'locale' is not a live locale
 *   16  'data' or 'count' is null, or 'length' is negative
 *   27  the locale has no character table
 *   16  the text begins inside a character; a byte is no trail byte; a unit lies beyond U+10FFFF
 *   33  a UTF-16 surrogate is out of pair
 *   -4  the text ends inside a character
 *   20  a NUL (as a unit: zero) stands before 'length'
 *   0   valid
 *
 * The first fault in the text decides among the last five. A single-byte page accepts every byte but NUL.
 */
NLS_API nlsStatus nlsValidateString(nlsLocale *locale, const void *data, int32_t length, uint32_t byteOrder,
                                    uint32_t *count);

#ifdef __cplusplus
}
#endif

#endif /* VELNLS_H */
