// Random numbers of 32 bits, the same on every machine for one seed.
#pragma once

#include <cstdint>
#include <random>

namespace harness {

class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}

    std::uint32_t next() {
        return static_cast<std::uint32_t>(engine_());
    }
    // 0 to limit - 1.
    std::uint32_t below(std::uint32_t limit) {
        return next() % limit;
    }

private:
    std::mt19937 engine_;
};

// The seed of the random tests: VELNLS_TEST_SEED, or a fixed one.
std::uint32_t seed();

} // namespace harness
