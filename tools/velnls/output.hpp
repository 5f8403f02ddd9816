// Where converted text goes: standard output, a device or pipe, or a file that appears only when it is
// complete.
#pragma once

#include <cstddef>
#include <string>

#include "input.hpp"

namespace velnls::tool {

// The reader of our output has gone; nothing is left to say.
struct BrokenPipe {};

// A regular file is written under a temporary name beside it and takes its place on commit(), so that a
// failed run leaves the old file alone, and input and output may be one file. Without commit() the temporary
// file is removed, also when the program is interrupted. One such file at a time. Failures are thrown as
// std::system_error, or as BrokenPipe.
class Output {
public:
    // An empty path or "-" stands for standard output.
    explicit Output(const std::string &path);
    ~Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    void write(const char *text, std::size_t size);
    void commit();

    int descriptor() const {
        return descriptor_;
    }
    // Refuses an input that is the file which is written to: it would grow for ever. Throws
    // std::runtime_error.
    void refuse(const Input &input) const;

private:
    std::string name_;      // for messages
    std::string path_;      // of the file to replace; symbolic links followed
    std::string temporary_; // empty when written in place
    int descriptor_ = -1;
    bool owned_ = false;
};

} // namespace velnls::tool
