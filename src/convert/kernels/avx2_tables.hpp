// Constants of the kernels for processors with AVX2, each there once.
#pragma once

#include <cstdint>

namespace velnls::avx2 {

// For each choice of characters of two bytes among eight: the shuffle that leaves out the first bytes of the
// others.
struct Squeezes {
    alignas(16) std::uint8_t shuffles[256][16];
};
extern const Squeezes kSqueezes;

// As many ones as zeros: loaded from inside, a mask of the first bytes of a register or two.
inline constexpr std::uint32_t kMostFirstBytes = 64;
struct FirstBytes {
    alignas(64) std::uint8_t masks[2 * kMostFirstBytes];
};
extern const FirstBytes kFirstBytes;

} // namespace velnls::avx2
