// Reads by the POSIX calls.
#include "input.hpp"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace velnls::tool {

Input::Input(const std::string &path) : name_(path) {
    if (path == "-") {
        name_ = "(standard input)";
        descriptor_ = STDIN_FILENO;
    } else {
        descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor_ < 0) {
            throw std::system_error(errno, std::generic_category(), name_);
        }
    }
#if defined(POSIX_FADV_SEQUENTIAL)
    // Advice only: pipes refuse it and lose nothing.
    static_cast<void>(::posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL));
#endif
}

Input::~Input() {
    if (descriptor_ != STDIN_FILENO) {
        ::close(descriptor_);
    }
}

std::size_t Input::read(unsigned char *buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = ::read(descriptor_, buffer, size);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), name_);
        }
    }
}

std::optional<std::uint64_t> Input::sizeOf(const std::string &path) {
    struct stat facts = {};
    const bool standard = path == "-";
    const int failed = standard ? ::fstat(STDIN_FILENO, &facts) : ::stat(path.c_str(), &facts);
    if (failed != 0 || (!standard && ::access(path.c_str(), R_OK) != 0)) {
        throw std::system_error(errno, std::generic_category(), standard ? "(standard input)" : path);
    }
    if (!S_ISREG(facts.st_mode)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(facts.st_size);
}

bool Input::isFileOf(int descriptor) const {
    struct stat mine = {};
    struct stat other = {};
    return ::fstat(descriptor_, &mine) == 0 && ::fstat(descriptor, &other) == 0 && S_ISREG(mine.st_mode) &&
           mine.st_size != 0 && mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
}

} // namespace velnls::tool
