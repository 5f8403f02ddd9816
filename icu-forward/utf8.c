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

/* Tests define VELNLS_NARROW_UTF8 to run what follows on any processor. */
#if defined(__x86_64__) && defined(__GNUC__) && !defined(VELNLS_NARROW_UTF8)
#include <immintrin.h>

#define WIDE __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi2,bmi2,popcnt")))

enum {
    WIDE_BLOCK = 64
};

/* Puts down 32 units, `count` of which count; `room` is how many fit. */
WIDE static void putWide(UChar *out, size_t room, __m512i units, unsigned count) {
    if (room >= WIDE_BLOCK / 2)
        _mm512_storeu_si512(out, units);
    else
        _mm512_mask_storeu_epi16(out, _bzhi_u32(~0u, count), units);
}

/* The low `bits` of each byte as a number of two bytes. */
WIDE static __m512i lowOf(__m256i bytes, int bits) {
    return _mm512_and_si512(_mm512_cvtepu8_epi16(bytes), _mm512_set1_epi16((short)((1 << bits) - 1)));
}

WIDE static uint64_t inRange(__m512i bytes, unsigned first, unsigned last) {
    return _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes, _mm512_set1_epi8((char)first)),
                                  _mm512_set1_epi8((char)(last - first)));
}

/* A block of a text, from its first byte on, its second and its third: what lies behind it reads as zeros. */
typedef struct {
    __m512i bytes[3];
    uint64_t whole;        /* bit i speaks of byte i: those that whole characters have */
    uint64_t trails;       /* those that do not begin a character */
    uint64_t twos, threes; /* those that begin one of two or three bytes */
} Block;

/* Finds the characters of a block; 0 where not all of them are well formed and of up to three bytes. */
WIDE static int divide(Block *block, int goesOn) {
    const __m512i bytes = block->bytes[0];
    uint64_t whole = block->whole;
    uint64_t trails = inRange(bytes, 0x80, 0xBF);
    uint64_t twos = inRange(bytes, 0xC2, 0xDF);
    uint64_t threes = inRange(bytes, 0xE0, 0xEF);
    if ((_mm512_movepi8_mask(bytes) & ~(trails | twos | threes)) != 0)
        return 0;
    if (goesOn) { /* a character that the block cuts is left to the next */
        const uint64_t cut = (twos >> 63 << 63) | (threes & (uint64_t)3 << 62);
        if (cut != 0)
            whole = (cut & (0 - cut)) - 1;
        trails &= whole;
        twos &= whole;
        threes &= whole;
    }
    if (trails != (twos << 1 | threes << 1 | threes << 2))
        return 0;
    if (threes != 0) {
        /* Neither the long form of a shorter character, nor a surrogate. */
        const uint64_t late = inRange(block->bytes[1], 0xA0, 0xBF);
        const uint64_t e0 = _mm512_mask_cmpeq_epi8_mask(threes, bytes, _mm512_set1_epi8((char)0xE0));
        const uint64_t ed = _mm512_mask_cmpeq_epi8_mask(threes, bytes, _mm512_set1_epi8((char)0xED));
        if (((e0 & ~late) | (ed & late)) != 0)
            return 0;
    }
    block->whole = whole;
    block->trails = trails;
    block->twos = twos;
    block->threes = threes;
    return 1;
}

WIDE static __m256i halfOf(__m512i bytes, int upper) {
    return upper ? _mm512_extracti64x4_epi64(bytes, 1) : _mm512_castsi512_si256(bytes);
}

/* Puts down the characters that begin in half a block; returns how many there are. */
WIDE static unsigned decodeHalf(const Block *block, int upper, UChar *out, size_t room) {
    const int shift = upper ? 32 : 0;
    const uint32_t begins = (uint32_t)((block->whole & ~block->trails) >> shift);
    const uint32_t threes = (uint32_t)(block->threes >> shift);
    const unsigned count = (unsigned)_mm_popcnt_u32(begins);
    const __m256i first = halfOf(block->bytes[0], upper);
    const __m512i second = lowOf(halfOf(block->bytes[1], upper), 6);
    const __m512i two = _mm512_or_si512(_mm512_slli_epi16(lowOf(first, 5), 6), second);
    __m512i units = _mm512_cvtepu8_epi16(first);
    units = _mm512_mask_mov_epi16(units, (uint32_t)(block->twos >> shift), two);
    if (threes != 0) {
        const __m512i high = _mm512_or_si512(_mm512_slli_epi16(units, 12), _mm512_slli_epi16(second, 6));
        const __m512i third = lowOf(halfOf(block->bytes[2], upper), 6);
        units = _mm512_mask_mov_epi16(units, threes, _mm512_or_si512(high, third));
    }
    putWide(out, room, _mm512_maskz_compress_epi16(begins, units), count);
    return count;
}

/*
 * Decodes as far as whole blocks, or the text's end, hold well-formed characters of up to three bytes.
 * Returns the units; `*text` moves on.
 */
WIDE static size_t decodeWide(const unsigned char **text, const unsigned char *end, UChar *units,
                              size_t room) {
    const unsigned char *at = *text;
    UChar *out = units;
    UChar *const outEnd = units + room;
    while (at != end) {
        const size_t left = (size_t)(end - at);
        Block block;
        block.whole = left >= WIDE_BLOCK ? ~(uint64_t)0 : _bzhi_u64(~(uint64_t)0, (unsigned)left);
        block.bytes[0] = _mm512_maskz_loadu_epi8(block.whole, at);
        if (_mm512_movepi8_mask(block.bytes[0]) == 0) {
            const unsigned count = left >= WIDE_BLOCK ? WIDE_BLOCK : (unsigned)left;
            const unsigned half = WIDE_BLOCK / 2;
            putWide(out, (size_t)(outEnd - out), _mm512_cvtepu8_epi16(halfOf(block.bytes[0], 0)),
                    count < half ? count : half);
            if (count > half)
                putWide(out + half, (size_t)(outEnd - out) - half,
                        _mm512_cvtepu8_epi16(halfOf(block.bytes[0], 1)), count - half);
            at += count;
            out += count;
            continue;
        }
        block.bytes[1] = _mm512_maskz_loadu_epi8(block.whole >> 1, at + 1);
        block.bytes[2] = _mm512_maskz_loadu_epi8(block.whole >> 2, at + 2);
        if (!divide(&block, left >= WIDE_BLOCK))
            break;
        out += decodeHalf(&block, 0, out, (size_t)(outEnd - out));
        if (block.whole >> 32 != 0)
            out += decodeHalf(&block, 1, out, (size_t)(outEnd - out));
        at += _mm_popcnt_u64(block.whole);
    }
    *text = at;
    return (size_t)(out - units);
}

/* Whether the processor and the system have what decodeWide() needs. */
static int isWide(void) {
    return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("bmi2");
}
#endif

ptrdiff_t decodeUtf8(const unsigned char *text, size_t length, UChar *units, size_t room) {
    const unsigned char *const begin = text;
    const unsigned char *const end = text + length;
    UChar *out = units;
#if defined(WIDE)
    if (isWide())
        out += decodeWide(&text, end, units, room);
#else
    (void)room;
#endif
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
