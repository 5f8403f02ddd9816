#include "mapping.hpp"

#include "compressed_reverse.hpp"
#include "rectangle.hpp"

#include <algorithm>
#include <functional>
#include <utility>

namespace velnls::nlsgen {
namespace {

enum GroupNumber : std::size_t {
    kFirst,
    kSecond,
    kThird,
};

constexpr std::uint32_t kPlane2 = 0x20000;
constexpr std::uint32_t kPlane2End = 0x2FFFF;
// Segments of 2^split characters bound the steps of a look-up.
constexpr unsigned kSingleByteSplit = 4;
constexpr unsigned kMultibyteSplit = 6;
// Words that fewer steps may cost: a group of a single-byte page in all, the second group of a multibyte page
// from one segment size to the next, its first group beyond one word a character.
constexpr std::size_t kRoomPerGroup = 256;
constexpr std::size_t kRoomForSmallerSegments = 160;
constexpr std::size_t kRoomForFirstGroup = 260;

using Reverse = std::map<std::uint32_t, std::uint16_t>; // character to code

void beUnused(MappingGroupData &data) {
    Rectangle{}.describe(data.group);
    data.group.lastLead = 0;
    data.group.trailsPerLead = 0;
    data.group.holeStart = file::kUnmapped;
}

void useRectangle(MappingGroupData &data, const Rectangle &rectangle) {
    rectangle.describe(data.group);
    data.group.holeStart = file::kUnmapped;
}

// The values of all codes of the rectangle up to `indexLimit`, less `delta`.
void setValues(MappingGroupData &data, const Rectangle &rectangle, const Page &page, unsigned indexLimit,
               const std::function<bool(std::uint32_t)> &wanted, std::uint32_t delta = 0) {
    data.values.assign(indexLimit, file::kUnmapped);
    data.values[0] = 0; // the zero code
    if (delta != 0)
        data.values[0] = file::kUnmapped;
    for (std::uint32_t code = 0; code < kCodeCount; code++) {
        const std::uint32_t character = page.toUnicode(code);
        if (character == kNone || !rectangle.has(code) || !wanted(code))
            continue;
        const unsigned index = rectangle.indexOf(code);
        if (index < indexLimit)
            data.values[index] = static_cast<std::uint16_t>(character - delta);
    }
    data.group.indexLimit = static_cast<std::uint16_t>(indexLimit);
}

// Direct form: one index per character of the window. Takes what it serves out of `rest`.
void setDirectReverse(MappingGroupData &data, const Rectangle &rectangle, const Range &window,
                      Reverse &rest) {
    Reverse served;
    for (const auto &[character, code] : rest)
        if (window.has(character) && rectangle.has(code))
            served.emplace(character, code);
    if (served.empty())
        return;
    const std::uint32_t lowest = served.begin()->first;
    const std::uint32_t highest = served.rbegin()->first;
    data.group.lowest = lowest;
    data.group.highest = highest;
    data.reverse.assign(highest - lowest + 1, file::kUnmapped);
    for (const auto &[character, code] : served) {
        data.reverse[character - lowest] =
            static_cast<std::uint16_t>(code == 0 ? 0 : rectangle.indexOf(code));
        rest.erase(character);
    }
}

std::vector<IndexedCharacter> indexed(const Rectangle &rectangle, const Reverse &characters, const Page &page,
                                      std::uint32_t delta = 0) {
    std::vector<IndexedCharacter> result;
    for (const auto &[character, code] : characters) {
        if (!rectangle.has(code) || rectangle.indexOf(code) > kLargestCompressedIndex)
            throw Problem(page.placeOf(code), "page " + page.name + ": code " + hexadecimal(code, 2) +
                                                  " lies outside the bytes that the page's layout covers");
        result.emplace_back(character - delta, rectangle.indexOf(code));
    }
    return result;
}

void setCompressedReverse(MappingGroupData &data, const CompressedReverse &reverse, const Page &page) {
    if (reverse.words.size() > 0xFFFF)
        throw Problem(page.placeOf(kCodeCount), "page " + page.name + ": the reverse table has " +
                                                    std::to_string(reverse.words.size()) +
                                                    " values, expected at most 65535");
    data.group.lowest = reverse.lowest;
    data.group.highest = reverse.highest;
    data.group.split = reverse.split;
    data.group.runMask = reverse.runMask;
    data.group.indexShift = reverse.indexShift;
    data.reverse = reverse.words;
}

// Few steps where they cost little: the smallest segments whose table leaves the room behind its entries.
CompressedReverse compressForSpeed(const std::vector<IndexedCharacter> &characters, std::size_t room,
                                   unsigned largestSplit) {
    for (unsigned split = 0;; split++) {
        CompressedReverse result = compressReverse(characters, characters.front().first, split);
        if (result.words.size() <= room || split == largestSplit)
            return result;
    }
}

CompressedReverse compressForSpeed(const std::vector<IndexedCharacter> &characters) {
    return compressForSpeed(characters, kRoomPerGroup, kSingleByteSplit);
}

// The shortest of the usual segment sizes, or smaller segments for little more. They begin at xxx8: of the
// general punctuation (2018) and of the ideographic punctuation (3000) the most frequent characters then come
// early in theirs.
CompressedReverse compressForSize(const std::vector<IndexedCharacter> &characters) {
    const std::uint32_t first = characters.front().first;
    const std::uint32_t lowest = first < 8 ? first : ((first - 8) & ~15U) + 8;
    CompressedReverse best = compressReverse(characters, lowest, kMultibyteSplit);
    for (unsigned split = kMultibyteSplit; split-- > kSingleByteSplit;) {
        CompressedReverse next = compressReverse(characters, lowest, split);
        if (next.words.size() < best.words.size() + kRoomForSmallerSegments)
            best = next;
    }
    return best;
}

// Splits at the widest stretch without characters; the upper part is the punctuation, dashes and quotation
// marks of nearly every page.
Reverse takeUpperPart(Reverse &rest) {
    Reverse upper;
    if (rest.empty())
        return upper;
    std::uint32_t widest = 0;
    auto cut = rest.begin();
    for (auto at = std::next(rest.begin()); at != rest.end(); ++at) {
        const std::uint32_t gap = at->first - std::prev(at)->first;
        if (gap > widest) {
            widest = gap;
            cut = at;
        }
    }
    upper.insert(cut, rest.end());
    rest.erase(cut, rest.end());
    return upper;
}

// The rectangle without the lead bytes before, behind and in the widest gap between those in use.
Rectangle leadsOf(const Reverse &characters, Rectangle rectangle) {
    std::array<bool, 256> used{};
    for (const auto &[character, code] : characters)
        used[code >> 8] = true;
    while (!used[rectangle.firstLead])
        rectangle.firstLead++;
    while (!used[rectangle.lastLead])
        rectangle.lastLead--;
    rectangle.leadGapLow = kNoGapLow;
    rectangle.leadGapHigh = kNoGapHigh;
    unsigned before = rectangle.firstLead;
    for (unsigned lead = before + 1; lead <= rectangle.lastLead; lead++) {
        if (!used[lead])
            continue;
        if (lead - before > rectangle.leadShift() + 1) {
            rectangle.leadGapLow = static_cast<std::uint8_t>(before);
            rectangle.leadGapHigh = static_cast<std::uint8_t>(lead);
        }
        before = lead;
    }
    return rectangle;
}

bool always(std::uint32_t) {
    return true;
}

// The characters that the look-ups must map; ASCII stays itself unmapped.
Reverse charactersToMap(const Page &page, std::uint32_t firstMappedByte) {
    Reverse rest;
    for (const auto &[character, code] : page.fromUnicode())
        if (code >= firstMappedByte)
            rest.emplace(character, code);
    return rest;
}

void checkAscii(const Page &page) {
    for (std::uint32_t code = 0; code < 0x7F; code++)
        if (page.toUnicode(code) != code)
            throw Problem(page.placeOf(code), "page " + page.name + ": code " + hexadecimal(code, 2) +
                                                  " must be " + unicodeName(code) +
                                                  ": bytes below 7F are never looked up in this layout");
}

} // namespace

MappingData buildSingleByteMapping(const Page &page, const Range &window) {
    const bool ascii = page.isAscii();
    MappingData mapping;
    for (auto &group : mapping.groups)
        beUnused(group);
    mapping.groups[kFirst].group.substitution = page.substitution();

    // A row has at most 255 bytes: without ASCII to leave out, FF gets a group of its own.
    Rectangle rectangle;
    rectangle.firstTrail = ascii ? 0x7F : 0x00;
    rectangle.lastTrail = ascii ? 0xFF : 0xFE;
    rectangle.startsAtZero = !ascii;
    Reverse rest = charactersToMap(page, rectangle.firstTrail);

    MappingGroupData &third = mapping.groups[kThird];
    useRectangle(third, rectangle);
    setValues(third, rectangle, page, rectangle.indexLimit(), always);
    if (!ascii)
        third.values[0] =
            page.toUnicode(0) == kNone ? file::kUnmapped : static_cast<std::uint16_t>(page.toUnicode(0));
    setDirectReverse(third, rectangle, window, rest);

    MappingGroupData &second = mapping.groups[kSecond];
    if (!ascii) {
        Rectangle last;
        last.firstTrail = last.lastTrail = 0xFF;
        useRectangle(second, last);
        setValues(second, last, page, last.indexLimit(), always);
        Reverse ofLast;
        if (const auto found = std::find_if(rest.begin(), rest.end(),
                                            [](const auto &entry) { return entry.second == 0xFF; });
            found != rest.end())
            ofLast.insert(rest.extract(found));
        if (!ofLast.empty())
            setCompressedReverse(second, compressForSpeed(indexed(last, ofLast, page)), page);
    }

    MappingGroupData &first = mapping.groups[kFirst];
    const Reverse upper = ascii ? takeUpperPart(rest) : std::exchange(rest, {});
    if (!upper.empty()) {
        useRectangle(first, rectangle);
        setCompressedReverse(first, compressForSpeed(indexed(rectangle, upper, page)), page);
    }
    if (!rest.empty()) {
        useRectangle(second, rectangle);
        setCompressedReverse(second, compressForSpeed(indexed(rectangle, rest, page)), page);
    }
    return mapping;
}

MappingData buildMultibyteMapping(const Page &page, const MultibytePlan &plan) {
    checkAscii(page);
    MappingData mapping;
    for (auto &group : mapping.groups)
        beUnused(group);
    mapping.groups[kFirst].group.substitution = page.substitution();
    Reverse rest = charactersToMap(page, 0x7F);

    Rectangle rectangle;
    rectangle.firstLead = plan.firstLead;
    rectangle.leadGapLow = plan.leadGapLow;
    rectangle.leadGapHigh = plan.leadGapHigh;
    rectangle.lastLead = plan.lastLead;
    rectangle.firstTrail = plan.firstTrail;
    rectangle.trailGapLow = plan.trailGapLow;
    rectangle.trailGapHigh = plan.trailGapHigh;
    rectangle.lastTrail = plan.lastTrail;
    for (std::uint32_t code = 0x100; code < kCodeCount; code++)
        if (page.toUnicode(code) != kNone && !rectangle.has(code))
            throw Problem(page.placeOf(code), "page " + page.name + ": code " + hexadecimal(code, 4) +
                                                  " lies outside the page's lead and trail bytes");

    MappingGroupData &third = mapping.groups[kThird];
    useRectangle(third, rectangle);
    setValues(third, rectangle, page, rectangle.indexLimit(),
              [&page](std::uint32_t code) { return page.toUnicode(code) <= 0xFFFF; });
    setDirectReverse(third, rectangle, plan.window, rest);

    // First: the characters of plane 2 where there are such, else the next most frequent ones.
    MappingGroupData &first = mapping.groups[kFirst];
    Reverse inFirst;
    std::uint32_t delta = 0;
    for (const auto &[character, code] : page.fromUnicode())
        if (character > 0xFFFF)
            delta = kPlane2;
    for (auto at = rest.begin(); at != rest.end();) {
        const bool taken = delta != 0 ? at->first > 0xFFFF : plan.second.has(at->first) && at->second > 0xFF;
        if (taken) {
            inFirst.insert(*at);
            at = rest.erase(at);
        } else {
            ++at;
        }
    }
    if (!inFirst.empty() && delta == 0) {
        useRectangle(first, rectangle);
        const auto characters = indexed(rectangle, inFirst, page);
        setCompressedReverse(
            first, compressForSpeed(characters, characters.size() + kRoomForFirstGroup, kMultibyteSplit),
            page);
    } else if (!inFirst.empty()) {
        const Rectangle narrow = leadsOf(inFirst, rectangle);
        useRectangle(first, narrow);
        const auto inPlane2 = [&page](std::uint32_t code) {
            return page.toUnicode(code) >= kPlane2 && page.toUnicode(code) < kPlane2End;
        };
        for (const auto &[character, code] : inFirst)
            if (!inPlane2(code))
                throw Problem(page.placeOf(code), "page " + page.name + ": " + unicodeName(character) +
                                                      " lies outside the planes 0 and 2");
        setValues(first, narrow, page, narrow.indexLimit(), inPlane2, delta);
        setCompressedReverse(first, compressForSize(indexed(narrow, inFirst, page, delta)), page);
        // Numbers of 32 bits in halves, low half first: (limit, low, delta), 0; then (high, low, delta), 0.
        // The limit stops short of FFFF + delta, so that an unmapped value stays one.
        first.group.flags = file::kForwardDeltas | file::kReverseDeltas;
        for (const std::uint32_t number :
             {kPlane2End - 1, kPlane2, kPlane2, 0U, kPlane2End, kPlane2, kPlane2, 0U}) {
            first.deltas.push_back(static_cast<std::uint16_t>(number));
            first.deltas.push_back(static_cast<std::uint16_t>(number >> 16));
        }
        mapping.type = kPageToUtf8Wide;
    }

    // Second: the single bytes as a row before those of the two-byte codes, so that the way back of all
    // remaining characters is one table; values only for the first row.
    MappingGroupData &second = mapping.groups[kSecond];
    Rectangle all;
    all.firstLead = 0;
    all.leadGapLow = 0;
    all.leadGapHigh = rectangle.firstLead;
    all.lastLead = rectangle.lastLead;
    all.firstTrail = std::min<std::uint8_t>(rectangle.firstTrail, 0x7F);
    all.lastTrail = 0xFF;
    useRectangle(second, all);
    std::uint32_t lastByte = 0x7F;
    for (std::uint32_t byte = lastByte; byte < 0x100; byte++)
        if (page.toUnicode(byte) != kNone)
            lastByte = byte;
    setValues(second, all, page, all.indexOf(lastByte) + 1, [](std::uint32_t code) { return code >= 0x7F; });
    if (!rest.empty())
        setCompressedReverse(second, compressForSize(indexed(all, rest, page)), page);
    return mapping;
}

} // namespace velnls::nlsgen
