// The block kernels for processors with AVX-512 (VBMI and VBMI2): any mixture of scripts without a jump per
// character.
//
// Each goes as far as whole blocks of characters are provably what the plain kernel would make of them, and
// leaves the positions there; the caller goes on. Masked loads and stores touch nothing outside source and
// target, so short texts need no other way. Call them only where instructionSets() says kWideVectors.
#pragma once

#include "convert/kernels/kernels.hpp"

#if defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)

namespace velnls::avx512 {

void mapBytes(const std::uint8_t *map, Source &source, Target &target);

// kAsciiIdentity with kByteRow, or with kPairRectangle.
void byteRowToUtf8(const MappingBody &body, Source &source, Target &target);
void utf8ToByteRow(const MappingBody &body, Source &source, Target &target);
void pairsToUtf8(const MappingBody &body, Source &source, Target &target);
void utf8ToPairs(const MappingBody &body, Source &source, Target &target);

void shiftJisToEuc(Source &source, Target &target);
void eucToShiftJis(Source &source, Target &target);

void utf16ToUtf8(Source &source, Target &target);
void utf8ToUtf16(Source &source, Target &target);
void utf32ToUtf8(Source &source, Target &target);
void utf8ToUtf32(Source &source, Target &target);
void utf16ToUtf32(Source &source, Target &target);
void utf32ToUtf16(Source &source, Target &target);

} // namespace velnls::avx512

#else

// On other processors every kernel stops where it is; none is called.
namespace velnls::avx512 {

inline void mapBytes(const std::uint8_t *, Source &, Target &) {}
inline void byteRowToUtf8(const MappingBody &, Source &, Target &) {}
inline void utf8ToByteRow(const MappingBody &, Source &, Target &) {}
inline void pairsToUtf8(const MappingBody &, Source &, Target &) {}
inline void utf8ToPairs(const MappingBody &, Source &, Target &) {}
inline void shiftJisToEuc(Source &, Target &) {}
inline void eucToShiftJis(Source &, Target &) {}
inline void utf16ToUtf8(Source &, Target &) {}
inline void utf8ToUtf16(Source &, Target &) {}
inline void utf32ToUtf8(Source &, Target &) {}
inline void utf8ToUtf32(Source &, Target &) {}
inline void utf16ToUtf32(Source &, Target &) {}
inline void utf32ToUtf16(Source &, Target &) {}

} // namespace velnls::avx512

#endif
