// Reads UTF-8 into a sink, by blocks of 64 bytes that are well formed and by the lenient arithmetic
// elsewhere.
//
// Stops at the first character that the sink refuses, that is longer than three bytes or that is cut by the
// end of the source; the plain way takes that one.
#pragma once

#include "convert/kernels/baseline_walk.hpp"
#include "convert/kernels/kernels.hpp"

namespace velnls {
namespace {

// What a block's lead bytes announce must be what follows. A block begins at a character.
struct Utf8Block {
    std::uint64_t lead; // of two bytes and more
    std::uint64_t trail;
    bool hasThree;
    bool wellFormed; // and no character is longer than three bytes
};

[[gnu::always_inline]] inline Utf8Block utf8Block(const std::uint8_t *at, std::uint64_t notAscii) {
    const std::uint64_t lead = atLeastMask<64>(at, 0xC0);
    const std::uint64_t three = atLeastMask<64>(at, 0xE0);
    const std::uint64_t four = atLeastMask<64>(at, 0xF0);
    const std::uint64_t trail = notAscii & ~lead;
    return {lead, trail, three != 0, four == 0 && trail == (lead << 1 | three << 2)};
}

template <typename Sink>
[[gnu::always_inline]] inline void utf8Blocks(Source &source, Sink &sink, bool &refused) {
    const std::uint8_t *at = source.at;
    const std::uint8_t *const last = source.end;
    // Sparse copying reads up to 16 bytes behind a block.
    while (last - at >= 64 + 16 && sink.hasRoom(Sink::kBlockRoom)) {
        const std::uint64_t notAscii = notAsciiMask<64>(at);
        if (notAscii == 0) {
            for (int i = 0; i < 4; ++i) {
                sink.ascii16(at + 16 * i);
                sink.advance(16);
            }
            at += 64;
            continue;
        }
        const Utf8Block block = utf8Block(at, notAscii);
        if (!block.wellFormed)
            break;
        const auto takeUpToTwo = [at, &sink](int position) {
            return sink.putUpToTwo(loadNumber<std::uint16_t>(at + position)) ? 1 : 0;
        };
        const auto take = [at, &sink](int position) {
            const std::uint8_t *const character = at + position;
            const std::uint32_t first = *character;
            if (first < 0xE0)
                return sink.put(twoByteValue(loadNumber<std::uint16_t>(character))) ? 2 : 0;
            return sink.put((first << 12) + (std::uint32_t{character[1]} << 6) + character[2] - 0xE2080u) ? 3
                                                                                                          : 0;
        };
        if (isSparse(block.lead))
            at += sparseCharacters<kStartsOfFour>(at, block.lead, sink, take, refused);
        else if (!block.hasThree)
            at += denseCharacters<kStartsOfTwo>(~block.trail, takeUpToTwo, refused);
        else
            break; // long characters come in runs, where jumps are foreseen
        if (refused)
            break;
    }
    source.at = at;
}

// One character after the other, run by run of equal length. By sums and offsets, so that malformed trail
// bytes come out as the plain way has them. False when the next character needs the plain way.
template <typename Sink>
[[gnu::always_inline]] inline bool utf8Characters(Source &source, const std::uint8_t *end, Sink &sink) {
    const std::uint8_t *at = source.at;
    const std::uint8_t *const last = source.end;
    bool taken = true;
    while (at < end && taken) {
        std::uint32_t first = *at;
        if (first < 0x80) {
            if (!takeAscii(at, last, sink))
                break;
            continue;
        }
        if (first < 0xC0 || first >= 0xF0)
            break;
        if (first < 0xE0) {
            do {
                taken = last - at >= 2 && sink.hasRoom(Sink::kCharacterRoom);
                if (!taken)
                    break;
                const std::uint32_t value = (first << 6) + at[1] - 0x3080u;
                taken = value - 0x80 <= 0xFF7F && sink.put(value);
                if (!taken)
                    break;
                at += 2;
            } while (at < end && ((first = *at) & 0xE0) == 0xC0);
        } else {
            do {
                taken = last - at >= 3 && sink.hasRoom(Sink::kCharacterRoom);
                if (!taken)
                    break;
                const std::uint32_t value = (first << 12) + (std::uint32_t{at[1]} << 6) + at[2] - 0xE2080u;
                taken = value - 0x80 <= 0xFF7F && sink.put(value);
                if (!taken)
                    break;
                at += 3;
            } while (at < end && ((first = *at) & 0xF0) == 0xE0);
        }
    }
    source.at = at;
    return at >= end;
}

template <typename Sink>
[[gnu::always_inline]] inline void readUtf8Into(Source &source, Sink &sink) {
    if constexpr (kHasVectors && Sink::kByBlocks) {
        for (;;) {
            bool refused = false;
            utf8Blocks(source, sink, refused);
            if (refused)
                return;
            // A block that is not well formed, or the last bytes of the source.
            const std::uint8_t *end = source.end;
            if (end - source.at >= 64 + 16 && sink.hasRoom(Sink::kBlockRoom))
                end = source.at + 64;
            if (!utf8Characters(source, end, sink) || end == source.end)
                return;
        }
    } else {
        utf8Characters(source, source.end, sink);
    }
}

} // namespace
} // namespace velnls
