// Text files as lines, compressed by gzip or not.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velnls::nlsgen {

// The lines of a file without their ends. Throws Problem when it cannot be read to its end.
std::vector<std::string> readLines(const std::string &path);

// The words of a line: what stands between blanks and tabs.
std::vector<std::string_view> wordsOf(std::string_view line);

// Reads all of `digits` as a hexadecimal number of at most eight digits; false when it is none.
bool parseHexadecimal(std::string_view digits, std::uint32_t &value);

} // namespace velnls::nlsgen
