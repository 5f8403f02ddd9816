#include "file_difference.hpp"

#include "byte_table_difference.hpp"
#include "checker.hpp"
#include "mapping_difference.hpp"
#include "name_compare.hpp"

#include <array>
#include <map>
#include <tuple>

namespace velnls::nlsgen {
namespace {

using EntryKey = std::tuple<long, std::string, std::string>;

EntryKey keyOf(long kind, const std::string &name, const std::string &name2) {
    return {kind, foldedName(name), foldedName(name2)};
}

// A sound data file with its entries by name.
class Side {
public:
    explicit Side(const NamedFile &named) : file(named.bytes) {
        if (const auto fault = firstFault(named.bytes))
            throw Problem(named.path, 0, fault->text());
        entries = entriesOf(file);
        for (const EntryView &entry : entries)
            byName_.emplace(keyOf(entry.kind, entry.name, entry.name2), &entry);
    }
    Side(const Side &) = delete;
    Side &operator=(const Side &) = delete;

    [[nodiscard]] const EntryView *find(long kind, const std::string &name, const std::string &name2) const {
        const auto found = byName_.find(keyOf(kind, name, name2));
        return found == byName_.end() ? nullptr : found->second;
    }
    [[nodiscard]] const EntryView *find(const EntryView &like) const {
        return find(like.kind, like.name, like.name2);
    }
    const PageDecoder &decoder(const std::string &page) const {
        const auto found = decoders_.find(foldedName(page));
        if (found != decoders_.end())
            return found->second;
        return decoders_.emplace(foldedName(page), PageDecoder(file, find(file::kConversion, page, "UTF-8")))
            .first->second;
    }
    template <typename Record>
    [[nodiscard]] Record record(const EntryView &entry) const {
        return file.at<Record>(static_cast<std::size_t>(entry.offset));
    }

    FileView file;
    std::vector<EntryView> entries;

private:
    std::map<EntryKey, const EntryView *> byName_;
    mutable std::map<std::string, PageDecoder> decoders_;
};

std::string titleOf(const EntryView &entry) {
    switch (entry.kind) {
    case file::kConversion:
        return "conversion " + entry.name + " to " + entry.name2;
    case file::kCharSet:
        return "character set " + entry.name;
    case file::kCaseTable:
        return "case table " + entry.name + ", " + entry.name2;
    default:
        return "collation " + entry.name + ", " + entry.name2;
    }
}

std::string flagNames(std::uint8_t flags) {
    static constexpr std::pair<std::uint8_t, const char *> kNames[] = {
        {file::kBorrowsCollation, "borrows collations"},
        {file::kMultibyte, "multibyte"},
        {file::kThroughShiftJis, "collates through Shift_JIS"},
        {file::kUtf8, "UTF-8"},
        {file::kWide, "units of 16 bits"},
        {file::kUnits32, "units of 32 bits"}};
    std::string text;
    for (const auto &[flag, name] : kNames)
        if ((flags & flag) != 0)
            text.append(text.empty() ? "" : ", ").append(name);
    return text.empty() ? "none" : text;
}

class FileDifference {
public:
    FileDifference(const NamedFile &before, const NamedFile &after, DifferenceReport &report)
        : before_(before), after_(after), report_(report) {}

    void run() {
        const auto versionOf = [](const Side &side) {
            const auto header = side.file.at<file::Header>(0);
            return std::to_string(readNumber(header.version, sizeof header.version));
        };
        change("the file", "version", versionOf(before_), versionOf(after_));
        for (const EntryView &entry : before_.entries)
            if (after_.find(entry) == nullptr)
                report_.add(titleOf(entry) + ": removed");
        for (const EntryView &entry : after_.entries)
            if (before_.find(entry) == nullptr)
                report_.add(titleOf(entry) + ": added");
        for (const EntryView &entry : before_.entries)
            if (const EntryView *other = after_.find(entry))
                compare(entry, *other);
    }

private:
    void change(const std::string &title, const char *what, const std::string &was, const std::string &is) {
        if (was != is)
            report_.add(title + ": " + what + " was " + was + ", is " + is);
    }
    void changeNumber(const std::string &title, const char *what, long was, long is) {
        change(title, what, std::to_string(was), std::to_string(is));
    }

    void compare(const EntryView &was, const EntryView &is) {
        changeNumber(titleOf(was), "variant", was.variant, is.variant);
        switch (was.kind) {
        case file::kConversion:
            compareConversions(was, is);
            break;
        case file::kCharSet:
            compareCharSets(was, is);
            break;
        case file::kCaseTable:
            compareCaseTables(was, is);
            break;
        default:
            compareCollations(was, is);
        }
    }

    [[nodiscard]] PageBytes bytesOf(const std::string &page) const {
        return {before_.decoder(page), after_.decoder(page)};
    }

    void compareCharSets(const EntryView &was, const EntryView &is) {
        const std::string title = titleOf(was);
        change(title, "flags", flagNames(was.format), flagNames(is.format));
        const auto old = before_.record<file::CharTable>(was);
        const auto now = after_.record<file::CharTable>(is);
        const PageBytes bytes = bytesOf(was.name);
        reportNumbers(bytes, old.classes, now.classes, title + ", class", report_);
        reportNumbers(bytes, old.attributes, now.attributes, title + ", attributes", report_);
        reportNumbers(bytes, old.trailValid, now.trailValid, title + ", valid trail byte", report_);
    }

    void compareCaseTables(const EntryView &was, const EntryView &is) {
        const std::string title = titleOf(was);
        changeNumber(title, "format", was.format, is.format);
        if (was.format != is.format)
            return;
        if (was.format == file::kUnicodeCaseFormat) {
            const auto old = before_.record<file::UnicodeCaseTable>(was);
            const auto now = after_.record<file::UnicodeCaseTable>(is);
            comparePairs(old.upper, now.upper, title + ", upper case of ");
            comparePairs(old.lower, now.lower, title + ", lower case of ");
            return;
        }
        const auto old = before_.record<file::CaseTable>(was);
        const auto now = after_.record<file::CaseTable>(is);
        const PageBytes bytes = bytesOf(was.name);
        reportTargets(bytes, bytes, old.upper, now.upper, title + ", upper case of ", report_);
        reportTargets(bytes, bytes, old.lower, now.lower, title + ", lower case of ", report_);
    }

    using Pairs = std::map<std::uint16_t, std::uint16_t>;
    template <std::size_t kCount>
    static Pairs pairsOf(const file::CasePair (&list)[kCount]) {
        Pairs pairs;
        for (const file::CasePair &pair : list) {
            if (pair.character == 0)
                break;
            pairs.emplace(std::uint16_t{pair.character}, std::uint16_t{pair.counterpart});
        }
        return pairs;
    }
    template <std::size_t kCount>
    void comparePairs(const file::CasePair (&was)[kCount], const file::CasePair (&is)[kCount],
                      const std::string &title) {
        const Pairs old = pairsOf(was);
        const Pairs now = pairsOf(is);
        const auto counterpart = [this](const Pairs &pairs, std::uint16_t character) {
            const auto found = pairs.find(character);
            return found == pairs.end() ? std::string("itself")
                                        : report_.character(std::uint32_t{found->second});
        };
        Pairs all = old;
        all.insert(now.begin(), now.end());
        for (const auto &[character, any] : all) {
            const std::string before = counterpart(old, character);
            const std::string after = counterpart(now, character);
            if (before == after)
                continue;
            std::string line = title + report_.character(std::uint32_t{character});
            line += ": was ";
            line += before;
            line += ", is ";
            line += after;
            report_.add(line);
        }
    }

    static std::string collationKind(std::uint8_t kind) {
        switch (kind) {
        case file::kWeights:
            return "weights";
        case file::kSortExit:
            return "user sort exit";
        case file::kBasic:
            return "BASIC";
        default:
            return "Thai";
        }
    }

    void compareCollations(const EntryView &was, const EntryView &is) {
        const std::string title = titleOf(was);
        const auto old = before_.record<file::Collation>(was);
        const auto now = after_.record<file::Collation>(is);
        change(title, "kind", collationKind(old.kind), collationKind(now.kind));
        changeNumber(title, "variant of the table", old.variant, now.variant);
        if (old.kind == file::kBasic || now.kind == file::kBasic)
            return;
        const PageBytes bytes = bytesOf(was.name);
        reportOrder(bytes, old.caseSensitive, now.caseSensitive, title + ", case-sensitive", report_);
        reportOrder(bytes, old.caseInsensitive, now.caseInsensitive, title + ", case-insensitive", report_);
    }

    void compareConversions(const EntryView &was, const EntryView &is) {
        const std::string title = titleOf(was);
        const int oldType = conversionType(before_.file, was);
        const int newType = conversionType(after_.file, is);
        changeNumber(title, "type", oldType, newType);
        if (oldType == newType)
            changeNumber(title, "format", was.format, is.format);
        if (isMappingType(oldType) && isMappingType(newType)) {
            reportMappingDifferences(before_.file, was, after_.file, is, report_);
            return;
        }
        if (oldType != newType || was.offset == 0 || is.offset == 0)
            return;
        if (isByteMapType(oldType)) {
            compareByteMaps(was);
            return;
        }
        reportTargets(bytesOf(was.name), bytesOf(was.name2), before_.record<file::Conversion>(was).body,
                      after_.record<file::Conversion>(is).body, title + ", ", report_);
    }

    // Where a page is mapped by a byte map, what its bytes mean is all there is to it.
    void compareByteMaps(const EntryView &entry) {
        const PageDecoder &old = before_.decoder(entry.name);
        const PageDecoder &now = after_.decoder(entry.name);
        for (std::uint32_t i = 0; i < 256; i++) {
            const auto byte = static_cast<std::uint8_t>(i);
            if (old.meaningOf(byte) != now.meaningOf(byte))
                report_.add("code page " + entry.name + ", " + hexadecimal(byte, 2) + ": was " +
                            meaningText(old.meaningOf(byte), report_) + ", is " +
                            meaningText(now.meaningOf(byte), report_));
        }
    }

    Side before_;
    Side after_;
    DifferenceReport &report_;
};

} // namespace

std::size_t reportDifferences(const NamedFile &before, const NamedFile &after, const CharacterNames &names,
                              std::ostream &out) {
    DifferenceReport report(names, out);
    FileDifference(before, after, report).run();
    return report.count();
}

} // namespace velnls::nlsgen
