// The directories of an environment variable such as PATH, one after the other, read as the system's own C
// run time reads them.
#pragma once

#include "platform/libraries.hpp"
#include "platform/path_text.hpp"

#include <string_view>

namespace velnls::platform {

class PathList {
public:
    // Null is an empty list. The text must outlive this object.
    explicit PathList(const char *list) : rest_(list == nullptr ? "" : list) {}

    // Puts the next directory behind what is in `path`, false at the end. Where the system quotes
    // directories, the quotes are left out, and a separator between two of them separates nothing; a quote
    // that nothing closes reaches to the end.
    bool next(PathText &path) {
        if (rest_.empty())
            return false;
        bool quoted = false;
        while (!rest_.empty()) {
            const char c = rest_.front();
            rest_.remove_prefix(1);
            if (c == kPathListQuote)
                quoted = !quoted;
            else if (c == kPathListSeparator && !quoted)
                break;
            else
                path << std::string_view(&c, 1);
        }
        return true;
    }

private:
    std::string_view rest_;
};

} // namespace velnls::platform
