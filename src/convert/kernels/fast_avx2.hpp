// The kernels that byte shuffles of 256 bits make faster: look-ups in tables of 128 bytes, held in registers.
// What else is compiled for the baseline gains nothing from AVX2.
//
// Call them only where instructionSets() says kByteShuffles.
#pragma once

#include "convert/kernels/kernels.hpp"

namespace velnls::avx2 {

// Source bytes that repay putting the tables into registers.
inline constexpr std::ptrdiff_t kWorthwhile = 64;

#if defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)

// Any 256-byte map; kWorthwhile bytes at least, and as much room.
void mapBytes(const std::uint8_t *map, const std::uint8_t *from, std::uint8_t *to, std::ptrdiff_t length);

// kAsciiIdentity with kByteRow: goes on while there are blocks of text, with room for what they become, up to
// a byte without a value, and leaves the positions there.
void byteRowToUtf8(const MappingBody &body, Source &source, Target &target);

#else

// On other processors nothing is done; none is called.
inline void mapBytes(const std::uint8_t *, const std::uint8_t *, std::uint8_t *, std::ptrdiff_t) {}
inline void byteRowToUtf8(const MappingBody &, Source &, Target &) {}

#endif

} // namespace velnls::avx2
