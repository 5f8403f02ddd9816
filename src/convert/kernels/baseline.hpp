// The kernels for processors without AVX2: by SSE2 or by plain loops, one character after the other, with
// what was proved of the tables.
//
// Complete conversions: where a block stops, the plain kernel takes the character, and so on to the end.
#pragma once

#include "convert/kernels/kernels.hpp"

namespace velnls::baseline {

// Any 256-byte map; there is as much room.
void mapBytes(const std::uint8_t *map, const std::uint8_t *at, std::uint8_t *to, std::ptrdiff_t length);

// kAsciiIdentity with kByteRow or kPairRectangle.
nlsStatus pageToUtf8(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target);
nlsStatus utf8ToPage(const MappingBody &body, std::uint32_t proofs, Source &source, Target &target);

nlsStatus utf16ToUtf8(Source &source, Target &target);
nlsStatus utf8ToUtf16(Source &source, Target &target);
nlsStatus utf32ToUtf8(Source &source, Target &target);
nlsStatus utf8ToUtf32(Source &source, Target &target);
nlsStatus utf16ToUtf32(Source &source, Target &target);
nlsStatus utf32ToUtf16(Source &source, Target &target);

} // namespace velnls::baseline
