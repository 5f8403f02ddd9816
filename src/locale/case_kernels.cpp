#include "locale/case_kernels.hpp"

#include <algorithm>

namespace velnls {

namespace {

class Output {
public:
    Output(std::uint8_t *out, std::size_t room) : out_(out), room_(room) {}
    [[nodiscard]] bool fits(std::size_t bytes) const {
        return bytes <= room_ - written_;
    }
    void put(std::uint8_t byte) {
        out_[written_++] = byte;
    }
    void copy(const std::uint8_t *bytes, std::size_t count) {
        std::memcpy(out_ + written_, bytes, count);
        written_ += count;
    }
    [[nodiscard]] CaseResult complete() const {
        return {written_, true, false};
    }
    [[nodiscard]] CaseResult full() const {
        return {written_, false, written_ < room_};
    }

private:
    std::uint8_t *out_;
    std::size_t room_;
    std::size_t written_ = 0;
};

// The number of the UTF-8 character at the text's place, which moves past it. The text's end inside a
// character ends it early; characters of four bytes and more are skipped whole and read as "?".
std::uint32_t takeUtf8Number(const CharTable &chars, Text &text) {
    const unsigned length = chars.trailCount(*text.at) + 1;
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

// Ways A and B: multibyte characters are copied as they stand, `longest` bytes at most, single bytes mapped.
template <typename MapByte>
CaseResult mapSingleBytes(const CharTable &chars, Text text, std::uint8_t *out, std::size_t room,
                          unsigned longest, MapByte mapByte) {
    Output output(out, room);
    while (!text.ended()) {
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
    return output.complete();
}

} // namespace

template <Case kCase>
CaseResult mapByRuntime(const CharTable &chars, Text text, std::uint8_t *out, std::size_t room) {
    return mapSingleBytes(chars, text, out, room, 8,
                          [](std::uint8_t byte) { return mapRuntimeCase<kCase>(byte); });
}

template <Case kCase>
CaseResult mapByBytes(const CharTable &chars, const ByteCaseTable &table, Text text, std::uint8_t *out,
                      std::size_t room) {
    return mapSingleBytes(chars, text, out, room, 2,
                          [&table](std::uint8_t byte) { return mapByteCase<kCase>(table, byte); });
}

template <Case kCase>
CaseResult mapByPages(const CharTable &chars, const UnicodeCaseTable &table, Text text, std::uint8_t *out,
                      std::size_t room) {
    Output output(out, room);
    while (!text.ended()) {
        const std::uint32_t code = mapUtf8Case<kCase>(table, takeUtf8Number(chars, text));
        const unsigned bytes = code > 0xFFFF ? 3 : code < 0x100 ? 1 : 2;
        if (!output.fits(bytes))
            return output.full();
        for (unsigned i = bytes; i > 0; --i)
            output.put(static_cast<std::uint8_t>(code >> 8 * (i - 1)));
    }
    return output.complete();
}

template CaseResult mapByRuntime<Case::Upper>(const CharTable &, Text, std::uint8_t *, std::size_t);
template CaseResult mapByRuntime<Case::Lower>(const CharTable &, Text, std::uint8_t *, std::size_t);
template CaseResult mapByBytes<Case::Upper>(const CharTable &, const ByteCaseTable &, Text, std::uint8_t *,
                                            std::size_t);
template CaseResult mapByBytes<Case::Lower>(const CharTable &, const ByteCaseTable &, Text, std::uint8_t *,
                                            std::size_t);
template CaseResult mapByPages<Case::Upper>(const CharTable &, const UnicodeCaseTable &, Text, std::uint8_t *,
                                            std::size_t);
template CaseResult mapByPages<Case::Lower>(const CharTable &, const UnicodeCaseTable &, Text, std::uint8_t *,
                                            std::size_t);

} // namespace velnls
