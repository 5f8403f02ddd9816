#include "utf8.h"

#if defined(__SSE2__)
#include <emmintrin.h>

/*
 * Widens 16 bytes, or 8. Returns how many of them stand before the first that is not ASCII; what the others
 * became is overwritten by the units that follow, or lies behind the last.
 */
static unsigned widen16(const unsigned char *text, UChar *units) {
    const __m128i bytes = _mm_loadu_si128((const __m128i *)text);
    const unsigned others = (unsigned)_mm_movemask_epi8(bytes);
    _mm_storeu_si128((__m128i *)units, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    _mm_storeu_si128((__m128i *)(units + 8), _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
    return others == 0 ? 16 : (unsigned)__builtin_ctz(others);
}
static unsigned widen8(const unsigned char *text, UChar *units) {
    const __m128i bytes = _mm_loadl_epi64((const __m128i *)text);
    const unsigned others = (unsigned)_mm_movemask_epi8(bytes);
    _mm_storeu_si128((__m128i *)units, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    return others == 0 ? 8 : (unsigned)__builtin_ctz(others);
}

/* Whether the 16 bytes, or 8, before `end` are all ASCII. */
static int isAscii16(const unsigned char *end) {
    return _mm_movemask_epi8(_mm_loadu_si128((const __m128i *)(end - 16))) == 0;
}
static int isAscii8(const unsigned char *end) {
    return _mm_movemask_epi8(_mm_loadl_epi64((const __m128i *)(end - 8))) == 0;
}
#endif

/*
 * Decodes ASCII, up to the end or a part of it, and returns how many bytes that were; the first is ASCII and
 * `before` bytes stand in front of it. An end that is shorter than a block is taken together with bytes in
 * front of it that are ASCII too: their units are written a second time.
 */
static size_t decodeAscii(const unsigned char *text, const unsigned char *end, size_t before, UChar *units) {
    const size_t left = (size_t)(end - text);
#if defined(__SSE2__)
    if (left >= 16)
        return widen16(text, units);
    if (left + before >= 16 && isAscii16(end)) {
        widen16(end - 16, units - (16 - left));
        return left;
    }
    if (left >= 8)
        return widen8(text, units);
    if (left + before >= 8 && isAscii8(end)) {
        widen8(end - 8, units - (8 - left));
        return left;
    }
#endif
    *units = *text;
    return 1;
}

static int isTrail(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

ptrdiff_t decodeUtf8(const unsigned char *text, size_t length, UChar *units) {
    const unsigned char *const begin = text;
    const unsigned char *const end = text + length;
    UChar *out = units;
    while (text != end) {
        const size_t left = (size_t)(end - text);
        const unsigned lead = *text;
        if (lead < 0x80) {
            const size_t count = decodeAscii(text, end, (size_t)(text - begin), out);
            text += count;
            out += count;
        } else if (lead < 0xE0) {
            if (lead < 0xC2 || left < 2 || !isTrail(text[1]))
                return -1;
            *out++ = (UChar)((lead & 0x1F) << 6 | (text[1] & 0x3F));
            text += 2;
        } else if (lead < 0xF0) {
            unsigned point;
            if (left < 3 || !isTrail(text[1]) || !isTrail(text[2]))
                return -1;
            point = (lead & 0xF) << 12 | (text[1] & 0x3Fu) << 6 | (text[2] & 0x3Fu);
            if (point < 0x800 || (point & 0xF800) == 0xD800)
                return -1;
            *out++ = (UChar)point;
            text += 3;
        } else {
            unsigned point;
            if (lead > 0xF4 || left < 4 || !isTrail(text[1]) || !isTrail(text[2]) || !isTrail(text[3]))
                return -1;
            point = (lead & 7) << 18 | (text[1] & 0x3Fu) << 12 | (text[2] & 0x3Fu) << 6 | (text[3] & 0x3Fu);
            if (point < 0x10000 || point > 0x10FFFF)
                return -1;
            *out++ = (UChar)(0xD7C0 + (point >> 10));
            *out++ = (UChar)(0xDC00 | (point & 0x3FF));
            text += 4;
        }
    }
    return out - units;
}
