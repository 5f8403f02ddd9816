#include "convert/kernels/fast_avx2.hpp"

#if defined(VELNLS_AVX2_KERNELS)

#include "convert/kernels/avx2_tables.hpp"

namespace velnls::avx2 {

constinit const Squeezes kSqueezes = [] {
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

constinit const FirstBytes kFirstBytes = [] {
    FirstBytes bytes{};
    for (std::uint32_t i = 0; i < kMostFirstBytes; ++i)
        bytes.masks[i] = 0xFF;
    return bytes;
}();

} // namespace velnls::avx2

#endif
