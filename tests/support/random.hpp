// Numbers that look random and are the same on every machine and in every run.
#pragma once

#include <cstdint>

namespace fixture {

class Random {
public:
    using result_type = std::uint32_t;

    explicit Random(std::uint32_t seed) : state_(seed * 0x9E3779B97F4A7C15U + 1) {}

    std::uint32_t operator()() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<std::uint32_t>(state_ >> 16);
    }
    // 0 to n - 1.
    std::uint32_t below(std::uint32_t n) {
        return (*this)() % n;
    }
    static constexpr result_type min() {
        return 0;
    }
    static constexpr result_type max() {
        return 0xFFFFFFFF;
    }

private:
    std::uint64_t state_;
};

} // namespace fixture
