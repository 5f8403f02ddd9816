// Strings as calls get them: read-only, with a forbidden page behind the NUL (or behind the last byte).
#pragma once

#include "guarded_buffer.hpp"

namespace kit {

using fixture::operator+;

class GuardedText {
public:
    explicit GuardedText(std::size_t capacity = 4096) : buffer_(capacity) {}

    const char *terminated(const fixture::Bytes &text) {
        return bytes(text + fixture::Bytes{0});
    }
    // Nothing stands behind the last byte.
    const char *bytes(const fixture::Bytes &text) {
        return reinterpret_cast<const char *>(buffer_.readOnly(text));
    }

private:
    fixture::GuardedBuffer buffer_;
};

} // namespace kit
