#include "dumper.hpp"

#include "checker.hpp"
#include "file_view.hpp"
#include "mapping_figures.hpp"
#include "name_compare.hpp"
#include "problem.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>
#include <set>
#include <vector>

namespace velnls::nlsgen {
namespace {

void requireSound(std::span<const std::uint8_t> file, const std::string &path) {
    if (const auto fault = firstFault(file))
        throw Problem(path, 0, fault->text());
}

std::string hex(std::uint32_t value, int width) {
    return hexadecimal(value, width);
}

// "81-9F 1, E0-FC 1": stretches of equal nonzero values.
std::string stretches(const std::uint8_t *values) {
    std::string text;
    for (unsigned first = 0; first < 256;) {
        unsigned last = first;
        while (last < 255 && values[last + 1] == values[first])
            last++;
        if (values[first] != 0) {
            text += text.empty() ? "" : ", ";
            text += hex(first, 2);
            if (last > first)
                text.append("-").append(hex(last, 2));
            text += " = ";
            text += hex(values[first], 2);
        }
        first = last + 1;
    }
    return text.empty() ? "all 0" : text;
}

void dumpCharSet(const FileView &file, const EntryView &entry, std::ostream &out) {
    const auto table = file.at<file::CharTable>(static_cast<std::size_t>(entry.offset));
    out << "  classes:     " << stretches(table.classes) << "\n  attributes:  " << stretches(table.attributes)
        << "\n  trail bytes: " << stretches(table.trailValid) << '\n';
}

void dumpCaseTable(const FileView &file, const EntryView &entry, std::ostream &out) {
    const auto offset = static_cast<std::size_t>(entry.offset);
    if (entry.format == file::kUnicodeCaseFormat) {
        const auto table = file.at<file::UnicodeCaseTable>(offset);
        for (const bool upper : {true, false}) {
            out << (upper ? "  to upper case:\n" : "  to lower case:\n");
            std::array<file::CasePair, 744> list;
            std::memcpy(list.data(), upper ? table.upper : table.lower, sizeof table.upper);
            std::size_t count = 0;
            for (; list[count].character != 0; count++)
                out << "    " << unicodeName(list[count].character) << " "
                    << unicodeName(list[count].counterpart) << '\n';
            out << "    " << count << " pairs\n";
        }
        return;
    }
    const auto table = file.at<file::CaseTable>(offset);
    for (const bool upper : {true, false}) {
        out << (upper ? "  to upper case:" : "  to lower case:");
        for (std::uint32_t byte = 0; byte < 256; byte++) {
            const std::uint8_t other = (upper ? table.upper : table.lower)[byte];
            if (other != byte)
                out << ' ' << hex(byte, 2) << '>' << hex(other, 2);
        }
        out << '\n';
    }
}

void dumpCollation(const FileView &file, const EntryView &entry, std::ostream &out) {
    const auto table = file.at<file::Collation>(static_cast<std::size_t>(entry.offset));
    out << "  kind " << int{table.kind} << ", variant " << int{table.variant} << '\n';
    if (table.kind == file::kBasic)
        return;
    for (const bool sensitive : {true, false}) {
        const std::uint8_t *weights = sensitive ? table.caseSensitive : table.caseInsensitive;
        out << (sensitive ? "  bytes by weight, case-sensitive:" : "  bytes by weight, case-insensitive:");
        std::vector<std::pair<std::uint8_t, std::uint32_t>> sorted;
        for (std::uint32_t byte = 0; byte < 256; byte++)
            sorted.emplace_back(weights[byte], byte);
        std::sort(sorted.begin(), sorted.end());
        for (std::size_t i = 0; i < sorted.size(); i++) {
            const bool same = i > 0 && sorted[i].first == sorted[i - 1].first;
            out << (same ? "=" : " ") << hex(sorted[i].second, 2);
        }
        out << '\n';
    }
}

void dumpGroup(const file::MappingGroup &f, const char *name, std::ostream &out) {
    out << "  " << name << " group:";
    if (f.valueCount == 0 && f.reverseCount == 0) {
        out << " unused\n";
        return;
    }
    out << " leads " << hex(f.firstLead, 2) << '-' << hex(f.lastLead, 2);
    if (f.leadGapLow < f.leadGapHigh)
        out << " without those between " << hex(f.leadGapLow, 2) << " and " << hex(f.leadGapHigh, 2);
    out << ", trails " << hex(f.firstTrail, 2) << '-' << hex(f.lastTrail, 2);
    if (f.trailGap1Low < f.trailGap1High)
        out << " without those between " << hex(f.trailGap1Low, 2) << " and " << hex(f.trailGap1High, 2);
    out << ", " << int{f.trailsPerLead} << " a lead, zero code " << hex(f.zeroCode, 2) << ", index base "
        << f.indexBase << ", index limit " << f.indexLimit << "\n    values:  " << f.valueCount << " at "
        << f.valuesOffset << "\n    reverse: " << f.reverseCount << " at " << f.reverseOffset;
    if (f.reverseCount != 0) {
        out << ", " << unicodeName(f.lowest) << " to " << unicodeName(f.highest);
        if (f.indexShift != 0)
            out << ", split " << f.split << ", run mask " << hex(f.runMask, 4) << ", index shift "
                << f.indexShift;
        else
            out << ", direct";
    }
    out << '\n';
    if (f.deltaCount != 0)
        out << "    deltas:  " << f.deltaCount << " at " << f.deltasOffset << '\n';
}

void dumpMapping(const FileView &file, std::size_t offset, std::ostream &out) {
    const auto mapping = file.at<file::Mapping>(offset);
    dumpGroup(mapping.groups[0], "first", out);
    dumpGroup(mapping.groups[1], "second", out);
    dumpGroup(mapping.groups[2], "third", out);

    const MappingFigures figures = measureMapping(file, offset);
    out << "  " << figures.codes << " codes looked up, " << figures.characters << " turn back, by "
        << std::fixed << std::setprecision(2) << figures.averageSteps << " steps each, at most "
        << figures.mostSteps << "\n  sizes: " << figures.fileBytes << " bytes of the file, "
        << figures.arenaBytes << " of the arena for both directions, largest request "
        << figures.largestRequest << '\n';
}

void dumpConversion(const FileView &file, const EntryView &entry, std::ostream &out) {
    const int type = conversionType(file, entry);
    out << "  type " << type << '\n';
    const auto offset = static_cast<std::size_t>(entry.offset);
    if (isMappingType(type)) {
        dumpMapping(file, offset, out);
        return;
    }
    if (offset == 0)
        return;
    const auto record = file.at<file::Conversion>(offset);
    const long length = readNumber(record.length, sizeof record.length);
    for (long i = 0; i < length; i++) {
        if (i % 16 == 0)
            out << "  " << hex(static_cast<std::uint32_t>(i), 2) << ": ";
        out << hex(record.body[i], 2) << (i % 16 == 15 ? '\n' : ' ');
    }
}

void dumpLine(const EntryView &entry, std::size_t number, std::ostream &out) {
    out << std::left << std::setw(4) << number << std::setw(11) << kindName(entry.kind) << std::setw(13)
        << entry.name << std::setw(13) << entry.name2 << "offset " << std::setw(8) << entry.offset
        << "format " << hex(entry.format, 2) << "  variant " << entry.variant << '\n';
}

} // namespace

void dumpDirectory(std::span<const std::uint8_t> bytes, const std::string &path, std::ostream &out) {
    requireSound(bytes, path);
    const FileView file(bytes);
    const auto header = file.at<file::Header>(0);
    const std::vector<EntryView> entries = entriesOf(file);
    out << "version " << readNumber(header.version, sizeof header.version) << ", " << entries.size()
        << " entries from byte " << readNumber(header.directoryOffset, sizeof header.directoryOffset) << ", "
        << bytes.size() << " bytes\n";
    std::size_t tables = 0;
    std::set<long> offsets;
    for (std::size_t i = 0; i < entries.size(); i++) {
        dumpLine(entries[i], i, out);
        if (entries[i].offset != 0 && offsets.insert(entries[i].offset).second)
            tables++;
    }
    out << tables << " tables; the directory takes " << entries.size() * sizeof(file::Entry)
        << " bytes of the first block\n";
}

void dumpEntry(std::span<const std::uint8_t> bytes, const std::string &path, const std::string &which,
               std::ostream &out) {
    requireSound(bytes, path);
    const FileView file(bytes);
    const std::vector<EntryView> entries = entriesOf(file);
    bool any = false;
    for (std::size_t i = 0; i < entries.size(); i++) {
        const EntryView &entry = entries[i];
        const std::string wanted = foldedName(which);
        if (wanted != std::string("#").append(std::to_string(i)) && wanted != foldedName(entry.name) &&
            wanted != foldedName(entry.name + "/" + entry.name2))
            continue;
        any = true;
        dumpLine(entry, i, out);
        switch (entry.kind) {
        case file::kConversion:
            dumpConversion(file, entry, out);
            break;
        case file::kCharSet:
            dumpCharSet(file, entry, out);
            break;
        case file::kCaseTable:
            dumpCaseTable(file, entry, out);
            break;
        default:
            dumpCollation(file, entry, out);
        }
    }
    if (!any)
        throw Problem(path, 0, "no entry is " + which);
}

} // namespace velnls::nlsgen
