#include "convert/kernels/fast.hpp"

#include "convert/kernels/fast_from_page.hpp"
#include "convert/kernels/fast_from_units.hpp"
#include "convert/kernels/fast_from_utf8.hpp"
#include "convert/kernels/fast_japanese.hpp"
#include "convert/kernels/fast_sinks.hpp"
#include "convert/kernels/proofs.hpp"
#include "convert/kernels/unicode_units.hpp"

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

// Runs a reader over a sink that writes to the target.
template <typename Sink, typename Read>
[[gnu::always_inline]] inline void into(Sink &&sink, Target &target, Read read) {
    read(sink);
    target.at = sink.out;
}

} // namespace

void mapBytes(const std::uint8_t *map, Source &source, Target &target) {
    const std::uint8_t *at = source.at;
    std::uint8_t *to = target.at;
    const std::ptrdiff_t length = source.end - at;
    source.at = source.end;
    target.at += length;
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

bool canMap(std::uint32_t proofs) {
    return (proofs & kAsciiIdentity) != 0 && (proofs & (kByteRow | kPairRectangle)) != 0;
}

nlsStatus pageToUtf8(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    const auto plain = [&body](Source &piece, Target &out) { return velnls::pageToUtf8(body, piece, out); };
    if ((proofs & kByteRow) != 0) {
        const ByteRow row(body);
        const auto rest = [&row](Source &text, Target &out) {
            into(Utf8Sink{{out.at, out.end}}, out, [&](Utf8Sink &sink) { readByteRowInto(row, text, sink); });
        };
        const auto one = [](const Source &) { return std::ptrdiff_t{1}; };
        if (source.end - source.at < Utf8OfByte::kWorthwhile)
            return alternate(source, target, 1, rest, one, plain, endsUnits);
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
    return alternate(source, target, 1, blocks, window, plain, endsUnits);
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

} // namespace

nlsStatus utf8ToPage(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
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

nlsStatus utf8ToUtf16(Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Utf16Sink{{out.at, out.end}}, out, [&](Utf16Sink &sink) { readUtf8Into(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf8ToUtf16(piece, out, Order::Native);
    };
    return alternate(source, target, 1, blocks, utf8Window, plain, endsUtf8);
}

nlsStatus utf8ToUtf32(Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Utf32Sink{{out.at, out.end}}, out, [&](Utf32Sink &sink) { readUtf8Into(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf8ToUtf32(piece, out, Order::Native);
    };
    return alternate(source, target, 1, blocks, utf8Window, plain, endsUtf8);
}

nlsStatus utf16ToUtf8(Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Utf8Sink{{out.at, out.end}}, out,
             [&](Utf8Sink &sink) { readUnitsInto<std::uint16_t>(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf16ToUtf8(piece, out, Order::Native);
    };
    return alternate(source, target, 2, blocks, unitWindow<std::uint16_t>, plain, endsUnits);
}

nlsStatus utf32ToUtf8(Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Utf8Sink{{out.at, out.end}}, out,
             [&](Utf8Sink &sink) { readUnitsInto<std::uint32_t>(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf32ToUtf8(piece, out, Order::Native);
    };
    return alternate(source, target, 4, blocks, unitWindow<std::uint32_t>, plain, endsUnits);
}

nlsStatus utf16ToUtf32(Source &source, Target &target) {
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf16ToUtf32(piece, out, Order::Native, Order::Native);
    };
    return alternate(source, target, 2, widenUnits, unitWindow<std::uint16_t>, plain, endsUnits);
}

nlsStatus utf32ToUtf16(Source &source, Target &target) {
    const auto plain = [](Source &piece, Target &out) {
        return velnls::utf32ToUtf16(piece, out, Order::Native, Order::Native);
    };
    const auto window = [](const Source &) { return std::ptrdiff_t{4}; };
    return alternate(source, target, 4, narrowUnits, window, plain, endsUnits);
}

#if defined(__SSE2__)

namespace {

// Half-width katakana come in stretches: the plain kernel takes whole characters of about this many bytes at
// once.
constexpr std::ptrdiff_t kJapaneseStretch = 32;

template <typename Block, typename IsLead>
nlsStatus convertJapanese(Source &source, Target &target, IsLead isLead,
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
    return alternate(source, target, 1, japaneseBlocks<Block>, window, plain, endsUtf8);
}

} // namespace

nlsStatus shiftJisToEuc(Source &source, Target &target) {
    const auto isLead = [](std::uint8_t byte) {
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xEF);
    };
    return convertJapanese<ShiftJisBlock>(source, target, isLead, velnls::shiftJisToEuc);
}

nlsStatus eucToShiftJis(Source &source, Target &target) {
    const auto isLead = [](std::uint8_t byte) { return (byte >= 0xA1 && byte <= 0xFE) || byte == 0x8E; };
    return convertJapanese<EucBlock>(source, target, isLead, velnls::eucToShiftJis);
}

#else

nlsStatus shiftJisToEuc(Source &source, Target &target) {
    return velnls::shiftJisToEuc(source, target);
}

nlsStatus eucToShiftJis(Source &source, Target &target) {
    return velnls::eucToShiftJis(source, target);
}

#endif

} // namespace velnls::fast
