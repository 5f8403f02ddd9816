// The fast twins of the plain kernels: same results to the byte, for source and target that do not overlap.
//
// Each runs over blocks as far as it can prove that the plain kernel would do the same, hands the character
// that it cannot judge to the plain kernel, and goes on behind it. The mapping kernels need the proofs named
// at each; everything else is proved from the text itself.
#pragma once

#include "convert/kernels/kernels.hpp"

namespace velnls::fast {

// Any 256-byte map; target.room() is at least source.left().
void mapBytes(const std::uint8_t *map, Source &source, Target &target);

// kAsciiIdentity with kByteRow or kPairRectangle, as `proofs` says.
nlsStatus pageToUtf8(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf8ToPage(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target);
bool canMap(std::uint32_t proofs);

nlsStatus shiftJisToEuc(Source &source, Target &target);
nlsStatus eucToShiftJis(Source &source, Target &target);

// Units in the machine's byte order only.
nlsStatus utf16ToUtf8(Source &source, Target &target);
nlsStatus utf8ToUtf16(Source &source, Target &target);
nlsStatus utf32ToUtf8(Source &source, Target &target);
nlsStatus utf8ToUtf32(Source &source, Target &target);
nlsStatus utf16ToUtf32(Source &source, Target &target);
nlsStatus utf32ToUtf16(Source &source, Target &target);

} // namespace velnls::fast
