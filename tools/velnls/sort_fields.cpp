// Walks a line character by character and counts its fields.
#include "sort_fields.hpp"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace velnls::tool {

FieldRange parseFieldRange(const std::string &text) {
    FieldRange range;
    const char *const end = text.data() + text.size();
    auto [at, error] = std::from_chars(text.data(), end, range.first);
    bool good = error == std::errc() && range.first != 0;
    if (good && at != end) {
        good = *at == ',';
        const auto [behind, lastError] = std::from_chars(at + 1, end, range.last);
        good = good && lastError == std::errc() && behind == end && range.last >= range.first;
    }
    if (!good) {
        throw std::runtime_error("'" + text + "' is no sort key: expected N or N,M, from 1, M not below N");
    }
    return range;
}

FieldCutter::FieldCutter(std::string separator, std::string blank, std::string tab,
                         std::vector<std::size_t> steps)
    : separator_(std::move(separator)), blank_(std::move(blank)), tab_(std::move(tab)),
      steps_(std::move(steps)) {}

// Bytes of the separator that stands at "at"; 0 when none does.
std::size_t FieldCutter::separatorAt(std::string_view line, std::size_t at) const {
    const auto stands = [&](const std::string &text) { return line.substr(at, text.size()) == text; };
    if (!separator_.empty()) {
        return stands(separator_) ? separator_.size() : 0;
    }
    return stands(blank_) ? blank_.size() : stands(tab_) ? tab_.size() : 0;
}

std::string_view FieldCutter::cut(std::string_view line, FieldRange range) const {
    const bool runs = separator_.empty();
    std::size_t at = 0;
    const auto skipRun = [&] {
        while (runs && at < line.size() && separatorAt(line, at) != 0) {
            at += separatorAt(line, at);
        }
    };
    skipRun();
    std::size_t field = 1;
    std::size_t begin = range.first == 1 ? at : line.size();
    while (at < line.size()) {
        const std::size_t size = separatorAt(line, at);
        if (size == 0) {
            at = std::min(line.size(), at + steps_[static_cast<unsigned char>(line[at])]);
            continue;
        }
        if (field == range.last) {
            return line.substr(begin, at - begin);
        }
        at += size;
        skipRun();
        if (++field == range.first) {
            begin = at;
            if (range.last == 0) {
                break;
            }
        }
    }
    return line.substr(begin);
}

} // namespace velnls::tool
