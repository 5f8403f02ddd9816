// A rectangle of lead and trail bytes whose codes are numbered row by row, with at most one gap each way.
#pragma once

#include "core/file_layout.hpp"

#include <cstdint>

namespace velnls::nlsgen {

// Gaps name the last byte before and the first byte behind them. No hole and no second trail gap: a code
// in either would be numbered like another one.
struct Rectangle {
    std::uint8_t firstLead = 0;
    std::uint8_t leadGapLow = 0xFF;
    std::uint8_t leadGapHigh = 0;
    std::uint8_t lastLead = 0;
    std::uint8_t firstTrail = 0;
    std::uint8_t trailGapLow = 0xFF;
    std::uint8_t trailGapHigh = 0;
    std::uint8_t lastTrail = 0;
    // The index of the first code is 1; with `startsAtZero` it is 0, for a rectangle whose first code is 0.
    bool startsAtZero = false;

    [[nodiscard]] bool hasLeadGap() const {
        return leadGapLow < leadGapHigh;
    }
    [[nodiscard]] bool hasTrailGap() const {
        return trailGapLow < trailGapHigh;
    }
    [[nodiscard]] unsigned leadShift() const {
        return hasLeadGap() ? leadGapHigh - leadGapLow - 1U : 0U;
    }
    [[nodiscard]] unsigned trailShift() const {
        return hasTrailGap() ? trailGapHigh - trailGapLow - 1U : 0U;
    }
    [[nodiscard]] unsigned trailsPerLead() const {
        return lastTrail - firstTrail + 1U - trailShift();
    }
    [[nodiscard]] unsigned rows() const {
        return lastLead - firstLead + 1U - leadShift();
    }
    // One more than the largest index.
    [[nodiscard]] unsigned indexLimit() const {
        return rows() * trailsPerLead() + (startsAtZero ? 0U : 1U);
    }
    [[nodiscard]] bool has(std::uint32_t code) const;
    // Of a code that it has.
    [[nodiscard]] unsigned indexOf(std::uint32_t code) const;

    void describe(file::MappingGroup &group) const;
};

} // namespace velnls::nlsgen
