// Counting by blocks of up to 64 bytes, in masks of one bit per byte: the body of the kernels of every
// instruction set. `Masks` makes the masks of a block.
//
// Each kernel goes over whole characters as far as the text is provably what its page means, and says where
// it stopped; the caller's plain loop goes on from there. No text holds a NUL.
#pragma once

#include "core/utf8_boundary.hpp"
#include "locale/pair_masks.hpp"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace velnls {

// What was gone over: bytes, of whole characters; and characters or columns of them.
struct Passed {
    std::size_t bytes;
    std::size_t count;
};

namespace {

[[gnu::always_inline]] inline std::uint64_t bitsBelow(unsigned count) {
    return (std::uint64_t{1} << count) - 1; // fewer than 64
}

// The lead and trail bytes of a block of UTF-8.
struct Utf8Structure {
    std::uint64_t trails;
    std::uint64_t twoOrMore; // bytes that announce at least so many bytes
    std::uint64_t threeOrMore;
    std::uint64_t four;
    std::uint64_t announced; // bytes that belong to a character before by what its first byte says
    std::uint64_t irregular; // bytes that are not what the bytes before announce

    // `before`: the first bytes that belong to a character of the block before.
    template <typename Masks>
    [[gnu::always_inline]] Utf8Structure(const Masks &masks, std::uint64_t before)
        : trails(masks.utf8Trails()), twoOrMore(masks.high() & ~trails), threeOrMore(masks.atLeast(0xE0)),
          four(masks.atLeast(0xF0)), announced(before | twoOrMore << 1 | threeOrMore << 2 | four << 3),
          irregular(announced ^ trails) {
        if (four != 0)
            irregular |= masks.atLeast(0xF8);
    }
    // What the block announces of the next one.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t announcedBehind() const {
        return twoOrMore >> 63 | threeOrMore >> 62 | four >> 61;
    }
};

// Where the character before an irregular place begins: the place may still be its own.
inline const std::uint8_t *beginBefore(const std::uint8_t *at) {
    do
        --at;
    while ((*at & 0xC0) == 0x80);
    return at;
}

// Goes over the last block, which may be empty or shorter than 64 bytes.
template <typename Masks>
[[gnu::always_inline]] inline void countUtf8Rest(const std::uint8_t *text, const std::uint8_t *at,
                                                 std::size_t left, std::uint64_t announced, Passed &passed) {
    std::uint64_t trails = 0;
    std::uint64_t irregular = announced;
    if (left != 0) {
        const Masks masks(at, left);
        const Utf8Structure structure(masks, announced);
        trails = structure.trails;
        irregular = structure.irregular;
    }
    if (irregular == 0) {
        passed.bytes += left;
        passed.count += left - Masks::population(trails);
        return;
    }
    const auto place = static_cast<unsigned>(__builtin_ctzll(irregular));
    if (at + place == text)
        return;
    const std::uint8_t *const stop = beginBefore(at + place);
    passed.count += place - Masks::population(trails & bitsBelow(place)) - 1;
    passed.bytes = static_cast<std::size_t>(stop - text);
}

// Calls `count` with the narrowest masks that `left` bytes fit, up to 64: those of 64 bytes and those for
// shorter rests, some of which may be the same.
template <typename Masks, typename Half, typename Quarter, typename Count>
[[gnu::always_inline]] inline auto withMasksFor(std::size_t left, Count count) {
    if constexpr (!std::is_same_v<Quarter, Half>)
        if (left <= 16)
            return count.template operator()<Quarter>();
    if constexpr (!std::is_same_v<Half, Masks>)
        if (left <= 32)
            return count.template operator()<Half>();
    return count.template operator()<Masks>();
}

template <typename Masks, typename Half, typename Quarter>
[[gnu::always_inline]] inline Passed countUtf8By(const std::uint8_t *text, std::size_t length) {
    Passed passed{0, 0};
    const std::uint8_t *at = text;
    std::size_t left = length;
    std::uint64_t announced = 0;
    while (left >= 64) {
        const Masks masks(at);
        if ((masks.high() | announced) == 0) {
            passed.count += 64;
        } else {
            const Utf8Structure structure(masks, announced);
            if (structure.irregular != 0) {
                left = 64;
                break;
            }
            passed.count += 64 - Masks::population(structure.trails);
            announced = structure.announcedBehind();
        }
        at += 64;
        left -= 64;
    }
    passed.bytes = static_cast<std::size_t>(at - text);
    withMasksFor<Masks, Half, Quarter>(
        left, [&]<typename Rest>()
                  __attribute__((always_inline)) { countUtf8Rest<Rest>(text, at, left, announced, passed); });
    return passed;
}

// ---- Columns of UTF-8 -----------------------------------------------------------------------------------

// Columns of the characters that begin at `begins`, all of them whole and regular: one, or two from the lead
// byte E3 on; E0 and EF are looked at closer.
template <typename Masks>
[[gnu::always_inline]] inline std::size_t utf8Columns(const Masks &masks, std::uint64_t begins) {
    std::size_t columns = Masks::population(begins) + Masks::population(begins & masks.atLeast(0xE3));
    const std::uint64_t thai = begins & masks.equal(0xE0);
    const std::uint64_t forms = begins & masks.equal(0xEF);
    if (thai != 0) {
        const std::uint64_t third = (masks.equal(0xB8) << 1 & (masks.equal(0xB1) | masks.inRange(0xB4, 6))) |
                                    (masks.equal(0xB9) << 1 & masks.inRange(0x87, 7));
        columns -= Masks::population(thai & third >> 2);
    }
    if (forms != 0) {
        const std::uint64_t second = masks.utf8Trails() & (~masks.atLeast(0xBA) | masks.equal(0xBC));
        const std::uint64_t third = (masks.equal(0xBD) << 1 & ~masks.atLeast(0xA0)) |
                                    (masks.equal(0xBF) << 1 & masks.inRange(0x9D, 10));
        const std::uint64_t mark = masks.equal(0xBB) << 1 & masks.equal(0xBF);
        columns -= Masks::population(forms & ~(second >> 1 | third >> 2));
        columns -= Masks::population(forms & mark >> 2);
    }
    return columns;
}

// Blocks begin where characters do, so that each character lies in one block.
template <typename Masks>
[[gnu::always_inline]] inline bool columnsUtf8Block(const std::uint8_t *text, std::size_t left,
                                                    Passed &passed) {
    const Masks masks = left >= Masks::kBytes ? Masks(text + passed.bytes) : Masks(text + passed.bytes, left);
    const auto bytes = static_cast<unsigned>(left < Masks::kBytes ? left : Masks::kBytes);
    const std::uint64_t text64 = bytes == 64 ? ~std::uint64_t{0} : bitsBelow(bytes);
    const Utf8Structure structure(masks, 0);
    std::uint64_t begins = text64 & ~structure.trails;
    unsigned end = bytes;
    // Where the text ends inside a character, the byte behind it is irregular.
    const std::uint64_t irregular = structure.irregular;
    if (irregular != 0) {
        const auto place = static_cast<unsigned>(__builtin_ctzll(irregular));
        begins &= bitsBelow(place);
        if (begins == 0)
            return false;
        end = 63 - static_cast<unsigned>(__builtin_clzll(begins)); // the last character begins there
        begins ^= std::uint64_t{1} << end;
    } else if (bytes == 64) {
        end -= incompleteBefore<4>(text + passed.bytes + 64);
        begins &= ~std::uint64_t{0} >> (64 - end);
    }
    passed.count += utf8Columns(masks, begins);
    passed.bytes += end;
    return end + 4 > bytes && irregular == 0;
}

template <typename Masks, typename Half>
[[gnu::always_inline]] inline Passed columnsUtf8By(const std::uint8_t *text, std::size_t length) {
    Passed passed{0, 0};
    for (;;) {
        const std::size_t left = length - passed.bytes;
        if (left == 0)
            break;
        if (!withMasksFor<Masks, Half, Half>(
                left, [&]<typename Block>() __attribute__((always_inline)) {
                    return columnsUtf8Block<Block>(text, left, passed);
                }))
            break;
    }
    return passed;
}

// ---- Pages of one and two bytes -------------------------------------------------------------------------

template <typename Masks>
[[gnu::always_inline]] inline std::uint64_t validTrailsOf(const Masks &masks, const PageFacts &facts) {
    return masks.inRange(facts.trails[0].first, facts.trails[0].span) |
           masks.inRange(facts.trails[1].first, facts.trails[1].span) |
           masks.inRange(facts.trails[2].first, facts.trails[2].span);
}

// kChecked: stops before the first character whose trail byte may not be one. False then.
template <bool kChecked, typename Masks>
[[gnu::always_inline]] inline bool countPairsBlock(const PageFacts &facts, const std::uint8_t *text,
                                                   unsigned bytes, std::uint64_t &pending, Passed &passed) {
    const Masks masks =
        bytes == Masks::kBytes ? Masks(text + passed.bytes) : Masks(text + passed.bytes, bytes);
    const std::uint64_t text64 = bytes == 64 ? ~std::uint64_t{0} : bitsBelow(bytes);
    std::uint64_t trails = pairTrails(leadsOf(masks, facts) & text64, pending);
    if (bytes != 64) {
        pending = trails >> bytes & 1;
        trails &= text64;
    }
    if constexpr (kChecked) {
        if (const std::uint64_t wrong = trails & ~validTrailsOf(masks, facts); wrong != 0) {
            const auto place = static_cast<unsigned>(__builtin_ctzll(wrong));
            passed.count += place - Masks::population(trails & bitsBelow(place));
            passed.bytes += place;
            pending = 1; // the trail byte's lead is not gone over
            return false;
        }
    }
    passed.count += bytes - Masks::population(trails);
    passed.bytes += bytes;
    return true;
}

template <bool kChecked, typename Masks, typename Half, typename Quarter>
[[gnu::always_inline]] inline Passed countPairsBy(const PageFacts &facts, const std::uint8_t *text,
                                                  std::size_t length) {
    Passed passed{0, 0};
    std::uint64_t pending = 0;
    bool goesOn = true;
    while (goesOn && length - passed.bytes >= 64)
        goesOn = countPairsBlock<kChecked, Masks>(facts, text, 64, pending, passed);
    if (const auto left = static_cast<unsigned>(length - passed.bytes); goesOn && left != 0) {
        withMasksFor<Masks, Half, Quarter>(
            left, [&]<typename Rest>() __attribute__((always_inline)) {
                countPairsBlock<kChecked, Rest>(facts, text, left, pending, passed);
            });
    }
    // A lead byte without its trail byte is left to the caller.
    passed.bytes -= pending;
    passed.count -= pending;
    return passed;
}

// Each character has a column for each of its bytes, but for those of narrow lead bytes.
template <typename Masks>
[[gnu::always_inline]] inline void columnsPairsBlock(const PageFacts &facts, const std::uint8_t *text,
                                                     unsigned bytes, std::uint64_t &pending, Passed &passed) {
    const Masks masks =
        bytes == Masks::kBytes ? Masks(text + passed.bytes) : Masks(text + passed.bytes, bytes);
    const std::uint64_t text64 = bytes == 64 ? ~std::uint64_t{0} : bitsBelow(bytes);
    const std::uint64_t leads = leadsOf(masks, facts) & text64;
    std::uint64_t trails = pairTrails(leads, pending);
    if (bytes != 64)
        pending = trails >> bytes & 1;
    const std::uint64_t narrow = masks.inRange(facts.narrow.first, facts.narrow.span) & leads & ~trails;
    passed.count += bytes - Masks::population(narrow);
    passed.bytes += bytes;
}

template <typename Masks, typename Half>
[[gnu::always_inline]] inline Passed narrowColumnsBy(const PageFacts &facts, const std::uint8_t *text,
                                                     std::size_t length) {
    Passed passed{0, 0};
    std::uint64_t pending = 0;
    while (length - passed.bytes >= 64)
        columnsPairsBlock<Masks>(facts, text, 64, pending, passed);
    if (const auto left = static_cast<unsigned>(length - passed.bytes); left != 0) {
        withMasksFor<Masks, Half, Half>(
            left, [&]<typename Rest>() __attribute__((always_inline)) {
                columnsPairsBlock<Rest>(facts, text, left, pending, passed);
            });
    }
    // A lead byte without its trail byte is left to the caller.
    if (pending != 0) {
        --passed.bytes;
        const auto place = static_cast<std::uint8_t>(text[passed.bytes] - facts.narrow.first);
        passed.count -= place <= facts.narrow.span ? 0 : 1;
    }
    return passed;
}

} // namespace
} // namespace velnls
