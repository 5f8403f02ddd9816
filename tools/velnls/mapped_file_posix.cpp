// Maps files by the POSIX calls.
#include "mapped_file.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace velnls::tool {

MappedFile::MappedFile(const std::string &path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    struct stat facts = {};
    int failure = ::fstat(descriptor, &facts) == 0 ? 0 : errno;
    if (failure == 0 && S_ISDIR(facts.st_mode)) {
        failure = EISDIR;
    }
    // An empty file cannot be mapped; it stays an empty range, which the library refuses in its own words.
    if (failure == 0 && facts.st_size > 0) {
        size_ = static_cast<std::size_t>(facts.st_size);
        address_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, descriptor, 0);
        if (address_ == MAP_FAILED) {
            failure = errno;
        }
    }
    ::close(descriptor);
    if (failure != 0) {
        throw std::system_error(failure, std::generic_category(), path);
    }
}

MappedFile::~MappedFile() {
    if (address_ != nullptr) {
        ::munmap(address_, size_);
    }
}

} // namespace velnls::tool
