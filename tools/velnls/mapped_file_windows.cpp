// Maps files by the calls of Windows.
#include "mapped_file.hpp"

#include "platform_windows.hpp"

#include <cerrno>
#include <system_error>

namespace velnls::tool {

MappedFile::MappedFile(const std::string &path) {
    const HANDLE file = platform::openHandleToRead(path, FILE_ATTRIBUTE_NORMAL);
    if (file == INVALID_HANDLE_VALUE) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    LARGE_INTEGER size = {};
    bool failed = GetFileSizeEx(file, &size) == 0;
    // An empty file cannot be mapped; it stays an empty range, which the library refuses in its own words.
    if (!failed && size.QuadPart > 0) {
        size_ = static_cast<std::size_t>(size.QuadPart);
        const HANDLE mapping = CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
        if (mapping != nullptr) {
            address_ = MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
        }
        failed = address_ == nullptr;
        if (failed) {
            platform::setErrno();
        }
        if (mapping != nullptr) {
            CloseHandle(mapping); // the view holds it
        }
    } else if (failed) {
        platform::setErrno();
    }
    const int failure = errno;
    CloseHandle(file);
    if (failed) {
        throw std::system_error(failure, std::generic_category(), path);
    }
}

MappedFile::~MappedFile() {
    if (address_ != nullptr) {
        UnmapViewOfFile(address_);
    }
}

} // namespace velnls::tool
