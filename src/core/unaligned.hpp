// Numbers at any address: lent memory and text have no alignment.
#pragma once

#include <cstring>

namespace velnls {

template <typename Number>
[[gnu::always_inline]] inline Number loadNumber(const void *at) {
    Number number;
    std::memcpy(&number, at, sizeof number);
    return number;
}

template <typename Number>
[[gnu::always_inline]] inline void storeNumber(void *at, Number number) {
    std::memcpy(at, &number, sizeof number);
}

// An element of a table that may stand at an odd address.
template <typename Number>
[[gnu::always_inline]] inline Number loadElement(const Number *table, std::size_t index) {
    return loadNumber<Number>(reinterpret_cast<const unsigned char *>(table) + index * sizeof(Number));
}

} // namespace velnls
