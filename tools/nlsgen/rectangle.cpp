#include "rectangle.hpp"

namespace velnls::nlsgen {

bool Rectangle::has(std::uint32_t code) const {
    const std::uint32_t lead = code >> 8;
    const std::uint32_t trail = code & 0xFF;
    if (lead < firstLead || lead > lastLead || trail < firstTrail || trail > lastTrail)
        return false;
    if (hasLeadGap() && lead > leadGapLow && lead < leadGapHigh)
        return false;
    return !(hasTrailGap() && trail > trailGapLow && trail < trailGapHigh);
}

unsigned Rectangle::indexOf(std::uint32_t code) const {
    const std::uint32_t lead = code >> 8;
    const std::uint32_t trail = code & 0xFF;
    const unsigned row = lead - firstLead - (hasLeadGap() && lead > leadGapLow ? leadShift() : 0);
    const unsigned column = trail - firstTrail - (hasTrailGap() && trail > trailGapLow ? trailShift() : 0);
    return row * trailsPerLead() + column + (startsAtZero ? 0 : 1);
}

void Rectangle::describe(file::MappingGroup &group) const {
    group.firstLead = firstLead;
    group.leadGapLow = leadGapLow;
    group.leadGapHigh = leadGapHigh;
    group.lastLead = lastLead;
    group.leadShift = static_cast<std::uint8_t>(leadShift());
    group.firstTrail = firstTrail;
    group.trailGap1Low = trailGapLow;
    group.trailGap1High = trailGapHigh;
    group.trailGap2Low = 0;
    group.trailGap2High = 0;
    group.lastTrail = lastTrail;
    group.trailShift1 = static_cast<std::uint8_t>(trailShift());
    group.trailsPerLead = static_cast<std::uint8_t>(trailsPerLead());
    group.indexBase = startsAtZero ? 1 : 0;
}

} // namespace velnls::nlsgen
