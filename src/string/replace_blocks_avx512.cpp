#include "string/replace_blocks.hpp"

#include "core/avx512.hpp"
#include "core/utf8_boundary.hpp"

namespace velnls::avx512 {

#if defined(VELNLS_AVX512_KERNELS)

namespace {

constexpr std::int64_t kBlock = sizeof(Vector);
constexpr std::int64_t kAhead = 512; // bytes: long texts and their copies are waited for else

// Bytes that a text still has where a block of it is looked at. A match begins in the block and ends at most
// the pattern's length behind its last byte: one block more comes yet. So where nothing becomes shorter,
// whatever is put down as a whole block is followed by at least as many bytes of the result, which are
// written over what it held too much; nothing behind the result's end is touched. A block without a match is
// a part of the result as it stands, whatever becomes of the rest.
std::int64_t reachOf(const ByteReplacement &by) {
    return 2 * kBlock + by.patternLength - 1;
}

class BlockReplacing {
public:
    [[gnu::always_inline]] BlockReplacing(const ByteReplacement &by, const ReplacedText &text)
        : pattern_(load(by.pattern, by.patternLength)), instead_(load(by.instead, by.insteadLength)),
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
    [[gnu::always_inline]] static Vector load(const std::uint8_t *from, std::int64_t length) {
        return _mm512_maskz_loadu_epi8(lowBits(static_cast<std::size_t>(length)), from);
    }
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

} // namespace velnls::avx512
