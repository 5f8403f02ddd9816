// Text that kernels read by blocks to its end, without masked loads.
//
// In an unnamed namespace, so that no function compiled for one instruction set stands in for its twin in
// another.
#pragma once

#include "core/read_ahead.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velnls {
namespace {

// kReach: bytes that are read from a block's begin on. What they hold behind the text's end is anything.
template <std::ptrdiff_t kReach>
class TextReader {
public:
    // `at` itself, or a copy where the text ends with a page of memory.
    [[gnu::always_inline]] const std::uint8_t *block(const std::uint8_t *at, const std::uint8_t *end) {
        if (end - at >= kReach) [[likely]]
            return at;
#if defined(VELNLS_READS_AHEAD)
        if (staysInPage<kReach>(at)) [[likely]]
            return unknownPlace(at);
#endif
        return copyOf(at, end);
    }

private:
    [[gnu::noinline]] const std::uint8_t *copyOf(const std::uint8_t *at, const std::uint8_t *end) {
        std::memset(copy_, 0, sizeof copy_);
        std::memcpy(copy_, at, static_cast<std::size_t>(end - at));
        return copy_;
    }

    std::uint8_t copy_[kReach];
};

} // namespace
} // namespace velnls
