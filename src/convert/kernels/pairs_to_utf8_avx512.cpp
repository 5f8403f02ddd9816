// Pages of lead and trail bytes to UTF-8, for processors with AVX-512.
#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/avx512_lanes.hpp"
#include "convert/kernels/proofs.hpp"
#include "convert/kernels/table_entries.hpp"
#include "locale/pair_masks.hpp"

namespace velnls::avx512 {

namespace {

// The entries of the lanes in `which`, mostly all of them; kUnmapped in the others.
[[gnu::always_inline]] inline __m256i entriesIn(const std::uint16_t *table, __m256i places, __mmask16 which) {
    const __m256i found = entriesAt(table, _mm256_maskz_mov_epi16(which, places), (which >> 8) != 0);
    return _mm256_mask_mov_epi16(unitsOf(file::kUnmapped), which, found);
}

[[gnu::always_inline]] inline __m128i fewOf(unsigned byte) {
    return _mm_set1_epi8(static_cast<char>(byte));
}

} // namespace

void pairsToUtf8(const MappingBody &body, Source &source, Target &target) {
    const file::MappingGroup &group = body.groups[2];
    while (source.at < source.end) {
        const std::uint32_t size = smaller(source.end - source.at, 64);
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), source.at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (target.end - target.at < 64)
            return;
        if (notAscii == 0) {
            _mm512_storeu_si512(target.at, block);
            source.at += size;
            target.at += size;
            continue;
        }
        const std::uint64_t leads = atLeast(block, group.firstLead) & atMost(block, group.lastLead) &
                                    (atMost(block, group.leadGapLow) | atLeast(block, group.leadGapHigh));
        const std::uint64_t trails = pairTrails(leads) & lowBits(size);
        // A single byte beyond ASCII, or a pair that the block or the source cuts, ends the stretch.
        const std::uint64_t odd =
            (notAscii & ~leads & ~trails) | (leads & ~trails & std::uint64_t{1} << (size - 1));
        std::uint32_t limit = firstBitOr64(odd);
        limit = limit < size ? limit : size;
        const std::uint64_t starts = ~trails & lowBits(limit);
        // The first byte of each character, and the one behind it.
        Vector firsts = _mm512_maskz_compress_epi8(starts, block);
        Vector seconds =
            _mm512_maskz_compress_epi8(starts, _mm512_maskz_loadu_epi8(lowBits(size - 1), source.at + 1));
        std::uint32_t count = countBits(starts);
        std::uint32_t end = limit;
        bool stopped = count == 0;
        for (int group16 = 0; count != 0; ++group16) {
            if (count < 16 && group16 != 0 && size == 64) {
                end = startNumber(starts, 16 * static_cast<std::uint32_t>(group16));
                break;
            }
            std::uint32_t refusedAt = 0;
            __mmask16 refused = 0;
            if (target.end - target.at < kUtf8Room) {
                refused = 1;
            } else {
                const std::uint32_t taken = count < 16 ? count : 16;
                const auto lanes = static_cast<__mmask16>(lowBits(taken));
                const __m128i lead = _mm512_castsi512_si128(firsts);
                const __m128i trail = _mm512_castsi512_si128(seconds);
                firsts = _mm512_alignr_epi64(firsts, firsts, 2);
                seconds = _mm512_alignr_epi64(seconds, seconds, 2);
                const auto pairs = static_cast<__mmask16>(lanes & _mm_movepi8_mask(lead));
                const __mmask16 behindGap = _mm_cmpgt_epu8_mask(lead, fewOf(group.leadGapLow));
                const __m128i row8 = _mm_sub_epi8(lead, fewOf(group.firstLead));
                const __m128i row = _mm_mask_sub_epi8(row8, behindGap, row8, fewOf(group.leadShift));
                const __mmask16 behind = _mm_cmpgt_epu8_mask(trail, fewOf(group.trailGap1Low));
                const __mmask16 inGap = _mm_mask_cmplt_epu8_mask(behind, trail, fewOf(group.trailGap1High));
                const __m128i column8 = _mm_sub_epi8(trail, fewOf(group.firstTrail));
                const __m128i column = _mm_mask_sub_epi8(column8, behind, column8, fewOf(group.trailShift1));
                const auto inside = static_cast<__mmask16>(
                    _mm_mask_cmplt_epu8_mask(pairs, column, fewOf(group.trailsPerLead)) & ~inGap);
                const __m256i trailsPerLead = unitsOf(group.trailsPerLead);
                // Places count from 1.
                const __m256i found =
                    entriesIn(group.values + 1,
                              _mm256_add_epi16(_mm256_mullo_epi16(_mm256_cvtepu8_epi16(row), trailsPerLead),
                                               _mm256_cvtepu8_epi16(column)),
                              inside);
                refused = _mm256_mask_cmpeq_epi16_mask(pairs, found, unitsOf(file::kUnmapped));
                const __m256i values = _mm256_mask_mov_epi16(_mm256_cvtepu8_epi16(lead), pairs, found);
                putUtf8(_mm512_cvtepu16_epi32(values), lanesBefore(lanes, refused), target);
                count -= taken;
            }
            if (refused != 0) {
                refusedAt = 16 * static_cast<std::uint32_t>(group16) +
                            static_cast<std::uint32_t>(_tzcnt_u32(refused));
                end = startNumber(starts, refusedAt);
                stopped = true;
                break;
            }
        }
        source.at += end;
        if (stopped)
            return;
    }
}

} // namespace velnls::avx512

#endif
