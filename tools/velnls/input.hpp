// A file or standard input, read in large blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace velnls::tool {

// Failures are thrown as std::system_error naming the input.
class Input {
public:
    // "-" stands for standard input.
    explicit Input(const std::string &path);
    ~Input();
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

    // Up to "size" bytes; 0 at the end.
    std::size_t read(unsigned char *buffer, std::size_t size);
    // Bytes of a regular file that can be read; nothing for pipes and devices. Opens nothing: what goes into
    // a named pipe while it is open is gone when it is closed again. "-" stands for standard input.
    static std::optional<std::uint64_t> sizeOf(const std::string &path);
    // Whether it is the same regular file, not empty, that "descriptor" writes to.
    bool isFileOf(int descriptor) const;

    const std::string &name() const {
        return name_;
    }

private:
    std::string name_; // for messages
    int descriptor_ = -1;
};

} // namespace velnls::tool
