// Reads a POSIX charmap as the locales package installs it. Written for the tests alone, so that a fault of
// the data file's compiler cannot hide behind a shared reader.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace model {

struct CharmapLine {
    std::uint32_t code;    // the code's bytes, first byte highest
    unsigned codeLength;   // in bytes
    std::uint32_t unicode; // one code point; lines that stand for several characters are left out
    bool reversible;       // false: code to Unicode only
};

// Throws std::runtime_error with the path when the file cannot be read.
std::vector<CharmapLine> readCharmap(const std::string &path);

// Reads our own tables: "code unicode" or "first..last unicode" in hexadecimal numbers a line, the Unicode
// values of a range counting up with the codes; '#' opens a comment.
std::vector<CharmapLine> readPairs(const std::string &path);

} // namespace model
