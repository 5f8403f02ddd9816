// UTF-8 to pages of lead and trail bytes, for processors with AVX-512.
#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/avx512_from_utf8.hpp"
#include "convert/kernels/avx512_pages.hpp"
#include "convert/kernels/page_steps.hpp"
#include "convert/kernels/proofs.hpp"
#include "convert/kernels/table_entries.hpp"

namespace velnls::avx512 {

namespace {

// The entries of the lanes in `which`; kUnmapped in the others. The table has a place 0.
[[gnu::always_inline]] inline __m256i entriesIn(const std::uint16_t *table, __m256i places, __mmask16 which) {
    const __m256i found = entriesAt(table, _mm256_maskz_mov_epi16(which, places));
    return _mm256_mask_mov_epi16(unitsOf(file::kUnmapped), which, found);
}
class Utf8ToPairs : public PageSteps, public CopiedAscii {
public:
    static constexpr std::ptrdiff_t kRoom = 32;

    explicit Utf8ToPairs(const MappingBody &page)
        : PageSteps(page), facts(factsOf(page)), window(windowOf(page.groups[2])),
          lowest(unitsOf(page.groups[2].lowest)) {}

    [[gnu::always_inline]] static Utf8Characters charactersOf(const std::uint8_t *at, Vector block,
                                                              std::uint32_t size, std::uint64_t &ends) {
        return Utf8Characters::upToOdd(at, block, size, ends);
    }
    [[gnu::always_inline]] std::uint32_t put(const Utf8Characters &characters, __mmask16 lanes,
                                             Target &target) const {
        return put(characters.sixteen(), lanes, target);
    }

    // The steps of long texts.
    static void plain(Source &source, Target &target) {
        copyAscii(source, target);
    }
    static const std::uint8_t *stretchOf(const Source &source) {
        return denseStretch(source);
    }
    static void read(Source &source, Target &units) {
        utf8ToUtf16(source, units);
    }
    [[gnu::always_inline]] void write(Source &units, Target &target) const {
        writeUnits<kRoom>(units, target, [this](__m256i group, __mmask16 lanes, Target &out) {
            return put(group, lanes, out);
        });
    }

private:
    const MappingFacts &facts;
    const std::uint16_t *window;
    __m256i lowest;

    // The indexes of the lanes outside the window: kana and letters by stretches, punctuation one by one.
    [[gnu::always_inline]] __m256i besideWindow(__m256i values, __mmask16 lanes, __m256i found) const {
        const auto within = [values, lanes](unsigned begin, unsigned count) {
            return _mm256_mask_cmplt_epu16_mask(lanes, _mm256_sub_epi16(values, unitsOf(begin)),
                                                unitsOf(count));
        };
        static_assert(kKanaBlocks + kLetterBlocks == 8 && sizeof(LinearBlock) == 4);
        static_assert(offsetof(MappingFacts, letters) == offsetof(MappingFacts, kana) + 4 * kKanaBlocks &&
                      offsetof(MappingFacts, kana) == 0);
        const auto blocks = loadNumber<__m256i>(&facts);
        // `number`: twice that of the block, in its low four bits.
        const auto linear = [&found, values, blocks](__mmask16 which, __m256i number) {
            const __m256i block = _mm256_permutexvar_epi16(number, blocks);
            const __m256i delta = _mm256_permutexvar_epi16(_mm256_or_si256(number, unitsOf(1)), blocks);
            const __m256i step = _mm256_sub_epi16(_mm256_and_si256(values, unitsOf(31)),
                                                  _mm256_and_si256(block, unitsOf(0xFF)));
            const __mmask16 hit = _mm256_mask_cmplt_epu16_mask(which, step, _mm256_srli_epi16(block, 8));
            found = _mm256_mask_add_epi16(found, hit, values, delta);
        };
        const auto onePerValue = [&found, values](__mmask16 which, const std::uint8_t *table) {
            const auto low = loadNumber<__m256i>(table);
            const __m256i high = _mm256_maskz_loadu_epi16((1u << (kPunctuation - 16)) - 1, table + 32);
            found = _mm256_mask_mov_epi16(found, which, _mm256_permutex2var_epi16(low, values, high));
        };
        const auto twiceBlock = [values](unsigned begin) {
            return _mm256_and_si256(_mm256_srli_epi16(_mm256_sub_epi16(values, unitsOf(begin)), 4),
                                    unitsOf(0xE));
        };
        linear(within(kKanaBegin, 32 * kKanaBlocks), twiceBlock(kKanaBegin));
        onePerValue(within(kPunctuationBegin, kPunctuation), body().groups[1].unusedA);
        for (std::uint32_t i = 0; i < kSoundMarks; ++i)
            found = _mm256_mask_mov_epi16(
                found, _mm256_mask_cmpeq_epi16_mask(lanes, values, unitsOf(kSoundMarksBegin + i)),
                unitsOf(facts.marks[i]));
        if (const __mmask16 fullWidth = within(kWidePunctuationBegin, 0x100); fullWidth != 0) {
            onePerValue(within(kWidePunctuationBegin, kPunctuation), body().groups[2].unusedA);
            linear(within(kLettersBegin, 32 * kLetterBlocks),
                   _mm256_add_epi16(twiceBlock(kLettersBegin), unitsOf(2 * kKanaBlocks)));
        }
        // No index is 0: there it means none, as in the lanes that nothing was found for.
        return _mm256_mask_mov_epi16(found, _mm256_testn_epi16_mask(found, found), unitsOf(file::kUnmapped));
    }

    [[gnu::always_inline]] std::uint32_t put(__m256i values, __mmask16 lanes, Target &target) const {
        const PairUnits &units = facts.units;
        const __mmask16 beyondAscii = _mm256_mask_cmpge_epu16_mask(lanes, values, unitsOf(0x80));
        const __m256i places = _mm256_sub_epi16(values, lowest);
        const __mmask16 inside = _mm256_mask_cmplt_epu16_mask(beyondAscii, places, unitsOf(units.span));
        __m256i found = entriesIn(window, places, inside);
        const auto outside = static_cast<__mmask16>(beyondAscii & ~inside);
        found = besideWindow(values, outside, found);
        const __mmask16 refused = _mm256_mask_cmpeq_epi16_mask(beyondAscii, found, unitsOf(file::kUnmapped));
        const __mmask16 good = lanesBefore(lanes, refused);
        const __m256i place = _mm256_sub_epi16(found, unitsOf(1));
        const __m256i row = _mm256_srl_epi16(_mm256_mulhi_epu16(place, unitsOf(units.reciprocal)),
                                             _mm_cvtsi32_si128(units.reciprocalShift));
        __m256i code = _mm256_add_epi16(_mm256_add_epi16(unitsOf(units.codeBase), found),
                                        _mm256_mullo_epi16(row, unitsOf(units.rowStep)));
        if (units.trailShift != 0) {
            const __mmask16 behind =
                _mm256_cmpgt_epu16_mask(_mm256_and_si256(code, unitsOf(0xFF)), unitsOf(units.trailGapLow));
            code = _mm256_mask_add_epi16(code, behind, code, unitsOf(units.trailShift));
        }
        if (units.leadShift != 0) {
            const __mmask16 behind = _mm256_cmpgt_epu16_mask(code, unitsOf(units.leadGapEnd));
            code = _mm256_mask_add_epi16(code, behind, code, unitsOf(units.leadShift));
        }
        // Lead byte first.
        const __m256i bytes = _mm256_mask_shldi_epi16(values, beyondAscii, code, code, 8);
        const std::uint32_t used = _pdep_u32(good, 0x55555555) |
                                   _pdep_u32(static_cast<std::uint32_t>(good & beyondAscii), 0xAAAAAAAA);
        const std::uint32_t count = countBits(used);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(target.at), _mm256_maskz_compress_epi8(used, bytes));
        target.at += count;
        return refused;
    }
};

} // namespace

void utf8ToPairs(const MappingBody &body, Source &source, Target &target) {
    const Utf8ToPairs page(body);
    if (source.left() >= kLongText)
        throughUnits(page, source, target);
    else
        bySixteens(page, source, target);
}

} // namespace velnls::avx512

#endif
