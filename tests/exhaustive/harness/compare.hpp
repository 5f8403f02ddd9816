// One call of the library beside one run of the model, with everything compared: status, written count, the
// bytes, and that nothing behind the destination's capacity was touched. The bytes between the written ones
// and the capacity are the library's to scribble on.
#pragma once

#include "library.hpp"
#include "model/reference.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace harness {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint8_t kFill = 0xA5; // what destinations hold before a call

// "E4 C3 ...", at most the first 48 bytes.
std::string hex(const std::uint8_t *data, std::size_t length);
std::string hex(const Bytes &bytes);

// The bare call: no terminator, no intermediate buffer. The caller prepares both buffers.
struct BareResult {
    nlsStatus status;
    std::uint32_t written;
};
inline BareResult convertBare(nlsConversion *conversion, const std::uint8_t *source, std::uint32_t length,
                              std::uint8_t *destination, std::uint32_t capacity) {
    nlsStr target = {reinterpret_cast<char *>(destination), capacity, 0};
    const nlsStatus status = nlsConvertFromUCS2(conversion, source, length, &target);
    return {status, target.length};
}

// A pair of code pages in the library and in the model, with scratch memory for comparing calls.
class Pair {
public:
    Pair(const std::string &source, const std::string &target);

    [[nodiscard]] const model::Conversion &expected() const {
        return expected_;
    }
    [[nodiscard]] nlsConversion *actual() const {
        return actual_;
    }

    // Converts the whole source with `capacity` bytes of room. For chains the terminating call runs, with an
    // intermediate buffer of `intermediate` bytes.
    ::testing::AssertionResult agree(const Bytes &source, std::uint32_t capacity,
                                     std::uint32_t intermediate = 1 << 16);
    // The same through the terminating call.
    ::testing::AssertionResult agreeTerminated(const Bytes &source, std::uint32_t capacity,
                                               std::uint32_t intermediate = 1 << 16);
    // The same in check mode, and through the call that converts the source's terminator.
    ::testing::AssertionResult agreeChecked(const Bytes &source, std::uint32_t capacity);
    ::testing::AssertionResult agreeWithTerminator(const Bytes &source, std::uint32_t capacity);
    ::testing::AssertionResult agreeCharacter(std::uint32_t character);

    // What the model needs to convert all of `source`.
    std::uint32_t need(const Bytes &source);

private:
    void prepare(const Bytes &source, std::uint32_t capacity, std::uint32_t intermediate);
    ::testing::AssertionResult verdict(const char *call, const Bytes &source, std::uint32_t capacity,
                                       const model::Outcome &expected, nlsStatus status,
                                       std::uint32_t written, std::size_t compared) const;
    [[nodiscard]] std::size_t comparable(const model::Outcome &expected, std::uint32_t behind) const;

    std::string name_;
    model::Conversion expected_;
    nlsConversion *actual_;
    Bytes source_; // with NULs behind
    Bytes expectedOut_;
    Bytes actualOut_;
    Bytes expectedMiddle_;
    Bytes actualMiddle_;
};

} // namespace harness
