// Texts that end within 64 bytes, as most values of a column do: taken in by one block that may reach past
// their end, and settled by masks of it. No branch depends on a length.
//
// Whoever calls has seen that the block lies in one page of memory. What one block does not settle, such as a
// longer text or one that is not what its page means, is left to the general ways.
#pragma once

#include "string/count_blocks.hpp"

namespace velnls {

inline constexpr std::size_t kShortBlock = 64;

// Whole characters up to the text's end or to a limit, and their bytes.
struct ShortCount {
    std::uint32_t bytes;
    std::uint32_t count;

    [[nodiscard]] bool settled() const {
        return bytes < kShortBlock;
    }
};
inline constexpr ShortCount kUnsettledCount{~std::uint32_t{0}, 0};

// Whole characters of a stretch of a text, and where they stand.
struct ShortStretch {
    std::uint8_t from;
    std::uint8_t to;
    std::uint8_t count;
    bool settled;
};
inline constexpr ShortStretch kUnsettledStretch{0, 0, 0, false};

// What is proved of a page: UTF-8, or characters of one and two bytes; with ValidPairs trail bytes have to be
// valid ones. Bytes, of which each is a character, need no structure.
enum class ShortPage : std::uint32_t {
    Utf8,
    Pairs,
    ValidPairs,
    Bytes
};

namespace {

// The bit of a place; none where a block does not reach it.
template <typename Masks>
[[gnu::always_inline]] inline std::uint64_t bitOf(std::uint32_t place) {
    return place < Masks::kBytes ? std::uint64_t{1} << place : 0;
}

[[gnu::always_inline]] inline std::uint64_t lowestOf(std::uint64_t mask) {
    return mask & (0 - mask);
}

[[gnu::always_inline]] inline unsigned placeOf(std::uint64_t bit) {
    return static_cast<unsigned>(__builtin_ctzll(bit));
}

// ---- How a block divides into characters ----------------------------------------------------------------

// Of a block at the start of a text: the bytes that belong to a character before, and those below `stop`, a
// bit, that are not what the page means. The byte at the stop may belong to a character that it cuts.
struct ShortStructure {
    std::uint64_t trails;
    std::uint64_t wrong;
};

template <typename Masks>
[[gnu::always_inline]] inline ShortStructure structureOf(ShortPage page, const PageFacts &facts,
                                                         const Masks &masks, std::uint64_t stop) {
    if (page == ShortPage::Utf8) {
        const Utf8Structure utf8(masks, 0);
        return {(utf8.trails & (stop - 1)) | (utf8.announced & stop), utf8.irregular & (stop - 1)};
    }
    std::uint64_t pending = 0;
    const std::uint64_t trails = pairTrails(leadsOf(masks, facts) & (stop - 1), pending);
    return {trails, page == ShortPage::ValidPairs ? trails & (stop - 1) & ~validTrailsOf(masks, facts) : 0};
}

// ---- What is asked of it --------------------------------------------------------------------------------

// Characters up to the NUL or to `limit`, where neither cuts one.
template <typename Masks>
[[gnu::always_inline]] inline ShortCount shortCountBy(ShortPage page, const PageFacts &facts,
                                                      const std::uint8_t *text, std::uint32_t limit) {
    const Masks masks(text);
    const std::uint64_t stop = lowestOf(masks.equal(0) | bitOf<Masks>(limit));
    const ShortStructure structure = structureOf(page, facts, masks, stop);
    if (stop == 0 || (structure.wrong | (structure.trails & stop)) != 0)
        return kUnsettledCount;
    return {placeOf(stop), Masks::population((stop - 1) & ~structure.trails)};
}

// The characters that lie wholly in the `length` bytes from `start` on, of a text that has as many bytes as
// either says.
template <typename Masks>
[[gnu::always_inline]] inline ShortStretch shortStretchBy(ShortPage page, const PageFacts &facts,
                                                          const std::uint8_t *text, std::uint32_t start,
                                                          std::uint32_t length) {
    const Masks masks(text);
    const std::uint64_t ends = lowestOf(masks.equal(0));
    const std::uint64_t from = bitOf<Masks>(start);
    // No text reaches the last place of a block that has no NUL, so that the masks have a bit behind the end.
    const std::uint64_t stop = lowestOf(ends | bitOf<Masks>(start + length));
    const std::uint64_t needed = bitOf<Masks>(start + 1 > length ? start + 1 : length);
    const ShortStructure structure = structureOf(page, facts, masks, stop);
    if (stop == 0 || needed == 0 || (ends != 0 && needed > ends) || structure.wrong != 0)
        return kUnsettledStretch;
    const std::uint64_t begins = (stop - 1) & ~structure.trails & (0 - from);
    if (begins == 0)
        return {0, 0, 0, true};
    // A character that is cut at the end is left out.
    const std::uint64_t cut = structure.trails & stop;
    const std::uint64_t last = std::uint64_t{1} << (63 - __builtin_clzll(begins));
    const std::uint64_t to = cut != 0 ? last : stop;
    const auto first = static_cast<std::uint8_t>(placeOf(begins));
    return {first, static_cast<std::uint8_t>(placeOf(to)),
            static_cast<std::uint8_t>(Masks::population(begins & (to - 1))), true};
}

} // namespace
} // namespace velnls
