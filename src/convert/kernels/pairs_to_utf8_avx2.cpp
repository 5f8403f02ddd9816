// Pages of lead and trail bytes to UTF-8, for processors with AVX2.
#include "convert/kernels/fast_avx2.hpp"

#if defined(VELNLS_AVX2_KERNELS)

#include "convert/kernels/avx2_pages.hpp"
#include "locale/pair_masks.hpp"

namespace velnls::avx2 {

namespace {

[[gnu::always_inline]] inline __m128i fewOf(unsigned unit) {
    return _mm_set1_epi16(static_cast<short>(unit));
}

// The characters at the first eight bits of `starts`, which loses them, two bytes each; 0 behind `count` of
// them.
[[gnu::always_inline]] inline __m128i takeEightPairs(const std::uint8_t *text, std::uint64_t &starts,
                                                     std::uint32_t count) {
    const auto next = [text, &starts] { return loadNumber<std::uint16_t>(text + takeFirst(starts)); };
    __m128i low = _mm_cvtsi32_si128(next());
    low = _mm_insert_epi16(low, next(), 1);
    low = _mm_insert_epi16(low, next(), 2);
    low = _mm_insert_epi16(low, next(), 3);
    __m128i high = _mm_cvtsi32_si128(next());
    high = _mm_insert_epi16(high, next(), 1);
    high = _mm_insert_epi16(high, next(), 2);
    high = _mm_insert_epi16(high, next(), 3);
    return _mm_and_si128(_mm_unpacklo_epi64(low, high), lowHalf(firstBytes(2 * count)));
}

// A page of lead and trail bytes: the values of eight characters of two bytes each, the first one low.
class PairsToUtf8 {
public:
    explicit PairsToUtf8(const file::MappingGroup &group)
        : group_(group), values_(group.values + 1), firstLead_(fewOf(group.firstLead)),
          leadGapLow_(fewOf(group.leadGapLow)), leadShift_(fewOf(group.leadShift)),
          firstTrail_(fewOf(group.firstTrail)), trailGapLow_(fewOf(group.trailGap1Low)),
          trailGapHigh_(fewOf(group.trailGap1High)), trailShift_(fewOf(group.trailShift1)),
          trailsPerLead_(fewOf(group.trailsPerLead)) {}

    static void plain(Source &source, Target &target) {
        copyAscii(source, target);
    }
    static const std::uint8_t *stretchOf(const Source &source) {
        return denseStretch<Block::kSize>(source);
    }
    // kUnmapped where a pair has no value.
    [[gnu::always_inline]] void read(Source &source, Target &units) const {
        TextReader<Block::kReach> blocks;
        std::uint8_t *to = units.at;
        while (source.at < source.end) {
            const std::uint32_t size = smaller(source.left(), Block::kSize);
            const std::uint8_t *const text = blocks.block(source.at, source.end);
            const Block block(text, size);
            const std::uint64_t leads = block.atLeast(group_.firstLead) & block.atMost(group_.lastLead) &
                                        (block.atMost(group_.leadGapLow) | block.atLeast(group_.leadGapHigh));
            const std::uint64_t trails = pairTrails(leads);
            // A single byte beyond ASCII, or a pair that the block or the source cuts, ends the stretch.
            const std::uint64_t odd = (block.notAscii() & ~leads & ~trails) |
                                      (leads & ~trails & std::uint64_t{1} << (size - 1)) | ~lowBits(size);
            const std::uint32_t length = firstBitOr64(odd);
            std::uint64_t starts = ~trails & lowBits(length);
            for (std::uint32_t left = countBits(starts); left != 0;) {
                const std::uint32_t count = left < kHalf ? left : kHalf;
                const __m128i values = valuesOf(takeEightPairs(text, starts, count));
                _mm_storeu_si128(reinterpret_cast<__m128i *>(to), values);
                to += std::ptrdiff_t{count} * 2;
                left -= count;
            }
            source.at += length;
            if (length == 0)
                break;
        }
        units.at = to;
    }
    [[gnu::always_inline]] static void write(Source &units, Target &target) {
        writeUnits(units, target, [](Bytes group, std::uint32_t count, Target &out) -> std::uint32_t {
            if (out.room() < utf8Room(count))
                return 0;
            const std::uint32_t taken = before(_mm256_cmpeq_epi16(group, unitsOf(file::kUnmapped)), count);
            putUtf8(group, taken, out);
            return taken;
        });
    }
    static bool writeOne(std::uint32_t, Target &) {
        return false; // unmapped, or there is no room
    }
    static std::ptrdiff_t lengthOf(std::uint8_t lead) {
        return lead < 0x80 ? 1 : 2;
    }

private:
    // kUnmapped where there is none; ASCII stands for itself.
    [[gnu::always_inline]] __m128i valuesOf(__m128i characters) const {
        const __m128i lead = _mm_and_si128(characters, fewOf(0xFF));
        const __m128i trail = _mm_srli_epi16(characters, 8);
        const __m128i pairs = _mm_cmpgt_epi16(lead, fewOf(0x7F));
        const __m128i behindLeads = _mm_cmpgt_epi16(lead, leadGapLow_);
        const __m128i row =
            _mm_sub_epi16(_mm_sub_epi16(lead, firstLead_), _mm_and_si128(behindLeads, leadShift_));
        const __m128i behind = _mm_cmpgt_epi16(trail, trailGapLow_);
        const __m128i inGap = _mm_and_si128(behind, _mm_cmpgt_epi16(trailGapHigh_, trail));
        const __m128i column =
            _mm_sub_epi16(_mm_sub_epi16(trail, firstTrail_), _mm_and_si128(behind, trailShift_));
        const __m128i beyond = // at least trailsPerLead
            _mm_cmpeq_epi16(_mm_subs_epu16(trailsPerLead_, column), _mm_setzero_si128());
        const __m128i inside = _mm_andnot_si128(_mm_or_si128(beyond, inGap), pairs);
        const __m128i place = _mm_add_epi16(_mm_mullo_epi16(row, trailsPerLead_), column);
        const __m128i entries = entriesAt(values_, _mm_and_si128(place, inside));
        const __m128i found = _mm_or_si128(entries, _mm_andnot_si128(inside, pairs));
        return _mm_blendv_epi8(lead, found, pairs);
    }

    const file::MappingGroup &group_;
    const std::uint16_t *values_; // by place, counted from 1
    __m128i firstLead_;
    __m128i leadGapLow_;
    __m128i leadShift_;
    __m128i firstTrail_;
    __m128i trailGapLow_;
    __m128i trailGapHigh_;
    __m128i trailShift_;
    __m128i trailsPerLead_;
};

} // namespace

void pairsToUtf8(const MappingBody &body, Source &source, Target &target) {
    throughUnits(PairsToUtf8(body.groups[2]), source, target);
}

} // namespace velnls::avx2

#endif
