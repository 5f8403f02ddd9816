// The fast twins of the plain kernels: same results to the byte, for source and target that do not overlap.
//
// Each runs over blocks as far as it can prove that the plain kernel would do the same, hands what it cannot
// judge to the baseline's kernels, and those a character to the plain kernel, and goes on behind it. The
// mapping kernels need the proofs named at each; everything else is proved from the text itself.
#pragma once

#include "convert/kernels/kernels.hpp"
#include "convert/kernels/proofs.hpp"

namespace velnls::fast {

// `proofs` is the second word of the converter's header: what is proved of its tables, and the instruction
// sets.

// More than any block kernel asks for to go on, or stores for 64 bytes of text.
inline constexpr std::ptrdiff_t kTightRoom = 512;

// Any 256-byte map; target.room() is at least source.left().
void mapBytes(const std::uint8_t *map, std::uint32_t proofs, Source &source, Target &target);

// kAsciiIdentity with kByteRow or kPairRectangle.
inline bool canMap(std::uint32_t proofs) {
    return (proofs & kAsciiIdentity) != 0 && (proofs & (kByteRow | kPairRectangle)) != 0;
}
nlsStatus pageToUtf8(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf8ToPage(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target);

nlsStatus shiftJisToEuc(std::uint32_t proofs, Source &source, Target &target);
nlsStatus eucToShiftJis(std::uint32_t proofs, Source &source, Target &target);

// Units in the machine's byte order only.
nlsStatus utf16ToUtf8(std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf8ToUtf16(std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf32ToUtf8(std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf8ToUtf32(std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf16ToUtf32(std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf32ToUtf16(std::uint32_t proofs, Source &source, Target &target);

} // namespace velnls::fast
