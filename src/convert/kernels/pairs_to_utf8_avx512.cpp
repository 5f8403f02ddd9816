// Pages of lead and trail bytes to UTF-8, for processors with AVX-512.
#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/avx512_pages.hpp"
#include "convert/kernels/proofs.hpp"
#include "convert/kernels/table_entries.hpp"
#include "locale/pair_masks.hpp"

namespace velnls::avx512 {

namespace {

[[gnu::always_inline]] inline __m128i fewOf(unsigned byte) {
    return _mm_set1_epi8(static_cast<char>(byte));
}

// The characters that end in a block, side by side, up to a single byte beyond ASCII or a pair that the text
// cuts.
struct PairCharacters {
    Vector leads; // 0 where a single byte is the character
    Vector lasts;
    bool isWholeBlock;

    // `pending`, 0 or 1: the block begins with a trail byte, and its lead byte stands before `at`; becomes
    // the same for the next one. `ends`: where the characters end in the block.
    [[gnu::always_inline]] PairCharacters(const file::MappingGroup &group, const std::uint8_t *at,
                                          Vector block, std::uint32_t size, std::uint64_t &pending,
                                          std::uint64_t &ends) {
        const std::uint64_t lead = atLeast(block, group.firstLead) & atMost(block, group.lastLead) &
                                   (atMost(block, group.leadGapLow) | atLeast(block, group.leadGapHigh));
        const std::uint64_t trail = pairTrails(lead, pending);
        const std::uint64_t odd = (_mm512_movepi8_mask(block) & ~lead & ~trail) | ~lowBits(size);
        ends = (trail | ~lead) & lowBits(firstBitOr64(odd));
        leads = _mm512_maskz_compress_epi8(ends, _mm512_maskz_loadu_epi8(trail, at - 1));
        lasts = _mm512_maskz_compress_epi8(ends, block);
        isWholeBlock = odd == 0;
    }
    [[gnu::always_inline]] void dropSixteen() {
        leads = _mm512_alignr_epi64(leads, leads, 2);
        lasts = _mm512_alignr_epi64(lasts, lasts, 2);
    }
};

class PairsToUtf8 : public CopiedAscii {
public:
    explicit PairsToUtf8(const file::MappingGroup &group) : group_(group) {}

    static constexpr std::ptrdiff_t kRoom = kUtf8Room;

    [[gnu::always_inline]] PairCharacters charactersOf(const std::uint8_t *at, Vector block,
                                                       std::uint32_t size, std::uint64_t &ends) const {
        std::uint64_t pending = 0;
        return {group_, at, block, size, pending, ends};
    }
    [[gnu::always_inline]] std::uint32_t put(const PairCharacters &characters, __mmask16 lanes,
                                             Target &target) const {
        return put(_mm512_castsi512_si128(characters.leads), _mm512_castsi512_si128(characters.lasts), lanes,
                   target);
    }

    // The steps of long texts. Units are codes: a lead byte above its trail byte, or a single byte.
    static void plain(Source &source, Target &target) {
        copyAscii(source, target);
    }
    static const std::uint8_t *stretchOf(const Source &source) {
        return denseStretch(source);
    }
    [[gnu::always_inline]] void read(Source &source, Target &units) const {
        const std::uint8_t *at = source.at;
        std::uint8_t *to = units.at;
        std::uint64_t pending = 0;
        while (at < source.end) {
            const std::uint32_t size = smaller(source.end - at, 64);
            const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), at);
            std::uint64_t ends = 0;
            const PairCharacters characters(group_, at, block, size, pending, ends);
            _mm512_storeu_si512(to, codesOf<false>(characters));
            _mm512_storeu_si512(to + 64, codesOf<true>(characters));
            to += 2 * std::ptrdiff_t{countBits(ends)};
            if (!characters.isWholeBlock) {
                at += 64 - static_cast<std::uint32_t>(_lzcnt_u64(ends));
                pending = 0;
                break;
            }
            at += 64;
        }
        source.at = at - pending;
        units.at = to;
    }
    [[gnu::always_inline]] void write(Source &units, Target &target) const {
        writeUnits<kUtf8Room>(units, target, [this](__m256i codes, __mmask16 lanes, Target &out) {
            return put(_mm256_cvtepi16_epi8(_mm256_srli_epi16(codes, 8)), _mm256_cvtepi16_epi8(codes), lanes,
                       out);
        });
    }
    static bool writeOne(std::uint32_t, Target &) {
        return false; // unmapped, or there is no room
    }
    static std::ptrdiff_t lengthOf(std::uint8_t lead) {
        return lead < 0x80 ? 1 : 2;
    }

private:
    template <bool kBehind>
    [[gnu::always_inline]] static Vector codesOf(const PairCharacters &characters) {
        return _mm512_or_si512(_mm512_slli_epi16(widened<kBehind>(characters.leads), 8),
                               widened<kBehind>(characters.lasts));
    }

    // Gives the lanes of pairs without a value, having written those before the first of them.
    [[gnu::always_inline]] std::uint32_t put(__m128i leads, __m128i lasts, __mmask16 lanes,
                                             Target &target) const {
        const auto pairs = static_cast<__mmask16>(lanes & _mm_movepi8_mask(leads));
        const __mmask16 behindGap = _mm_cmpgt_epu8_mask(leads, fewOf(group_.leadGapLow));
        const __m128i row8 = _mm_sub_epi8(leads, fewOf(group_.firstLead));
        const __m128i row = _mm_mask_sub_epi8(row8, behindGap, row8, fewOf(group_.leadShift));
        const __mmask16 behind = _mm_cmpgt_epu8_mask(lasts, fewOf(group_.trailGap1Low));
        const __mmask16 inGap = _mm_mask_cmplt_epu8_mask(behind, lasts, fewOf(group_.trailGap1High));
        const __m128i column8 = _mm_sub_epi8(lasts, fewOf(group_.firstTrail));
        const __m128i column = _mm_mask_sub_epi8(column8, behind, column8, fewOf(group_.trailShift1));
        const auto inside = static_cast<__mmask16>(
            _mm_mask_cmplt_epu8_mask(pairs, column, fewOf(group_.trailsPerLead)) & ~inGap);
        const __m256i rows = _mm256_mullo_epi16(_mm256_cvtepu8_epi16(row), unitsOf(group_.trailsPerLead));
        const __m256i places = _mm256_add_epi16(rows, _mm256_cvtepu8_epi16(column));
        // Places count from 1.
        const __m256i found = entriesAt(group_.values + 1, _mm256_maskz_mov_epi16(inside, places));
        const __m256i values = _mm256_mask_mov_epi16(_mm256_cvtepu8_epi16(lasts), inside, found);
        const auto refused = static_cast<__mmask16>(
            _mm256_mask_cmpeq_epi16_mask(pairs, values, unitsOf(file::kUnmapped)) | (pairs & ~inside));
        putUtf8(_mm512_cvtepu16_epi32(values), lanesBefore(lanes, refused), target);
        return refused;
    }

    const file::MappingGroup &group_;
};

} // namespace

void pairsToUtf8(const MappingBody &body, Source &source, Target &target) {
    const PairsToUtf8 page(body.groups[2]);
    if (source.left() >= kLongText)
        throughUnits(page, source, target);
    else
        bySixteens(page, source, target);
}

} // namespace velnls::avx512

#endif
