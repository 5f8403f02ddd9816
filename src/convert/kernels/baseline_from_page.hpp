// Reads a code page into a sink: single bytes through one row of values, pairs through a rectangle.
//
// Stops at the first character that has no value there; the plain way takes that one.
#pragma once

#include "convert/kernels/baseline_walk.hpp"
#include "convert/kernels/kernels.hpp"
#include "convert/kernels/proofs.hpp"

namespace velnls {
namespace {

// ---- Single bytes ---------------------------------------------------------------------------------------

// The values of the bytes from 80 up.
class ByteRow {
public:
    explicit ByteRow(const MappingBody &body)
        : values_(reinterpret_cast<const std::uint8_t *>(body.groups[2].values) +
                  (0x80 - body.groups[2].firstTrail + 1) * 2) {}
    [[gnu::always_inline]] std::uint32_t valueOf(std::uint32_t byte) const {
        const std::uint32_t value = loadNumber<std::uint16_t>(values_ + std::size_t{byte & 0x7F} * 2);
        return byte < 0x80 ? byte : value;
    }

    // 128 of them, of 16 bits each.
    [[nodiscard]] const std::uint8_t *values() const {
        return values_;
    }

private:
    const std::uint8_t *values_;
};

template <typename Sink>
[[gnu::always_inline]] inline void readByteRowInto(const ByteRow &row, Source &source, Sink &sink) {
    const std::uint8_t *at = source.at;
    const std::uint8_t *const last = source.end;
    while (at < last) {
        const std::ptrdiff_t left = last - at;
        if (takeAsciiRun(at, last, sink))
            continue;
        // Eight bytes of whatever script, or the last few.
        const std::uint8_t *const end = at + (left < 8 ? left : 8);
        if (!sink.hasRoom(8 * Sink::kCharacterRoom))
            break;
        do {
            const std::uint32_t byte = *at;
            if (byte < 0x80) {
                sink.putAscii(static_cast<std::uint8_t>(byte));
                continue;
            }
            const std::uint32_t value = row.valueOf(byte);
            if (value == file::kUnmapped || !sink.put(value)) {
                source.at = at;
                return;
            }
        } while (++at < end);
    }
    while (at < last && sink.hasRoom(Sink::kCharacterRoom)) {
        const std::uint32_t value = row.valueOf(*at);
        if (value == file::kUnmapped || !sink.put(value))
            break;
        ++at;
    }
    source.at = at;
}

// For long texts to UTF-8: each byte's UTF-8 form with its length, made once.
class Utf8OfByte {
public:
    static constexpr std::ptrdiff_t kWorthwhile = 2048; // source bytes that repay making the table

    explicit Utf8OfByte(const ByteRow &row) {
        for (std::uint32_t byte = 0; byte < 0x80; ++byte)
            entries_[byte] = byte | 1u << kLengthShift;
        for (std::uint32_t byte = 0x80; byte < 0x100; ++byte)
            entries_[byte] = entryOf(row.valueOf(byte));
    }
    // Converts blocks of 16 bytes up to one that has a byte without a value.
    [[gnu::always_inline]] void convert(Source &source, std::uint8_t *&out,
                                        const std::uint8_t *outEnd) const {
        const std::uint8_t *at = source.at;
        std::uint8_t *to = out;
        while (source.end - at >= 16 && outEnd - to >= kRoom) {
            if (asciiPrefix16(at) == 16) {
                copyBytes<16>(to, at);
                at += 16;
                to += 16;
                continue;
            }
            std::uint8_t *const begin = to;
            std::uint32_t seen = 0;
            for (int i = 0; i < 16; ++i) {
                const std::uint32_t entry = entries_[at[i]];
                storeNumber(to, entry);
                to += entry >> kLengthShift;
                seen |= entry;
            }
            if ((seen & kHard) != 0) {
                to = begin;
                break;
            }
            at += 16;
        }
        source.at = at;
        out = to;
    }

private:
    // Above the three bytes; lengths are 1 to 3, so the top bit is free: read as a length, it makes four.
    static constexpr int kLengthShift = 29;
    static constexpr std::uint32_t kHard = 0x80000000;
    static constexpr std::ptrdiff_t kRoom = 16 * 4; // for blocks of bytes without a value too

    static std::uint32_t entryOf(std::uint32_t value) {
        const std::uint32_t last = (value & 0x3F) | 0x80;
        if (value == file::kUnmapped)
            return kHard;
        if (value < 0x80)
            return value | 1u << kLengthShift;
        if (value < 0x800)
            return 0xC0 | value >> 6 | last << 8 | 2u << kLengthShift;
        return 0xE0 | value >> 12 | (0x80 | (value >> 6 & 0x3F)) << 8 | last << 16 | 3u << kLengthShift;
    }

    std::uint32_t entries_[0x100];
};

// ---- Pairs ----------------------------------------------------------------------------------

class PairRectangle {
public:
    explicit PairRectangle(const MappingBody &body)
        : values_(reinterpret_cast<const std::uint8_t *>(body.groups[2].values)),
          firstLead_(body.groups[2].firstLead), lastLead_(body.groups[2].lastLead),
          leadGapLow_(body.groups[2].leadGapLow), leadGapHigh_(body.groups[2].leadGapHigh),
          leadShift_(body.groups[2].leadShift), firstTrail_(body.groups[2].firstTrail),
          trailGapLow_(body.groups[2].trailGap1Low), trailGapHigh_(body.groups[2].trailGap1High),
          trailShift_(body.groups[2].trailShift1), trailsPerLead_(body.groups[2].trailsPerLead) {}

    [[gnu::always_inline]] bool isLead(std::uint32_t byte) const {
        return byte - firstLead_ <= lastLead_ - firstLead_ && !(byte > leadGapLow_ && byte < leadGapHigh_);
    }
    // The value of a lead byte and the byte behind it, or kUnmapped.
    [[gnu::always_inline]] std::uint32_t valueOf(std::uint32_t lead, std::uint32_t trail) const {
        std::uint32_t row = lead - firstLead_;
        if (leadShift_ != 0)
            row -= leadShift_ & maskIf(lead > leadGapLow_);
        std::uint32_t column = trail - firstTrail_;
        if (trailShift_ != 0) {
            if (trail > trailGapLow_ && trail < trailGapHigh_)
                return file::kUnmapped;
            column -= trailShift_ & maskIf(trail > trailGapLow_);
        }
        if (column >= trailsPerLead_)
            return file::kUnmapped;
        return loadNumber<std::uint16_t>(values_ + std::size_t{row * trailsPerLead_ + column + 1} * 2);
    }

private:
    const std::uint8_t *values_;
    std::uint32_t firstLead_;
    std::uint32_t lastLead_;
    std::uint32_t leadGapLow_;
    std::uint32_t leadGapHigh_;
    std::uint32_t leadShift_;
    std::uint32_t firstTrail_;
    std::uint32_t trailGapLow_;
    std::uint32_t trailGapHigh_;
    std::uint32_t trailShift_;
    std::uint32_t trailsPerLead_;
};

// Run by run: the length of a character is foreseen with its script.
template <typename Sink>
[[gnu::always_inline]] inline void readPairsInto(const PairRectangle &page, Source &source, Sink &sink) {
    const std::uint8_t *at = source.at;
    const std::uint8_t *const last = source.end;
    while (at < last) {
        std::uint32_t first = *at;
        if (first < 0x80) {
            if (!takeAscii(at, last, sink))
                break;
            continue;
        }
        bool taken = true;
        do {
            taken = last - at >= 2 && sink.hasRoom(Sink::kCharacterRoom) && page.isLead(first);
            if (!taken)
                break;
            const std::uint32_t value = page.valueOf(first, at[1]);
            taken = value != file::kUnmapped && sink.put(value);
            if (!taken)
                break;
            at += 2;
        } while (at < last && (first = *at) >= 0x80);
        if (!taken)
            break;
    }
    source.at = at;
}

} // namespace
} // namespace velnls
