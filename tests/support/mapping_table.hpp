// Mapping tables of double-byte pages: their fields, their file form, and a plain reading of both look-ups
// that the library's answers are compared with.
#pragma once

#include "bytes.hpp"

#include <array>
#include <map>
#include <vector>

namespace fixture {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

// A rectangle of lead and trail bytes with holes, numbered row by row.
struct CodeRange {
    std::uint32_t flags = 0; // 1: forward deltas, 2: reverse deltas
    std::uint32_t lowest = 0;
    std::uint32_t highest = 0;
    std::uint16_t split = 0;
    std::uint16_t runMask = 0;
    std::uint16_t indexShift = 0;
    std::uint16_t zeroCode = 0;
    std::uint16_t indexBase = 0;
    std::uint16_t holeStart = 0xFFFF;
    std::uint16_t holeSize = 0;
    std::uint16_t indexLimit = 0;
    std::uint16_t substitution = 0; // first group only
    unsigned char firstLead = 0;
    unsigned char leadGapLow = 0xFF;
    unsigned char leadGapHigh = 0;
    unsigned char lastLead = 0;
    unsigned char leadShift = 0;
    unsigned char firstTrail = 0;
    unsigned char trailGap1Low = 0xFF;
    unsigned char trailGap1High = 0;
    unsigned char trailGap2Low = 0;
    unsigned char trailGap2High = 0;
    unsigned char lastTrail = 0;
    unsigned char trailShift1 = 0;
    unsigned char trailShift2 = 0;
    unsigned char trailsPerLead = 1;
    std::vector<std::uint16_t> values;
    std::vector<std::uint16_t> reverse;
    std::vector<std::uint16_t> deltas;

    // Leads and trails with at most one gap each; the gap is given by its neighbours, equal ones mean none.
    static CodeRange rectangle(unsigned firstLead, unsigned lastLead, unsigned firstTrail, unsigned lastTrail,
                               unsigned trailGapLow = 0, unsigned trailGapHigh = 0, unsigned leadGapLow = 0,
                               unsigned leadGapHigh = 0);

    // The number of a code in the rectangle, kNone outside it or beyond the limit.
    [[nodiscard]] std::uint32_t indexOf(std::uint32_t code) const;
    [[nodiscard]] std::uint32_t codeOf(std::uint32_t index) const;

    // Unicode value of a code, kNone when the range does not map it.
    [[nodiscard]] std::uint32_t toUnicode(std::uint32_t code) const;
    // Reads `reverse` in its direct form (one index per value).
    [[nodiscard]] std::uint32_t directCode(std::uint32_t value) const;
    // Reads `reverse` in its compressed form (runs).
    [[nodiscard]] std::uint32_t compressedCode(std::uint32_t value) const;

    // Fill the sub-tables from the pairs (code, value).
    void setValues(const std::map<std::uint32_t, std::uint32_t> &codes);
    void setDirect(const std::map<std::uint32_t, std::uint32_t> &codes);
    void setCompressed(const std::map<std::uint32_t, std::uint32_t> &codes, unsigned splitBits);
    // The compressed form from the pairs (value, index).
    void setRuns(const std::map<std::uint32_t, std::uint32_t> &byValue, unsigned splitBits);
    void addDelta(std::uint32_t a, std::uint32_t b, std::uint32_t delta);
    void endDeltas();

    [[nodiscard]] std::vector<std::array<std::uint32_t, 3>> deltaList(bool reverseList) const;
};

struct Mapping {
    CodeRange groups[3]; // first, second, third

    CodeRange &first() {
        return groups[0];
    }
    CodeRange &second() {
        return groups[1];
    }
    CodeRange &third() {
        return groups[2];
    }

    // Unicode value of a code and back, kNone when nothing maps it.
    [[nodiscard]] std::uint32_t toUnicode(std::uint32_t code) const;
    [[nodiscard]] std::uint32_t toCode(std::uint32_t value) const;

    // The 528-byte record; `offsets` are the file offsets of the sub-tables by group and table.
    [[nodiscard]] Bytes record(const std::array<std::array<std::uint32_t, 3>, 3> &offsets, int type) const;

    // A small page of Shift_JIS shape that uses all three groups: a direct window, runs for the rest, and a
    // row of single bytes. Codes and values are a function of `seed`.
    static Mapping doubleBytePage(unsigned seed = 1);
    // A single-byte page: 7F to FF mapped, some of them unmapped.
    static Mapping singleBytePage(unsigned seed = 1);
    // A page with characters in plane 2, by delta lists, and one single byte as zero code.
    static Mapping planeTwoPage();
};

} // namespace fixture
