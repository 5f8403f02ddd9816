// UTF-8 to pages of single bytes, for processors with AVX-512.
#include "convert/kernels/fast_avx512.hpp"

#include "core/avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS)

#include "convert/kernels/avx512_from_utf8.hpp"
#include "convert/kernels/proofs.hpp"
#include "core/utf8_boundary.hpp"

#include <algorithm>

namespace velnls::avx512 {

namespace {

// The windows of single-byte pages are small: they fit registers, where looking up costs a fraction of
// loading each entry.
struct ByteRowSink : CopiedAscii {
    static constexpr std::ptrdiff_t kRoom = 32;
    static constexpr std::uint32_t kParts = 8;
    static constexpr std::uint32_t kRegisterSpan = kParts * 32; // indexes

    Vector lowest;
    Vector span;
    Vector base;
    Vector part[kParts];

    static bool fits(const MappingBody &body) {
        const file::MappingGroup &group = body.groups[2];
        return group.reverseCount != 0 && group.highest - group.lowest < kRegisterSpan;
    }
    // The body's window fits.
    explicit ByteRowSink(const MappingBody &body)
        : lowest(wideUnitsOf(body.groups[2].lowest)),
          span(wideUnitsOf(body.groups[2].highest - body.groups[2].lowest + 1u)),
          base(wideUnitsOf(body.groups[2].firstTrail - 1u)) {
        const std::ptrdiff_t count = body.groups[2].highest - body.groups[2].lowest + 1;
        for (std::uint32_t i = 0; i < kParts; ++i) {
            const std::ptrdiff_t left = count - static_cast<std::ptrdiff_t>(32 * i);
            const auto lanes = static_cast<__mmask32>(left <= 0 ? 0 : lowBits(left));
            part[i] = _mm512_maskz_loadu_epi16(
                lanes, reinterpret_cast<const std::uint8_t *>(body.groups[2].reverse) + std::size_t{64} * i);
        }
    }
    // The entries at places below kRegisterSpan.
    [[gnu::always_inline]] Vector entries(Vector places) const {
        const __mmask32 second = _mm512_test_epi16_mask(places, wideUnitsOf(0x40));
        const __mmask32 third = _mm512_test_epi16_mask(places, wideUnitsOf(0x80));
        const Vector low = _mm512_mask_mov_epi16(_mm512_permutex2var_epi16(part[0], places, part[1]), second,
                                                 _mm512_permutex2var_epi16(part[2], places, part[3]));
        const Vector high = _mm512_mask_mov_epi16(_mm512_permutex2var_epi16(part[4], places, part[5]), second,
                                                  _mm512_permutex2var_epi16(part[6], places, part[7]));
        return _mm512_mask_mov_epi16(low, third, high);
    }
    [[gnu::always_inline]] __mmask32 put(Vector values, __mmask32 lanes, Target &target) const {
        const __mmask32 beyondAscii = _mm512_mask_cmpge_epu16_mask(lanes, values, wideUnitsOf(0x80));
        const Vector places = _mm512_sub_epi16(values, lowest);
        const __mmask32 inside = _mm512_mask_cmplt_epu16_mask(beyondAscii, places, span);
        const Vector found = _mm512_mask_mov_epi16(wideUnitsOf(file::kUnmapped), inside, entries(places));
        const __mmask32 refused =
            _mm512_mask_cmpeq_epi16_mask(beyondAscii, found, wideUnitsOf(file::kUnmapped));
        const Vector bytes = _mm512_mask_add_epi16(values, beyondAscii, found, base);
        const __m256i narrow = _mm512_cvtepi16_epi8(bytes);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target.at), _mm256_castsi256_si128(narrow));
        if (lanes >> 16 != 0)
            _mm_storeu_si128(reinterpret_cast<__m128i *>(target.at + 16),
                             _mm256_extracti128_si256(narrow, 1));
        target.at += countBits(lanesBefore(lanes, refused));
        return refused;
    }
};

// What a page has for the 128 values of two neighbouring lead bytes, by the low six bits of the trail byte:
// as good as a whole alphabet. 0 where it has nothing.
class LeadPair {
public:
    [[nodiscard]] unsigned lead() const {
        return lead_;
    }
    // The trail bytes behind the two lead bytes become the page's bytes.
    [[gnu::always_inline]] [[nodiscard]] Vector bytesOf(Vector block, std::uint64_t behindEven,
                                                        std::uint64_t behindOdd) const {
        const Vector made = _mm512_mask_permutexvar_epi8(block, behindEven, block, even_);
        return _mm512_mask_permutexvar_epi8(made, behindOdd, block, odd_);
    }
    // Nothing is changed for lead bytes of no two-byte character.
    [[gnu::noinline]] void take(const MappingBody &body, unsigned evenLead) {
        if (evenLead < 0xC2 || evenLead > 0xDE)
            return;
        lead_ = evenLead;
        const int first = static_cast<int>((evenLead & 0x1F) << 6);
        even_ = sixtyFour(body.groups[2], first);
        odd_ = sixtyFour(body.groups[2], first + 64);
    }

private:
    static Vector sixtyFour(const file::MappingGroup &group, int first) {
        return _mm512_inserti64x4(_mm512_castsi256_si512(thirtyTwo(group, first)),
                                  thirtyTwo(group, first + 32), 1);
    }
    // Of the values that the body's window has; only those are read.
    static __m256i thirtyTwo(const file::MappingGroup &group, int first) {
        const int place = first - group.lowest;
        const int left = group.highest - group.lowest + 1 - place;
        const std::uint64_t begun = lowBits(static_cast<std::size_t>(std::clamp(-place, 0, 32)));
        const std::uint64_t within = lowBits(static_cast<std::size_t>(std::clamp(left, 0, 32)));
        const auto lanes = static_cast<__mmask32>(within & ~begun);
        const auto *const at = reinterpret_cast<const void *>(
            reinterpret_cast<std::uintptr_t>(group.reverse) +
            static_cast<std::uintptr_t>(static_cast<std::intptr_t>(place) * 2));
        const Vector indexes = _mm512_maskz_loadu_epi16(lanes, at);
        const __mmask32 mapped = _mm512_mask_cmpneq_epi16_mask(lanes, indexes, _mm512_set1_epi16(-1));
        const Vector base = _mm512_set1_epi16(static_cast<short>(group.firstTrail - 1));
        return _mm512_cvtepi16_epi8(_mm512_maskz_add_epi16(mapped, indexes, base));
    }

    Vector even_ = _mm512_setzero_si512();
    Vector odd_ = _mm512_setzero_si512();
    unsigned lead_ = 0xC0; // the even one of the two; no character begins with C0
};

// Text of ASCII, Latin-1, and characters of one lead byte and its neighbour, which most alphabets do with:
// the bytes are made where the trail bytes stand, and the lead bytes are left out. Stops before any other
// character.
[[gnu::always_inline]] inline void alphabetToByteRow(const MappingBody &body, LeadPair &latin, LeadPair &own,
                                                     Source &source, Target &out) {
    constexpr unsigned kLatin = 0xC2;
    const std::uint8_t *at = source.at;
    Target target = out;
    while (at < source.end) {
        const std::uint32_t size = smaller(source.end - at, 64);
        const Vector block = _mm512_maskz_loadu_epi8(lowBits(size), at);
        const std::uint64_t notAscii = _mm512_movepi8_mask(block);
        if (target.end - target.at < static_cast<std::ptrdiff_t>(size))
            break;
        if (notAscii == 0) {
            store(target, block, size);
            at += size;
            target.at += size;
            continue;
        }
        const std::uint64_t lead = _mm512_cmpge_epu8_mask(block, bytesOf(0xC0));
        const std::uint64_t latinEven = _mm512_cmpeq_epi8_mask(block, bytesOf(kLatin));
        const std::uint64_t latinOdd = _mm512_cmpeq_epi8_mask(block, bytesOf(kLatin + 1));
        if ((latinEven | latinOdd) != 0 && latin.lead() != kLatin)
            latin.take(body, kLatin);
        const std::uint64_t others = lead & ~(latinEven | latinOdd);
        if (others != 0) {
            const unsigned first = at[firstBitOr64(others)] & 0xFEU;
            if (first != own.lead())
                own.take(body, first);
        }
        const std::uint64_t even = _mm512_cmpeq_epi8_mask(block, bytesOf(own.lead()));
        const std::uint64_t odd = _mm512_cmpeq_epi8_mask(block, bytesOf(own.lead() + 1));
        const std::uint64_t leads = even | odd | latinEven | latinOdd;
        const std::uint64_t trails = notAscii & ~lead;
        const Vector made =
            latin.bytesOf(own.bytesOf(block, even << 1, odd << 1), latinEven << 1, latinOdd << 1);
        const std::uint64_t wrong =
            (lead ^ leads) | (trails ^ leads << 1) | (trails & _mm512_testn_epi8_mask(made, made));
        if (wrong == 0 && size == 64) {
            const std::uint64_t kept = ~leads;
            store(target, _mm512_maskz_compress_epi8(kept, made), 64);
            target.at += countBits(kept);
            at += 64 - incompleteBefore<2>(at + 64);
            continue;
        }
        std::uint32_t limit = firstBitOr64(wrong);
        limit = limit < size ? limit : size;
        if (limit != 0)
            limit -= static_cast<std::uint32_t>(leads >> (limit - 1) & 1);
        const std::uint64_t kept = ~leads & lowBits(limit);
        const std::uint32_t count = countBits(kept);
        store(target, _mm512_maskz_compress_epi8(kept, made), count);
        at += limit;
        target.at += count;
        if (wrong != 0)
            break;
    }
    source.at = at;
    out.at = target.at;
}

// The value of the well-formed character of two or three bytes at the source's place; 0 for any other.
std::uint32_t valueAt(const Source &source) {
    const std::uint8_t *const at = source.at;
    const std::ptrdiff_t left = source.end - at;
    const auto isTrail = [at](int place) { return (at[place] & 0xC0) == 0x80; };
    if (left >= 2 && (*at & 0xE0) == 0xC0 && isTrail(1))
        return (at[0] & 0x1FU) << 6 | (at[1] & 0x3FU);
    if (left >= 3 && (*at & 0xF0) == 0xE0 && isTrail(1) && isTrail(2))
        return (at[0] & 0xFU) << 12 | (at[1] & 0x3FU) << 6 | (at[2] & 0x3FU);
    return 0;
}

// Converts a single character the plain way; false where that ends with anything but success.
bool putPlainly(const MappingBody &body, std::ptrdiff_t length, Source &source, Target &target) {
    Source piece{source.at, source.at + length, source.behind};
    Target room = target;
    if (velnls::utf8ToPage(body, piece, room) != NLS_OK || piece.at != piece.end)
        return false;
    source.at = piece.at;
    target = room;
    return true;
}

} // namespace

void utf8ToByteRow(const MappingBody &body, Source &source, Target &target) {
    constexpr std::ptrdiff_t kFew = 32; // bytes that the general way is tried for
    constexpr std::ptrdiff_t kMany = 4096;
    if (!ByteRowSink::fits(body))
        return;
    LeadPair latin;
    LeadPair own;
    std::ptrdiff_t most = kFew;
    for (;;) {
        const std::uint8_t *const begin = source.at;
        alphabetToByteRow(body, latin, own, source, target);
        if (source.at == source.end)
            return;
        // Dashes, quotes and the like stand in no window, and among letters that do.
        const std::uint32_t value = valueAt(source);
        const bool isOutside = value < body.groups[2].lowest || value > body.groups[2].highest;
        if (value != 0 && isOutside) {
            if (!putPlainly(body, value < 0x800 ? 2 : 3, source, target))
                return;
            continue;
        }
        // In text of several alphabets the general way goes further each time.
        most = source.at - begin >= kFew ? kFew : std::min(2 * most, kMany);
        Source piece{source.at, source.at + std::min(source.end - source.at, most)};
        fromUtf8(ByteRowSink(body), piece, target);
        if (piece.at == source.at)
            return;
        source.at = piece.at;
    }
}

} // namespace velnls::avx512

#endif
