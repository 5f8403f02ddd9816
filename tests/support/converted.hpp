// Runs text through a conversion with read-only sources and destinations of exact size.
#pragma once

#include "bytes.hpp"

#include "velnls.h"

#include <gtest/gtest.h>

#include <iosfwd>

namespace fixture {

inline constexpr std::uint32_t kNotWritten = 0xABCDEF01; // what a count holds before the call
inline constexpr unsigned char kFiller = 0xEE;           // what a destination holds before the call

// What a conversion call left behind.
struct Converted {
    nlsStatus status = 0;
    std::uint32_t written = kNotWritten;
    Bytes destination; // all of it, `capacity` bytes

    // The written part; empty when the count says nonsense.
    [[nodiscard]] Bytes text() const;
};

// nlsConvertFromUCS2: exactly these bytes, without an intermediate buffer.
// The source is followed by one zero byte and then by a forbidden page.
Converted convert(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity);

// nlsConvertNLSCheck: converts the terminator as well and drops it again.
Converted convertCheck(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity);

// nlsConvertNLS with an intermediate buffer of the given size (0: the argument is null).
Converted convertText(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity,
                      std::uint32_t intermediate = 0);

// nlsConvertToUCS2: converts the terminator as well.
Converted convertWithTerminator(nlsConversion *conversion, const Bytes &source, std::uint32_t capacity);

// Bytes as hexadecimal text, for messages.
std::string hex(const Bytes &bytes);

// Same status and, unless `expected` was not counted, same written bytes.
testing::AssertionResult agree(const Converted &expected, const Converted &actual);

} // namespace fixture
