// A file mapped into memory for reading.
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace velnls::tool {

// Holds the mapping for its lifetime. Throws std::system_error naming the file when it cannot be opened or
// mapped.
class MappedFile {
public:
    explicit MappedFile(const std::string &path);
    ~MappedFile();
    MappedFile(const MappedFile &) = delete;
    MappedFile &operator=(const MappedFile &) = delete;

    std::span<const unsigned char> bytes() const {
        return {static_cast<const unsigned char *>(address_), size_};
    }

private:
    void *address_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace velnls::tool
