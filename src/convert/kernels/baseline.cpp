#include "convert/kernels/baseline.hpp"

#include "convert/kernels/alternate.hpp"
#include "convert/kernels/baseline_from_page.hpp"
#include "convert/kernels/baseline_from_units.hpp"
#include "convert/kernels/baseline_from_utf8.hpp"
#include "convert/kernels/baseline_sinks.hpp"

namespace velnls::baseline {

namespace {

// Runs a reader over a sink that writes to the target.
template <typename Sink, typename Read>
[[gnu::always_inline]] inline void into(Sink &&sink, Target &target, Read read) {
    read(sink);
    target.at = sink.out;
}

} // namespace

void mapBytes(const std::uint8_t *map, const std::uint8_t *at, std::uint8_t *to, std::ptrdiff_t length) {
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

nlsStatus byteRowToUtf8(const MappingBody &body, Source &source, Target &target) {
    const ByteRow row(body);
    const auto plain = [&body](Source &piece, Target &out) { return velnls::pageToUtf8(body, piece, out); };
    const auto rest = [&row](Source &text, Target &out) {
        into(Utf8Sink(out.at, out.end), out, [&](Utf8Sink &sink) { readByteRowInto(row, text, sink); });
    };
    const auto one = [](const Source &) { return std::ptrdiff_t{1}; };
    if (source.left() < Utf8OfByte::kWorthwhile)
        return alternate(source, target, 1, rest, one, plain, endsUnits);
    const Utf8OfByte table(row);
    const auto blocks = [&table, &rest](Source &text, Target &out) {
        table.convert(text, out.at, out.end);
        rest(text, out); // up to a byte without a value, or the last few
    };
    return alternate(source, target, 1, blocks, one, plain, endsUnits);
}

nlsStatus pairsToUtf8(const MappingBody &body, Source &source, Target &target) {
    const PairRectangle page(body);
    const auto blocks = [&page](Source &text, Target &out) {
        into(Utf8Sink(out.at, out.end), out, [&](Utf8Sink &sink) { readPairsInto(page, text, sink); });
    };
    const auto window = [&page](const Source &text) { return page.isLead(*text.at) ? std::ptrdiff_t{2} : 1; };
    const auto plain = [&body](Source &piece, Target &out) { return velnls::pageToUtf8(body, piece, out); };
    return alternate(source, target, 1, blocks, window, plain, endsUnits);
}

template <typename Sink>
nlsStatus utf8IntoPage(const MappingBody &body, Source &source, Target &target) {
    const Sink sink(body, target.at, target.end);
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

using PlainKernel = nlsStatus (*)(Source &, Target &, Order);

template <typename Sink, PlainKernel kPlain>
[[gnu::always_inline]] inline nlsStatus utf8ToUnits(Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Sink(out.at, out.end), out, [&](Sink &sink) { readUtf8Into(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) { return kPlain(piece, out, Order::Native); };
    return alternate(source, target, 1, blocks, utf8Window, plain, endsUtf8);
}

template <typename Unit, PlainKernel kPlain>
[[gnu::always_inline]] inline nlsStatus unitsToUtf8(Source &source, Target &target) {
    const auto blocks = [](Source &text, Target &out) {
        into(Utf8Sink(out.at, out.end), out, [&](Utf8Sink &sink) { readUnitsInto<Unit>(text, sink); });
    };
    const auto plain = [](Source &piece, Target &out) { return kPlain(piece, out, Order::Native); };
    return alternate(source, target, sizeof(Unit), blocks, unitWindow<Unit>, plain, endsUnits);
}

} // namespace

nlsStatus pageToUtf8(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    return (proofs & kByteRow) != 0 ? byteRowToUtf8(body, source, target) : pairsToUtf8(body, source, target);
}

nlsStatus utf8ToPage(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target) {
    return (proofs & kByteRow) != 0 ? utf8IntoPage<ByteRowSink>(body, source, target)
                                    : utf8IntoPage<PairSink>(body, source, target);
}

nlsStatus utf8ToUtf16(Source &source, Target &target) {
    return utf8ToUnits<Utf16Sink, velnls::utf8ToUtf16>(source, target);
}

nlsStatus utf8ToUtf32(Source &source, Target &target) {
    return utf8ToUnits<Utf32Sink, velnls::utf8ToUtf32>(source, target);
}

nlsStatus utf16ToUtf8(Source &source, Target &target) {
    return unitsToUtf8<std::uint16_t, velnls::utf16ToUtf8>(source, target);
}

nlsStatus utf32ToUtf8(Source &source, Target &target) {
    return unitsToUtf8<std::uint32_t, velnls::utf32ToUtf8>(source, target);
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

} // namespace velnls::baseline
