// UTF-8 to pages of lead and trail bytes, for processors with AVX2.
#include "convert/kernels/fast_avx2.hpp"

#if defined(VELNLS_AVX2_KERNELS)

#include "convert/kernels/avx2_pages.hpp"

namespace velnls::avx2 {

namespace {

// 32 numbers of 16 bits, looked up by shuffles.
class Table32 {
public:
    [[gnu::always_inline]] explicit Table32(const std::uint8_t *table) {
        const Bytes first = load(table);
        const Bytes second = load(table + kRegister);
        const Bytes low =
            narrowed(_mm256_and_si256(first, unitsOf(0xFF)), _mm256_and_si256(second, unitsOf(0xFF)));
        const Bytes high = narrowed(_mm256_srli_epi16(first, 8), _mm256_srli_epi16(second, 8));
        low_[0] = _mm256_permute2x128_si256(low, low, 0x00);
        low_[1] = _mm256_permute2x128_si256(low, low, 0x11);
        high_[0] = _mm256_permute2x128_si256(high, high, 0x00);
        high_[1] = _mm256_permute2x128_si256(high, high, 0x11);
    }
    // At places below 32; of others, anything.
    [[gnu::always_inline]] [[nodiscard]] Bytes operator[](Bytes places) const {
        const Bytes from16 = _mm256_slli_epi16(places, 3); // as the top bit of the low byte
        const Bytes place = _mm256_and_si256(places, unitsOf(0x1F));
        const Bytes low = _mm256_blendv_epi8(_mm256_shuffle_epi8(low_[0], place),
                                             _mm256_shuffle_epi8(low_[1], place), from16);
        const Bytes high = _mm256_blendv_epi8(_mm256_shuffle_epi8(high_[0], place),
                                              _mm256_shuffle_epi8(high_[1], place), from16);
        return _mm256_or_si256(_mm256_and_si256(low, unitsOf(0xFF)), _mm256_slli_epi16(high, 8));
    }

private:
    Bytes low_[2]; // bytes of the places below 16 and from there on
    Bytes high_[2];
};

class Utf8ToPairs : public FromUtf8 {
public:
    explicit Utf8ToPairs(const MappingBody &body)
        : FromUtf8(body), facts_(factsOf(body)), punctuation_(body.groups[1].unusedA) {
        static_assert(kKanaBlocks + kLetterBlocks == 8 && sizeof(LinearBlock) == 4);
        static_assert(offsetof(MappingFacts, kana) == 0 &&
                      offsetof(MappingFacts, letters) == sizeof(LinearBlock) * kKanaBlocks);
        static_assert(offsetof(file::MappingGroup, unusedA) + 2 * kRegister <= sizeof(file::MappingGroup));
        const __m128i apart = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
        const auto *const blocks = reinterpret_cast<const __m128i *>(&facts_);
        const __m128i first = _mm_shuffle_epi8(_mm_loadu_si128(blocks), apart);
        const __m128i second = _mm_shuffle_epi8(_mm_loadu_si128(blocks + 1), apart);
        stretches_ = _mm256_broadcastsi128_si256(_mm_unpacklo_epi64(first, second));
        deltas_ = _mm256_broadcastsi128_si256(_mm_unpackhi_epi64(first, second));
    }

    static void plain(Source &source, Target &target) {
        copyAscii(source, target);
    }
    static const std::uint8_t *stretchOf(const Source &source) {
        return denseStretch<Block::kSize>(source);
    }
    // As utf8ToUtf16 does, without ways of its own for ASCII and for little room.
    [[gnu::always_inline]] static void read(Source &source, Target &units) {
        TextReader<Block::kReach> reader;
        std::uint8_t *to = units.at;
        const std::uint8_t *at = source.at;
        while (at < source.end) {
            const std::uint32_t size = smaller(source.end - at, Block::kSize);
            const std::uint8_t *const text = reader.block(at, source.end);
            const Block block(text, size);
            const Utf8Starts characters = utf8Starts(block, block.notAscii(), size);
            if (characters.length == 0)
                break;
            putEights<2>(text, characters, to, storeUnits);
            at += characters.length;
        }
        source.at = at;
        units.at = to;
    }
    [[gnu::always_inline]] void write(Source &units, Target &target) const {
        writeUnits(units, target,
                   [this](Bytes group, std::uint32_t count, Target &out) { return put(group, count, out); });
    }

private:
    // The indexes of the lanes outside the window, 0 for none: kana and letters by stretches, punctuation one
    // by one.
    [[gnu::always_inline]] Bytes besideWindow(Bytes units, Bytes outside) const {
        const auto within = [units, outside](unsigned begin, unsigned count) {
            return _mm256_andnot_si256(isAtLeast(_mm256_sub_epi16(units, unitsOf(begin)), unitsOf(count)),
                                       outside);
        };
        Bytes found = _mm256_setzero_si256();
        // `number`: that of the stretch, from 0 to 7.
        const auto linear = [units, &found, this](Bytes which, Bytes number) {
            const Bytes both = _mm256_add_epi16(_mm256_mullo_epi16(number, unitsOf(0x0202)), unitsOf(0x0100));
            const Bytes stretch = _mm256_shuffle_epi8(stretches_, both);
            const Bytes step = _mm256_sub_epi16(_mm256_and_si256(units, unitsOf(31)),
                                                _mm256_and_si256(stretch, unitsOf(0xFF)));
            const Bytes miss = isAtLeast(step, _mm256_srli_epi16(stretch, 8));
            const Bytes index = _mm256_add_epi16(units, _mm256_shuffle_epi8(deltas_, both));
            found = _mm256_blendv_epi8(found, index, _mm256_andnot_si256(miss, which));
        };
        const auto numberFrom = [units](unsigned begin) {
            return _mm256_and_si256(_mm256_srli_epi16(_mm256_sub_epi16(units, unitsOf(begin)), 5),
                                    unitsOf(7));
        };
        const auto onePerValue = [units, &found](Bytes which, unsigned begin, const Table32 &table) {
            found = _mm256_blendv_epi8(found, table[_mm256_sub_epi16(units, unitsOf(begin))], which);
        };
        linear(within(kKanaBegin, 32 * kKanaBlocks), numberFrom(kKanaBegin));
        for (std::uint32_t i = 0; i < kSoundMarks; ++i) {
            const Bytes mark = _mm256_cmpeq_epi16(units, unitsOf(kSoundMarksBegin + i));
            found = _mm256_blendv_epi8(found, unitsOf(facts_.marks[i]), _mm256_and_si256(mark, outside));
        }
        onePerValue(within(kPunctuationBegin, kPunctuation), kPunctuationBegin, punctuation_);
        if (isAny(within(kWidePunctuationBegin, 0x100))) {
            onePerValue(within(kWidePunctuationBegin, kPunctuation), kWidePunctuationBegin,
                        Table32(body().groups[2].unusedA));
            linear(within(kLettersBegin, 32 * kLetterBlocks),
                   _mm256_add_epi16(numberFrom(kLettersBegin), unitsOf(kKanaBlocks)));
        }
        return found;
    }

    // The codes of indexes.
    [[gnu::always_inline]] Bytes codesOf(Bytes indexes) const {
        const PairUnits &units = facts_.units;
        const Bytes place = _mm256_sub_epi16(indexes, unitsOf(1));
        const Bytes row = _mm256_srl_epi16(_mm256_mulhi_epu16(place, unitsOf(units.reciprocal)),
                                           _mm_cvtsi32_si128(units.reciprocalShift));
        Bytes code = _mm256_add_epi16(_mm256_add_epi16(unitsOf(units.codeBase), indexes),
                                      _mm256_mullo_epi16(row, unitsOf(units.rowStep)));
        if (units.trailShift != 0) {
            const Bytes behind =
                isAtLeast(_mm256_and_si256(code, unitsOf(0xFF)), unitsOf(units.trailGapLow + 1U));
            code = _mm256_add_epi16(code, _mm256_and_si256(behind, unitsOf(units.trailShift)));
        }
        if (units.leadShift != 0) {
            const Bytes behind = isAtLeast(code, unitsOf(units.leadGapEnd + 1U));
            code = _mm256_add_epi16(code, _mm256_and_si256(behind, unitsOf(units.leadShift)));
        }
        return code;
    }

    [[gnu::always_inline]] std::uint32_t put(Bytes units, std::uint32_t count, Target &target) const {
        if (target.room() < 2 * static_cast<std::ptrdiff_t>(kLanes))
            return 0;
        const Bytes beyondAscii = isAtLeast(units, unitsOf(0x80));
        const auto [entries, inside] = inWindow(units, beyondAscii, count > kHalf);
        const Bytes outside = _mm256_andnot_si256(inside, beyondAscii);
        const Bytes found = _mm256_blendv_epi8(besideWindow(units, outside), entries, inside);
        // No index is 0 or unmapped.
        const Bytes none = _mm256_or_si256(_mm256_cmpeq_epi16(found, _mm256_setzero_si256()),
                                           _mm256_cmpeq_epi16(found, unitsOf(file::kUnmapped)));
        const std::uint32_t taken = before(_mm256_and_si256(none, beyondAscii), count);
        const Bytes code = codesOf(found);
        // Lead byte first.
        const Bytes pairs = _mm256_or_si256(_mm256_slli_epi16(code, 8), _mm256_srli_epi16(code, 8));
        const Bytes bytes = _mm256_blendv_epi8(_mm256_slli_epi16(units, 8), pairs, beyondAscii);
        const std::uint32_t two = bitsOf(beyondAscii);
        squeeze(target.at + squeeze(target.at, lowHalf(bytes), two), highHalf(bytes), two >> kHalf);
        target.at += taken + countBits(two & lowBits(taken));
        return taken;
    }

    const MappingFacts &facts_;
    Table32 punctuation_;
    Bytes stretches_; // of kana and letters: first value and count, a byte each
    Bytes deltas_;
};

} // namespace

void utf8ToPairs(const MappingBody &body, Source &source, Target &target) {
    throughUnits(Utf8ToPairs(body), source, target);
}

} // namespace velnls::avx2

#endif
