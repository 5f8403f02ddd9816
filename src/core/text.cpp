#include "core/text.hpp"

namespace velnls {

namespace {

// The library's own upper-casing: ASCII alone, whatever the program's locale says.
char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

bool onlyBlanks(const char *text) {
    while (*text == ' ')
        ++text;
    return *text == '\0';
}

} // namespace

std::int32_t parseNumber(const char *field, int width) {
    const char *const end = field + width;
    while (field != end && (*field == ' ' || *field == '\n' || *field == '\t'))
        ++field;
    if (field == end)
        return 0;
    const bool negative = *field == '-';
    if (*field == '-' || *field == '+')
        ++field;
    std::uint32_t value = 0;
    for (; field != end && *field >= '0' && *field <= '9'; ++field)
        value = value * 10 + static_cast<std::uint32_t>(*field - '0');
    return static_cast<std::int32_t>(negative ? 0 - value : value);
}

int compareNames(const char *a, const char *b) {
    while (*a != '\0' && *b != '\0') {
        const int difference = static_cast<signed char>(upper(*a)) - static_cast<signed char>(upper(*b));
        if (difference != 0)
            return difference;
        ++a;
        ++b;
    }
    if (*a == '\0')
        return onlyBlanks(b) ? 0 : -1;
    return onlyBlanks(a) ? 0 : 1;
}

bool hasPrefix(const char *name, const char *prefix) {
    while (*prefix != '\0' && upper(*name) == upper(*prefix)) {
        ++name;
        ++prefix;
    }
    return *prefix == '\0';
}

void copyName(char (&field)[20], const char *name) {
    std::size_t length = 0;
    while (length < sizeof field - 1 && name[length] != '\0') {
        field[length] = name[length];
        ++length;
    }
    field[length] = '\0';
}

} // namespace velnls
