#include "site_exits.hpp"

#include "name_compare.hpp"
#include "text_file.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace velnls::nlsgen {

std::vector<SiteExit> readSiteExits(const std::string &path) {
    std::vector<SiteExit> exits;
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return exits;
    int number = 0;
    for (const std::string &line : readLines(path)) {
        const Place place{path, ++number};
        const auto words = wordsOf(std::string_view(line).substr(0, line.find('#')));
        if (words.empty())
            continue;
        if (words.size() != 2)
            throw Problem(place, "expected a page and a collation, found \"" + line + "\"");
        if (words[1].substr(0, 4) == "ICU-")
            throw Problem(place, "expected a name that does not ask for ICU, found " + std::string(words[1]));
        exits.push_back({std::string(words[0]), std::string(words[1]), place});
    }
    return exits;
}

Bytes makeExitCollation(const Bytes &basic) {
    file::Collation record;
    std::memcpy(&record, basic.data(), sizeof record);
    if (record.kind == file::kBasic) {
        for (unsigned byte = 0; byte < 256; byte++) {
            const bool upper = byte >= 'A' && byte <= 'Z';
            record.caseSensitive[byte] = static_cast<std::uint8_t>(byte);
            record.caseInsensitive[byte] = static_cast<std::uint8_t>(upper ? byte + ('a' - 'A') : byte);
        }
    }
    record.kind = file::kSortExit;
    return bytesOf(record);
}

void checkSiteExits(const std::vector<SiteExit> &exits, const std::vector<PlannedEntry> &entries) {
    const auto has = [&](file::EntryKind kind, const std::string &name, const std::string &name2) {
        return std::any_of(entries.begin(), entries.end(), [&](const PlannedEntry &entry) {
            return entry.kind == kind && foldedName(entry.name) == foldedName(name) &&
                   foldedName(entry.name2) == foldedName(name2);
        });
    };
    for (const SiteExit &exit : exits) {
        if (!has(file::kCharSet, exit.page, ""))
            throw Problem(exit.place, "expected the name of a page, found " + exit.page);
        // Locales of a page that collates through Shift_JIS make one of SHIFT-JIS with the same collation.
        const auto page = std::find_if(entries.begin(), entries.end(), [&](const PlannedEntry &entry) {
            return entry.kind == file::kCharSet && foldedName(entry.name) == foldedName(exit.page);
        });
        if ((page->format & file::kThroughShiftJis) != 0 &&
            !has(file::kCollation, "SHIFT-JIS", exit.collation))
            throw Problem(exit.place, "expected the collation " + exit.collation +
                                          " for SHIFT-JIS too, as for " + exit.page);
    }
}

} // namespace velnls::nlsgen
