// Where the tables come from: the data file that is built into the program, or a file that the user names.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "mapped_file.hpp"

namespace velnls::tool {

class DataSource {
public:
    // An empty path stands for the data file that is built in.
    explicit DataSource(const std::string &path);

    std::span<const unsigned char> bytes() const {
        return bytes_;
    }
    // How messages name it.
    const std::string &name() const {
        return name_;
    }
    bool builtIn() const {
        return file_ == nullptr;
    }

private:
    std::string name_;
    std::unique_ptr<MappedFile> file_;
    std::span<const unsigned char> bytes_;
};

} // namespace velnls::tool
