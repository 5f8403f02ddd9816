#include "convert/at_once.hpp"

#include "convert/engine.hpp"
#include "convert/kernels/fast.hpp"
#include "convert/kernels/fast_avx2.hpp"
#include "convert/kernels/fast_avx512.hpp"
#include "convert/kernels/japanese_blocks.hpp"
#include "core/instruction_sets.hpp"

#include <algorithm>
#include <cstring>

namespace velnls {

namespace {

// A way: the kernel in the low byte, the width of the terminator above it, and which set the kernel is of.
constexpr std::uint32_t kKernel = 0xFF;
constexpr unsigned kWidthShift = 8;
constexpr std::uint32_t kWidthMask = 0xFF;
constexpr std::uint32_t kOfWideVectors = 0x10000;

enum Kernel : std::uint32_t {
    kNone,
    kBytes,
    kRowToUtf8,
    kPairsToUtf8,
    kUtf8ToRow,
    kUtf8ToPairs,
    kToEuc,
    kToShiftJis,
    kFromUtf16,
    kFromUtf32,
    kToUtf16,
    kToUtf32,
    kWidens,
    kNarrows,
};

const MappingBody &mappingOf(const void *converter) {
    return *static_cast<const MappingBody *>(converter);
}

std::uint32_t widthOf(std::uint32_t way) {
    return way >> kWidthShift & kWidthMask;
}

struct WideVectors {
    [[gnu::always_inline]] static void mapBytes(const std::uint8_t *map, Source &source, Target &target) {
        avx512::mapBytes(map, source, target);
    }
    static constexpr auto byteRowToUtf8 = avx512::byteRowToUtf8;
    static constexpr auto pairsToUtf8 = avx512::pairsToUtf8;
    static constexpr auto utf8ToByteRow = avx512::utf8ToByteRow;
    static constexpr auto utf8ToPairs = avx512::utf8ToPairs;
    static constexpr auto shiftJisToEuc = avx512::shiftJisToEuc;
    static constexpr auto eucToShiftJis = avx512::eucToShiftJis;
    static constexpr auto utf16ToUtf8 = avx512::utf16ToUtf8;
    static constexpr auto utf32ToUtf8 = avx512::utf32ToUtf8;
    static constexpr auto utf8ToUtf16 = avx512::utf8ToUtf16;
    static constexpr auto utf8ToUtf32 = avx512::utf8ToUtf32;
    static constexpr auto utf16ToUtf32 = avx512::utf16ToUtf32;
    static constexpr auto utf32ToUtf16 = avx512::utf32ToUtf16;
};

struct ByteShuffles {
    [[gnu::always_inline]] static void mapBytes(const std::uint8_t *map, Source &source, Target &target) {
        fast::mapBytes(map, kByteShuffles, source, target);
    }
    static constexpr auto byteRowToUtf8 = avx2::byteRowToUtf8;
    static constexpr auto pairsToUtf8 = avx2::pairsToUtf8;
    static constexpr auto utf8ToByteRow = avx2::utf8ToByteRow;
    static constexpr auto utf8ToPairs = avx2::utf8ToPairs;
    static constexpr auto shiftJisToEuc = fast::shiftJisToEucBlocks;
    static constexpr auto eucToShiftJis = fast::eucToShiftJisBlocks;
    static constexpr auto utf16ToUtf8 = avx2::utf16ToUtf8;
    static constexpr auto utf32ToUtf8 = avx2::utf32ToUtf8;
    static constexpr auto utf8ToUtf16 = avx2::utf8ToUtf16;
    static constexpr auto utf8ToUtf32 = avx2::utf8ToUtf32;
    static constexpr auto utf16ToUtf32 = avx2::utf16ToUtf32;
    static constexpr auto utf32ToUtf16 = avx2::utf32ToUtf16;
};

enum class Said {
    Done,
    NoRoom, // for what the kernel stores, though there may be for the text
    Not
};

// Where the way does not take all of the text, bytes of the destination may have changed, which the general
// way writes anew.
template <typename Set>
[[gnu::always_inline]] inline Said convertBy(std::uint32_t way, const void *converter, const nlsStr &from,
                                             nlsStr &to) {
    auto *const begin = reinterpret_cast<std::uint8_t *>(to.buffer);
    const auto *const text = reinterpret_cast<const std::uint8_t *>(from.buffer);
    Source source{text, text + from.length};
    Target target{begin, begin + std::max(static_cast<std::int32_t>(to.size), 0)};
    if (!areApart(source, target))
        return Said::Not;
    switch (way & kKernel) {
    case kBytes:
        if (target.room() < source.left())
            return Said::Not;
        Set::mapBytes(static_cast<const std::uint8_t *>(converter), source, target);
        break;
    case kRowToUtf8:
        Set::byteRowToUtf8(mappingOf(converter), source, target);
        break;
    case kPairsToUtf8:
        Set::pairsToUtf8(mappingOf(converter), source, target);
        break;
    case kUtf8ToRow:
        Set::utf8ToByteRow(mappingOf(converter), source, target);
        break;
    case kUtf8ToPairs:
        Set::utf8ToPairs(mappingOf(converter), source, target);
        break;
    case kToEuc:
        Set::shiftJisToEuc(source, target);
        break;
    case kToShiftJis:
        Set::eucToShiftJis(source, target);
        break;
    case kFromUtf16:
        Set::utf16ToUtf8(source, target);
        break;
    case kFromUtf32:
        Set::utf32ToUtf8(source, target);
        break;
    case kToUtf16:
        Set::utf8ToUtf16(source, target);
        break;
    case kToUtf32:
        Set::utf8ToUtf32(source, target);
        break;
    case kWidens:
        Set::utf16ToUtf32(source, target);
        break;
    case kNarrows:
        Set::utf32ToUtf16(source, target);
        break;
    default:
        return Said::Not;
    }
    const std::uint32_t width = widthOf(way);
    if (source.at != source.end || target.room() < static_cast<std::ptrdiff_t>(width))
        return target.room() < fast::kTightRoom ? Said::NoRoom : Said::Not;
    to.length = static_cast<std::uint32_t>(target.at - begin);
    for (std::uint32_t i = 0; i < width; ++i)
        target.at[i] = 0;
    return Said::Done;
}

Kernel kernelFor(const void *converter) {
    if (converter == nullptr || (headerOf(converter).proofs & kInstructionSets) == 0)
        return kNone;
    if (byteMapOf(converter) != nullptr)
        return kBytes;
    const ConverterHeader &header = headerOf(converter);
    if ((header.type & (kSwapSource | kSwapTarget)) != 0)
        return kNone;
    const bool isRow = (header.proofs & kByteRow) != 0;
    switch (kindOf(converter)) {
    case kPageToUtf8:
    case kPageToUtf8Wide:
    case kPageToUtf8Widest:
        return !fast::canMap(header.proofs) ? kNone : isRow ? kRowToUtf8 : kPairsToUtf8;
    case kUtf8ToPage:
    case kUtf8ToBytePage:
        return !fast::canMap(header.proofs) ? kNone : isRow ? kUtf8ToRow : kUtf8ToPairs;
    case kShiftJisToEuc:
        return kToEuc;
    case kEucToShiftJis:
        return kToShiftJis;
    case kUcs2ToUtf8:
    case kUtf16ToUtf8:
        return kFromUtf16;
    case kUtf32ToUtf8:
        return kFromUtf32;
    case kUtf8ToUcs2:
    case kUtf8ToUtf16:
        return kToUtf16;
    case kUtf8ToUtf32:
        return kToUtf32;
    case kUtf16ToUtf32:
        return kWidens;
    case kUtf32ToUtf16:
        return kNarrows;
    default:
        return kNone;
    }
}

} // namespace

std::uint32_t wayAtOnce(const void *converter) {
    const Kernel kernel = kernelFor(converter);
    if (kernel == kNone)
        return 0;
    const bool isWide = (headerOf(converter).proofs & kWideVectors) != 0;
    return kernel | terminatorWidth(converter) << kWidthShift | (isWide ? kOfWideVectors : 0);
}

namespace {

// By a buffer that has room for all that a text of kMostAtOnce bytes may become. What fits the destination is
// the same there.
[[gnu::noinline]] nlsStatus convertThroughBuffer(std::uint32_t way, const void *converter,
                                                 const nlsStr &source, nlsStr &destination) {
    char buffer[kMostAtOnce * 4 + fast::kTightRoom];
    nlsStr made{buffer, sizeof buffer, 0};
    const nlsStatus status = convertAtOnce(way, converter, source, nullptr, made);
    if (static_cast<std::int32_t>(made.length + widthOf(way)) > static_cast<std::int32_t>(destination.size))
        return convertText(converter, source, nullptr, destination);
    std::memcpy(destination.buffer, buffer, made.length + widthOf(way));
    destination.length = made.length;
    return status;
}

} // namespace

nlsStatus convertAtOnce(std::uint32_t way, const void *converter, const nlsStr &source, nlsStr *intermediate,
                        nlsStr &destination) {
    const Said said = (way & kOfWideVectors) != 0
                          ? convertBy<WideVectors>(way, converter, source, destination)
                          : convertBy<ByteShuffles>(way, converter, source, destination);
    if (said == Said::Done) [[likely]]
        return NLS_OK;
    return said == Said::NoRoom ? convertThroughBuffer(way, converter, source, destination)
                                : convertText(converter, source, intermediate, destination);
}

} // namespace velnls
