#include "mapping_difference.hpp"

#include "file_lookup.hpp"

#include <algorithm>
#include <set>

namespace velnls::nlsgen {
namespace {

constexpr std::uint32_t kCodes = 0x10000;
constexpr std::uint32_t kLastCharacter = 0x2FFFF;

struct Record {
    file::Mapping fields;
    std::vector<std::uint8_t> tables;
};

// What the mapping holds, wherever its tables lie in the file.
Record contentsOf(const FileView &file, const EntryView &entry) {
    Record record{file.at<file::Mapping>(static_cast<std::size_t>(entry.offset)), {}};
    const auto take = [&](std::uint32_t &offset, std::uint16_t count) {
        const auto bytes = file.bytes().subspan(count == 0 ? 0 : offset + file::kSubTableHead,
                                                std::size_t{count} * sizeof(std::uint16_t));
        record.tables.insert(record.tables.end(), bytes.begin(), bytes.end());
        offset = 0;
    };
    for (file::MappingGroup &packed : record.fields.groups) {
        file::MappingGroup group = packed;
        std::uint32_t offsets[] = {group.valuesOffset, group.reverseOffset, group.deltasOffset};
        take(offsets[0], group.valueCount);
        take(offsets[1], group.reverseCount);
        take(offsets[2], group.deltaCount);
        group.valuesOffset = group.reverseOffset = group.deltasOffset = 0;
        packed = group;
    }
    return record;
}

bool same(const Record &a, const Record &b) {
    return std::memcmp(&a.fields, &b.fields, sizeof a.fields) == 0 && a.tables == b.tables;
}

std::string codeText(std::uint32_t code) {
    return hexadecimal(code, code > 0xFF ? 4 : 2);
}

std::string codeText(std::optional<std::uint16_t> code) {
    return code ? codeText(std::uint32_t{*code}) : "nothing";
}

} // namespace

void reportMappingDifferences(const FileView &before, const EntryView &beforeEntry, const FileView &after,
                              const EntryView &afterEntry, DifferenceReport &report) {
    const Record one = contentsOf(before, beforeEntry);
    const Record other = contentsOf(after, afterEntry);
    if (same(one, other))
        return;
    const FileLookup was(before.bytes(), static_cast<std::size_t>(beforeEntry.offset));
    const FileLookup is(after.bytes(), static_cast<std::size_t>(afterEntry.offset));
    const std::string page = "code page " + beforeEntry.name + ", ";
    std::set<std::uint32_t> changed;
    for (std::uint32_t code = 0; code < kCodes; code++) {
        const auto old = was.toUnicode(static_cast<std::uint16_t>(code));
        const auto now = is.toUnicode(static_cast<std::uint16_t>(code));
        if (old == now)
            continue;
        changed.insert(code);
        report.add(page + codeText(code) + ": was " + report.character(old) + ", is " +
                   report.character(now));
    }
    const auto isChanged = [&changed](std::optional<std::uint16_t> code) {
        return code && changed.contains(*code);
    };
    for (std::uint32_t character = 0; character <= kLastCharacter; character++) {
        const auto old = was.fromUnicode(character);
        const auto now = is.fromUnicode(character);
        if (old != now && !isChanged(old) && !isChanged(now))
            report.add(page + report.character(character) + ": turned back to " + codeText(old) +
                       ", turns back to " + codeText(now));
    }
    const std::uint16_t oldSubstitution = one.fields.groups[0].substitution;
    const std::uint16_t newSubstitution = other.fields.groups[0].substitution;
    if (oldSubstitution != newSubstitution)
        report.add(page + "substitution: was " + codeText(std::uint32_t{oldSubstitution}) + ", is " +
                   codeText(std::uint32_t{newSubstitution}));
}

} // namespace velnls::nlsgen
