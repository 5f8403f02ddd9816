// What every file of kernels for processors with AVX-512 begins with. Such files are compiled for them alone,
// so what stands here is local to each: no function of theirs may stand in for one that other processors run.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) && !defined(VELNLS_PLAIN_LOOPS)
#define VELNLS_AVX512_KERNELS 1

// GCC 12 takes the deliberately undefined inputs inside its own intrinsics for mistakes.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#include <immintrin.h>

namespace velnls::avx512 {
namespace {

using Vector = __m512i;

// The lowest `count` bits, all 64 of them from there on.
[[gnu::always_inline]] inline std::uint64_t lowBits(std::size_t count) {
    return count >= 64 ? ~std::uint64_t{0} : _bzhi_u64(~std::uint64_t{0}, static_cast<unsigned>(count));
}

} // namespace
} // namespace velnls::avx512

#endif
