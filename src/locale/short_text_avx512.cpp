#include "locale/short_text.hpp"

#include "core/read_ahead.hpp"
#include "locale/case_blocks_avx512.hpp"

#if defined(VELNLS_AVX512_KERNELS) && defined(VELNLS_READS_AHEAD)

namespace velnls::avx512 {

namespace {

// A text in a register, zeros behind it; the length is kNotShort where it is none for this file.
struct Loaded {
    Vector bytes;
    std::size_t length;
};

[[gnu::always_inline]] inline Loaded load(const ShortText &text) {
    const Loaded refused{_mm512_setzero_si512(), kNotShort};
    if (!staysInPage<kBlock>(text.at)) [[unlikely]]
        return refused;
    const Vector bytes = _mm512_loadu_si512(unknownPlace(text.at));
    const std::uint64_t ends = _mm512_testn_epi8_mask(bytes, bytes);
    if (ends == 0) [[unlikely]]
        return refused;
    std::uint64_t inside = _blsmsk_u64(ends) >> 1;
    if (text.trims)
        if (const std::uint64_t kept = inside & ~isEqual(bytes, ' '); kept != inside)
            inside = kept == 0 ? 0 : ~std::uint64_t{0} >> _lzcnt_u64(kept);
    const auto length = static_cast<std::size_t>(_mm_popcnt_u64(inside));
    // Where text and output overlap, the general way keeps the order of reading and writing.
    const auto from = reinterpret_cast<std::uintptr_t>(text.at);
    const auto to = reinterpret_cast<std::uintptr_t>(text.out);
    if (length >= text.room || (to <= from + length && from < to + text.room)) [[unlikely]]
        return refused;
    return {_mm512_maskz_mov_epi8(inside, bytes), length};
}

// Masked stores take many times as long as whole ones.
[[gnu::always_inline]] inline std::size_t store(const ShortText &text, Vector bytes, std::size_t length) {
    if (text.scribbles && text.room >= kBlock)
        _mm512_storeu_si512(text.out, bytes);
    else
        _mm512_mask_storeu_epi8(text.out, lowBits(length + 1), bytes);
    return length;
}

} // namespace

std::size_t copyShort(const ShortText &text) {
    const Loaded loaded = load(text);
    return loaded.length == kNotShort ? kNotShort : store(text, loaded.bytes, loaded.length);
}

std::size_t mapShortBytes(const std::uint8_t *map, const ShortText &text) {
    const Loaded loaded = load(text);
    if (loaded.length == kNotShort) [[unlikely]]
        return kNotShort;
    const auto quarter = [map](std::size_t from) { return _mm512_loadu_si512(map + from); };
    const Vector low = _mm512_permutex2var_epi8(quarter(0), loaded.bytes, quarter(kBlock));
    const Vector high = _mm512_permutex2var_epi8(quarter(2 * kBlock), loaded.bytes, quarter(3 * kBlock));
    const Vector mapped = _mm512_mask_mov_epi8(low, _mm512_movepi8_mask(loaded.bytes), high);
    const std::uint64_t inside = lowBits(loaded.length);
    if (_mm512_mask_testn_epi8_mask(inside, mapped, mapped) != 0) [[unlikely]]
        return kNotShort;
    return store(text, _mm512_maskz_mov_epi8(inside, mapped), loaded.length);
}

template <Case kCase>
std::size_t mapShortUtf8(const ShortText &text) {
    const Loaded loaded = load(text);
    if (loaded.length == kNotShort) [[unlikely]]
        return kNotShort;
    // Behind the text stand zeros, so that a character that it cuts is wrong.
    std::uint64_t wrong = 0;
    std::uint64_t trails = 0;
    const Vector mapped = mapCommonBlock<kCase>(loaded.bytes, wrong, trails);
    return wrong != 0 ? kNotShort : store(text, mapped, loaded.length);
}

template <Case kCase>
std::size_t mapShortPairs(const PageFacts &facts, const ShortText &text) {
    const Loaded loaded = load(text);
    if (loaded.length == kNotShort) [[unlikely]]
        return kNotShort;
    std::uint64_t pending = 0;
    const std::uint64_t trails = pairTrails(leadsOf(WideMasks(loaded.bytes), facts), pending);
    return store(text, mapAsciiBlock<kCase>(loaded.bytes, ~trails), loaded.length);
}

} // namespace velnls::avx512

#else

namespace velnls::avx512 {

std::size_t copyShort(const ShortText &) {
    return kNotShort;
}
std::size_t mapShortBytes(const std::uint8_t *, const ShortText &) {
    return kNotShort;
}
template <Case>
std::size_t mapShortUtf8(const ShortText &) {
    return kNotShort;
}
template <Case>
std::size_t mapShortPairs(const PageFacts &, const ShortText &) {
    return kNotShort;
}

} // namespace velnls::avx512

#endif

namespace velnls::avx512 {

template std::size_t mapShortUtf8<Case::Upper>(const ShortText &);
template std::size_t mapShortUtf8<Case::Lower>(const ShortText &);
template std::size_t mapShortPairs<Case::Upper>(const PageFacts &, const ShortText &);
template std::size_t mapShortPairs<Case::Lower>(const PageFacts &, const ShortText &);

} // namespace velnls::avx512
