#include "convert/kernels/fast.hpp"

#include "convert/kernels/fast_avx2.hpp"
#include "convert/kernels/fast_avx512.hpp"
#include "convert/kernels/fast_from_page.hpp"
#include "convert/kernels/fast_from_units.hpp"
#include "convert/kernels/fast_from_utf8.hpp"
#include "convert/kernels/fast_japanese.hpp"
#include "convert/kernels/fast_sinks.hpp"
#include "convert/kernels/japanese_bytes.hpp"
#include "convert/kernels/proofs.hpp"
#include "convert/kernels/unicode_units.hpp"
#include "core/instruction_sets.hpp"

namespace velnls::fast {

namespace {

// Alternates between the fast blocks and the plain kernel. `blocks` goes as far as it can; `window` says how
// many bytes make up the character (or few characters) at the source's position, and `plain` converts those.
// A status ends the conversion when `ends` says so; any other is remembered for the end.
template <typename Blocks, typename Window, typename Plain, typename Ends>
[[gnu::always_inline]] inline nlsStatus alternate(Source &source, Target &target, std::ptrdiff_t unit,
                                                  Blocks blocks, Window window, Plain plain, Ends ends) {
    nlsStatus result = NLS_OK;
    for (;;) {
        blocks(source, target);
        const std::ptrdiff_t left = source.end - source.at;
        if (left < unit)
            return result;
        const std::ptrdiff_t wanted = window(source);
        Source piece{source.at, source.at + (wanted < left ? wanted : left), source.behind};
        const nlsStatus status = plain(piece, target);
        source.at = piece.at;
        if (ends(status))
            return status;
        if (status != NLS_OK)
            result = status;
    }
}

std::ptrdiff_t utf8Window(const Source &source) {
    return utf8Trails(*source.at) + 1;
}

template <typename Unit>
std::ptrdiff_t unitWindow(const Source &source) {
    constexpr std::ptrdiff_t kWidth = sizeof(Unit);
    if (source.end - source.at < 2 * kWidth || !isHighSurrogate(loadNumber<Unit>(source.at)) ||
        !isLowSurrogate(loadNumber<Unit>(source.at + kWidth)))
        return kWidth;
    return 2 * kWidth;
}

// A cut sequence and a full target end a conversion; an unpaired surrogate does not, though it may give 16
// too.
bool endsUtf8(nlsStatus status) {
    return status == NLS_E_BUFFER || status == NLS_E_NULLARG;
}
bool endsUnits(nlsStatus status) {
    return status == NLS_E_BUFFER;
}

// Puts the kernel of a wider instruction set before the baseline's blocks, which then get what it leaves.
template <typename Wide, typename Blocks>
[[gnu::always_inline]] inline auto widened(std::uint32_t proofs, Wide wide, Blocks blocks) {
    return [proofs, wide, blocks](Source &source, Target &target) {
        if ((proofs & kWideVectors) != 0) {
            wide(source, target);
            if (source.at == source.end)
                return;
        }
        blocks(source, target);
    };
}

// The wide kernel alone finishes most texts: true then. What it leaves is the business of a function of its
// own, so that a short text does not pay for the preparations of a long one.
template <typename Wide>
[[gnu::always_inline]] inline bool finishes(std::uint32_t proofs, Wide wide, Source &source, Target &target) {
    if ((proofs & kWideVectors) == 0)
        return false;
    wide(source, target);
    return source.at == source.end;
}

// Runs a reader over a sink that writes to the target.
template <typename Sink, typename Read>
[[gnu::always_inline]] inline void into(Sink &&sink, Target &target, Read read) {
    read(sink);
    target.at = sink.out;
}

} // namespace

void mapBytes(const std::uint8_t *map, std::uint32_t proofs, Source &source, Target &target) {
    if ((proofs & kWideVectors) != 0) {
        avx512::mapBytes(map, source, target);
        return;
    }
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    const std::ptrdiff_t length = source.end - at;
    source.at = source.end;
    target.at += length;
    if ((proofs & kByteShuffles) != 0 && length >= avx2::kWorthwhile) {
        avx2::mapBytes(map, at, to, length);
        return;
    }
    // Eight look-ups make a word: one store, and no byte of the output waits for another.
    const auto map8 = [map](const std::uint8_t *from, std::uint8_t *into) {
        const auto word = loadNumber<std::uint64_t>(from);
        std::uint64_t mapped = 0;
#pragma GCC unroll 8
        for (int i = 0; i < 64; i += 8)
            mapped |= std::uint64_t{map[word >> i & 0xFF]} << i;
        storeNumber(into, mapped);
    };
    if (length < 8) {
        for (std::ptrdiff_t i = 0; i < length; ++i)
            to[i] = map[at[i]];
        return;
    }
    // The last word overlaps the one before it, which spares a loop over single bytes.
    std::ptrdiff_t done = 0;
    for (; length - done > 16; done += 16) {
        map8(at + done, to + done);
        map8(at + done + 8, to + done + 8);
    }
    if (length - done > 8)
        map8(at + done, to + done);
    map8(at + length - 8, to + length - 8);
}

namespace {

[[gnu::noinline]] nlsStatus pageToUtf8Rest(const MappingBody &body, std::uint32_t proofs, Source &source,
                                           Target &target) {
    const auto plain = [&body](Source &piece, Target &out) { return velnls::pageToUtf8(body, piece, out); };
    if ((proofs & kByteRow) != 0) {
        const ByteRow row(body);
        const auto rest = [&row](Source &text, Target &out) {
            into(Utf8Sink{{out.at, out.end}}, out, [&](Utf8Sink &sink) { readByteRowInto(row, text, sink); });
        };
        const auto one = [](const Source &) { return std::ptrdiff_t{1}; };
        if ((proofs & kByteShuffles) != 0 && source.end - source.at >= avx2::kWorthwhile) {
            const auto blocks = [&body, &rest](Source &text, Target &out) {
                avx2::byteRowToUtf8(body, text, out);
                rest(text, out);
            };
            return alternate(source, target, 1, blocks, one, plain, endsUnits);
        }
        if (source.end - source.at < Utf8OfByte::kWorthwhile) {
            const auto wide = [&body](Source &text, Target &out) { avx512::byteRowToUtf8(body, text, out); };
            return alternate(source, target, 1, widened(proofs, wide, rest), one, plain, endsUnits);
        }
        const Utf8OfByte table(row);
        const auto blocks = [&table, &rest](Source &text, Target &out) {
            table.convert(text, out.at, out.end);
            rest(text, out); // up to a byte without a value, or the last few
        };
        return alternate(source, target, 1, blocks, one, plain, endsUnits);
    }
    const PairRectangle page(body);
    const auto blocks = [&page](Source &text, Target &out) {
        into(Utf8Sink{{out.at, out.end}}, out, [&](Utf8Sink &sink) { readPairsInto(page, text, sink); });
    };
    const auto window = [&page](const Source &text) { return page.isLead(*text.at) ? std::ptrdiff_t{2} : 1; };
    const auto wide = [&body](Source &text, Target &out) { avx512::pairsToUtf8(body, text, out); };
    return alternate(source, target, 1, widened(proofs, wide, blocks), window, plain, endsUnits);
}

} // namespace

nlsStatus pageToUtf8(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    const bool isRow = (proofs & kByteRow) != 0;
    const auto wide = [&body, isRow](Source &text, Target &out) {
        if (isRow)
            avx512::byteRowToUtf8(body, text, out);
        else
            avx512::pairsToUtf8(body, text, out);
    };
    if (finishes(proofs, wide, source, target))
        return NLS_OK;
    return pageToUtf8Rest(body, proofs, source, target);
}

namespace {

template <typename Sink>
nlsStatus utf8IntoPage(const MappingBody &body, Sink sink, Source &source, Target &target) {
    const auto blocks = [&sink](Source &text, Target &out) {
        Sink running = sink; // a copy of its own, which the compiler can keep in registers
        running.out = out.at;
        running.end = out.end;
        readUtf8Into(text, running);
        out.at = running.out;
    };
    const auto plain = [&body](Source &piece, Target &out) { return velnls::utf8ToPage(body, piece, out); };
    return alternate(source, target, 1, blocks, utf8Window, plain, endsUtf8);
}

[[gnu::always_inline]] inline auto wideUtf8ToPage(const MappingBody &body, bool isRow) {
    return [&body, isRow](Source &text, Target &out) {
        if (isRow)
            avx512::utf8ToByteRow(body, text, out);
        else
            avx512::utf8ToPairs(body, text, out);
    };
}

// The wide kernels need none of the tables for long texts.
nlsStatus utf8IntoPageWide(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    const auto plain = [&body](Source &piece, Target &out) { return velnls::utf8ToPage(body, piece, out); };
    const bool isRow = (proofs & kByteRow) != 0;
    const auto blocks = [wide = wideUtf8ToPage(body, isRow), &body, isRow](Source &text, Target &out) {
        wide(text, out);
        if (text.at == text.end)
            return;
        if (isRow)
            into(ByteRowSink(body, out.at, out.end), out,
                 [&](ByteRowSink &sink) { readUtf8Into(text, sink); });
        else
            into(PairSink(body, out.at, out.end), out, [&](PairSink &sink) { readUtf8Into(text, sink); });
    };
    return alternate(source, target, 1, blocks, utf8Window, plain, endsUtf8);
}

[[gnu::noinline]] nlsStatus utf8ToPageRest(const MappingBody &body, std::uint32_t proofs, Source &source,
                                           Target &target) {
    if ((proofs & kWideVectors) != 0)
        return utf8IntoPageWide(body, proofs, source, target);
    const std::ptrdiff_t length = source.end - source.at;
    if ((proofs & kByteRow) != 0) {
        const ByteRowSink row(body, target.at, target.end);
        if (length < ByteTableSink::kWorthwhile)
            return utf8IntoPage(body, row, source, target);
        const ByteTableSink::Table table(row);
        return utf8IntoPage(body, ByteTableSink(row, table), source, target);
    }
    const PairSink page(body, target.at, target.end);
    if (length < KanaTableSink::kWorthwhile)
        return utf8IntoPage(body, page, source, target);
    const KanaTableSink::Table table(page);
    return utf8IntoPage(body, KanaTableSink(page, table), source, target);
}

} // namespace

nlsStatus utf8ToPage(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    if (finishes(proofs, wideUtf8ToPage(body, (proofs & kByteRow) != 0), source, target))
        return NLS_OK;
    return utf8ToPageRest(body, proofs, source, target);
}

namespace {

// The kernels of the Unicode forms that convert into and out of UTF-8, for what the wide ones leave.
using WideKernel = void (*)(Source &, Target &);
using PlainKernel = nlsStatus (*)(Source &, Target &, Order);

template <typename Sink, WideKernel kWide, PlainKernel kPlain>
[[gnu::noinline]] nlsStatus utf8ToUnits(std::uint32_t proofs, Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Sink{{out.at, out.end}}, out, [&](Sink &sink) { readUtf8Into(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) { return kPlain(piece, out, Order::Native); };
    return alternate(source, target, 1, widened(proofs, kWide, blocks), utf8Window, plain, endsUtf8);
}

template <typename Unit, WideKernel kWide, PlainKernel kPlain>
[[gnu::noinline]] nlsStatus unitsToUtf8(std::uint32_t proofs, Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Utf8Sink{{out.at, out.end}}, out, [&](Utf8Sink &sink) { readUnitsInto<Unit>(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) { return kPlain(piece, out, Order::Native); };
    return alternate(source, target, sizeof(Unit), widened(proofs, kWide, blocks), unitWindow<Unit>, plain,
                     endsUnits);
}

} // namespace

nlsStatus utf8ToUtf16(std::uint32_t proofs, Source &source, Target &target) {
    return finishes(proofs, avx512::utf8ToUtf16, source, target)
               ? NLS_OK
               : utf8ToUnits<Utf16Sink, avx512::utf8ToUtf16, velnls::utf8ToUtf16>(proofs, source, target);
}

nlsStatus utf8ToUtf32(std::uint32_t proofs, Source &source, Target &target) {
    return finishes(proofs, avx512::utf8ToUtf32, source, target)
               ? NLS_OK
               : utf8ToUnits<Utf32Sink, avx512::utf8ToUtf32, velnls::utf8ToUtf32>(proofs, source, target);
}

nlsStatus utf16ToUtf8(std::uint32_t proofs, Source &source, Target &target) {
    return finishes(proofs, avx512::utf16ToUtf8, source, target)
               ? NLS_OK
               : unitsToUtf8<std::uint16_t, avx512::utf16ToUtf8, velnls::utf16ToUtf8>(proofs, source, target);
}

nlsStatus utf32ToUtf8(std::uint32_t proofs, Source &source, Target &target) {
    return finishes(proofs, avx512::utf32ToUtf8, source, target)
               ? NLS_OK
               : unitsToUtf8<std::uint32_t, avx512::utf32ToUtf8, velnls::utf32ToUtf8>(proofs, source, target);
}

namespace {

[[gnu::noinline]] nlsStatus utf16ToUtf32Rest(std::uint32_t proofs, Source &source, Target &target) {
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf16ToUtf32(piece, out, Order::Native, Order::Native);
    };
    return alternate(source, target, 2, widened(proofs, avx512::utf16ToUtf32, widenUnits),
                     unitWindow<std::uint16_t>, plain, endsUnits);
}

} // namespace

nlsStatus utf16ToUtf32(std::uint32_t proofs, Source &source, Target &target) {
    return finishes(proofs, avx512::utf16ToUtf32, source, target) ? NLS_OK
                                                                  : utf16ToUtf32Rest(proofs, source, target);
}

namespace {

[[gnu::noinline]] nlsStatus utf32ToUtf16Rest(std::uint32_t proofs, Source &source, Target &target) {
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf32ToUtf16(piece, out, Order::Native, Order::Native);
    };
    const auto window = [](const Source &) { return std::ptrdiff_t{4}; };
    return alternate(source, target, 4, widened(proofs, avx512::utf32ToUtf16, narrowUnits), window, plain,
                     endsUnits);
}

} // namespace

nlsStatus utf32ToUtf16(std::uint32_t proofs, Source &source, Target &target) {
    return finishes(proofs, avx512::utf32ToUtf16, source, target) ? NLS_OK
                                                                  : utf32ToUtf16Rest(proofs, source, target);
}

#if defined(__SSE2__)

namespace {

// Half-width katakana come in stretches: the plain kernel takes whole characters of about this many bytes at
// once.
constexpr std::ptrdiff_t kJapaneseStretch = 32;

template <typename Block, typename IsLead>
[[gnu::noinline]] nlsStatus convertJapanese(std::uint32_t proofs, void (*wide)(Source &, Target &),
                                            Source &source, Target &target, IsLead isLead,
                                            nlsStatus (*plain)(Source &, Target &)) {
    const auto window = [isLead](const Source &text) {
        const std::ptrdiff_t left = text.end - text.at;
        if (left < 64 + 16)
            return left;
        std::ptrdiff_t length = 0;
        while (length < kJapaneseStretch)
            length += isLead(text.at[length]) ? 2 : 1;
        return length;
    };
    return alternate(source, target, 1, widened(proofs, wide, japaneseBlocks<Block>), window, plain,
                     endsUtf8);
}

} // namespace

nlsStatus shiftJisToEuc(std::uint32_t proofs, Source &source, Target &target) {
    if (finishes(proofs, avx512::shiftJisToEuc, source, target))
        return NLS_OK;
    const auto isLead = [](std::uint8_t byte) { return isShiftJisLead(byte); };
    return convertJapanese<ShiftJisBlock>(proofs, avx512::shiftJisToEuc, source, target, isLead,
                                          velnls::shiftJisToEuc);
}

nlsStatus eucToShiftJis(std::uint32_t proofs, Source &source, Target &target) {
    if (finishes(proofs, avx512::eucToShiftJis, source, target))
        return NLS_OK;
    const auto isLead = [](std::uint8_t byte) { return isEucByte(byte) || byte == kKatakanaShift; };
    return convertJapanese<EucBlock>(proofs, avx512::eucToShiftJis, source, target, isLead,
                                     velnls::eucToShiftJis);
}

#else

nlsStatus shiftJisToEuc(std::uint32_t, Source &source, Target &target) {
    return velnls::shiftJisToEuc(source, target);
}

nlsStatus eucToShiftJis(std::uint32_t, Source &source, Target &target) {
    return velnls::eucToShiftJis(source, target);
}

#endif

} // namespace velnls::fast
