#include "site_page.hpp"

#include "map_file.hpp"

#include <algorithm>

namespace velnls::nlsgen {
namespace {

constexpr std::uint32_t kSingleByteWindow = 0x100;
constexpr std::uint32_t kMultibyteWindow = 0x2000;

// The window of `size` values above ASCII that begins at a character and holds the most of them.
Range busiestWindow(const Page &page, std::uint32_t size) {
    std::vector<std::uint32_t> characters;
    for (const auto &[character, code] : page.fromUnicode())
        if (character > 0x7F && character <= 0xFFFF)
            characters.push_back(character);
    Range best;
    std::size_t most = 0;
    std::size_t end = 0;
    for (std::size_t begin = 0; begin < characters.size(); begin++) {
        while (end < characters.size() && characters[end] - characters[begin] < size)
            end++;
        if (end - begin > most) {
            most = end - begin;
            best = {characters[begin], characters[begin] + size - 1};
        }
    }
    return best;
}

// First, last and widest gap of the bytes in use.
struct UsedBytes {
    std::uint8_t first, gapLow, gapHigh, last;
};

UsedBytes usedBytes(const std::array<bool, 256> &used) {
    UsedBytes result{0, kNoGapLow, kNoGapHigh, 0};
    unsigned before = 256;
    unsigned widest = 1;
    for (unsigned byte = 0; byte < 256; byte++) {
        if (!used[byte])
            continue;
        if (before == 256) {
            result.first = static_cast<std::uint8_t>(byte);
        } else if (byte - before > widest) {
            widest = byte - before;
            result.gapLow = static_cast<std::uint8_t>(before);
            result.gapHigh = static_cast<std::uint8_t>(byte);
        }
        result.last = static_cast<std::uint8_t>(byte);
        before = byte;
    }
    return result;
}

} // namespace

std::pair<Page, MappingData> makeSitePage(const std::string &name, const std::string &path,
                                          const UnicodeData &unicode) {
    const MapFile map = readMapFile(path);
    Page page(name);
    page.add(map.codes);
    if (page.codeCount() == 0)
        throw Problem(path, 0, "expected the codes of a page, found none");

    std::array<bool, 256> leads{};
    std::array<bool, 256> trails{};
    bool multibyte = false;
    for (const CodeLine &line : map.codes.lines) {
        if (line.bytes == 1)
            continue;
        if (line.code < 0x100)
            throw Problem(path, line.line, "expected a lead byte above 00");
        multibyte = true;
        leads[line.code >> 8] = true;
        trails[line.code & 0xFF] = true;
    }
    for (const CodeLine &line : map.codes.lines)
        if (line.bytes == 1 && leads[line.code])
            throw Problem(path, line.line, "expected a lead byte of other codes not to be a code of its own");
    page.flags = multibyte ? std::uint8_t{file::kMultibyte} : std::uint8_t{0};
    for (std::size_t byte = 0; byte < 256; byte++) {
        page.attributes[byte] = leads[byte] ? 1 : 0;
        page.trailValid[byte] = trails[byte] ? 1 : 0;
    }
    page.finish(unicode);

    Range window = busiestWindow(page, multibyte ? kMultibyteWindow : kSingleByteWindow);
    if (map.window)
        window = {map.window->first, map.window->second};
    if (!multibyte) {
        MappingData mapping = buildSingleByteMapping(page, window);
        return {std::move(page), std::move(mapping)};
    }
    MultibytePlan plan{};
    const UsedBytes lead = usedBytes(leads);
    const UsedBytes trail = usedBytes(trails);
    plan.firstLead = lead.first;
    plan.leadGapLow = lead.gapLow;
    plan.leadGapHigh = lead.gapHigh;
    plan.lastLead = lead.last;
    plan.firstTrail = trail.first;
    plan.trailGapLow = trail.gapLow;
    plan.trailGapHigh = trail.gapHigh;
    plan.lastTrail = trail.last;
    plan.window = window;
    MappingData mapping = buildMultibyteMapping(page, plan);
    return {std::move(page), std::move(mapping)};
}

} // namespace velnls::nlsgen
