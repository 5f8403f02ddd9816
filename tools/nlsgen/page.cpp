#include "page.hpp"

#include "charmap.hpp"
#include "map_file.hpp"

#include <algorithm>
#include <optional>

namespace velnls::nlsgen {

Page::Page(std::string pageName)
    : name(std::move(pageName)), toUnicode_(kCodeCount, kNone), oneWay_(kCodeCount, false) {}

void Page::add(const CodeList &list) {
    for (const CodeLine &line : list.lines)
        set(line.code, line.unicode, line.oneWay, {list.file, line.line});
}

void Page::set(std::uint32_t code, std::uint32_t unicode, bool oneWay, const Place &place) {
    if (firstSource_.empty())
        firstSource_ = place.file;
    toUnicode_[code] = unicode;
    oneWay_[code] = oneWay;
    places_.insert_or_assign(code, place);
}

void Page::remove(std::uint32_t code) {
    toUnicode_[code] = kNone;
    oneWay_[code] = false;
    places_.erase(code);
}

void Page::finish(const UnicodeData &unicode) {
    fromUnicode_.clear();
    for (std::uint32_t code = 0; code < kCodeCount; code++) {
        if (toUnicode_[code] == kNone || oneWay_[code])
            continue;
        const auto [other, isNew] = fromUnicode_.emplace(toUnicode_[code], static_cast<std::uint16_t>(code));
        if (!isNew)
            throw Problem(placeOf(code), "page " + name + ": expected one code for " +
                                             unicodeName(toUnicode_[code]) + ", but " +
                                             hexadecimal(other->second, 2) + " and " + hexadecimal(code, 2) +
                                             " both turn back to it");
    }
    for (std::uint32_t code = 0; code < kCodeCount; code++)
        if (oneWay_[code] && codeOf(toUnicode_[code]) == kNone)
            throw Problem(placeOf(code), "page " + name + ": expected another code of " +
                                             unicodeName(toUnicode_[code]) + ", to which the one-way code " +
                                             hexadecimal(code, 2) + " turns back");
    for (std::uint32_t byte = 0; byte < 256; byte++) {
        const std::uint32_t character = toUnicode_[byte];
        const bool asciiAtItsPlace = character == byte && byte < 0x80;
        classes[byte] = character != kNone && (attributes[byte] & file::kTrailCountMask) == 0 &&
                                !asciiAtItsPlace && unicode.isLetter(character)
                            ? 1
                            : 0;
    }
}

std::uint32_t Page::codeOf(std::uint32_t unicode) const {
    const auto found = fromUnicode_.find(unicode);
    return found == fromUnicode_.end() ? kNone : found->second;
}

std::size_t Page::codeCount() const {
    return places_.size();
}

bool Page::isAscii() const {
    for (std::uint32_t code = 0; code < 0x7F; code++)
        if (toUnicode_[code] != code)
            return false;
    return true;
}

std::uint8_t Page::substitution() const {
    const std::uint32_t code = codeOf('?');
    return code < 0x100 ? static_cast<std::uint8_t>(code) : std::uint8_t{'?'};
}

Place Page::placeOf(std::uint32_t code) const {
    const auto found = places_.find(code);
    return found == places_.end() ? Place{firstSource_, 0} : found->second;
}

namespace {

void addSources(Page &page, std::string_view charmap, std::string_view map, const Sources &sources) {
    if (!charmap.empty())
        page.add(readCharmap(sources.charmaps + "/" + std::string(charmap) + ".gz"));
    if (!map.empty())
        page.add(readMapFile(sources.data + "/" + std::string(map)).codes);
}

bool inAny(std::span<const Range> ranges, std::uint32_t value) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [value](const Range &range) { return range.has(value); });
}

// The EUC code of a Shift_JIS code, by the arithmetic of the library's own converter; nothing when the bytes
// have no EUC form.
std::optional<std::uint32_t> eucOf(std::uint32_t code) {
    if (code < 0x100) {
        if (code >= 0xA1 && code <= 0xDF)
            return 0x8E00 + code;
        return code;
    }
    const std::uint32_t lead = code >> 8;
    const std::uint32_t trail = code & 0xFF;
    if (lead > 0xEF)
        return std::nullopt;
    const std::uint32_t pair = (lead - (lead < 0xA0 ? 0x70 : 0xB0)) * 2 + 0x80;
    if (trail >= 0x9F)
        return pair << 8 | (trail + 0x80 - 0x7E);
    return (pair - 1) << 8 | (trail + 0x80 - (trail < 0x80 ? 0x1F : 0x20));
}

// Of several codes of a character the one that turns back in Shift_JIS does so here, else the lowest that has
// a form here: the duplicates of the later Shift_JIS rows are the only codes of their characters in EUC.
void addEucImage(Page &page, const Page &shiftJis) {
    std::map<std::uint32_t, std::uint32_t> turnsBack;
    for (const bool oneWay : {false, true})
        for (std::uint32_t code = 0; code < kCodeCount; code++)
            if (shiftJis.toUnicode(code) != kNone && shiftJis.isOneWay(code) == oneWay)
                if (const auto euc = eucOf(code))
                    turnsBack.emplace(shiftJis.toUnicode(code), *euc);
    for (std::uint32_t code = 0; code < kCodeCount; code++) {
        const std::uint32_t character = shiftJis.toUnicode(code);
        if (character == kNone)
            continue;
        if (const auto euc = eucOf(code))
            page.set(*euc, character, turnsBack.at(character) != *euc, shiftJis.placeOf(code));
    }
}

} // namespace

Page makeSingleBytePage(const SingleBytePlan &plan, const Sources &sources, const UnicodeData &unicode) {
    Page page{std::string(plan.name)};
    addSources(page, plan.charmap, plan.map, sources);
    for (std::uint32_t code = 0x80; plan.fillControls && code < 0xA0; code++)
        if (page.toUnicode(code) == kNone)
            page.set(code, code, false, page.placeOf(code));
    for (std::uint32_t code = 0x100; code < kCodeCount; code++)
        if (page.toUnicode(code) != kNone)
            throw Problem(page.placeOf(code), "page " + page.name + ": expected single-byte codes, found " +
                                                  hexadecimal(code, 4));
    page.finish(unicode);
    return page;
}

Page makeMultibytePage(const MultibytePlan &plan, const Sources &sources, const UnicodeData &unicode,
                       const Page *shiftJis) {
    Page page{std::string(plan.name)};
    page.flags = file::kMultibyte | plan.extraFlags;
    if (plan.charmap.empty() && shiftJis != nullptr)
        addEucImage(page, *shiftJis);
    addSources(page, plan.charmap, plan.map, sources);
    for (std::uint32_t byte = 0; byte < 256; byte++) {
        if (inAny(plan.leads, byte))
            page.attributes[byte] = plan.oneColumnLeads.has(byte) ? 1 | file::kOneColumn : 1;
        page.trailValid[byte] = inAny(plan.trails, byte) ? 1 : 0;
        // ISO 6937's charmap lists its accents alone, as private characters: a lead byte alone is none.
        if (page.attributes[byte] != 0)
            page.remove(byte);
    }
    if (plan.trails[0].empty())
        for (std::uint32_t code = 0x100; code < kCodeCount; code++)
            if (page.toUnicode(code) != kNone)
                page.trailValid[code & 0xFF] = 1;
    page.finish(unicode);
    return page;
}

Page makeRulePage(const RulePlan &plan) {
    Page page{std::string(plan.name)};
    page.flags = plan.flags;
    for (std::uint32_t byte = 0; byte < 256; byte++) {
        for (std::size_t trails = 1; trails <= plan.leads.size(); trails++)
            if (plan.leads[trails - 1].has(byte))
                page.attributes[byte] = static_cast<std::uint8_t>(trails);
        page.trailValid[byte] = inAny(plan.trails, byte) ? 1 : 0;
    }
    return page;
}

} // namespace velnls::nlsgen
