#include "mapping_table.hpp"

#include "random.hpp"

#include <algorithm>
#include <stdexcept>

namespace fixture {

CodeRange CodeRange::rectangle(unsigned firstLead, unsigned lastLead, unsigned firstTrail, unsigned lastTrail,
                               unsigned trailGapLow, unsigned trailGapHigh, unsigned leadGapLow,
                               unsigned leadGapHigh) {
    CodeRange range;
    range.firstLead = byteOf(firstLead);
    range.lastLead = byteOf(lastLead);
    range.firstTrail = byteOf(firstTrail);
    range.lastTrail = byteOf(lastTrail);
    if (trailGapLow != trailGapHigh) {
        range.trailGap1Low = byteOf(trailGapLow);
        range.trailGap1High = byteOf(trailGapHigh);
        range.trailShift1 = byteOf(trailGapHigh - trailGapLow - 1);
    }
    if (leadGapLow != leadGapHigh) {
        range.leadGapLow = byteOf(leadGapLow);
        range.leadGapHigh = byteOf(leadGapHigh);
        range.leadShift = byteOf(leadGapHigh - leadGapLow - 1);
    }
    range.trailsPerLead = byteOf(lastTrail - firstTrail + 1 - range.trailShift1);
    const unsigned leads = lastLead - firstLead + 1 - range.leadShift;
    range.indexLimit = halfOf(leads * range.trailsPerLead + 1);
    return range;
}

std::uint32_t CodeRange::indexOf(std::uint32_t code) const {
    if (code == zeroCode)
        return 0 < indexLimit ? 0 : kNone;
    unsigned char lead = byteOf(code >> 8);
    unsigned char trail = byteOf(code);
    const bool secondGap = trailGap2Low >= trailGap1High;
    if (lead < firstLead || (lead > leadGapLow && lead < leadGapHigh) ||
        (lastLead >= leadGapHigh && lead > lastLead) || trail < firstTrail ||
        (trail > trailGap1Low && trail < trailGap1High) ||
        (secondGap && trail > trailGap2Low && trail < trailGap2High) ||
        (lastTrail >= trailGap2High && trail > lastTrail))
        return kNone;
    if (lead > leadGapLow)
        lead = byteOf(lead - leadShift);
    if (secondGap && trail > trailGap2Low)
        trail = byteOf(trail - trailShift2);
    else if (trail > trailGap1Low)
        trail = byteOf(trail - trailShift1);
    std::uint16_t index =
        halfOf(trailsPerLead * byteOf(lead - firstLead) + byteOf(trail - firstTrail) - indexBase + 1);
    if (index > holeStart)
        index = halfOf(index - holeSize);
    return index == 0xFFFF || index >= indexLimit ? kNone : index;
}

std::uint32_t CodeRange::codeOf(std::uint32_t index) const {
    if (index == 0)
        return zeroCode;
    std::uint16_t i = halfOf(index);
    if (i > holeStart)
        i = halfOf(i + holeSize);
    const std::uint16_t t = halfOf(i + indexBase - 1);
    unsigned char lead = byteOf(firstLead + t / trailsPerLead);
    unsigned char trail = byteOf(firstTrail + t % trailsPerLead);
    if (trailGap2Low >= trailGap1High && trail > trailGap2Low)
        trail = byteOf(trail + trailShift2);
    else if (trail > trailGap1Low)
        trail = byteOf(trail + trailShift1);
    if (lead > leadGapLow)
        lead = byteOf(lead + leadShift);
    return lead * 256U + trail;
}

std::vector<std::array<std::uint32_t, 3>> CodeRange::deltaList(bool reverseList) const {
    std::vector<std::array<std::uint32_t, 3>> list;
    std::size_t at = 0;
    const auto next = [&] {
        const std::uint32_t value = deltas.at(at) | static_cast<std::uint32_t>(deltas.at(at + 1)) << 16;
        at += 2;
        return value;
    };
    // The reverse list stands behind the forward one.
    for (int pass = (flags & 1) != 0 ? 0 : 1; pass <= (reverseList ? 1 : 0); ++pass) {
        list.clear();
        for (;;) {
            const std::uint32_t head = next();
            if (head == 0)
                break;
            const std::uint32_t low = next();
            list.push_back({head, low, next()});
        }
    }
    return list;
}

std::uint32_t CodeRange::toUnicode(std::uint32_t code) const {
    const std::uint32_t index = indexOf(code);
    if (index == kNone || index >= values.size())
        return kNone;
    std::uint32_t value = values[index];
    if (value == 0xFFFF)
        return kNone;
    if ((flags & 1) != 0)
        for (const auto &[limit, low, delta] : deltaList(false))
            if (limit >= value + delta) {
                value += delta;
                break;
            }
    return value;
}

std::uint32_t CodeRange::directCode(std::uint32_t value) const {
    if (reverse.empty() || value < lowest || value > highest)
        return kNone;
    const std::uint16_t index = reverse.at(value - lowest);
    return index == 0xFFFF ? kNone : codeOf(index);
}

std::uint32_t CodeRange::compressedCode(std::uint32_t value) const {
    if (reverse.empty() || value < lowest || value > highest)
        return kNone;
    const std::uint32_t distance = value - lowest;
    std::size_t at = reverse.at(distance >> split);
    std::int32_t count = static_cast<std::int32_t>(distance & ((1U << split) - 1)) + 1;
    for (;;) {
        const std::uint16_t entry = reverse.at(at++);
        std::int32_t run = entry & runMask;
        if (run == 0)
            run = reverse.at(at++);
        count -= run;
        if (count == 0)
            return codeOf(static_cast<std::uint32_t>(entry) >> indexShift);
        if (count < 0)
            return kNone;
    }
}

void CodeRange::setValues(const std::map<std::uint32_t, std::uint32_t> &codes) {
    values.assign(indexLimit, 0xFFFF);
    values[0] = 0;
    for (const auto &[code, value] : codes)
        values.at(indexOf(code)) = halfOf(value);
}

void CodeRange::setDirect(const std::map<std::uint32_t, std::uint32_t> &codes) {
    lowest = kNone;
    highest = 0;
    for (const auto &[code, value] : codes) {
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
    }
    reverse.assign(highest - lowest + 1, 0xFFFF);
    for (const auto &[code, value] : codes)
        reverse[value - lowest] = halfOf(indexOf(code));
}

void CodeRange::setCompressed(const std::map<std::uint32_t, std::uint32_t> &codes, unsigned splitBits) {
    std::map<std::uint32_t, std::uint32_t> byValue;
    for (const auto &[code, value] : codes)
        byValue[value] = indexOf(code);
    setRuns(byValue, splitBits);
}

void CodeRange::setRuns(const std::map<std::uint32_t, std::uint32_t> &byValue, unsigned splitBits) {
    std::uint32_t largest = 0;
    for (const auto &[value, index] : byValue)
        largest = std::max(largest, index);
    lowest = byValue.begin()->first;
    highest = byValue.rbegin()->first;
    unsigned bits = 0;
    while (largest >> bits != 0)
        ++bits;
    split = halfOf(splitBits);
    indexShift = halfOf(16 - bits);
    runMask = halfOf((1U << indexShift) - 1);
    const std::uint32_t length = 1U << splitBits;
    const std::uint32_t segments = ((highest - lowest) >> splitBits) + 1;
    reverse.assign(segments, 0);
    // One pair that never hits, for all empty segments.
    const std::size_t nothing = reverse.size();
    reverse.push_back(0);
    reverse.push_back(0xFFFF);
    for (std::uint32_t s = 0; s < segments; ++s) {
        const std::uint32_t begin = lowest + s * length;
        auto at = byValue.lower_bound(begin);
        if (at == byValue.end() || at->first >= begin + length) {
            reverse[s] = halfOf(nothing);
            continue;
        }
        if (reverse.size() > 0xFFFF)
            throw std::length_error("reverse table too long");
        reverse[s] = halfOf(reverse.size());
        std::uint32_t before = begin - 1;
        for (; at != byValue.end() && at->first < begin + length; ++at) {
            const std::uint32_t run = at->first - before;
            const std::uint32_t head = at->second << indexShift;
            if (run <= runMask) {
                reverse.push_back(halfOf(head | run));
            } else {
                reverse.push_back(halfOf(head));
                reverse.push_back(halfOf(run));
            }
            before = at->first;
        }
        if (before != begin + length - 1) {
            reverse.push_back(0);
            reverse.push_back(0xFFFF);
        }
    }
}

void CodeRange::addDelta(std::uint32_t a, std::uint32_t b, std::uint32_t delta) {
    for (const std::uint32_t value : {a, b, delta}) {
        deltas.push_back(halfOf(value));
        deltas.push_back(halfOf(value >> 16));
    }
}

void CodeRange::endDeltas() {
    deltas.push_back(0);
    deltas.push_back(0);
}

std::uint32_t Mapping::toUnicode(std::uint32_t code) const {
    if (code == 0)
        return 0;
    if (!groups[2].values.empty())
        if (const std::uint32_t value = groups[2].toUnicode(code); value != kNone)
            return value;
    if (const std::uint32_t value = groups[0].toUnicode(code); value != kNone)
        return value;
    return groups[1].toUnicode(code);
}

std::uint32_t Mapping::toCode(std::uint32_t value) const {
    if (value == 0)
        return 0;
    if (const std::uint32_t code = groups[2].directCode(value); code != kNone)
        return code;
    std::uint32_t reduced = value;
    bool inList = true;
    if ((groups[0].flags & 2) != 0) {
        inList = false;
        for (const auto &[high, low, delta] : groups[0].deltaList(true))
            if (value >= low && value <= high) {
                reduced = value - delta;
                inList = true;
                break;
            }
    }
    if (inList)
        if (const std::uint32_t code = groups[0].compressedCode(reduced); code != kNone)
            return code;
    return groups[1].compressedCode(value);
}

Bytes Mapping::record(const std::array<std::array<std::uint32_t, 3>, 3> &offsets, int type) const {
    Bytes out(528);
    const std::string_view head = "484     ";
    std::copy(head.begin(), head.end(), out.begin());
    for (std::size_t g = 0; g < 3; ++g) {
        const CodeRange &range = groups[g];
        const std::size_t base = 8 + 160 * g;
        const auto put = [&](std::size_t offset, std::size_t width, std::uint32_t value) {
            for (std::size_t i = 0; i < width; ++i)
                out[base + offset + i] = byteOf(value >> (8 * i));
        };
        put(24, 4, range.flags);
        put(28, 4, offsets[g][0]);
        put(32, 4, offsets[g][1]);
        put(36, 4, offsets[g][2]);
        put(40, 4, range.lowest);
        put(44, 4, range.highest);
        put(48, 2, range.split);
        put(50, 2, range.runMask);
        put(52, 2, range.indexShift);
        put(112, 2, static_cast<std::uint32_t>(range.values.size()));
        put(114, 2, range.zeroCode);
        put(116, 2, range.indexBase);
        put(118, 2, range.holeStart);
        put(120, 2, range.holeSize);
        put(122, 2, range.indexLimit);
        put(124, 2, range.substitution);
        put(134, 2, static_cast<std::uint32_t>(range.reverse.size()));
        put(136, 2, static_cast<std::uint32_t>(range.deltas.size()));
        put(138, 1, range.firstLead);
        put(139, 1, range.leadGapLow);
        put(140, 1, range.leadGapHigh);
        put(141, 1, range.lastLead);
        put(142, 1, range.leadShift);
        put(143, 1, range.firstTrail);
        put(144, 1, range.trailGap1Low);
        put(145, 1, range.trailGap1High);
        put(146, 1, range.trailGap2Low);
        put(147, 1, range.trailGap2High);
        put(148, 1, range.lastTrail);
        put(149, 1, range.trailShift1);
        put(150, 1, range.trailShift2);
        put(151, 1, range.trailsPerLead);
    }
    out[516] = byteOf(type >> 8);
    out[517] = byteOf(type);
    return out;
}

Mapping Mapping::doubleBytePage(unsigned seed) {
    Random random(seed);
    const CodeRange shape = CodeRange::rectangle(0x81, 0xFC, 0x40, 0xFC, 0x7E, 0x80, 0x9F, 0xE0);
    std::map<std::uint32_t, std::uint32_t> all;
    std::map<std::uint32_t, std::uint32_t> window;
    std::map<std::uint32_t, std::uint32_t> rest;
    std::vector<std::uint32_t> pool;
    for (std::uint32_t u = 0x100; u < 0x9000; u += 1 + random.below(3))
        if (u != 0xFFFD)
            pool.push_back(u);
    for (std::size_t i = pool.size(); i > 1; --i)
        std::swap(pool[i - 1], pool[random.below(static_cast<std::uint32_t>(i))]);
    std::size_t used = 0;
    for (std::uint32_t lead = 0x81; lead <= 0xFC; ++lead)
        for (std::uint32_t trail = 0x40; trail <= 0xFC; ++trail) {
            const std::uint32_t code = lead * 256 + trail;
            if (shape.indexOf(code) == kNone || random.below(8) == 0 || used == pool.size())
                continue;
            const std::uint32_t value = pool[used++];
            all[code] = value;
            (value >= 0x4E00 && value < 0x8000 ? window : rest)[code] = value;
        }
    Mapping page;
    page.third() = shape;
    page.third().setValues(all);
    page.third().setDirect(window);
    page.first() = shape;
    page.first().setCompressed(rest, 5);
    page.first().substitution = '?';
    CodeRange row = CodeRange::rectangle(0, 0, 0x7F, 0xDF);
    std::map<std::uint32_t, std::uint32_t> singles = {{0x7F, 0x7F}};
    for (std::uint32_t b = 0xA1; b <= 0xDF; ++b)
        singles[b] = 0xFF61 + b - 0xA1;
    row.setValues(singles);
    row.setCompressed(singles, 4);
    page.second() = row;
    return page;
}

Mapping Mapping::singleBytePage(unsigned seed) {
    Random random(seed);
    const CodeRange shape = CodeRange::rectangle(0, 0, 0x7F, 0xFF);
    std::map<std::uint32_t, std::uint32_t> all = {{0x7F, 0x7F}};
    std::map<std::uint32_t, std::uint32_t> window;
    std::map<std::uint32_t, std::uint32_t> rest = {{0x7F, 0x7F}};
    for (std::uint32_t b = 0x80; b <= 0xFF; ++b) {
        if (random.below(16) == 0)
            continue;
        const std::uint32_t value = b >= 0xA0 ? b : 0x2000 + b * 3;
        all[b] = value;
        (b >= 0xA0 ? window : rest)[b] = value;
    }
    Mapping page;
    page.third() = shape;
    page.third().setValues(all);
    page.third().setDirect(window);
    page.first() = shape;
    page.first().setCompressed(rest, 4);
    page.first().substitution = '?';
    return page;
}

Mapping Mapping::planeTwoPage() {
    Mapping page = doubleBytePage(7);
    page.third().zeroCode = 0x7F;
    page.third().values[0] = 0x7F;
    CodeRange row = CodeRange::rectangle(0xFD, 0xFE, 0x40, 0xFC, 0x7E, 0x80);
    std::map<std::uint32_t, std::uint32_t> low;
    std::uint32_t value = 1;
    for (std::uint32_t lead = 0xFD; lead <= 0xFE; ++lead)
        for (std::uint32_t trail = 0x40; trail <= 0xFC; trail += 2)
            if (row.indexOf(lead * 256 + trail) != kNone)
                low[lead * 256 + trail] = value += 37;
    row.setValues(low);
    row.values[0] = 0xFFFF;
    row.setCompressed(low, 5);
    row.flags = 3;
    row.addDelta(0x2FFFF, 0x20000, 0x20000);
    row.endDeltas();
    row.addDelta(0x2FFFF, 0x20000, 0x20000);
    row.endDeltas();
    row.substitution = 0x8140;
    page.second() = page.first(); // the rest of the plane 0 characters, without values
    page.first() = row;
    return page;
}

} // namespace fixture
