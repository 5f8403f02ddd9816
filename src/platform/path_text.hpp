// The path of a file that is about to be opened, put together in a buffer of its own.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace velnls::platform {

class PathText {
public:
    // Not more of the text than is read: a whole empty one would have to lie in the library to be copied.
    PathText() {
        text_[0] = '\0';
    }
    // Keeps what fits with a NUL behind it; a path that does not fit is no path.
    PathText &operator<<(std::string_view part) {
        if (part.size() >= sizeof text_ - length_) {
            whole_ = false;
            return *this;
        }
        std::memcpy(text_ + length_, part.data(), part.size());
        length_ += part.size();
        text_[length_] = '\0';
        return *this;
    }
    [[nodiscard]] bool isEmpty() const {
        return whole_ && length_ == 0;
    }
    // Null when a part did not fit.
    [[nodiscard]] const char *get() const {
        return whole_ ? text_ : nullptr;
    }

private:
    char text_[4096]; // no system opens longer ones
    std::size_t length_ = 0;
    bool whole_ = true;
};

} // namespace velnls::platform
