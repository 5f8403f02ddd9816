#include "locale/case_kernels.hpp"

#include "convert/kernels/fast.hpp"
#include "core/instruction_sets.hpp"
#include "locale/case_fast.hpp"

#include <algorithm>

namespace velnls {

namespace {

constexpr std::size_t kReadAhead = 1 << 14; // bytes that are searched for a NUL at once
constexpr std::ptrdiff_t kPlainBytes = 16;  // that the plain loop goes over where a fast one stopped

class Output {
public:
    Output(std::uint8_t *out, std::size_t room) : out_(out), room_(room) {}
    [[nodiscard]] bool fits(std::size_t bytes) const {
        return bytes <= room_ - written_;
    }
    void put(std::uint8_t byte) {
        mayHoldNul_ = mayHoldNul_ || byte == 0;
        out_[written_++] = byte;
    }
    void copy(const std::uint8_t *bytes, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            out_[written_ + i] = bytes[i];
        written_ += count;
    }
    // Lets `map` go over what it can of a stretch of text without a NUL. Where text and output overlap, only
    // the plain loops keep the order of reading and writing.
    template <typename Map>
    void stretch(const std::uint8_t *&at, const std::uint8_t *end, Map map) {
        std::uint8_t *const begin = out_ + written_;
        if (begin < end && at < out_ + room_)
            return;
        fast::CaseStretch stretch{at, end, begin, room_ - written_};
        map(stretch);
        at = stretch.at;
        written_ = static_cast<std::size_t>(stretch.out - out_);
    }
    void mayHoldNul() {
        mayHoldNul_ = true;
    }
    [[nodiscard]] CaseResult complete() const {
        return {written_, true, false, mayHoldNul_};
    }
    [[nodiscard]] CaseResult full() const {
        return {written_, false, written_ < room_, mayHoldNul_};
    }

private:
    std::uint8_t *out_;
    std::size_t room_;
    std::size_t written_ = 0;
    bool mayHoldNul_ = false;
};

// How far a text is known to go on without a NUL; asked for again where that is reached.
class KnownText {
public:
    explicit KnownText(const std::uint8_t *end) : end_(end) {}

    // The end of the stretch that `text` stands in.
    const std::uint8_t *from(Text text) {
        if (text.at >= end_) {
            const auto left = static_cast<std::size_t>(text.end - text.at);
            end_ = text.at + ::strnlen(reinterpret_cast<const char *>(text.at), std::min(left, kReadAhead));
        }
        return end_;
    }

private:
    const std::uint8_t *end_;
};

// The number of the UTF-8 character at the text's place, which moves past it. The text's end inside a
// character ends it early; characters of four bytes and more are skipped whole and read as "?".
std::uint32_t takeUtf8Number(const CharTable &chars, Text &text) {
    const unsigned length = chars.trailCount(*text.at) + 1;
    if (length == 1)
        return *text.at++;
    const unsigned taken = text.available(length);
    std::uint32_t code = '?';
    if (length <= 3) {
        code = 0;
        for (unsigned i = 0; i < taken; ++i)
            code = code << 8 | text.at[i];
    }
    text.at += taken;
    return code;
}

// Without a case table, and with one of bytes: multibyte characters are copied as they stand, `longest` bytes
// at most, single bytes mapped. `blocks(text, output)` goes over what it can before each few characters.
template <typename MapByte, typename Blocks>
CaseResult mapSingleBytes(const CharTable &chars, Text text, std::uint8_t *out, std::size_t room,
                          unsigned longest, MapByte mapByte, Blocks blocks) {
    Output output(out, room);
    while (!text.ended()) {
        blocks(text, output);
        const std::uint8_t *const begin = text.at;
        while (text.at - begin < kPlainBytes && !text.ended()) {
            const unsigned trails = chars.trailCount(*text.at);
            const unsigned bytes = trails == 0 ? 1 : text.available(std::min(trails + 1, longest));
            if (!output.fits(bytes))
                return output.full();
            if (trails == 0)
                output.put(mapByte(*text.at));
            else
                output.copy(text.at, bytes);
            text.at += bytes;
        }
    }
    return output.complete();
}

} // namespace

template <Case kCase>
CaseResult mapByRuntime(const CharTable &chars, Text text, std::uint8_t *out, std::size_t room) {
    return mapSingleBytes(
        chars, text, out, room, 8, [](std::uint8_t byte) { return mapRuntimeCase<kCase>(byte); },
        [](Text &, Output &) {});
}

template <Case kCase>
CaseResult mapByBytes(const CharTable &chars, const ByteCaseTable &table, std::uint32_t proofs, Text text,
                      const std::uint8_t *known, std::uint8_t *out, std::size_t room) {
    const std::uint8_t *const map = kCase == Case::Upper ? table.upper : table.lower;
    KnownText stretches(known);
    return mapSingleBytes(
        chars, text, out, room, 2, [map](std::uint8_t byte) { return map[byte]; },
        [&](Text &rest, Output &output) {
            if ((proofs & kSingleBytePage) != 0)
                output.stretch(rest.at, stretches.from(rest), [&](fast::CaseStretch &stretch) {
                    const std::size_t bytes =
                        std::min(static_cast<std::size_t>(stretch.end - stretch.at), stretch.room);
                    Source source{stretch.at, stretch.at + bytes};
                    Target target{stretch.out, stretch.out + bytes};
                    fast::mapBytes(map, proofs, source, target);
                    stretch.at += bytes;
                    stretch.out += bytes;
                    if ((proofs & kKeepsBytes) == 0)
                        output.mayHoldNul();
                });
            else if (constexpr std::uint32_t kPairs = kPairPage | kPairCase; (proofs & kPairs) == kPairs)
                output.stretch(rest.at, stretches.from(rest), [&](fast::CaseStretch &stretch) {
                    const auto kernel =
                        (proofs & kWideVectors) != 0 ? avx512::mapPairs<kCase> : fast::mapPairs<kCase>;
                    kernel(factsOf(chars), stretch);
                });
            else if ((proofs & kAsciiCase) != 0)
                output.stretch(rest.at, stretches.from(rest), fast::mapAscii<kCase>);
        });
}

template <Case kCase>
CaseResult mapByPages(const CharTable &chars, const UnicodeCaseTable &table, std::uint32_t proofs, Text text,
                      const std::uint8_t *known, std::uint8_t *out, std::size_t room) {
    Output output(out, room);
    KnownText stretches(known);
    while (!text.ended()) {
        if ((proofs & kCommonCase) != 0)
            output.stretch(text.at, stretches.from(text),
                           (proofs & kWideVectors) != 0 ? avx512::mapCommonUtf8<kCase>
                                                        : fast::mapCommonUtf8<kCase>);
        const std::uint8_t *const begin = text.at;
        while (text.at - begin < kPlainBytes && !text.ended()) {
            const std::uint32_t code = mapUtf8Case<kCase>(table, takeUtf8Number(chars, text));
            const unsigned bytes = code > 0xFFFF ? 3 : code < 0x100 ? 1 : 2;
            if (!output.fits(bytes))
                return output.full();
            if (bytes == 3)
                output.put(static_cast<std::uint8_t>(code >> 16));
            if (bytes >= 2)
                output.put(static_cast<std::uint8_t>(code >> 8));
            output.put(static_cast<std::uint8_t>(code));
        }
    }
    return output.complete();
}

template CaseResult mapByRuntime<Case::Upper>(const CharTable &, Text, std::uint8_t *, std::size_t);
template CaseResult mapByRuntime<Case::Lower>(const CharTable &, Text, std::uint8_t *, std::size_t);
template CaseResult mapByBytes<Case::Upper>(const CharTable &, const ByteCaseTable &, std::uint32_t, Text,
                                            const std::uint8_t *, std::uint8_t *, std::size_t);
template CaseResult mapByBytes<Case::Lower>(const CharTable &, const ByteCaseTable &, std::uint32_t, Text,
                                            const std::uint8_t *, std::uint8_t *, std::size_t);
template CaseResult mapByPages<Case::Upper>(const CharTable &, const UnicodeCaseTable &, std::uint32_t, Text,
                                            const std::uint8_t *, std::uint8_t *, std::size_t);
template CaseResult mapByPages<Case::Lower>(const CharTable &, const UnicodeCaseTable &, std::uint32_t, Text,
                                            const std::uint8_t *, std::uint8_t *, std::size_t);

} // namespace velnls
