#include "mapping_checker.hpp"

#include "file_lookup.hpp"
#include "problem.hpp"

#include <vector>

namespace velnls::nlsgen {
namespace {

using file::MappingGroup;
using Fail = std::function<void(std::size_t, const std::string &)>;

constexpr unsigned kLargestSplit = 8;
constexpr const char *kGroupNames[] = {"first", "second", "third"};
constexpr std::size_t kThird = 2;

class MappingChecker {
public:
    MappingChecker(const FileView &file, std::size_t offset, const std::uint8_t *attributes, const Fail &fail)
        : file_(file), offset_(offset), attributes_(attributes), fail_(fail) {}

    void check() {
        for (group_ = 0; group_ < 3; group_++) {
            place_ = offset_ + offsetof(file::Mapping, groups) + group_ * sizeof(MappingGroup);
            fields_ = file_.at<MappingGroup>(place_);
            checkSubTables();
            checkRectangle();
            checkValues();
            if (group_ == kThird)
                checkDirectReverse();
            else
                checkCompressedReverse();
            checkDeltas();
        }
        group_ = 0;
        place_ = offset_ + offsetof(file::Mapping, groups);
        fields_ = file_.at<MappingGroup>(place_);
        expect(fields_.substitution != 0, offsetof(MappingGroup, substitution), "a substitution code");
        checkThereAndBack();
    }

private:
    void expect(bool good, std::size_t field, const std::string &expected) const {
        if (!good)
            fail_(place_ + field, std::string(kGroupNames[group_]) + " group: expected " + expected);
    }

    void checkSubTable(std::uint32_t offset, std::uint16_t count, std::size_t offsetField,
                       std::size_t countField, const std::string &name,
                       std::vector<std::uint16_t> &values) const {
        values.clear();
        if (count == 0) {
            expect(offset == 0, offsetField, "offset 0 of " + name + " without values");
            return;
        }
        const std::size_t size = file::kSubTableHead + std::size_t{count} * 2;
        expect(offset >= sizeof(file::Header) && file_.has(offset, size), offsetField,
               std::to_string(size) + " bytes of " + name + " within the file");
        const auto *head = reinterpret_cast<const char *>(file_.bytes().data() + offset);
        if (readNumber(head, file::kSubTableHead) != count)
            fail_(offset, std::string(kGroupNames[group_]) + " group: expected the count " +
                              std::to_string(count) + " in the head of " + name);
        expect(count == readNumber(head, file::kSubTableHead), countField, "the count of " + name);
        for (std::size_t i = 0; i < count; i++) {
            const std::uint8_t *at = file_.bytes().data() + offset + file::kSubTableHead + i * 2;
            values.push_back(static_cast<std::uint16_t>(at[0] | at[1] << 8));
        }
    }

    void checkSubTables() {
        checkSubTable(fields_.valuesOffset, fields_.valueCount, offsetof(MappingGroup, valuesOffset),
                      offsetof(MappingGroup, valueCount), "the values", values_);
        checkSubTable(fields_.reverseOffset, fields_.reverseCount, offsetof(MappingGroup, reverseOffset),
                      offsetof(MappingGroup, reverseCount), "the reverse table", reverse_);
        checkSubTable(fields_.deltasOffset, fields_.deltaCount, offsetof(MappingGroup, deltasOffset),
                      offsetof(MappingGroup, deltaCount), "the deltas", deltas_);
    }

    void checkRectangle() const {
        const MappingGroup &f = fields_;
        if (f.valueCount == 0 && f.reverseCount == 0)
            return;
        const bool leadGap = f.leadGapLow + 1 < f.leadGapHigh;
        const bool trailGap1 = f.trailGap1Low + 1 < f.trailGap1High;
        const bool trailGap2 = f.trailGap2Low >= f.trailGap1High && f.trailGap2Low + 1 < f.trailGap2High;
        expect(f.firstLead <= f.lastLead, offsetof(MappingGroup, lastLead),
               "a last lead not before the first");
        expect(f.firstTrail <= f.lastTrail, offsetof(MappingGroup, lastTrail),
               "a last trail not before the first");
        expect(leadGap ? f.leadGapLow >= f.firstLead && f.leadGapHigh <= f.lastLead
                       : f.leadGapLow == 0xFF && f.leadGapHigh == 0,
               offsetof(MappingGroup, leadGapLow), "a lead gap within the leads, or FF and 0 for none");
        expect(f.leadShift == (leadGap ? f.leadGapHigh - f.leadGapLow - 1 : 0),
               offsetof(MappingGroup, leadShift), "the number of leads in the gap as lead shift");
        expect(trailGap1 ? f.trailGap1Low >= f.firstTrail && f.trailGap1High <= f.lastTrail
                         : f.trailGap1Low == 0xFF && f.trailGap1High == 0,
               offsetof(MappingGroup, trailGap1Low), "a trail gap within the trails, or FF and 0 for none");
        const int shift1 = trailGap1 ? f.trailGap1High - f.trailGap1Low - 1 : 0;
        expect(f.trailShift1 == shift1, offsetof(MappingGroup, trailShift1),
               "the number of trails in the gap as trail shift 1");
        expect(trailGap2 ? !trailGap1 : f.trailGap2Low == 0 && f.trailGap2High == 0,
               offsetof(MappingGroup, trailGap2Low), "at most one trail gap: 0 and 0 for no second one");
        const int shift2 = trailGap2 ? f.trailGap2High - f.trailGap2Low - 1 : 0;
        expect(f.trailShift2 == shift2, offsetof(MappingGroup, trailShift2),
               "the number of trails in the second gap as trail shift 2");
        expect(f.trailsPerLead == f.lastTrail - f.firstTrail + 1 - shift1 - shift2,
               offsetof(MappingGroup, trailsPerLead), "the number of trails of a row as trails per lead");
        const auto isLead = [this](std::uint8_t byte) {
            return byte == 0 || (attributes_[byte] & file::kTrailCountMask) != 0;
        };
        const std::string leadByte = "a lead byte of the page, or 00 for single bytes";
        expect(isLead(f.firstLead), offsetof(MappingGroup, firstLead), leadByte);
        expect(isLead(f.lastLead), offsetof(MappingGroup, lastLead), leadByte);
        expect(!leadGap || isLead(f.leadGapLow), offsetof(MappingGroup, leadGapLow), leadByte);
        expect(!leadGap || isLead(f.leadGapHigh), offsetof(MappingGroup, leadGapHigh), leadByte);
        expect(f.holeStart == 0xFFFF ? f.holeSize == 0 : f.holeStart != 0 && f.holeSize != 0,
               offsetof(MappingGroup, holeStart), "a hole with a size, or FFFF and 0 for none");
        expect(f.indexBase <= 1, offsetof(MappingGroup, indexBase), "index base 0 or 1");
    }

    void checkValues() const {
        const MappingGroup &f = fields_;
        expect(f.indexLimit == f.valueCount, offsetof(MappingGroup, indexLimit),
               "the count of values as index limit");
        expect(f.indexLimit < 0xFFFF, offsetof(MappingGroup, indexLimit), "an index limit below 65535");
        if (f.valueCount != 0)
            expect(f.zeroCode <= 0xFF, offsetof(MappingGroup, zeroCode), "a single byte as zero code");
    }

    // What the largest index of the reverse table may be: that of the rectangle's last code.
    [[nodiscard]] std::uint32_t largestIndex() const {
        const std::uint32_t rows = fields_.lastLead - fields_.firstLead + 1U - fields_.leadShift;
        return rows * fields_.trailsPerLead - fields_.indexBase;
    }

    void checkDirectReverse() const {
        const MappingGroup &f = fields_;
        if (f.reverseCount == 0)
            return;
        expect(f.lowest <= f.highest, offsetof(MappingGroup, lowest), "a lowest value not above the highest");
        expect(f.highest - f.lowest == f.reverseCount - 1U, offsetof(MappingGroup, highest),
               "one index for each value from the lowest to the highest");
        expect(f.split == 0 && f.runMask == 0 && f.indexShift == 0, offsetof(MappingGroup, split),
               "no split, mask and shift of a direct reverse table");
        for (std::size_t i = 0; i < reverse_.size(); i++)
            if (reverse_[i] != file::kUnmapped && reverse_[i] > largestIndex())
                fail_(f.reverseOffset + file::kSubTableHead + i * 2,
                      "third group: expected an index of the rectangle or FFFF in the reverse table");
    }

    void checkCompressedReverse() const {
        const MappingGroup &f = fields_;
        if (f.reverseCount == 0)
            return;
        expect(f.lowest <= f.highest, offsetof(MappingGroup, lowest), "a lowest value not above the highest");
        expect(f.split <= kLargestSplit, offsetof(MappingGroup, split), "a split of at most 8");
        expect(f.indexShift >= 1 && f.indexShift <= 15, offsetof(MappingGroup, indexShift),
               "an index shift from 1 to 15");
        expect(f.runMask == (1U << f.indexShift) - 1, offsetof(MappingGroup, runMask),
               "a run mask of as many bits as the index shift");
        const std::uint32_t segments = ((f.highest - f.lowest) >> f.split) + 1;
        expect(segments <= f.reverseCount, offsetof(MappingGroup, highest),
               "a start for each segment from the lowest to the highest value");
        const long segmentSize = 1L << f.split;
        for (std::uint32_t segment = 0; segment < segments; segment++) {
            const std::size_t startPlace = f.reverseOffset + file::kSubTableHead + segment * 2;
            if (reverse_[segment] < segments)
                fail_(startPlace, std::string(kGroupNames[group_]) +
                                      " group: expected a segment's start behind the starts");
            checkSegment(reverse_[segment], segmentSize);
        }
        expect(maps(f.highest), offsetof(MappingGroup, highest), "a highest value that the table maps");
    }

    // Of a table whose segments are sound.
    [[nodiscard]] bool maps(std::uint32_t value) const {
        const std::uint32_t distance = value - fields_.lowest;
        long left = static_cast<long>(distance & ((1U << fields_.split) - 1)) + 1;
        for (std::size_t at = reverse_[distance >> fields_.split]; left > 0; at++) {
            const int run = reverse_[at] & fields_.runMask;
            left -= run != 0 ? run : reverse_[++at];
        }
        return left == 0;
    }

    void checkSegment(std::size_t at, long left) const {
        while (left > 0) {
            const std::size_t begin = at;
            long run = 0;
            if (at < reverse_.size()) {
                run = reverse_[at] & fields_.runMask;
                if (run == 0)
                    run = ++at < reverse_.size() ? reverse_[at] : 0;
                at++;
            }
            if (run == 0)
                fail_(fields_.reverseOffset + file::kSubTableHead + begin * 2,
                      std::string(kGroupNames[group_]) +
                          " group: expected entries of the reverse table up to the segment's end");
            const auto index = static_cast<std::uint32_t>(reverse_[begin] >> fields_.indexShift);
            if (run <= left && index > largestIndex())
                fail_(fields_.reverseOffset + file::kSubTableHead + begin * 2,
                      std::string(kGroupNames[group_]) +
                          " group: expected an index of the rectangle in the reverse table");
            left -= run;
        }
    }

    // Triples of 32-bit numbers up to a 0; the place behind it, or nothing when the list does not end.
    [[nodiscard]] std::size_t deltaListEnd(std::size_t at) const {
        for (; at + 2 <= deltas_.size(); at += 6)
            if (deltas_[at] == 0 && deltas_[at + 1] == 0)
                return at + 2;
        expect(false, offsetof(MappingGroup, deltaCount), "a delta list that ends with 0");
        return at;
    }

    void checkDeltas() const {
        const std::uint32_t known = group_ == 0 ? file::kForwardDeltas | file::kReverseDeltas : 0;
        expect((fields_.flags & ~known) == 0, offsetof(MappingGroup, flags),
               group_ == 0 ? "flags 0 to 3" : "no flags: only the first group has deltas");
        std::size_t end = 0;
        if ((fields_.flags & file::kForwardDeltas) != 0)
            end = deltaListEnd(end);
        if ((fields_.flags & file::kReverseDeltas) != 0)
            end = deltaListEnd(end);
        expect(end == deltas_.size(), offsetof(MappingGroup, flags),
               "a flag for each delta list and no more");
    }

    // Index 0 belongs to the zero code, whichever group maps it.
    void checkZeroCodes(const FileLookup &lookup) {
        for (group_ = 0; group_ < 3; group_++) {
            place_ = offset_ + offsetof(file::Mapping, groups) + group_ * sizeof(MappingGroup);
            fields_ = file_.at<MappingGroup>(place_);
            if (fields_.valueCount == 0)
                continue;
            checkSubTables();
            const bool good = values_[0] == file::kUnmapped
                                  ? fields_.zeroCode == 0
                                  : lookup.toUnicode(fields_.zeroCode) == values_[0];
            expect(good, offsetof(MappingGroup, zeroCode),
                   "the code that the first value belongs to as zero code");
        }
    }

    // A character that has a code must be what the code stands for, and what a code stands for must have one.
    void checkThereAndBack() {
        const FileLookup lookup(file_.bytes(), offset_);
        checkZeroCodes(lookup);
        for (std::uint32_t character = 0; character <= 0x2FFFF; character++) {
            const auto code = lookup.fromUnicode(character);
            if (!code)
                continue;
            const auto back = lookup.toUnicode(*code);
            if (!back || *back != character)
                fail_(offset_, "expected " + unicodeName(character) + " to turn back from its code " +
                                   hexadecimal(*code, 2) + ", which stands for " +
                                   (back ? unicodeName(*back) : "nothing"));
        }
        for (std::uint32_t code = 0; code <= 0xFFFF; code++) {
            const auto character = lookup.toUnicode(static_cast<std::uint16_t>(code));
            if (character && !lookup.fromUnicode(*character) && !(*character == code && code < 0x7F))
                fail_(offset_, "expected " + unicodeName(*character) + ", for which code " +
                                   hexadecimal(code, 2) + " stands, to turn back to it or to another");
        }
    }

    const FileView &file_;
    std::size_t offset_;
    const std::uint8_t *attributes_; // of the page's bytes
    const Fail &fail_;
    std::size_t group_ = 0;
    std::size_t place_ = 0;
    MappingGroup fields_{};
    std::vector<std::uint16_t> values_, reverse_, deltas_;
};

} // namespace

void checkMappingRecord(const FileView &file, std::size_t offset, const std::uint8_t *attributes,
                        const Fail &fail) {
    MappingChecker(file, offset, attributes, fail).check();
}

} // namespace velnls::nlsgen
