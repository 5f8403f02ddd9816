// Numbers and names as the data file writes them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velnls {

// Reads a decimal number from a field of `width` characters: blanks, tabs and line feeds, a sign, digits up
// to the first other character. A field used up before a digit reads 0. Arithmetic wraps at 32 bits.
std::int32_t parseNumber(const char *field, int width);

// Orders two names without regard to (ASCII) letter case and trailing blanks: negative, 0 or positive.
int compareNames(const char *a, const char *b);

// Whether two names begin alike, in either case: false where they cannot be the same.
inline bool beginAlike(const char *a, const char *b) {
    constexpr unsigned kCaseBit = 0x20;
    const auto firstA = static_cast<unsigned char>(*a);
    const auto firstB = static_cast<unsigned char>(*b);
    return ((firstA ^ firstB) & ~kCaseBit) == 0 || firstA <= ' ' || firstB <= ' ';
}

inline bool sameName(const char *a, const char *b) {
    return beginAlike(a, b) && compareNames(a, b) == 0;
}

// Whether a name begins with `prefix`, without regard to (ASCII) letter case.
bool hasPrefix(const char *name, const char *prefix);

// Copies a name into a 20-byte field: at most 19 characters and a NUL.
void copyName(char (&field)[20], const char *name);

} // namespace velnls
