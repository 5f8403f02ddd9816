#include "string/replace_blocks.hpp"

#include "core/avx512.hpp"
#include "string/utf8_boundary.hpp"

namespace velnls::avx512 {

#if defined(VELNLS_AVX512_KERNELS)

namespace {

constexpr std::int64_t kBlock = sizeof(Vector);

} // namespace

void replaceBlocks(const ByteReplacement &replacement, ReplacedText &text) {
    const std::int64_t length = replacement.patternLength;
    const __mmask64 inPattern = lowBits(static_cast<std::size_t>(length));
    const __mmask64 inInstead = lowBits(static_cast<std::size_t>(replacement.insteadLength));
    const Vector pattern = _mm512_maskz_loadu_epi8(inPattern, replacement.pattern);
    const Vector instead = _mm512_maskz_loadu_epi8(inInstead, replacement.instead);
    const Vector first = _mm512_set1_epi8(static_cast<char>(replacement.pattern[0]));
    const Vector last = _mm512_set1_epi8(static_cast<char>(replacement.pattern[length - 1]));
    const std::uint8_t *at = text.at;
    char *out = text.out;
    std::uint32_t count = text.count;
    while (text.end - at >= kBlock + length - 1) {
        const Vector block = _mm512_loadu_si512(at);
        const __mmask64 begins = _mm512_cmpeq_epi8_mask(block, first);
        const __mmask64 places =
            _mm512_mask_cmpeq_epi8_mask(begins, _mm512_loadu_si512(at + length - 1), last);
        if (places == 0) {
            _mm512_storeu_si512(out, block);
            at += kBlock;
            out += kBlock;
            continue;
        }
        const auto before = static_cast<std::size_t>(_tzcnt_u64(places));
        _mm512_mask_storeu_epi8(out, lowBits(before), block);
        at += before;
        out += before;
        if (_mm512_mask_cmpneq_epi8_mask(inPattern, _mm512_maskz_loadu_epi8(inPattern, at), pattern) != 0) {
            *out++ = static_cast<char>(*at++);
            continue;
        }
        if (replacement.isUtf8 && !nothingReachesAcross(text.begin, at))
            break;
        _mm512_mask_storeu_epi8(out, inInstead, instead);
        at += length;
        out += replacement.insteadLength;
        ++count;
    }
    text = {text.begin, at, text.end, out, count};
}

#else

// Never called on other processors.
void replaceBlocks(const ByteReplacement &, ReplacedText &) {}

#endif

} // namespace velnls::avx512
