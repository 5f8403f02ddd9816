// Replaces every occurrence of a pattern in texts of any length.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ordered_page.hpp"

namespace velnls::tool {

// The library looks at the rest of a text whole for each search, so long texts are given to it in windows
// that overlap by as much as a match can take. The time is then proportional to the text.
class Replacer {
public:
    // Pattern and replacement are in the page, without NUL; the pattern is not empty.
    Replacer(const OrderedPage &page, std::string pattern, std::string replacement,
             std::size_t windowSize = 4096);

    // Appends "text", which is well-formed and may hold NUL bytes, to "out" with all occurrences replaced.
    void append(std::string_view text, std::string &out);
    std::uint64_t count() const {
        return count_;
    }

private:
    void appendPart(std::string_view part, std::string &out);
    std::size_t boundary(std::string_view text, std::size_t limit) const;

    const OrderedPage &page_;
    std::string pattern_;
    std::string replacement_;
    std::size_t overlap_; // the most bytes that a match can take
    std::size_t windowSize_;
    std::vector<char> window_;
    std::uint64_t count_ = 0;
};

} // namespace velnls::tool
