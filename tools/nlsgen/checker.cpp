#include "checker.hpp"

#include "case_table.hpp"
#include "conversion_types.hpp"
#include "file_lookup.hpp"
#include "file_view.hpp"
#include "language_plan.hpp"
#include "mapping_checker.hpp"
#include "name_compare.hpp"
#include "problem.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <tuple>
#include <vector>

namespace velnls::nlsgen {

std::string Fault::text() const {
    return "byte " + std::to_string(offset) + (entry.empty() ? "" : ", entry " + entry) + ": expected " +
           expected;
}

namespace {

constexpr int kByteCount = 256;
constexpr std::uint32_t kNoCharacter = 0xFFFFFFFF;
constexpr std::uint32_t kCapitalSharpS = 0x1E9E;
constexpr std::uint8_t kKnownFlags = file::kBorrowsCollation | file::kMultibyte | file::kThroughShiftJis |
                                     file::kUtf8 | file::kWide | file::kUnits32;
constexpr std::uint8_t kKnownAttributes = file::kTrailCountMask | file::kOneColumn;

// Goes through the file in its own order and stops, by throwing it, at the first fault.
class Checker {
public:
    explicit Checker(std::span<const std::uint8_t> bytes) : file_(bytes) {}

    std::optional<Fault> run() {
        try {
            checkHeader();
            readDirectory();
            for (const EntryView &entry : entries_) {
                current_ = &entry;
                checkEntry();
            }
            // What weights mean needs the pages' mappings, which are sound by now.
            for (const EntryView &entry : entries_) {
                current_ = &entry;
                if (entry.kind == file::kCollation)
                    checkMeaningOfWeights();
            }
            return std::nullopt;
        } catch (const Fault &fault) {
            return fault;
        }
    }

private:
    void expect(bool good, std::size_t offset, const std::string &expected) const {
        if (good)
            return;
        std::string name;
        if (current_ != nullptr)
            name = std::to_string((current_->place - directory_) / sizeof(file::Entry)) + " (\"" +
                   current_->name + "\", \"" + current_->name2 + "\", kind " +
                   std::to_string(current_->kind) + ")";
        throw Fault{offset, name, expected};
    }

    void checkHeader() {
        expect(file_.has(0, sizeof(file::Header)), 0, "a header of 16 bytes");
        const auto header = file_.at<file::Header>(0);
        expect(readNumber(header.magic, sizeof header.magic) == file::kMagic, offsetof(file::Header, magic),
               "4242");
        const long directory = readNumber(header.directoryOffset, sizeof header.directoryOffset);
        expect(directory >= static_cast<long>(sizeof header), offsetof(file::Header, directoryOffset),
               "a directory behind the header");
        const long version = readNumber(header.version, sizeof header.version);
        expect(version == file::kVersionOld || version == file::kVersion, offsetof(file::Header, version),
               "version 4 or 5");
        const long count = readNumber(header.entryCount, sizeof header.entryCount);
        expect(count >= 0, offsetof(file::Header, entryCount), "a count of entries from 0 to 999");
        directory_ = static_cast<std::size_t>(directory);
        entryCount_ = static_cast<std::size_t>(count);
        directoryEnd_ = directory_ + entryCount_ * sizeof(file::Entry);
        expect(file_.has(directory_, entryCount_ * sizeof(file::Entry)), offsetof(file::Header, entryCount),
               "all " + std::to_string(entryCount_) + " entries within the file");
    }

    void readDirectory() {
        for (std::size_t i = 0; i < entryCount_; i++)
            entries_.push_back(file_.entryAt(directory_ + i * sizeof(file::Entry)));
        for (const EntryView &entry : entries_)
            entriesByName_.emplace(std::tuple(entry.kind, foldedName(entry.name), foldedName(entry.name2)),
                                   &entry);
    }

    [[nodiscard]] const EntryView *find(long kind, const std::string &name, const std::string &name2) const {
        const auto found = entriesByName_.find({kind, foldedName(name), foldedName(name2)});
        return found == entriesByName_.end() ? nullptr : found->second;
    }

    void checkNames(const file::Entry &raw) const {
        const EntryView &entry = *current_;
        const std::size_t namePlace = entry.place + offsetof(file::Entry, name);
        const std::size_t name2Place = entry.place + offsetof(file::Entry, name2);
        expect(entry.name.size() < sizeof raw.name, namePlace, "a name of at most 19 bytes and its NUL");
        expect(entry.name2.size() < sizeof raw.name2, name2Place,
               "a second name of at most 19 bytes and its NUL");
        expect(!entry.name.empty(), namePlace, "a name");
        expect(entry.kind == file::kCharSet || !entry.name2.empty(), name2Place, "a second name");
        expect(find(entry.kind, entry.name, entry.name2) == &entry, namePlace,
               "names that no entry of the kind before has");
        if (entry.kind == file::kCharSet) {
            expect(entry.name2.empty(), name2Place, "no second name of a character set");
            return;
        }
        expect(find(file::kCharSet, entry.name, "") != nullptr, namePlace, "the name of a character set");
        if (entry.kind == file::kConversion)
            expect(find(file::kCharSet, entry.name2, "") != nullptr, name2Place,
                   "the name of a character set");
    }

    void checkEntry() {
        const EntryView &entry = *current_;
        const auto raw = file_.at<file::Entry>(entry.place);
        const std::size_t kindPlace = entry.place + offsetof(file::Entry, kind);
        const std::size_t offsetPlace = entry.place + offsetof(file::Entry, offset);
        expect(entry.kind >= file::kConversion && entry.kind <= file::kCollation, kindPlace, "kind 1 to 4");
        checkNames(raw);
        expect(raw.variant >= '0' && raw.variant <= '9', entry.place + offsetof(file::Entry, variant),
               "a digit as variant");
        expect(std::all_of(raw.offset, raw.offset + sizeof raw.offset,
                           [](char c) { return (c >= '0' && c <= '9') || c == ' '; }),
               offsetPlace, "an offset in decimal digits");
        const auto offset = static_cast<std::size_t>(entry.offset);
        if (offset == 0) {
            expect(entry.kind == file::kConversion, offsetPlace,
                   "an offset above 0: only conversions need no table");
        } else {
            expect(offset >= directoryEnd_, offsetPlace, "a table behind the directory");
            expect(file_.has(offset, recordSize(entry)), offsetPlace,
                   std::to_string(recordSize(entry)) + " bytes of the table within the file");
        }
        switch (entry.kind) {
        case file::kConversion:
            checkConversion();
            break;
        case file::kCharSet:
            checkCharSet();
            break;
        case file::kCaseTable:
            checkCaseTable();
            break;
        default:
            checkCollation();
        }
    }

    void checkCount(const char *field, std::size_t width, std::size_t offset) const {
        expect(readNumber(field, width) == kByteCount, offset, "the count 256");
    }

    void checkCharSet() const {
        const EntryView &entry = *current_;
        const std::size_t formatPlace = entry.place + offsetof(file::Entry, format);
        const std::uint8_t flags = entry.format;
        expect((flags & ~kKnownFlags) == 0, formatPlace,
               "only the code page flags 01, 02, 04, 08, 10 and 40");
        expect((flags & (file::kUtf8 | file::kWide | file::kUnits32 | file::kThroughShiftJis)) == 0 ||
                   (flags & file::kMultibyte) != 0,
               formatPlace, "flag 02 of a page of several bytes a character");
        const auto offset = static_cast<std::size_t>(entry.offset);
        const auto table = file_.at<file::CharTable>(offset);
        checkCount(table.count, sizeof table.count, offset);
        for (std::size_t byte = 0; byte < kByteCount; byte++) {
            const std::size_t attributePlace = offset + offsetof(file::CharTable, attributes) + byte;
            expect((table.attributes[byte] & ~kKnownAttributes) == 0, attributePlace,
                   "attributes of the bits 0 to 3");
            expect((flags & file::kMultibyte) != 0 || (table.attributes[byte] & file::kTrailCountMask) == 0,
                   attributePlace, "no trail bytes in a page without flag 02");
            expect((flags & file::kMultibyte) != 0 || table.trailValid[byte] == 0,
                   offset + offsetof(file::CharTable, trailValid) + byte,
                   "no trail bytes in a page without flag 02");
        }
        expect((table.attributes[0] & file::kTrailCountMask) == 0,
               offset + offsetof(file::CharTable, attributes),
               "no trail bytes behind the byte that ends a string");
        checkCompanions();
        const bool ofBytes = (flags & (file::kWide | file::kUnits32)) == 0;
        expect(!ofBytes || find(file::kCaseTable, entry.name, "basic") != nullptr, entry.place,
               "a case table \"basic\" of this page in the directory");
        expect(find(file::kCollation, entry.name, "basic") != nullptr ||
                   (flags & file::kBorrowsCollation) != 0,
               entry.place, "a collation \"basic\" of this page in the directory");
        if ((flags & file::kUtf8) != 0)
            checkUtf8Collations();
    }

    // The page that collates through Shift_JIS creates a locale there with its own collation and case table
    // names.
    void checkCompanions() const {
        const EntryView &entry = *current_;
        if ((entry.format & file::kThroughShiftJis) == 0)
            return;
        const std::string other = "SHIFT-JIS";
        const std::size_t formatPlace = entry.place + offsetof(file::Entry, format);
        expect(find(file::kCharSet, other, "") != nullptr, formatPlace,
               "a character set SHIFT-JIS beside a page with flag 04");
        expect(foldedName(entry.name) == other || find(file::kConversion, entry.name, other) != nullptr,
               formatPlace, "a conversion to SHIFT-JIS from a page with flag 04");
        for (const EntryView &mine : entries_)
            if ((mine.kind == file::kCaseTable || mine.kind == file::kCollation) &&
                foldedName(mine.name) == foldedName(entry.name))
                expect(find(mine.kind, other, mine.name2) != nullptr, mine.place,
                       "SHIFT-JIS to have the same case tables and collations as a page with flag 04");
    }

    // The list of collations counts the ICU names once, but names them for each collation of UTF-8.
    void checkUtf8Collations() const {
        int count = 0;
        for (const EntryView &mine : entries_)
            if (mine.kind == file::kCollation && foldedName(mine.name) == foldedName(current_->name))
                expect(++count == 1, mine.place, "one collation of UTF-8");
    }

    void checkCaseTable() const {
        const EntryView &entry = *current_;
        const auto offset = static_cast<std::size_t>(entry.offset);
        const EntryView *page = find(file::kCharSet, entry.name, "");
        const bool unicodeForm = entry.format == file::kUnicodeCaseFormat;
        expect(unicodeForm == ((page->format & file::kUtf8) != 0),
               entry.place + offsetof(file::Entry, format),
               "format 2, the Unicode form, for UTF-8 and no other page");
        if (!unicodeForm) {
            expect(entry.format == 0, entry.place + offsetof(file::Entry, format), "format 0 or 2");
            const auto table = file_.at<file::CaseTable>(offset);
            checkCount(table.count, sizeof table.count, offset);
            return;
        }
        const auto table = file_.at<file::UnicodeCaseTable>(offset);
        if (const auto fault = faultOfUnicodeCaseTable(table)) {
            const std::size_t list = fault->upper ? offsetof(file::UnicodeCaseTable, upper)
                                                  : offsetof(file::UnicodeCaseTable, lower);
            expect(false, offset + list + fault->pair * sizeof(file::CasePair), fault->expected);
        }
    }

    void checkCollation() const {
        const EntryView &entry = *current_;
        const auto offset = static_cast<std::size_t>(entry.offset);
        const auto table = file_.at<file::Collation>(offset);
        checkCount(table.count, sizeof table.count, offset);
        expect(table.kind >= file::kWeights && table.kind <= file::kThai,
               offset + offsetof(file::Collation, kind), "collation kind 1 to 4");
        expect(table.variant <= 1, offset + offsetof(file::Collation, variant), "variant 0 or 1");
        if (table.kind == file::kBasic) {
            checkBasicWord(table.caseSensitive, offset + offsetof(file::Collation, caseSensitive));
            checkBasicWord(table.caseInsensitive, offset + offsetof(file::Collation, caseInsensitive));
        }
        if (table.kind == file::kWeights)
            checkWeights(table, offset);
    }

    void checkBasicWord(const std::uint8_t *area, std::size_t offset) const {
        expect(std::memcmp(area, "BASIC", sizeof "BASIC") == 0, offset, "BASIC and its NUL");
    }

    // Weights may be shared when case counts only where the name says that accents do not count: then by
    // forms that share the other weight too.
    void checkWeights(const file::Collation &table, std::size_t offset) const {
        const bool shared = foldedName(current_->name2) == foldedName(std::string(kNoAccentsName));
        std::array<int, kByteCount> insensitive;
        insensitive.fill(-1);
        for (std::size_t byte = 1; byte < kByteCount; byte++) {
            const std::uint8_t weight = table.caseSensitive[byte];
            expect((weight == 0) == (table.caseInsensitive[byte] == 0),
                   offset + offsetof(file::Collation, caseInsensitive) + byte,
                   "weight 0 in both tables or in none");
            int &before = insensitive[weight];
            expect(weight == 0 || before < 0 || shared,
                   offset + offsetof(file::Collation, caseSensitive) + byte,
                   "a weight of its own for each byte in the case-sensitive table");
            expect(weight == 0 || before < 0 || before == table.caseInsensitive[byte],
                   offset + offsetof(file::Collation, caseInsensitive) + byte,
                   "the same weight for bytes that share one in the case-sensitive table");
            before = table.caseInsensitive[byte];
        }
    }

    // The blank ranks below letters and digits, and only a sharp s weighs 0, in a page with s where the
    // library looks for its weight. A page without a mapping to Unicode may be anything.
    void checkMeaningOfWeights() const {
        const EntryView &entry = *current_;
        const auto offset = static_cast<std::size_t>(entry.offset);
        const auto table = file_.at<file::Collation>(offset);
        const EntryView *toUtf8 = find(file::kConversion, entry.name, "UTF-8");
        if (table.kind == file::kBasic || table.kind == file::kSortExit || toUtf8 == nullptr ||
            !isMappingType(conversionType(file_, *toUtf8)))
            return;
        const FileLookup lookup(file_.bytes(), static_cast<std::size_t>(toUtf8->offset));
        std::array<std::uint32_t, kByteCount> characters;
        for (std::uint16_t byte = 0; byte < kByteCount; byte++)
            characters[byte] = lookup.toUnicode(byte).value_or(byte < 0x7F ? byte : kNoCharacter);
        const auto *blank = std::find(characters.begin(), characters.end(), std::uint32_t{' '});
        if (blank == characters.end())
            return;
        const auto blankByte = static_cast<std::size_t>(blank - characters.begin());
        const EntryView *page = find(file::kCharSet, entry.name, "");
        const auto charTable = file_.at<file::CharTable>(static_cast<std::size_t>(page->offset));
        for (std::size_t byte = 1; byte < kByteCount; byte++) {
            const std::uint32_t character = characters[byte];
            const std::size_t place = offset + offsetof(file::Collation, caseSensitive) + byte;
            if (table.caseSensitive[byte] == 0) {
                expect(table.kind == file::kWeights && (character == kSharpS || character == kCapitalSharpS),
                       place, "weight 0 of a sharp s only");
                expect(characters['s'] == 's', place, "no weight 0 in a page that has no s at 73");
                continue;
            }
            if (!isLetterOrDigit(character, charTable.classes[byte]))
                continue;
            expect(table.caseSensitive[byte] > table.caseSensitive[blankByte], place,
                   "a letter or digit to weigh more than the blank");
            expect(table.caseInsensitive[byte] > table.caseInsensitive[blankByte],
                   offset + offsetof(file::Collation, caseInsensitive) + byte,
                   "a letter or digit to weigh more than the blank");
        }
    }

    // A class above 0 marks letters that are not ASCII, or not at their ASCII places.
    static bool isLetterOrDigit(std::uint32_t character, std::uint8_t byteClass) {
        const std::uint32_t folded = character | 0x20;
        return character != kTatweel &&
               (byteClass != 0 || (folded >= 'a' && folded <= 'z') || (character >= '0' && character <= '9'));
    }

    void checkConversion() const {
        const EntryView &entry = *current_;
        const auto offset = static_cast<std::size_t>(entry.offset);
        const int type = conversionType(file_, entry);
        const std::size_t formatPlace = entry.place + offsetof(file::Entry, format);
        const std::size_t typePlace =
            offset == 0 ? formatPlace : offset + offsetof(file::Conversion, typeHigh);
        expect(typeExists(type), typePlace, "a conversion type of a data file");
        const bool needsTable = type == 1 || isMappingType(type) || type == 19 || type == 51;
        expect(needsTable == (offset != 0), entry.place + offsetof(file::Entry, offset),
               needsTable ? "a table for type " + std::to_string(type)
                          : "offset 0 of type " + std::to_string(type) + ", which has no table");
        if (type == 1) {
            expect(entry.format <= file::kBorrowFormat, formatPlace, "format 0 or 1 of a byte table");
            checkLength(256);
            return;
        }
        expect(entry.format == type, formatPlace, "the type " + std::to_string(type) + " as format");
        const EntryView *back = find(file::kConversion, entry.name2, entry.name);
        expect(back != nullptr, entry.place, "an entry of the way back");
        expect(back->format != file::kBorrowFormat && typesFit(entry.format, back->format), formatPlace,
               "types of the two ways that fit each other, the way back has " + std::to_string(back->format));
        checkLegs(type);
        if (type == 19 || type == 51)
            checkByteToUtf8();
        if (isMappingType(type))
            checkMappingRecord(file_, offset, attributesOf(entry).data(),
                               [this](std::size_t place, const std::string &expected) {
                                   expect(false, place,
                                          expected.starts_with("expected ") ? expected.substr(9) : expected);
                               });
    }

    // Of a page that the directory has; its record may still be unsound.
    [[nodiscard]] std::array<std::uint8_t, kByteCount> attributesOf(const EntryView &entry) const {
        std::array<std::uint8_t, kByteCount> attributes{};
        const EntryView *page = find(file::kCharSet, entry.name, "");
        const auto offset = static_cast<std::size_t>(page->offset);
        expect(page->offset > 0 && file_.has(offset, sizeof(file::CharTable)), page->place,
               "the character set of the conversion's page");
        std::memcpy(attributes.data(), file_.bytes().data() + offset + offsetof(file::CharTable, attributes),
                    attributes.size());
        return attributes;
    }

    void checkLength(long length) const {
        const auto offset = static_cast<std::size_t>(current_->offset);
        const auto record = file_.at<file::Conversion>(offset);
        expect(readNumber(record.length, sizeof record.length) == length, offset,
               "the length " + std::to_string(length));
    }

    // What types 29 and 30 and their swapped forms read: the table of the page's way to UTF-8 must be a
    // mapping.
    void checkLegs(int type) const {
        const EntryView &entry = *current_;
        const bool fromPage = kindOfType(type) == 29;
        const bool toPage = kindOfType(type) == 30;
        if (!fromPage && !toPage)
            return;
        const EntryView *leg = find(file::kConversion, fromPage ? entry.name : entry.name2, "UTF-8");
        expect(leg != nullptr && isMappingType(leg->format), entry.place,
               "a mapping of the page to UTF-8, through which this conversion goes");
    }

    // 256 UTF-16 units whose places in the way back are all different.
    void checkByteToUtf8() const {
        checkLength(512);
        const auto offset = static_cast<std::size_t>(current_->offset);
        const auto record = file_.at<file::Conversion>(offset);
        std::set<std::pair<unsigned, unsigned>> slots;
        for (std::size_t byte = 0; byte < kByteCount; byte++) {
            const unsigned unit = record.body[byte * 2] | record.body[byte * 2 + 1] << 8;
            const std::size_t place = offset + offsetof(file::Conversion, body) + byte * 2;
            expect(unit < 0xD800 || unit > 0xDFFF, place, "a character that is no surrogate");
            const unsigned table = unit < 0x80    ? 0
                                   : unit < 0x800 ? 0xC0 | unit >> 6
                                                  : 0x80 | (unit >> 6 & 0x3F);
            const unsigned slot = unit < 0x80 ? unit : unit & 0x3F;
            expect(slots.emplace(table, slot).second, place,
                   "a character whose place in the way back no other byte has");
        }
    }

    FileView file_;
    std::size_t directory_ = 0;
    std::size_t directoryEnd_ = 0;
    std::size_t entryCount_ = 0;
    std::vector<EntryView> entries_;
    std::map<std::tuple<long, std::string, std::string>, const EntryView *> entriesByName_;
    const EntryView *current_ = nullptr;
};

} // namespace

std::optional<Fault> firstFault(std::span<const std::uint8_t> file) {
    return Checker(file).run();
}

} // namespace velnls::nlsgen
