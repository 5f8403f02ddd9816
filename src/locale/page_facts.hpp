// What is proved of a locale's tables when they are loaded, so that the fast kernels of the string calls need
// not ask again per character.
//
// Tables are data, and nothing in a data file or in a stored record is trusted: without a proof the plain
// loops run. Proofs are bits of the locale; the byte ranges of a page's characters lie in the character
// table's reserved bytes, which stored records hold as zeros.
#pragma once

#include "locale/locale.hpp"

namespace velnls {

// No character is longer than two bytes, and the facts tell which bytes lead and which may follow.
inline constexpr std::uint32_t kPairPage = 0x0001'0000;
// With kPairPage: some lead bytes begin characters of one column.
inline constexpr std::uint32_t kNarrowLeads = 0x0002'0000;
// With kUtf8Page: every byte from 80 to BF may follow a first one.
inline constexpr std::uint32_t kUtf8Trails = 0x0004'0000;

// With kSingleBytePage and a table of weights: under mode 1, no two bytes but NUL have the same weight, and
// none the weight 0.
inline constexpr std::uint32_t kOwnWeights = 0x0040'0000;
// The same under mode 0 for ASCII: a letter shares its weight with its other case alone, any other character
// with none.
inline constexpr std::uint32_t kAsciiWeights = 0x0080'0000;
// The same among the bytes of ASCII, whatever others share their weights.
inline constexpr std::uint32_t kAsciiAmongWeights = 0x2000'0000;

// With kUtf8Page, kPairPage or kSingleBytePage, whose lead bytes are none of ASCII: under mode 1 characters
// are equal when their bytes are.
inline constexpr std::uint32_t kMatchesBytes = 0x0400'0000;
// The same under mode 0 for ASCII: a letter equals its other case, any other character itself alone; in
// UTF-8, capital I with dot may equal "i".
inline constexpr std::uint32_t kMatchesAscii = 0x0800'0000;
// With kSingleBytePage: under modes 0 and 1, bytes are equal when their weights are, that of "s" for those
// that have none.
inline constexpr std::uint32_t kMatchesWeights = 0x1000'0000;

// What has to be proved of how characters match under mode 0 or 1.
constexpr std::uint32_t matchProof(unsigned mode) {
    return mode == 0 ? kMatchesAscii : kMatchesBytes;
}

struct [[gnu::packed]] ByteRange {
    std::uint8_t first;
    std::uint8_t span; // of the last byte from the first

    [[nodiscard]] bool contains(unsigned byte) const {
        return static_cast<std::uint8_t>(byte - first) <= span;
    }
};

struct [[gnu::packed]] PageFacts {
    ByteRange leads[2];  // a second range that is not needed repeats the first
    ByteRange trails[3]; // the same
    ByteRange narrow;    // lead bytes of one column

    [[nodiscard]] bool isLead(unsigned byte) const {
        return leads[0].contains(byte) || leads[1].contains(byte);
    }
};
static_assert(sizeof(PageFacts) <= sizeof(CharTable::reserved));

inline const PageFacts &factsOf(const CharTable &table) {
    return *reinterpret_cast<const PageFacts *>(table.reserved);
}

// Fills in the facts of a table that is complete but for them.
void findFacts(CharTable &table);

// The bits that hold of a locale whose tables are complete.
std::uint32_t proveText(const nlsLocale &locale);

} // namespace velnls
