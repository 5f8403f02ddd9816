// Keys of single bytes where the 256 weights fit into four registers: 64 at a time.
#include "collate/byte_key.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include <algorithm>

namespace velnls::avx512 {

std::size_t writeByteKey(const ByteKey &how, const std::uint8_t *text, std::size_t length, std::uint8_t *key,
                         std::size_t room) {
    constexpr std::size_t kBlock = 64;
    const auto load = [&how](std::size_t from) { return _mm512_loadu_si512(how.weights + from); };
    const __m512i table0 = load(0);
    const __m512i table1 = load(kBlock);
    const __m512i table2 = load(2 * kBlock);
    const __m512i table3 = load(3 * kBlock);
    const std::uint8_t *const end = text + length;
    std::size_t written = 0;
    while (text != end && written != room) {
        const std::size_t count = std::min({kBlock, static_cast<std::size_t>(end - text), room - written});
        const __mmask64 lanes = lowBits(count);
        const __m512i bytes = _mm512_maskz_loadu_epi8(lanes, text);
        const __m512i low = _mm512_permutex2var_epi8(table0, bytes, table1);
        const __m512i high = _mm512_permutex2var_epi8(table2, bytes, table3);
        const __m512i weights = _mm512_mask_mov_epi8(low, _mm512_movepi8_mask(bytes), high);
        // Masked stores take many times as long as whole ones: they are kept for the end of the room.
        if (room - written >= kBlock)
            _mm512_storeu_si512(key + written, weights);
        else
            _mm512_mask_storeu_epi8(key + written, lanes, weights);
        const std::uint64_t expanding = _mm512_mask_testn_epi8_mask(lanes, weights, weights);
        if (expanding == 0) {
            text += count;
            written += count;
            continue;
        }
        const std::size_t before = _tzcnt_u64(expanding);
        text += before + 1;
        written += before;
        for (unsigned i = 0; i < 2 && written != room; ++i)
            key[written++] = how.expanded;
    }
    return written;
}

} // namespace velnls::avx512

#endif
