// The block kernels for processors with AVX2: what the ones for AVX-512 do, sixteen characters at a time
// through units of 16 bits, eight through wider ones.
//
// Each goes as far as whole blocks of characters are provably what the plain kernel would make of them and
// find room, and leaves the positions there; the caller goes on. Loads may reach behind the text, never into
// another page of memory. Call them only where instructionSets() says kByteShuffles.
#pragma once

#include "convert/kernels/kernels.hpp"

namespace velnls::avx2 {

// Source bytes that repay putting a map into registers.
inline constexpr std::ptrdiff_t kWorthwhile = 64;

} // namespace velnls::avx2

#if defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)
#define VELNLS_AVX2_KERNELS 1

namespace velnls::avx2 {

// Any 256-byte map; kWorthwhile bytes at least, and as much room.
void mapBytes(const std::uint8_t *map, const std::uint8_t *from, std::uint8_t *to, std::ptrdiff_t length);

// kAsciiIdentity with kByteRow, or with kPairRectangle.
void byteRowToUtf8(const MappingBody &body, Source &source, Target &target);
void utf8ToByteRow(const MappingBody &body, Source &source, Target &target);
void pairsToUtf8(const MappingBody &body, Source &source, Target &target);
void utf8ToPairs(const MappingBody &body, Source &source, Target &target);

void utf16ToUtf8(Source &source, Target &target);
void utf8ToUtf16(Source &source, Target &target);
void utf32ToUtf8(Source &source, Target &target);
void utf8ToUtf32(Source &source, Target &target);
void utf16ToUtf32(Source &source, Target &target);
void utf32ToUtf16(Source &source, Target &target);

} // namespace velnls::avx2

#else

// On other processors every kernel stops where it is; none is called.
namespace velnls::avx2 {

inline void mapBytes(const std::uint8_t *, const std::uint8_t *, std::uint8_t *, std::ptrdiff_t) {}
inline void byteRowToUtf8(const MappingBody &, Source &, Target &) {}
inline void utf8ToByteRow(const MappingBody &, Source &, Target &) {}
inline void pairsToUtf8(const MappingBody &, Source &, Target &) {}
inline void utf8ToPairs(const MappingBody &, Source &, Target &) {}
inline void utf16ToUtf8(Source &, Target &) {}
inline void utf8ToUtf16(Source &, Target &) {}
inline void utf32ToUtf8(Source &, Target &) {}
inline void utf8ToUtf32(Source &, Target &) {}
inline void utf16ToUtf32(Source &, Target &) {}
inline void utf32ToUtf16(Source &, Target &) {}

} // namespace velnls::avx2

#endif
