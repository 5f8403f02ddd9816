#include "convert/kernels/proofs.hpp"

#include "convert/kernels/mapping_lookup.hpp"
#include "core/unaligned.hpp"

#include <algorithm>

namespace velnls {

namespace {

using file::MappingGroup;

constexpr unsigned kAsciiEnd = 0x80;
constexpr unsigned kBytes = 0x100;

// The first character of ASCII that the tables may say something about; those below are unmapped both ways.
unsigned firstMapped(const MappingBody &body) {
    std::uint32_t first = kAsciiEnd - 1; // it has to be mapped
    for (const MappingGroup &group : body.groups) {
        if ((group.flags & file::kReverseDeltas) != 0) // its values move
            return 0;
        if (group.values != nullptr) {
            if (group.zeroCode != 0)
                first = std::min<std::uint32_t>(first, group.zeroCode);
            if (group.firstLead == 0)
                first = std::min<std::uint32_t>(first, group.firstTrail);
        }
        if (group.reverse != nullptr)
            first = std::min(first, group.lowest);
    }
    return first;
}

bool isAsciiIdentity(const MappingBody &body) {
    const unsigned first = firstMapped(body);
    for (std::uint32_t byte = 0; byte < kAsciiEnd; ++byte) {
        if (body.charTable->trailCount(static_cast<std::uint8_t>(byte)) != 0)
            return false;
        if (byte < first)
            continue;
        const std::uint32_t value = unicodeOfCode(body, static_cast<std::uint16_t>(byte));
        const std::uint32_t code = codeOfUnicode(body, byte);
        // 7F has to be mapped; below it an unmapped character stands for itself.
        const bool mayBeUnmapped = byte < kAsciiEnd - 1;
        if (value != byte && !(value == kNone && mayBeUnmapped))
            return false;
        if (code != byte && !(code == kNone && mayBeUnmapped))
            return false;
    }
    return true;
}

// No surrogate and no replacement character: those are not written as they stand.
bool hasPlainValues(const MappingGroup &group) {
    unsigned odd = 0;
    for (std::uint32_t i = 0; i < group.valueCount; ++i) {
        const unsigned value = loadElement(group.values, i);
        odd |= static_cast<unsigned>(value - 0xD800 < 0x800) | static_cast<unsigned>(value == 0xFFFD);
    }
    return odd == 0;
}

// Every entry is unmapped or an index from 1 to `last`.
bool hasIndexesUpTo(const MappingGroup &group, std::uint32_t last) {
    if (group.reverse == nullptr)
        return group.reverseCount == 0;
    unsigned odd = 0;
    for (std::uint32_t i = 0; i < group.reverseCount; ++i) {
        const unsigned index = loadElement(group.reverse, i);
        odd |= static_cast<unsigned>(index == 0) |
               static_cast<unsigned>(index > last && index != file::kUnmapped);
    }
    return odd == 0;
}

// The window as the fast kernels read it: value - lowest is the place, and no place is behind the table's
// end.
bool isWindow(const MappingGroup &group) {
    return group.reverseCount == 0 ||
           (group.lowest >= kAsciiEnd && group.highest <= 0xFFFF && group.lowest <= group.highest &&
            group.highest - group.lowest < group.reverseCount);
}

// A second gap counts where it does not begin before the first one ends: so without any gap there is one from
// 0 to 0, which leaves no byte out and must not shift any.
bool hasNoSecondGap(const MappingGroup &group) {
    const bool counts = group.trailGap2Low >= group.trailGap1High;
    return group.lastTrail >= group.trailGap2High &&
           (!counts || (group.trailGap2Low == 0 && group.trailGap2High == 0 && group.trailShift2 == 0));
}

bool hasNoTrailGap(const MappingGroup &group) {
    return group.trailGap1Low == 0xFF && hasNoSecondGap(group);
}

// Values by plain indexes: no hole, no base, nothing added.
bool isStraight(const MappingGroup &group) {
    return group.values != nullptr && group.holeStart == 0xFFFF && group.indexBase == 0 &&
           (group.flags & (file::kForwardDeltas | file::kReverseDeltas)) == 0 && group.trailsPerLead != 0;
}

bool isByteRow(const MappingBody &body) {
    const MappingGroup &group = body.groups[2];
    if (body.charTable->hasTrails() || !isStraight(group) || !hasNoTrailGap(group) || !isWindow(group) ||
        !hasPlainValues(group))
        return false;
    if (group.firstLead != 0 || group.leadGapLow != 0xFF || group.firstTrail == 0 ||
        group.firstTrail > kAsciiEnd || group.lastTrail != 0xFF || group.zeroCode != 0)
        return false;
    const std::uint32_t last = 0xFFu - group.firstTrail + 1;
    return last < group.indexLimit && last < group.valueCount && last <= group.trailsPerLead &&
           hasIndexesUpTo(group, last);
}

bool isRectangleLead(const MappingGroup &group, unsigned lead) {
    return lead >= group.firstLead && lead <= group.lastLead &&
           !(lead > group.leadGapLow && lead < group.leadGapHigh);
}

bool isPairRectangle(const MappingBody &body) {
    const MappingGroup &group = body.groups[2];
    if (!isStraight(group) || !hasNoSecondGap(group) || !isWindow(group) || !hasPlainValues(group))
        return false;
    for (unsigned byte = 0; byte < kBytes; ++byte) {
        const unsigned trails = body.charTable->trailCount(static_cast<std::uint8_t>(byte));
        if (trails != static_cast<unsigned>(isRectangleLead(group, byte)))
            return false;
    }
    // Leads stand above ASCII and row by row; the gap, when there is one, lies inside.
    const bool leadGap = group.leadGapLow != 0xFF;
    const unsigned leadsLeftOut = leadGap ? group.leadGapHigh - group.leadGapLow - 1u : 0;
    if (group.firstLead < kAsciiEnd || group.lastLead < group.firstLead ||
        group.lastLead < group.leadGapHigh || group.leadShift != leadsLeftOut ||
        (leadGap && (group.leadGapHigh <= group.leadGapLow || group.leadGapLow < group.firstLead ||
                     group.leadGapHigh > group.lastLead)) ||
        group.zeroCode >= kAsciiEnd)
        return false;
    const bool trailGap = group.trailGap1Low != 0xFF;
    const unsigned trailsLeftOut = trailGap ? group.trailGap1High - group.trailGap1Low - 1u : 0;
    if (group.firstTrail == 0 || group.lastTrail < group.firstTrail ||
        group.lastTrail < group.trailGap1High ||
        (trailGap && (group.trailGap1High <= group.trailGap1Low || group.trailGap1Low < group.firstTrail ||
                      group.trailGap1High > group.lastTrail || group.trailShift1 != trailsLeftOut)))
        return false;
    const unsigned columns = group.lastTrail - group.firstTrail + 1u - trailsLeftOut;
    const unsigned rows = group.lastLead - group.firstLead + 1u - leadsLeftOut;
    const std::uint32_t last = columns * rows;
    return columns == group.trailsPerLead && columns > 1 && last < group.indexLimit &&
           last < group.valueCount && hasIndexesUpTo(group, last);
}

// The index of a two-byte code in the rectangle, or kNone.
std::uint32_t indexOfPair(const MappingGroup &group, std::uint32_t code) {
    const unsigned lead = code >> 8;
    unsigned trail = code & 0xFF;
    if (code == kNone || !isRectangleLead(group, lead) || trail < group.firstTrail ||
        trail > group.lastTrail || (trail > group.trailGap1Low && trail < group.trailGap1High))
        return kNone;
    trail -= trail > group.trailGap1Low ? group.trailShift1 : 0;
    const unsigned row = lead - group.firstLead - (lead > group.leadGapLow ? group.leadShift : 0u);
    return row * group.trailsPerLead + (trail - group.firstTrail) + 1;
}

// The longest run of indexes that follow each other, among 32 values.
LinearBlock linearBlock(const MappingBody &body, std::uint32_t first) {
    LinearBlock best{};
    LinearBlock run{};
    std::uint32_t before = kNone;
    for (unsigned i = 0; i < 32; ++i) {
        const std::uint32_t index = indexOfPair(body.groups[2], codeOfUnicode(body, first + i));
        if (index == kNone)
            run.count = 0;
        else if (run.count != 0 && index == before + 1)
            ++run.count;
        else
            run = {static_cast<std::uint8_t>(i), 1, static_cast<std::uint16_t>(index - (first + i))};
        before = index;
        if (run.count > best.count)
            best = run;
    }
    return best;
}

std::uint16_t pairIndex(const MappingBody &body, std::uint32_t value) {
    const std::uint32_t index = indexOfPair(body.groups[2], codeOfUnicode(body, value));
    return index == kNone ? std::uint16_t{0} : static_cast<std::uint16_t>(index);
}

void putPunctuation(MappingBody &body, MappingGroup &group, std::uint32_t begin) {
    std::uint16_t indexes[kPunctuation];
    for (unsigned i = 0; i < kPunctuation; ++i)
        indexes[i] = pairIndex(body, begin + i);
    std::memcpy(group.unusedA, indexes, sizeof indexes);
}

PairUnits pairUnits(const MappingGroup &group) {
    PairUnits units{};
    units.span = static_cast<std::uint16_t>(group.reverseCount == 0 ? 0 : group.highest - group.lowest + 1);
    units.codeBase = static_cast<std::uint16_t>(group.firstLead * 0x100 + group.firstTrail - 1);
    units.rowStep = static_cast<std::uint16_t>(0x100 - group.trailsPerLead);
    // 2^(16 + shift) / trailsPerLead, rounded up, with as many bits as fill a unit. The error is below
    // trailsPerLead, which is at most twice 2^shift: times a place, of at most 128 rows
    // of 255, it stays below one.
    const unsigned divisor = group.trailsPerLead;
    unsigned shift = 0;
    while (divisor > 2U << shift)
        ++shift;
    units.reciprocal = static_cast<std::uint16_t>(((0x10000U << shift) + divisor - 1) / divisor);
    units.reciprocalShift = static_cast<std::uint16_t>(shift);
    units.trailGapLow = group.trailGap1Low;
    units.trailShift = group.trailShift1;
    units.leadGapEnd = static_cast<std::uint16_t>(group.leadGapLow * 0x100 + 0xFF);
    units.leadShift = static_cast<std::uint16_t>(group.leadShift * 0x100);
    return units;
}

void putFacts(MappingBody &body) {
    MappingFacts facts{};
    for (unsigned block = 0; block < kKanaBlocks; ++block)
        facts.kana[block] = linearBlock(body, kKanaBegin + 32 * block);
    for (unsigned block = 0; block < kLetterBlocks; ++block)
        facts.letters[block] = linearBlock(body, kLettersBegin + 32 * block);
    for (unsigned i = 0; i < kSoundMarks; ++i)
        facts.marks[i] = pairIndex(body, kSoundMarksBegin + i);
    facts.units = pairUnits(body.groups[2]);
    std::memcpy(body.groups[0].unusedA, &facts, sizeof facts);
    putPunctuation(body, body.groups[1], kPunctuationBegin);
    putPunctuation(body, body.groups[2], kWidePunctuationBegin);
}

} // namespace

std::uint32_t proveMapping(MappingBody &body) {
    if (body.charTable == nullptr)
        return 0;
    std::uint32_t proofs = 0;
    if (isAsciiIdentity(body))
        proofs |= kAsciiIdentity;
    if (isByteRow(body))
        proofs |= kByteRow;
    if (isPairRectangle(body)) {
        proofs |= kPairRectangle;
        putFacts(body);
    }
    return proofs;
}

} // namespace velnls
