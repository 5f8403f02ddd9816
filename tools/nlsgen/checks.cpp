#include "checks.hpp"

#include "conversion_types.hpp"
#include "name_compare.hpp"

#include <map>
#include <set>
#include <tuple>

namespace velnls::nlsgen {
namespace {

std::string quoted(const PlannedEntry &entry) {
    return "\"" + entry.name + "\", \"" + entry.name2 + "\"";
}

} // namespace

void checkPairs(const std::vector<PlannedEntry> &entries) {
    std::map<std::pair<std::string, std::string>, const PlannedEntry *> conversions;
    for (const PlannedEntry &entry : entries)
        if (entry.kind == file::kConversion)
            conversions.emplace(std::pair(foldedName(entry.name), foldedName(entry.name2)), &entry);
    for (const auto &[names, entry] : conversions) {
        const auto back = conversions.find({names.second, names.first});
        if (back == conversions.end())
            throw Problem(entry->place,
                          "conversion " + quoted(*entry) + ": expected an entry of the way back");
        if (!typesFit(entry->format, back->second->format))
            throw Problem(entry->place, "conversion " + quoted(*entry) + " of type " +
                                            std::to_string(entry->format) +
                                            ": expected the opposite type on the way back, found " +
                                            std::to_string(back->second->format));
    }
}

void checkBasics(const std::vector<PlannedEntry> &entries) {
    std::set<std::tuple<int, std::string, std::string>> present;
    for (const PlannedEntry &entry : entries)
        present.emplace(entry.kind, foldedName(entry.name), foldedName(entry.name2));
    for (const PlannedEntry &entry : entries) {
        if (entry.kind != file::kCharSet)
            continue;
        const bool ofBytes = (entry.format & (file::kWide | file::kUnits32)) == 0;
        if (ofBytes && !present.contains({file::kCaseTable, foldedName(entry.name), "BASIC"}))
            throw Problem(entry.place, "page " + entry.name + ": expected a case table \"basic\"");
        if (!present.contains({file::kCollation, foldedName(entry.name), "BASIC"}))
            throw Problem(entry.place, "page " + entry.name + ": expected a collation \"basic\"");
    }
}

void checkNames(const std::vector<PlannedEntry> &entries) {
    std::set<std::tuple<int, std::string, std::string>> present;
    int utf8Collations = 0;
    for (const PlannedEntry &entry : entries) {
        if (!present.emplace(entry.kind, foldedName(entry.name), foldedName(entry.name2)).second)
            throw Problem(entry.place, "entry " + quoted(entry) + " of kind " + std::to_string(entry.kind) +
                                           ": expected names of its own, another entry has the same");
        if (entry.kind == file::kCollation && foldedName(entry.name) == "UTF-8" && ++utf8Collations > 1)
            throw Problem(entry.place, "entry " + quoted(entry) + ": expected one collation of UTF-8");
    }
    if (utf8Collations == 0)
        throw Problem("the plan", 0, "expected one collation of UTF-8, found none");
}

void checkCharTable(const Page &page) {
    const auto fail = [&page](std::uint32_t code, const std::string &message) {
        throw Problem(page.placeOf(code),
                      "page " + page.name + ", code " + hexadecimal(code, 2) + ": " + message);
    };
    for (std::uint32_t byte = 0; byte < 256; byte++) {
        const bool leads = (page.attributes[byte] & file::kTrailCountMask) != 0;
        const bool ascii = page.toUnicode(byte) == byte && byte < 0x80;
        if (page.classes[byte] != 0 && (leads || ascii))
            fail(byte, "expected class 0 of a lead byte and of an ASCII character");
        if (page.trailValid[byte] != 0 && !page.isMultibyte())
            fail(byte, "expected no trail bytes in a single-byte page");
    }
    for (std::uint32_t code = 0; code < kCodeCount; code++) {
        if (page.toUnicode(code) == kNone)
            continue;
        const std::uint32_t first = code > 0xFF ? code >> 8 : code;
        const unsigned trails = page.attributes[first] & file::kTrailCountMask;
        if (trails != (code > 0xFF ? 1U : 0U))
            fail(code, "expected " + std::to_string(code > 0xFF ? 1 : 0) +
                           " trail bytes, the first byte has " + std::to_string(trails));
        if (code > 0xFF && page.trailValid[code & 0xFF] == 0)
            fail(code, "expected a trail byte that validation accepts");
    }
}

} // namespace velnls::nlsgen
