// A folder that goes away with its owner, and small text files in it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velnls::nlsgen::test {

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    [[nodiscard]] const std::filesystem::path &path() const {
        return path_;
    }
    // Writes a file below the folder, making its parents; the whole path is the result.
    [[nodiscard]] std::string write(const std::string &name, std::string_view text) const;

private:
    std::filesystem::path path_;
};

std::string readText(const std::filesystem::path &path);

} // namespace velnls::nlsgen::test
