// What is proved of the tables of the default data file, so that the differential tests do not compare the
// plain kernels with themselves.
#include "convert/kernels/fast.hpp"
#include "convert/kernels/mapping_lookup.hpp"
#include "convert/kernels/proofs.hpp"
#include "core/instruction_sets.hpp"
#include "random.hpp"
#include "table_source.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace velnls;
using namespace kernel_tests;

namespace {

std::uint32_t proofsOf(const char *page) {
    const MappingBody *const body = mappingOf(page);
    return body == nullptr ? 0 : headerOf(body).proofs & ~kInstructionSets;
}

// A private copy that a test may damage.
MappingBody copyOf(const char *page) {
    MappingBody body{};
    std::memcpy(&body, mappingOf(page), sizeof body);
    return body;
}

TEST(Proofs, SingleBytePagesAreRows) {
    for (const char *page : {"1252", "1251", "1250", "KOI8-R", "IBM850", "IBM437", "620-2533", "ISO8859-1"}) {
        EXPECT_EQ(kAsciiIdentity | kByteRow, proofsOf(page)) << page;
        EXPECT_TRUE(fast::canMap(proofsOf(page))) << page;
    }
}

TEST(Proofs, PagesOfLeadAndTrailBytesAreRectangles) {
    for (const char *page : {"SHIFT-JIS", "CP949", "CP936", "CP950", "BIG-5"})
        EXPECT_EQ(kAsciiIdentity | kPairRectangle, proofsOf(page)) << page;
}

TEST(Proofs, EbcdicIsNotAscii) {
    EXPECT_FALSE(fast::canMap(proofsOf("IBM037")));
}

// The code of an index as the kernels for units of 16 bits make it.
unsigned codeByUnits(const PairUnits &units, unsigned index) {
    const auto unit = [](unsigned number) { return number & 0xFFFF; };
    const unsigned row = (index - 1) * units.reciprocal >> 16 >> units.reciprocalShift;
    unsigned code = unit(units.codeBase + index + row * units.rowStep);
    if ((code & 0xFF) > units.trailGapLow)
        code = unit(code + units.trailShift);
    if (code > units.leadGapEnd)
        code = unit(code + units.leadShift);
    return code;
}

// Walks the rectangle row by row; gives how many codes it has.
unsigned checkUnits(const MappingBody &body) {
    const file::MappingGroup &group = body.groups[2];
    unsigned index = 0;
    for (unsigned lead = group.firstLead; lead <= group.lastLead; ++lead) {
        if (lead > group.leadGapLow && lead < group.leadGapHigh)
            continue;
        for (unsigned trail = group.firstTrail; trail <= group.lastTrail; ++trail) {
            if (trail > group.trailGap1Low && trail < group.trailGap1High)
                continue;
            ++index;
            const unsigned code = lead << 8 | trail;
            if (codeByUnits(factsOf(body).units, index) != code) {
                ADD_FAILURE() << "index " << index << " is not of code " << code;
                return index;
            }
        }
    }
    return index;
}

TEST(Proofs, UnitsOfARectangleGiveTheCodeOfEveryIndex) {
    for (const char *page : {"SHIFT-JIS", "CP949", "CP936", "CP950", "BIG-5"}) {
        SCOPED_TRACE(page);
        EXPECT_GT(checkUnits(*mappingOf(page)), 8000u);
    }
}

TEST(Proofs, UnitsOfARectangleDivideByAnyNumberOfColumns) {
    for (unsigned columns = 2; columns <= 0xFF - 0x40; ++columns) {
        SCOPED_TRACE(columns);
        MappingBody body = copyOf("CP936");
        file::MappingGroup &group = body.groups[2];
        group.reverse = nullptr;
        group.reverseCount = 0;
        group.trailGap1Low = 0xFF;
        group.trailGap1High = 0;
        group.trailShift1 = 0;
        group.firstTrail = 0x40;
        group.lastTrail = static_cast<std::uint8_t>(0x40 + columns - 1);
        group.trailsPerLead = static_cast<decltype(group.trailsPerLead)>(columns);
        if (columns * 126 >= std::min<unsigned>(group.valueCount, group.indexLimit))
            break;
        ASSERT_EQ(kPairRectangle, proveMapping(body) & kPairRectangle);
        EXPECT_EQ(checkUnits(body), columns * 126);
    }
}

TEST(Proofs, LeadByteOutsideTheRectangleIsRefused) {
    CharTable table = *copyOf("SHIFT-JIS").charTable;
    table.attributes[0xA5] = 1; // half-width katakana
    MappingBody body = copyOf("SHIFT-JIS");
    body.charTable = &table;
    EXPECT_EQ(kAsciiIdentity, proveMapping(body));
}

TEST(Proofs, CharacterOfThreeBytesIsRefused) {
    CharTable table = *copyOf("CP936").charTable;
    table.attributes[0x90] = 2;
    MappingBody body = copyOf("CP936");
    body.charTable = &table;
    EXPECT_EQ(kAsciiIdentity, proveMapping(body));
}

TEST(Proofs, DamagedAsciiIsNoIdentity) {
    CharTable table = *copyOf("1252").charTable;
    table.attributes[unsigned{'a'}] = 1;
    MappingBody body = copyOf("1252");
    body.charTable = &table;
    EXPECT_EQ(0u, proveMapping(body));
}

// Looks every character up, both ways.
bool isIdentityOfAscii(const MappingBody &body) {
    for (std::uint32_t byte = 1; byte < 0x80; ++byte) {
        const bool mayBeUnmapped = byte < 0x7F;
        for (const std::uint32_t found :
             {unicodeOfCode(body, static_cast<std::uint16_t>(byte)), codeOfUnicode(body, byte)})
            if (found != byte && !(found == kNone && mayBeUnmapped))
                return false;
    }
    return true;
}

TEST(Proofs, AsciiIsAnIdentityWhereEveryLookUpSaysSo) {
    fixture::Random random(20261122);
    const auto one = [&random](unsigned last) { return static_cast<unsigned>(random.below(last + 1)); };
    unsigned identities = 0;
    unsigned others = 0;
    for (int round = 0; round < 40000; ++round) {
        MappingBody body = copyOf("1252");
        file::MappingGroup &group = body.groups[one(2)];
        std::vector<std::uint16_t> values(0x101, file::kUnmapped);
        std::vector<std::uint16_t> reverse(0x100, file::kUnmapped);
        group.values = values.data();
        group.valueCount = group.indexLimit = 0x101;
        group.reverse = reverse.data();
        group.reverseCount = 0x100;
        group.firstLead = static_cast<std::uint8_t>(one(7) == 0 ? 0x80 : 0);
        group.lastLead = 0xFF;
        group.firstTrail = static_cast<std::uint8_t>(one(0x90));
        group.lastTrail = 0xFF;
        group.trailsPerLead = 0xFF;
        group.zeroCode = static_cast<std::uint16_t>(one(3) == 0 ? one(0x90) : 0);
        group.lowest = one(0x90);
        group.highest = group.lowest + 0xFF;
        group.flags = one(7) == 0 ? one(3) : 0;
        // Entries for ASCII as it is, and at times one that is another's.
        for (unsigned byte = std::max<unsigned>(group.firstTrail, 1); byte < 0x80; ++byte) {
            const unsigned index = byte - group.firstTrail + 1;
            if (one(1) == 0)
                values[index] = static_cast<std::uint16_t>(byte);
            if (one(1) == 0 && byte >= group.lowest && group.firstLead == 0)
                reverse[byte - group.lowest] = static_cast<std::uint16_t>(index);
        }
        if (group.zeroCode != 0)
            values[0] = group.zeroCode;
        if (one(3) == 0)
            values[one(0x40)] = static_cast<std::uint16_t>(one(0x7F));
        if (one(3) == 0)
            reverse[one(0x40)] = static_cast<std::uint16_t>(one(0x40));
        const bool isIdentity = isIdentityOfAscii(body);
        ++(isIdentity ? identities : others);
        ASSERT_EQ(isIdentity, (proveMapping(body) & kAsciiIdentity) != 0) << round;
    }
    EXPECT_GT(identities, 1000u);
    EXPECT_GT(others, 1000u);
}

TEST(Proofs, SurrogateAmongTheValuesIsRefused) {
    for (const char *page : {"1252", "CP936"}) {
        MappingBody body = copyOf(page);
        std::vector<std::uint16_t> values(body.groups[2].valueCount);
        std::memcpy(values.data(), body.groups[2].values, values.size() * 2);
        values.back() = 0xD800;
        body.groups[2].values = values.data();
        EXPECT_EQ(0u, proveMapping(body) & (kByteRow | kPairRectangle)) << page;
    }
}

TEST(Proofs, IndexBehindTheRectangleIsRefused) {
    for (const char *page : {"1252", "CP936"}) {
        MappingBody body = copyOf(page);
        std::vector<std::uint16_t> reverse(body.groups[2].reverseCount);
        std::memcpy(reverse.data(), body.groups[2].reverse, reverse.size() * 2);
        reverse[reverse.size() / 2] = 0xFFF0;
        body.groups[2].reverse = reverse.data();
        EXPECT_EQ(0u, proveMapping(body) & (kByteRow | kPairRectangle)) << page;
    }
}

TEST(Proofs, FewerValuesThanTheRectangleIsRefused) {
    for (const char *page : {"1252", "CP936"}) {
        MappingBody body = copyOf(page);
        body.groups[2].valueCount = static_cast<std::uint16_t>(body.groups[2].valueCount - 1);
        EXPECT_EQ(0u, proveMapping(body) & (kByteRow | kPairRectangle)) << page;
    }
}

} // namespace
