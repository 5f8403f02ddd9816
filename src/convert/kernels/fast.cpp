#include "convert/kernels/fast.hpp"

#include "convert/kernels/alternate.hpp"
#include "convert/kernels/baseline.hpp"
#include "convert/kernels/fast_avx2.hpp"
#include "convert/kernels/fast_avx512.hpp"
#include "convert/kernels/japanese_blocks.hpp"
#include "convert/kernels/japanese_bytes.hpp"
#include "convert/kernels/proofs.hpp"
#include "core/instruction_sets.hpp"

#include <algorithm>
#include <cstring>

namespace velnls::fast {

namespace {

// The steps of a conversion by kernels, for any kind: `body` is null where there are no tables.
using Blocks = void (*)(const MappingBody *body, Source &, Target &);
using Rest = nlsStatus (*)(const MappingBody *body, Source &, Target &);
using Window = std::ptrdiff_t (*)(const MappingBody *body, const Source &, std::ptrdiff_t wanted);

struct Steps {
    Blocks blocks;
    Rest rest;     // for what the blocks stop at: complete conversions
    Window window; // how many bytes to hand over: whole characters, of what is wanted or a little more
    std::ptrdiff_t unit = 1; // bytes without which there is no character
    bool (*ends)(nlsStatus) = endsUnits;
};

// Kernels store registers whole, and stop where the target may not have room for that. Then they go on into a
// buffer, piece by piece, as long as what a piece becomes fits.
constexpr std::ptrdiff_t kMostPiece = 64; // source bytes
constexpr std::ptrdiff_t kLeastPiece = 8;

void intoTightRoom(Blocks blocks, const MappingBody *body, Source &source, Target &target) {
    std::ptrdiff_t size = kMostPiece;
    while (size >= kLeastPiece && source.at != source.end) {
        std::uint8_t buffer[kTightRoom];
        Target made{buffer, buffer + kTightRoom};
        Source piece{source.at, source.at + std::min(size, source.left())};
        blocks(body, piece, made);
        const std::ptrdiff_t written = made.at - buffer;
        if (written > target.room()) {
            size /= 2;
            continue;
        }
        if (piece.at == source.at)
            return;
        std::memcpy(target.at, buffer, static_cast<std::size_t>(written));
        target.at += written;
        source.at = piece.at;
    }
}

// Much of what blocks do up to a character that they refuse is in vain: they have read ahead. Of text in
// which they hardly get on, the kernels that take one character after the other get twice as much each time.
constexpr std::ptrdiff_t kWorthBlocks = 32; // source bytes between two refusals
constexpr std::ptrdiff_t kMostRefused = 512;

// The blocks alone finish most texts.
nlsStatus convertBy(const Steps &steps, const MappingBody *body, Source &source, Target &target) {
    std::ptrdiff_t refused = 1; // bytes that go to the other kernels
    const auto blocks = [&steps, body, &refused](Source &text, Target &out) {
        const std::uint8_t *const begin = text.at;
        steps.blocks(body, text, out);
        if (text.at != text.end && out.room() < kTightRoom)
            intoTightRoom(steps.blocks, body, text, out);
        refused = text.at - begin < kWorthBlocks ? std::min(2 * refused, kMostRefused) : 1;
    };
    const auto window = [&steps, body, &refused](const Source &text) {
        return steps.window(body, text, refused);
    };
    const auto rest = [&steps, body](Source &piece, Target &out) { return steps.rest(body, piece, out); };
    return alternate(source, target, steps.unit, blocks, window, rest, steps.ends);
}

// Kernels and windows without tables as such steps.
template <void (*kKernel)(Source &, Target &)>
void blocksOf(const MappingBody *, Source &source, Target &target) {
    kKernel(source, target);
}
template <void (*kKernel)(const MappingBody &, Source &, Target &)>
void blocksOf(const MappingBody *body, Source &source, Target &target) {
    kKernel(*body, source, target);
}
template <nlsStatus (*kKernel)(Source &, Target &)>
nlsStatus restOf(const MappingBody *, Source &source, Target &target) {
    return kKernel(source, target);
}
template <nlsStatus (*kKernel)(const MappingBody &, std::uint32_t, Source &, Target &), std::uint32_t kShape>
nlsStatus restOf(const MappingBody *body, Source &source, Target &target) {
    return kKernel(*body, kShape, source, target);
}
template <nlsStatus (*kKernel)(const MappingBody &, std::uint32_t, Source &, Target &)>
Rest restOf(std::uint32_t proofs) {
    return (proofs & kByteRow) != 0 ? restOf<kKernel, kByteRow> : restOf<kKernel, kPairRectangle>;
}
// Whole characters of `wanted` bytes or a little more; the last one may be cut by the source's end.
template <typename Length>
[[gnu::always_inline]] inline std::ptrdiff_t charactersOf(const Source &source, std::ptrdiff_t wanted,
                                                          Length lengthOf) {
    Source rest = source;
    std::ptrdiff_t length = 0;
    do {
        rest.at = source.at + length;
        length += lengthOf(rest);
    } while (length < wanted && length < source.left());
    return length;
}
template <std::ptrdiff_t (*kWindow)(const Source &)>
std::ptrdiff_t windowOf(const MappingBody *, const Source &source, std::ptrdiff_t wanted) {
    return charactersOf(source, wanted, kWindow);
}
std::ptrdiff_t pageWindow(const MappingBody *body, const Source &source, std::ptrdiff_t wanted) {
    return charactersOf(source, wanted, [table = body->charTable](const Source &rest) {
        return std::ptrdiff_t{1} + table->trailCount(*rest.at);
    });
}

bool hasKernels(std::uint32_t proofs) {
    return (proofs & kInstructionSets) != 0;
}

Blocks widest(std::uint32_t proofs, Blocks wide, Blocks shuffles) {
    return (proofs & kWideVectors) != 0 ? wide : shuffles;
}

} // namespace

void mapBytes(const std::uint8_t *map, std::uint32_t proofs, Source &source, Target &target) {
    if ((proofs & kWideVectors) != 0) {
        avx512::mapBytes(map, source, target);
        return;
    }
    const std::ptrdiff_t length = source.left();
    if ((proofs & kByteShuffles) != 0 && length >= avx2::kWorthwhile)
        avx2::mapBytes(map, source.at, target.at, length);
    else
        baseline::mapBytes(map, source.at, target.at, length);
    source.at = source.end;
    target.at += length;
}

nlsStatus pageToUtf8(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    if (!hasKernels(proofs))
        return baseline::pageToUtf8(body, proofs, source, target);
    const Blocks blocks = (proofs & kByteRow) != 0
                              ? widest(proofs, blocksOf<avx512::byteRowToUtf8>, blocksOf<avx2::byteRowToUtf8>)
                              : widest(proofs, blocksOf<avx512::pairsToUtf8>, blocksOf<avx2::pairsToUtf8>);
    return convertBy({blocks, restOf<baseline::pageToUtf8>(proofs), pageWindow}, &body, source, target);
}

nlsStatus utf8ToPage(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    if (!hasKernels(proofs))
        return baseline::utf8ToPage(body, proofs, source, target);
    const Blocks blocks = (proofs & kByteRow) != 0
                              ? widest(proofs, blocksOf<avx512::utf8ToByteRow>, blocksOf<avx2::utf8ToByteRow>)
                              : widest(proofs, blocksOf<avx512::utf8ToPairs>, blocksOf<avx2::utf8ToPairs>);
    return convertBy({blocks, restOf<baseline::utf8ToPage>(proofs), windowOf<utf8Window>, 1, endsUtf8}, &body,
                     source, target);
}

namespace {

using Kernel = void (*)(Source &, Target &);
using Whole = nlsStatus (*)(Source &, Target &);

template <Kernel kWide, Kernel kShuffles, Whole kBaseline>
nlsStatus convertUtf8(std::uint32_t proofs, Source &source, Target &target) {
    if (!hasKernels(proofs))
        return kBaseline(source, target);
    return convertBy({widest(proofs, blocksOf<kWide>, blocksOf<kShuffles>), restOf<kBaseline>,
                      windowOf<utf8Window>, 1, endsUtf8},
                     nullptr, source, target);
}

template <typename Unit, Kernel kWide, Kernel kShuffles, Whole kBaseline>
nlsStatus convertUnits(std::uint32_t proofs, Source &source, Target &target) {
    if (!hasKernels(proofs))
        return kBaseline(source, target);
    return convertBy({widest(proofs, blocksOf<kWide>, blocksOf<kShuffles>), restOf<kBaseline>,
                      windowOf<unitWindow<Unit>>, sizeof(Unit)},
                     nullptr, source, target);
}

} // namespace

nlsStatus utf8ToUtf16(std::uint32_t proofs, Source &source, Target &target) {
    return convertUtf8<avx512::utf8ToUtf16, avx2::utf8ToUtf16, baseline::utf8ToUtf16>(proofs, source, target);
}

nlsStatus utf8ToUtf32(std::uint32_t proofs, Source &source, Target &target) {
    return convertUtf8<avx512::utf8ToUtf32, avx2::utf8ToUtf32, baseline::utf8ToUtf32>(proofs, source, target);
}

nlsStatus utf16ToUtf8(std::uint32_t proofs, Source &source, Target &target) {
    return convertUnits<std::uint16_t, avx512::utf16ToUtf8, avx2::utf16ToUtf8, baseline::utf16ToUtf8>(
        proofs, source, target);
}

nlsStatus utf32ToUtf8(std::uint32_t proofs, Source &source, Target &target) {
    return convertUnits<std::uint32_t, avx512::utf32ToUtf8, avx2::utf32ToUtf8, baseline::utf32ToUtf8>(
        proofs, source, target);
}

nlsStatus utf16ToUtf32(std::uint32_t proofs, Source &source, Target &target) {
    return convertUnits<std::uint16_t, avx512::utf16ToUtf32, avx2::utf16ToUtf32, baseline::utf16ToUtf32>(
        proofs, source, target);
}

nlsStatus utf32ToUtf16(std::uint32_t proofs, Source &source, Target &target) {
    return convertUnits<std::uint32_t, avx512::utf32ToUtf16, avx2::utf32ToUtf16, baseline::utf32ToUtf16>(
        proofs, source, target);
}

namespace {

// Half-width katakana come in stretches: the plain kernel takes whole characters of about this many bytes at
// once.
constexpr std::ptrdiff_t kJapaneseStretch = 32;

template <bool (*kIsLead)(std::uint8_t)>
std::ptrdiff_t japaneseWindow(const MappingBody *, const Source &source, std::ptrdiff_t wanted) {
    return charactersOf(source, std::max(wanted, kJapaneseStretch),
                        [](const Source &rest) { return std::ptrdiff_t{kIsLead(*rest.at) ? 2 : 1}; });
}

bool isEucLead(std::uint8_t byte) {
    return isEucByte(byte) || byte == kKatakanaShift;
}

} // namespace

nlsStatus shiftJisToEuc(std::uint32_t proofs, Source &source, Target &target) {
    const Blocks blocks = widest(proofs, blocksOf<avx512::shiftJisToEuc>, blocksOf<shiftJisToEucBlocks>);
    return convertBy({blocks, restOf<velnls::shiftJisToEuc>, japaneseWindow<isShiftJisLead>, 1, endsUtf8},
                     nullptr, source, target);
}

nlsStatus eucToShiftJis(std::uint32_t proofs, Source &source, Target &target) {
    const Blocks blocks = widest(proofs, blocksOf<avx512::eucToShiftJis>, blocksOf<eucToShiftJisBlocks>);
    return convertBy({blocks, restOf<velnls::eucToShiftJis>, japaneseWindow<isEucLead>, 1, endsUtf8}, nullptr,
                     source, target);
}

} // namespace velnls::fast
