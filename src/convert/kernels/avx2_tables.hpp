// Constants of the kernels for processors with AVX2, each there once.
#pragma once

#include <cstdint>

namespace velnls::avx2 {

// For each choice of characters of two bytes among eight: the shuffle that leaves out the first bytes of the
// others.
struct Squeezes {
    alignas(16) std::uint8_t shuffles[256][16];
};
inline constexpr Squeezes kSqueezes = [] {
    Squeezes squeezes{};
    for (unsigned mask = 0; mask < 256; ++mask) {
        unsigned length = 0;
        for (unsigned i = 0; i < 8; ++i) {
            if ((mask >> i & 1) != 0)
                squeezes.shuffles[mask][length++] = static_cast<std::uint8_t>(2 * i);
            squeezes.shuffles[mask][length++] = static_cast<std::uint8_t>(2 * i + 1);
        }
        while (length < 16)
            squeezes.shuffles[mask][length++] = 0x80;
    }
    return squeezes;
}();

// As many ones as zeros: loaded from inside, a mask of the first bytes of a register or two.
inline constexpr std::uint32_t kMostFirstBytes = 64;
struct FirstBytes {
    alignas(64) std::uint8_t masks[2 * kMostFirstBytes];
};
inline constexpr FirstBytes kFirstBytes = [] {
    FirstBytes bytes{};
    for (std::uint32_t i = 0; i < kMostFirstBytes; ++i)
        bytes.masks[i] = 0xFF;
    return bytes;
}();

} // namespace velnls::avx2
