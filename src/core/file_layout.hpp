// The shapes of everything in an NLS data file, shared by the loader and by nlsgen.
//
// All structs are byte-exact images of the file: packed, little-endian, no padding of their own. Numbers
// written as text are fixed-width ASCII fields without a terminator. docs/data-file-format.md is the manual.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velnls::file {

inline constexpr int kMagic = 4242;
inline constexpr int kVersionOld = 4;
inline constexpr int kVersion = 5;
inline constexpr std::size_t kNameSize = 20; // with its NUL
inline constexpr int kMaxEntries = 999;

// What a directory entry describes.
enum EntryKind : std::uint16_t {
    kConversion = 1,
    kCharSet = 2,
    kCaseTable = 3,
    kCollation = 4,
};

// Code page flags: the format byte of a character set entry.
enum CodePageFlag : std::uint32_t {
    kBorrowsCollation = 0x01,
    kMultibyte = 0x02,
    kThroughShiftJis = 0x04,
    kUtf8 = 0x08,
    kWide = 0x10,
    kUnits32 = 0x40,
};

// Character attributes, indexed by a character's first byte.
inline constexpr std::uint8_t kTrailCountMask = 0x07;
inline constexpr std::uint8_t kOneColumn = 0x08;

// Format byte of a case table entry in Unicode form, of a conversion through which weights may be borrowed.
inline constexpr std::uint8_t kUnicodeCaseFormat = 2;
inline constexpr std::uint8_t kBorrowFormat = 1;

struct [[gnu::packed]] Header {
    char magic[4];
    char directoryOffset[2];
    char version[2];
    char entryCount[3];
    char unused[5];
};
static_assert(sizeof(Header) == 16);

struct [[gnu::packed]] Entry {
    char name[kNameSize];
    char name2[kNameSize];
    char offset[7];
    char variant;
    std::uint8_t format;
    char kind;
    char unused[14];
};
static_assert(sizeof(Entry) == 64);

struct [[gnu::packed]] CharTable {
    char count[4];
    std::uint8_t classes[512];
    std::uint8_t attributes[512];
    std::uint8_t trailValid[512];
    std::uint8_t unused[12];
};
static_assert(sizeof(CharTable) == 1552);

struct [[gnu::packed]] CaseTable {
    char count[4];
    std::uint8_t upper[512];
    std::uint8_t lower[512];
    std::uint8_t unused[12];
};
static_assert(sizeof(CaseTable) == 1040);

struct [[gnu::packed]] CasePair {
    std::uint16_t character; // 0 ends the list
    std::uint16_t counterpart;
};

struct [[gnu::packed]] UnicodeCaseTable {
    std::uint8_t head[6];
    CasePair upper[744]; // room for 743 pairs and the end
    CasePair lower[744];
    std::uint8_t unused[10];
};
static_assert(sizeof(UnicodeCaseTable) == 5968);

enum CollationKind : std::uint8_t {
    kWeights = 1,
    kSortExit = 2,
    kBasic = 3,
    kThai = 4,
    kIcu = 5, // never in a file
};

struct [[gnu::packed]] Collation {
    char count[4];
    std::uint8_t caseSensitive[512];
    std::uint8_t caseInsensitive[512];
    std::uint8_t kind;
    std::uint8_t variant;
    std::uint8_t unused[10];
};
static_assert(sizeof(Collation) == 1040);

// The record of a conversion whose entry has an offset.
struct [[gnu::packed]] Conversion {
    char length[4];
    std::uint8_t body[512];
    std::uint8_t typeHigh;
    std::uint8_t typeLow;
    std::uint8_t unused[10];

    [[nodiscard]] int type() const {
        return typeHigh * 256 + typeLow;
    }
};
static_assert(sizeof(Conversion) == 528);
static_assert(offsetof(Conversion, typeHigh) == 516);

// The kind words that stand for the types of a conversion entry from kFirstRemappedType on. Types up to
// kLastPlainType are kind words themselves; those between are in no file.
inline constexpr std::int32_t kLastPlainType = 128;
inline constexpr std::int32_t kFirstRemappedType = 144;
inline constexpr std::int32_t kLastRemappedType = 177;
inline constexpr std::int16_t kRemappedTypes[] = {
    151, 536,  279,  1048, 153, 538,  281,  1050, 155, 540,  283,  1052, // 144 to 155
    539, 156,  1051, 284,  667, 668,  1179, 796,  795, 1180, 1307, 1308, // 156 to 167
    286, 1053, 158,  541,  261, 1030, 133,  518,  389, 1542,             // 168 to 177
};
static_assert(sizeof kRemappedTypes / sizeof kRemappedTypes[0] == kLastRemappedType - kFirstRemappedType + 1);

// What a kind word says beside the kind: the form of the source's and of the target's Unicode units, two bits
// each.
inline constexpr std::int32_t kVariantBits = 0x780;
inline constexpr int kSourceFormShift = 7;
inline constexpr int kTargetFormShift = 9;
inline constexpr std::int32_t kFormMask = 3;

// One code range block of a mapping: a rectangle of lead and trail bytes, numbered row by row, with the
// Unicode value of each index and the way back. Built in memory with the same layout, pointers filled in.
struct [[gnu::packed]] MappingGroup {
    const std::uint16_t *values;  // Unicode value by index; 0xFFFF = none
    const std::uint16_t *reverse; // third group: index by Unicode value; first, second: run-compressed
    const std::uint16_t *deltas;  // first group: lists of 32-bit triples
    std::uint32_t flags;          // kForwardDeltas, kReverseDeltas
    std::uint32_t valuesOffset;   // file offsets of the sub-tables
    std::uint32_t reverseOffset;
    std::uint32_t deltasOffset;
    std::uint32_t lowest; // Unicode range of the reverse table, both ends inclusive
    std::uint32_t highest;
    std::uint16_t split;      // compressed reverse: low bits of a segment
    std::uint16_t runMask;    // compressed reverse: run = entry & mask, 0 = the next entry is the run
    std::uint16_t indexShift; // compressed reverse: index = entry >> shift
    std::uint8_t unusedA[58];
    std::uint16_t valueCount;
    std::uint16_t zeroCode; // the code of index 0
    std::uint16_t indexBase;
    std::uint16_t holeStart; // 0xFFFF = none
    std::uint16_t holeSize;
    std::uint16_t indexLimit;
    std::uint16_t substitution; // first group only
    std::uint8_t unusedB[8];
    std::uint16_t reverseCount;
    std::uint16_t deltaCount;
    std::uint8_t firstLead;
    std::uint8_t leadGapLow; // none: 0xFF, 0
    std::uint8_t leadGapHigh;
    std::uint8_t lastLead;
    std::uint8_t leadShift;
    std::uint8_t firstTrail;
    std::uint8_t trailGap1Low; // none: 0xFF, 0
    std::uint8_t trailGap1High;
    std::uint8_t trailGap2Low; // none: 0, 0
    std::uint8_t trailGap2High;
    std::uint8_t lastTrail;
    std::uint8_t trailShift1;
    std::uint8_t trailShift2;
    std::uint8_t trailsPerLead;
    std::uint8_t unusedC[8];
};
static_assert(sizeof(MappingGroup) == 160);
static_assert(offsetof(MappingGroup, split) == 48);
static_assert(offsetof(MappingGroup, valueCount) == 112);
static_assert(offsetof(MappingGroup, reverseCount) == 134);
static_assert(offsetof(MappingGroup, trailsPerLead) == 151);

inline constexpr std::uint32_t kForwardDeltas = 1;
inline constexpr std::uint32_t kReverseDeltas = 2;
inline constexpr std::uint16_t kUnmapped = 0xFFFF;
inline constexpr std::size_t kSubTableHead = 6; // decimal count before a sub-table's 16-bit values

// The record of a mapping conversion: read as 496 bytes; its type stands where Conversion has it.
struct [[gnu::packed]] Mapping {
    std::uint8_t head[8];
    MappingGroup groups[3]; // first, second, third
    std::uint8_t unused[8];
};
static_assert(sizeof(Mapping) == 496);

} // namespace velnls::file
