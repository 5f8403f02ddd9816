// UTF-8 to pages of single bytes, for processors with AVX2.
#include "convert/kernels/fast_avx2.hpp"

#if defined(VELNLS_AVX2_KERNELS)

#include "convert/kernels/avx2_pages.hpp"

namespace velnls::avx2 {

namespace {

class Utf8ToByteRow : public FromUtf8 {
    static constexpr std::uint32_t kMostly = 5; // one byte in five beyond ASCII: copied but for those

public:
    explicit Utf8ToByteRow(const MappingBody &body)
        : FromUtf8(body), base_(unitsOf(body.groups[2].firstTrail - 1U)) {}

    static void read(Source &text, Target &units) {
        utf8ToUtf16(text, units);
    }
    [[gnu::always_inline]] void write(Source &units, Target &target) const {
        writeUnits(units, target,
                   [this](Bytes group, std::uint32_t count, Target &out) { return put(group, count, out); });
    }
    static const std::uint8_t *stretchOf(const Source &source) {
        return denseStretch<kMostly>(source);
    }
    // Blocks of mostly ASCII too.
    void plain(Source &source, Target &target) const {
        TextReader<Block::kReach> blocks;
        while (source.at < source.end) {
            const std::uint32_t size = smaller(source.left(), Block::kSize);
            const std::uint8_t *const text = blocks.block(source.at, source.end);
            const Block block(text, size);
            const std::uint64_t notAscii = block.notAscii();
            if (countBits(notAscii) * kMostly > size || target.room() < Block::wholeRegisters(size))
                return;
            std::uint32_t length = size;
            if (notAscii == 0) {
                block.copyTo(target.at, size);
                target.at += size;
            } else {
                length = putMostlyAscii(text, utf8Starts(block, notAscii, size), notAscii, target);
            }
            if (length == 0)
                return;
            source.at += length;
        }
    }

private:
    // Copies what is between the characters beyond ASCII.
    [[gnu::always_inline]] std::uint32_t putMostlyAscii(const std::uint8_t *text, Utf8Starts characters,
                                                        std::uint64_t notAscii, Target &target) const {
        constexpr std::uint32_t kPiece = 16;
        if (target.room() < static_cast<std::ptrdiff_t>(characters.length) + kPiece)
            return 0;
        std::uint32_t from = 0;
        const auto copyTo = [text, &from, &target](std::uint32_t end) {
            for (; from < end; from += kPiece) {
                const auto piece = loadNumber<__m128i>(text + from);
                storeNumber(target.at, piece);
                target.at += smaller(static_cast<std::ptrdiff_t>(end - from), kPiece);
            }
            from = end;
        };
        // Pieces reach behind the text; nothing of what stands there stays in the target.
        const auto endAt = [&target](std::uint32_t length) {
            storeNumber(target.at, _mm_setzero_si128());
            return length;
        };
        for (std::uint64_t leads = characters.starts & notAscii; leads != 0; leads &= leads - 1) {
            copyTo(firstBitOr64(leads));
            const auto word = loadNumber<std::uint32_t>(text + from);
            const bool isThree = (word & 0xE0) == 0xE0;
            const std::uint32_t two = (word & 0x1F) << 6 | (word >> 8 & 0x3F);
            const std::uint32_t value = isThree ? (two << 6 | (word >> 16 & 0x3F)) & 0xFFFF : two;
            if (!putScalar(value, target))
                return endAt(from);
            from += isThree ? 3 : 2;
        }
        copyTo(characters.length);
        return endAt(characters.length);
    }
    // A value beyond ASCII.
    [[gnu::always_inline]] bool putScalar(std::uint32_t value, Target &target) const {
        const file::MappingGroup &group = body().groups[2];
        const std::uint32_t place = value - group.lowest;
        if (place >= spanOf(group))
            return writeOne(value, target);
        const std::uint16_t index = loadElement(group.reverse, place);
        if (index == file::kUnmapped)
            return writeOne(value, target);
        *target.at++ = static_cast<std::uint8_t>(index + group.firstTrail - 1U);
        return true;
    }
    [[gnu::always_inline]] std::uint32_t put(Bytes units, std::uint32_t count, Target &target) const {
        if (target.room() < static_cast<std::ptrdiff_t>(kLanes))
            return 0;
        const Bytes beyondAscii = isAtLeast(units, unitsOf(0x80));
        const auto [entries, inside] = inWindow(units, beyondAscii, count > kHalf);
        const Bytes unmapped = _mm256_cmpeq_epi16(entries, unitsOf(file::kUnmapped));
        const Bytes refused = _mm256_andnot_si256(_mm256_andnot_si256(unmapped, inside), beyondAscii);
        const std::uint32_t taken = before(refused, count);
        const Bytes byte = _mm256_and_si256(_mm256_add_epi16(entries, base_), unitsOf(0xFF));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target.at),
                         narrowed(_mm256_blendv_epi8(units, byte, beyondAscii)));
        target.at += taken;
        return taken;
    }

    Bytes base_; // byte = index + base
};

} // namespace

void utf8ToByteRow(const MappingBody &body, Source &source, Target &target) {
    throughUnits(Utf8ToByteRow(body), source, target);
}

} // namespace velnls::avx2

#endif
