// A string as the orders read it: from its first byte to a NUL or to its bound, whichever comes first.
#pragma once

#include <cstdint>

namespace velnls {

[[gnu::always_inline]] inline const std::uint8_t *bytesOf(const char *text) {
    return reinterpret_cast<const std::uint8_t *>(text);
}
// What is found points into the caller's text, which the caller may write to.
[[gnu::always_inline]] inline char *callersText(const std::uint8_t *at) {
    return reinterpret_cast<char *>(const_cast<std::uint8_t *>(at));
}

struct Text {
    const std::uint8_t *at;
    const std::uint8_t *end; // unbounded: the highest address, which no text reaches

    [[nodiscard]] bool ended() const {
        return at == end || *at == 0;
    }
    // Bytes from here that may be looked at, up to `wanted`; fewer where the bound or the NUL comes first.
    [[nodiscard]] unsigned available(unsigned wanted) const {
        unsigned count = 0;
        while (count < wanted && at + count != end && at[count] != 0)
            ++count;
        return count;
    }
    void skipBlanks() {
        while (at != end && *at == ' ')
            ++at;
    }
};

inline Text terminatedText(const std::uint8_t *text) {
    constexpr std::uintptr_t kHighest = ~std::uintptr_t{0};
    return {text, reinterpret_cast<const std::uint8_t *>(kHighest)};
}

// A length of -1 means up to the NUL; any other negative one leaves nothing.
inline Text boundedText(const char *text, std::int64_t length) {
    const std::uint8_t *const at = bytesOf(text);
    if (length == -1)
        return terminatedText(at);
    return {at, length < 0 ? at : at + length};
}

// The end rule of all orders: trailing blanks are insignificant. Called when the walk of at least one has
// ended.
inline int compareRests(Text a, Text b) {
    if (!a.ended()) {
        a.skipBlanks();
        return a.ended() ? 0 : 1;
    }
    b.skipBlanks();
    return b.ended() ? 0 : -1;
}

} // namespace velnls
