// The fixed-width decimal fields of the data file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace velnls::nlsgen {

// `width` digits with leading zeros. The value must fit: the checks before have seen to that.
inline void putNumber(char *field, std::size_t width, std::size_t value) {
    for (std::size_t i = width; i-- > 0; value /= 10)
        field[i] = static_cast<char>('0' + value % 10);
}

// The field's value as the library's reader takes it: blanks, tabs and line feeds, a sign, digits up to the
// first other character.
inline long readNumber(const char *field, std::size_t width) {
    std::size_t at = 0;
    while (at < width && (field[at] == ' ' || field[at] == '\t' || field[at] == '\n'))
        at++;
    bool negative = false;
    if (at < width && (field[at] == '+' || field[at] == '-'))
        negative = field[at++] == '-';
    long value = 0;
    for (; at < width && field[at] >= '0' && field[at] <= '9'; at++)
        value = value * 10 + (field[at] - '0');
    return negative ? -value : value;
}

} // namespace velnls::nlsgen
