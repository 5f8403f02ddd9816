#include "string/replace_blocks.hpp"

#include "core/avx512.hpp"
#include "core/read_ahead.hpp"
#include "core/utf8_boundary.hpp"

namespace velnls::avx512 {

#if defined(VELNLS_AVX512_KERNELS)

namespace {

constexpr std::int64_t kBlock = sizeof(Vector);
constexpr int kAtOnce = 4;           // matches, which most short texts have at most
constexpr std::int64_t kAhead = 512; // bytes: long texts and their copies are waited for else

// Bytes that a text still has where a block of it is looked at. A match begins in the block and ends at most
// the pattern's length behind its last byte: one block more comes yet. So where nothing becomes shorter,
// whatever is put down as a whole block is followed by at least as many bytes of the result, which are
// written over what it held too much; nothing behind the result's end is touched. A block without a match is
// a part of the result as it stands, whatever becomes of the rest.
std::int64_t reachOf(const ByteReplacement &by) {
    return 2 * kBlock + by.patternLength - 1;
}

[[gnu::always_inline]] inline Vector load(const std::uint8_t *from, std::size_t length) {
    return _mm512_maskz_loadu_epi8(lowBits(length), from);
}

class BlockReplacing {
public:
    [[gnu::always_inline]] BlockReplacing(const ByteReplacement &by, const ReplacedText &text)
        : pattern_(load(by.pattern, static_cast<std::size_t>(by.patternLength))),
          instead_(load(by.instead, static_cast<std::size_t>(by.insteadLength))),
          first_(_mm512_set1_epi8(static_cast<char>(by.pattern[0]))),
          last_(_mm512_set1_epi8(static_cast<char>(by.pattern[by.patternLength - 1]))), by_(by), text_(text),
          isWhole_(by.insteadLength >= by.patternLength) {}

    // The places of a block where the pattern's first and last byte stand.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t places(Vector block, const std::uint8_t *at) const {
        const __mmask64 begins = _mm512_cmpeq_epi8_mask(block, first_);
        return _mm512_mask_cmpeq_epi8_mask(begins, _mm512_loadu_si512(at + by_.patternLength - 1), last_);
    }
    // Replaces at those of them where all of it stands. False before a place where a broken character may
    // reach across it.
    [[gnu::always_inline]] bool replaceAt(std::uint64_t places) {
        const std::uint8_t *const at = text_.at;
        for (; places != 0; places &= places - 1) {
            const std::uint8_t *const place = at + _tzcnt_u64(places);
            if (place < text_.at || !stands(place)) // one in the match before, or none
                continue;
            if (by_.isUtf8 && !nothingReachesAcross(text_.begin, place)) {
                copyTo(place);
                return false;
            }
            copyTo(place);
            put(instead_, by_.insteadLength);
            text_.at += by_.patternLength;
            ++text_.count;
        }
        if (text_.at < at + kBlock)
            copyTo(at + kBlock);
        return true;
    }

    // As far as the text reaches; gives what has become of it.
    [[gnu::always_inline]] void goOn(ReplacedText &text) {
        const std::uint8_t *const last = text_.end - reachOf(by_);
        while (text_.at <= last) {
            const Vector block = _mm512_loadu_si512(text_.at);
            if (const std::uint64_t places = this->places(block, text_.at); places != 0) {
                if (!replaceAt(places))
                    break;
                continue;
            }
            // As far as blocks of the result begin with lines of the cache.
            const auto step =
                kBlock - static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(text_.out) % kBlock);
            _mm_prefetch(text_.at + kAhead, _MM_HINT_T0);
            _mm_prefetch(text_.out + kAhead, _MM_HINT_T0);
            _mm512_storeu_si512(text_.out, block);
            text_.at += step;
            text_.out += step;
        }
        text = text_;
    }

private:
    [[nodiscard]] [[gnu::always_inline]] bool stands(const std::uint8_t *place) const {
        const __mmask64 inPattern = lowBits(static_cast<std::size_t>(by_.patternLength));
        return by_.patternLength <= 2 ||
               _mm512_mask_cmpneq_epi8_mask(inPattern, _mm512_maskz_loadu_epi8(inPattern, place), pattern_) ==
                   0;
    }
    // Copies up to a place, fewer bytes than a block and one.
    [[gnu::always_inline]] void copyTo(const std::uint8_t *place) {
        put(_mm512_loadu_si512(text_.at), place - text_.at);
        text_.at = place;
    }
    [[gnu::always_inline]] void put(Vector bytes, std::int64_t length) {
        if (isWhole_)
            _mm512_storeu_si512(text_.out, bytes);
        else
            _mm512_mask_storeu_epi8(text_.out, lowBits(static_cast<std::size_t>(length)), bytes);
        text_.out += length;
    }

    Vector pattern_;
    Vector instead_;
    Vector first_;
    Vector last_;
    ByteReplacement by_;
    ReplacedText text_;
    bool isWhole_;
};

} // namespace

void replaceBlocks(const ByteReplacement &by, ReplacedText &text) {
    BlockReplacing(by, text).goOn(text);
}

#else

// Never called on other processors.
void replaceBlocks(const ByteReplacement &, ReplacedText &) {}

#endif

#if defined(VELNLS_AVX512_KERNELS) && defined(VELNLS_READS_AHEAD)

namespace {

// The numbers of a block's bytes.
[[gnu::always_inline]] inline Vector numbers() {
    return _mm512_set_epi64(0x3F3E3D3C3B3A3938, 0x3736353433323130, 0x2F2E2D2C2B2A2928, 0x2726252423222120,
                            0x1F1E1D1C1B1A1918, 0x1716151413121110, 0x0F0E0D0C0B0A0908, 0x0706050403020100);
}

// Of places where a pattern stands, those that none before them overlaps.
std::uint64_t apart(std::uint64_t places, std::uint32_t patternLength) {
    std::uint64_t kept = 0;
    while (places != 0) {
        const std::uint64_t place = places & -places;
        kept |= place;
        places &= -(place << (patternLength - 1) << 1);
    }
    return kept;
}

} // namespace

bool replaceShort(ShortPlaces found, const std::uint8_t *text, const std::uint8_t *replacement, nlsStr &out,
                  std::uint32_t &count) {
    const std::size_t inPage = leftInPage(replacement);
    const Vector instead = load(replacement, inPage);
    const std::uint64_t insteadLength = _tzcnt_u64(_mm512_testn_epi8_mask(instead, instead));
    const std::uint32_t patternLength = found.patternLength();
    const std::uint32_t textLength = found.textLength();
    std::uint64_t left = patternLength == 1 ? found.places : apart(found.places, patternLength);
    const std::int64_t matches = _mm_popcnt_u64(left);
    const std::int64_t growth = static_cast<std::int64_t>(insteadLength) - patternLength;
    const std::int64_t length = textLength + matches * growth;
    if (textLength + insteadLength > kBlock || insteadLength == inPage ||
        length + kBlock > static_cast<std::int32_t>(out.size))
        return false;
    const std::uint64_t end = std::uint64_t{1} << textLength;
    const Vector block = _mm512_maskz_loadu_epi8(end - 1, text);
    const Vector before = _mm512_sub_epi8(numbers(), _mm512_set1_epi8(static_cast<char>(growth)));
    const __mmask64 behindInstead = ~std::uint64_t{0} << insteadLength;
    char *to = out.buffer;
    _mm512_storeu_si512(to, block);
    // At each match what stands instead and all that is behind it, over what was put there before. How many
    // matches there are nobody could foresee: where there are none left, it is written behind the result.
    do {
#pragma GCC unroll 4
        for (int i = 0; i < kAtOnce; ++i) {
            const std::uint64_t place = _tzcnt_u64(left | end);
            const Vector from = _mm512_add_epi8(before, _mm512_set1_epi8(static_cast<char>(place)));
            _mm512_storeu_si512(to + place,
                                _mm512_mask_permutexvar_epi8(instead, behindInstead, from, block));
            to += growth & -static_cast<std::int64_t>(left != 0);
            left &= left - 1;
        }
    } while (left != 0);
    out.buffer[length] = '\0';
    out.length = static_cast<std::uint32_t>(length);
    count = static_cast<std::uint32_t>(matches);
    return true;
}

#else

// Never called: no text is settled as a short one.
bool replaceShort(ShortPlaces, const std::uint8_t *, const std::uint8_t *, nlsStr &, std::uint32_t &) {
    return false;
}

#endif

} // namespace velnls::avx512
