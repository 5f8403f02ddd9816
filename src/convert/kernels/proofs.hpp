// What is proved of a mapping once, when it is loaded, so that the fast kernels need not ask again per
// character.
//
// Tables are data, and nothing in a data file is trusted: without a proof the plain kernels run. The proofs
// are bits in the converter's header; what is derived besides lies in bytes of the mapping that its layout
// leaves unused.
#pragma once

#include "convert/converter.hpp"

namespace velnls {

// Each ASCII byte is a character of its own and stands for the same code point, both ways.
inline constexpr std::uint32_t kAsciiIdentity = 0x0010;
// Every byte is a character; the bytes from 80 up find their value in one row of the third group, and the
// indexes of its reverse window are bytes of that row.
inline constexpr std::uint32_t kByteRow = 0x0020;
// The lead bytes are those of the third group's rectangle and have one trail byte each; the rectangle has at
// most one trail gap, and the indexes of its reverse window are two-byte codes.
inline constexpr std::uint32_t kPairRectangle = 0x0040;

// A stretch of 32 Unicode values, in which `count` from `first` on have indexes of the third group's
// rectangle that follow each other.
struct [[gnu::packed]] LinearBlock {
    std::uint8_t first; // low five bits of the value
    std::uint8_t count;
    std::uint16_t delta; // index = value + delta, modulo 2^16
};

// What stands everywhere in East Asian text but not in the reverse window: kana and full-width letters by
// stretches, punctuation one by one. An index of 0 is none.
inline constexpr std::uint32_t kKanaBegin = 0x3040;
inline constexpr unsigned kKanaBlocks = 6;
inline constexpr std::uint32_t kLettersBegin = 0xFF20;
inline constexpr unsigned kLetterBlocks = 2;
inline constexpr std::uint32_t kSoundMarksBegin =
    0x30FB; // middle dot and prolonged sound, behind the katakana
inline constexpr unsigned kSoundMarks = 2;
inline constexpr std::uint32_t kPunctuationBegin = 0x3000;
inline constexpr std::uint32_t kWidePunctuationBegin = 0xFF00;
inline constexpr unsigned kPunctuation = 29; // values of each

// What kernels need of the rectangle, as they add it to units of 16 bits. An index is a place counted from 1;
// its code is codeBase + index + (the row of its place) * rowStep, and what the gaps add: trailShift to a
// code whose low byte is above trailGapLow, then leadShift to one above leadGapEnd.
struct [[gnu::packed]] PairUnits {
    std::uint16_t span; // of the reverse window; 0 without one
    std::uint16_t codeBase;
    std::uint16_t rowStep;
    std::uint16_t reciprocal; // place * reciprocal >> 16 >> reciprocalShift is the row
    std::uint16_t reciprocalShift;
    std::uint16_t trailGapLow;
    std::uint16_t trailShift;
    std::uint16_t leadGapEnd;
    std::uint16_t leadShift;
};

// The facts lie in the unused bytes of the groups: these in the first, the indexes of U+3000 on in the
// second, those of U+FF00 on in the third.
struct [[gnu::packed]] MappingFacts {
    LinearBlock kana[kKanaBlocks];
    LinearBlock letters[kLetterBlocks];
    std::uint16_t marks[kSoundMarks];
    PairUnits units;
};
static_assert(sizeof(MappingFacts) <= sizeof(file::MappingGroup::unusedA));
static_assert(kPunctuation * sizeof(std::uint16_t) <= sizeof(file::MappingGroup::unusedA));

inline const MappingFacts &factsOf(const MappingBody &body) {
    return *reinterpret_cast<const MappingFacts *>(body.groups[0].unusedA);
}

// Proves what it can of a mapping that is complete but for that, and fills in its facts.
std::uint32_t proveMapping(MappingBody &body);

} // namespace velnls
