// One open handle on the built data file, with locales and conversions by name.
#pragma once

#include <velnls.h>

#include <cstdint>
#include <string>
#include <vector>

namespace harness {

class Library {
public:
    // Throws std::runtime_error when the data file cannot be opened.
    explicit Library(std::size_t memory = std::size_t{12} << 20);
    ~Library();
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    // Throw std::runtime_error with the names and the status when creation fails.
    nlsLocale *locale(const std::string &name);
    nlsConversion *conversion(const std::string &source, const std::string &target);

    // The status of creating a conversion, for pairs that may not exist.
    nlsStatus tryConversion(const std::string &source, const std::string &target, nlsConversion **conversion);

    nlsHandle *handle() {
        return handle_;
    }

private:
    std::vector<std::uint64_t> memory_;
    nlsHandle *handle_ = nullptr;
};

// Shared by all tests of a process that only read.
Library &library();

} // namespace harness
