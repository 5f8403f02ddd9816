// The part of a line that a sort key is made from.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velnls::tool {

// Fields N to M of a line, counted from 1; with M 0, up to the line's end.
struct FieldRange {
    std::size_t first = 1;
    std::size_t last = 0;
};

// From "N" or "N,M". Throws std::runtime_error for anything else.
FieldRange parseFieldRange(const std::string &text);

// Cuts lines into fields. With a separator, each of them ends a field, and fields may be empty. Without one,
// fields are separated by runs of blanks and tabs, and those before the first do not count.
class FieldCutter {
public:
    // "steps" has the length of a character by its first byte: a separator is not looked for within one.
    FieldCutter(std::string separator, std::string blank, std::string tab, std::vector<std::size_t> steps);
    // The bytes from the start of the range's first field to the end of its last one.
    std::string_view cut(std::string_view line, FieldRange range) const;

private:
    std::size_t separatorAt(std::string_view line, std::size_t at) const;

    std::string separator_;
    std::string blank_;
    std::string tab_;
    std::vector<std::size_t> steps_;
};

} // namespace velnls::tool
