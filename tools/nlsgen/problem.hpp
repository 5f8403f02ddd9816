// What stops nlsgen: a message that names the file, the line where there is one, and what was expected there.
#pragma once

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velnls::nlsgen {

// A place in a source file; line 0 means the file as a whole.
struct Place {
    std::string file;
    int line = 0;

    [[nodiscard]] std::string text() const {
        return line == 0 ? file : file + ":" + std::to_string(line);
    }
};

class Problem : public std::runtime_error {
public:
    Problem(const Place &place, std::string_view message)
        : std::runtime_error(place.text() + ": " + std::string(message)) {}
    Problem(const std::string &file, int line, std::string_view message)
        : Problem(Place{file, line}, message) {}
};

// Upper-case hexadecimal digits, at least `width` of them, as messages and dumps write codes.
inline std::string hexadecimal(std::uint32_t value, int width) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", width, value);
    return text;
}

inline std::string unicodeName(std::uint32_t codePoint) {
    return "U+" + hexadecimal(codePoint, 4);
}

} // namespace velnls::nlsgen
