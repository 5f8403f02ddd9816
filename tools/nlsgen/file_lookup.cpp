#include "file_lookup.hpp"

#include <cstring>

namespace velnls::nlsgen {
namespace {

constexpr unsigned kFirst = 0;
constexpr unsigned kSecond = 1;
constexpr unsigned kThird = 2;

std::uint8_t byteOf(unsigned value) {
    return static_cast<std::uint8_t>(value);
}

std::uint16_t wordOf(unsigned value) {
    return static_cast<std::uint16_t>(value);
}

} // namespace

std::optional<std::uint16_t> FileLookup::Table::at(std::size_t index) const {
    if (index >= count)
        return std::nullopt;
    return wordOf(values[index * 2] | values[index * 2 + 1] << 8);
}

std::uint32_t FileLookup::Table::wide(std::size_t index) const {
    const auto low = at(index);
    const auto high = at(index + 1);
    return low && high ? *low | static_cast<std::uint32_t>(*high) << 16 : 0;
}

FileLookup::FileLookup(std::span<const std::uint8_t> file, std::size_t offset) {
    const auto tableAt = [&file](std::uint32_t at, std::uint16_t count) {
        return count == 0 ? Table{} : Table{file.data() + at + file::kSubTableHead, count};
    };
    for (unsigned i = 0; i < 3; i++) {
        Group &group = groups_[i];
        std::memcpy(&group.fields, file.data() + offset + 8 + i * sizeof group.fields, sizeof group.fields);
        group.values = tableAt(group.fields.valuesOffset, group.fields.valueCount);
        group.reverse = tableAt(group.fields.reverseOffset, group.fields.reverseCount);
        group.deltas = tableAt(group.fields.deltasOffset, group.fields.deltaCount);
    }
}

std::optional<std::uint32_t> FileLookup::valueIn(const Group &group, std::uint16_t code) const {
    const file::MappingGroup &f = group.fields;
    std::uint16_t index = 0;
    if (code != f.zeroCode) {
        std::uint8_t lead = byteOf(code >> 8);
        std::uint8_t trail = byteOf(code & 0xFF);
        if (lead < f.firstLead || (lead > f.leadGapLow && lead < f.leadGapHigh) ||
            (f.lastLead >= f.leadGapHigh && lead > f.lastLead))
            return std::nullopt;
        const bool secondGap = f.trailGap2Low >= f.trailGap1High;
        if (trail < f.firstTrail || (trail > f.trailGap1Low && trail < f.trailGap1High) ||
            (secondGap && trail > f.trailGap2Low && trail < f.trailGap2High) ||
            (f.lastTrail >= f.trailGap2High && trail > f.lastTrail))
            return std::nullopt;
        if (lead > f.leadGapLow)
            lead = byteOf(lead - f.leadShift);
        if (secondGap && trail > f.trailGap2Low)
            trail = byteOf(trail - f.trailShift2);
        else if (trail > f.trailGap1Low)
            trail = byteOf(trail - f.trailShift1);
        index = wordOf(f.trailsPerLead * byteOf(lead - f.firstLead) + byteOf(trail - f.firstTrail) -
                       f.indexBase + 1U);
        if (index > f.holeStart)
            index = wordOf(index - f.holeSize);
    }
    if (index == 0xFFFF || index >= f.indexLimit)
        return std::nullopt;
    const auto stored = group.values.at(index);
    if (!stored)
        return std::nullopt;
    std::uint32_t value = *stored;
    if ((f.flags & file::kForwardDeltas) != 0) {
        for (std::size_t at = 0; group.deltas.wide(at) != 0; at += 6) {
            const std::uint32_t limit = group.deltas.wide(at);
            const std::uint32_t delta = group.deltas.wide(at + 4);
            if (limit >= value + delta) {
                value += delta;
                break;
            }
        }
    }
    if (value == file::kUnmapped)
        return std::nullopt;
    return value;
}

std::uint16_t FileLookup::codeOf(const Group &group, std::uint16_t index) {
    const file::MappingGroup &f = group.fields;
    if (index == 0 || f.trailsPerLead == 0)
        return f.zeroCode;
    if (index > f.holeStart)
        index = wordOf(index + f.holeSize);
    const std::uint16_t place = wordOf(index + f.indexBase - 1U);
    std::uint8_t lead = byteOf(f.firstLead + place / f.trailsPerLead);
    std::uint8_t trail = byteOf(f.firstTrail + place % f.trailsPerLead);
    if (f.trailGap2Low >= f.trailGap1High && trail > f.trailGap2Low)
        trail = byteOf(trail + f.trailShift2);
    else if (trail > f.trailGap1Low)
        trail = byteOf(trail + f.trailShift1);
    if (lead > f.leadGapLow)
        lead = byteOf(lead + f.leadShift);
    return wordOf(lead << 8 | trail);
}

std::optional<std::uint16_t> FileLookup::directIn(const Group &group, std::uint32_t character) const {
    if (group.reverse.count == 0 || character < group.fields.lowest || character > group.fields.highest)
        return std::nullopt;
    const auto index = group.reverse.at(character - group.fields.lowest);
    if (!index || *index == file::kUnmapped)
        return std::nullopt;
    return codeOf(group, *index);
}

std::optional<std::uint16_t> FileLookup::compressedIn(const Group &group, std::uint32_t character) const {
    const file::MappingGroup &f = group.fields;
    if (group.reverse.count == 0 || character < f.lowest || character > f.highest)
        return std::nullopt;
    const std::uint32_t distance = character - f.lowest;
    const unsigned split = f.split & 31U;
    const auto start = group.reverse.at(distance >> split);
    if (!start)
        return std::nullopt;
    long count = static_cast<long>(distance & ((1U << split) - 1)) + 1;
    for (std::size_t at = *start;; at++) {
        const auto entry = group.reverse.at(at);
        if (!entry)
            return std::nullopt;
        steps_++;
        std::uint16_t run = wordOf(*entry & f.runMask);
        if (run == 0) {
            const auto longRun = group.reverse.at(++at);
            if (!longRun)
                return std::nullopt;
            run = *longRun;
        }
        count -= run;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            return codeOf(group, wordOf(*entry >> (f.indexShift & 15U)));
    }
}

std::optional<std::uint32_t> FileLookup::toUnicode(std::uint16_t code) const {
    if (groups_[kThird].values.count != 0)
        if (const auto value = valueIn(groups_[kThird], code))
            return value;
    if (const auto value = valueIn(groups_[kFirst], code))
        return value;
    return valueIn(groups_[kSecond], code);
}

std::optional<std::uint16_t> FileLookup::fromUnicode(std::uint32_t character) const {
    steps_ = 0;
    if (groups_[kThird].values.count != 0)
        if (const auto code = directIn(groups_[kThird], character))
            return code;

    const Group &first = groups_[kFirst];
    bool useFirst = true;
    std::uint32_t reduced = character;
    if ((first.fields.flags & file::kReverseDeltas) != 0) {
        std::size_t at = 0;
        if ((first.fields.flags & file::kForwardDeltas) != 0) {
            while (first.deltas.wide(at) != 0)
                at += 6;
            at += 2;
        }
        useFirst = false;
        for (; first.deltas.wide(at) != 0 && !useFirst; at += 6) {
            if (character >= first.deltas.wide(at + 2) && character <= first.deltas.wide(at)) {
                reduced = character - first.deltas.wide(at + 4);
                useFirst = true;
            }
        }
    }
    if (useFirst)
        if (const auto code = compressedIn(first, reduced))
            return code;
    return compressedIn(groups_[kSecond], character);
}

} // namespace velnls::nlsgen
