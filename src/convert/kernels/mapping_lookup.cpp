#include "convert/kernels/mapping_lookup.hpp"

#include "core/unaligned.hpp"

#include <initializer_list>

namespace velnls {

namespace {

using file::MappingGroup;

bool liesBetween(unsigned byte, unsigned low, unsigned high) {
    return byte > low && byte < high;
}

// A rectangle's second trail gap counts only where it does not begin before the first one ends.
bool hasSecondGap(const MappingGroup &group) {
    return group.trailGap2Low >= group.trailGap1High;
}

bool containsCode(const MappingGroup &group, unsigned lead, unsigned trail) {
    if (lead < group.firstLead || liesBetween(lead, group.leadGapLow, group.leadGapHigh) ||
        (group.lastLead >= group.leadGapHigh && lead > group.lastLead))
        return false;
    if (trail < group.firstTrail || liesBetween(trail, group.trailGap1Low, group.trailGap1High))
        return false;
    if (hasSecondGap(group) && liesBetween(trail, group.trailGap2Low, group.trailGap2High))
        return false;
    return group.lastTrail < group.trailGap2High || trail <= group.lastTrail;
}

// Bytes wrap at 8 bits, indexes at 16.
std::uint32_t indexOfCode(const MappingGroup &group, std::uint16_t code) {
    if (code == group.zeroCode)
        return 0;
    unsigned lead = code >> 8;
    unsigned trail = code & 0xFF;
    if (!containsCode(group, lead, trail))
        return kNone;
    if (lead > group.leadGapLow)
        lead = (lead - group.leadShift) & 0xFF;
    if (hasSecondGap(group) && trail > group.trailGap2Low)
        trail = (trail - group.trailShift2) & 0xFF;
    else if (trail > group.trailGap1Low)
        trail = (trail - group.trailShift1) & 0xFF;
    const unsigned row = (lead - group.firstLead) & 0xFF;
    const unsigned column = (trail - group.firstTrail) & 0xFF;
    std::uint32_t index = (group.trailsPerLead * row + column - group.indexBase + 1) & 0xFFFF;
    if (index > group.holeStart)
        index = (index - group.holeSize) & 0xFFFF;
    return index;
}

std::uint32_t codeOfIndex(const MappingGroup &group, std::uint32_t index) {
    if (index == 0)
        return group.zeroCode;
    if (group.trailsPerLead == 0)
        return kNone;
    if (index > group.holeStart)
        index += group.holeSize;
    const std::uint32_t place = (index + group.indexBase - 1) & 0xFFFF;
    unsigned lead = (group.firstLead + place / group.trailsPerLead) & 0xFF;
    unsigned trail = (group.firstTrail + place % group.trailsPerLead) & 0xFF;
    if (hasSecondGap(group) && trail > group.trailGap2Low)
        trail += group.trailShift2;
    else if (trail > group.trailGap1Low)
        trail += group.trailShift1;
    if (lead > group.leadGapLow)
        lead += group.leadShift;
    return (lead & 0xFF) << 8 | (trail & 0xFF);
}

// A list of 32-bit triples, ended by a triple whose first number is 0.
class DeltaList {
public:
    explicit DeltaList(const MappingGroup &group)
        : at_(group.deltas), left_(group.deltas == nullptr ? 0 : group.deltaCount) {}
    struct Triple {
        std::uint32_t limit;
        std::uint32_t low;
        std::uint32_t delta;
    };
    bool next(Triple &triple) {
        if (!take(triple.limit) || triple.limit == 0)
            return false;
        return take(triple.low) && take(triple.delta);
    }

private:
    bool take(std::uint32_t &number) {
        if (left_ < 2)
            return false;
        number = loadElement(at_, 0) | static_cast<std::uint32_t>(loadElement(at_, 1)) << 16;
        at_ += 2;
        left_ -= 2;
        return true;
    }
    const std::uint16_t *at_;
    std::uint32_t left_;
};

std::uint32_t addDelta(const MappingGroup &group, std::uint32_t value) {
    if ((group.flags & file::kForwardDeltas) == 0)
        return value;
    DeltaList list(group);
    for (DeltaList::Triple triple{}; list.next(triple);) {
        if (triple.limit >= value + triple.delta)
            return value + triple.delta;
    }
    return value;
}

// Undoes addDelta; false when the value lies in none of the ranges and the block is to be skipped.
bool takeDelta(const MappingGroup &group, std::uint32_t &value) {
    if ((group.flags & file::kReverseDeltas) == 0)
        return true;
    DeltaList list(group);
    DeltaList::Triple triple{};
    if ((group.flags & file::kForwardDeltas) != 0) { // the forward list stands first
        while (list.next(triple)) {
        }
    }
    while (list.next(triple)) {
        if (value >= triple.low && value <= triple.limit) {
            value -= triple.delta;
            return true;
        }
    }
    return false;
}

std::uint32_t valueOfCode(const MappingGroup &group, std::uint16_t code) {
    if (group.values == nullptr)
        return kNone;
    const std::uint32_t index = indexOfCode(group, code);
    if (index >= 0xFFFF || index >= group.indexLimit || index >= group.valueCount)
        return kNone;
    const std::uint16_t value = loadElement(group.values, index);
    if (value == file::kUnmapped)
        return kNone;
    const std::uint32_t moved = addDelta(group, value);
    return moved == file::kUnmapped ? kNone : moved;
}

std::uint32_t codeDirect(const MappingGroup &group, std::uint32_t value) {
    if (group.reverse == nullptr || value < group.lowest || value > group.highest)
        return kNone;
    const std::uint32_t offset = value - group.lowest;
    if (offset >= group.reverseCount)
        return kNone;
    const std::uint16_t index = loadElement(group.reverse, offset);
    return index == file::kUnmapped ? kNone : codeOfIndex(group, index);
}

// Walks the runs of the value's segment: the run of an entry is its distance from the mapped value before it.
std::uint32_t codeCompressed(const MappingGroup &group, std::uint32_t value) {
    if (group.reverse == nullptr || value < group.lowest || value > group.highest || group.split > 15)
        return kNone;
    const std::uint32_t offset = value - group.lowest;
    const std::uint32_t segment = offset >> group.split;
    if (segment >= group.reverseCount)
        return kNone;
    std::uint32_t at = loadElement(group.reverse, segment);
    auto count = static_cast<std::int32_t>((offset & ((1u << group.split) - 1)) + 1);
    while (at < group.reverseCount) {
        const std::uint16_t entry = loadElement(group.reverse, at++);
        std::int32_t run = entry & group.runMask;
        if (run == 0) {
            if (at >= group.reverseCount)
                return kNone;
            run = loadElement(group.reverse, at++);
        }
        count -= run;
        if (count == 0)
            return codeOfIndex(group, static_cast<std::uint32_t>(entry >> (group.indexShift & 15)));
        if (count < 0)
            return kNone;
    }
    return kNone;
}

} // namespace

std::uint32_t unicodeOfCode(const MappingBody &body, std::uint16_t code) {
    if (code == 0)
        return 0;
    std::uint32_t value = valueOfCode(body.groups[2], code);
    if (value == kNone)
        value = valueOfCode(body.groups[0], code);
    return value != kNone ? value : valueOfCode(body.groups[1], code);
}

std::uint32_t codeOfUnicode(const MappingBody &body, std::uint32_t value) {
    if (value == 0)
        return 0;
    std::uint32_t code = codeDirect(body.groups[2], value);
    if (code != kNone)
        return code;
    if (std::uint32_t moved = value; takeDelta(body.groups[0], moved))
        code = codeCompressed(body.groups[0], moved);
    return code != kNone ? code : codeCompressed(body.groups[1], value);
}

} // namespace velnls
