// Writes by the POSIX calls.
#include "output.hpp"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace velnls::tool {

namespace {

// The name of the temporary file, where a signal handler can reach it. Empty when there is none.
char pendingTemporary[PATH_MAX];

constexpr int kFatalSignals[] = {SIGHUP, SIGINT, SIGTERM};

extern "C" void removeTemporary(int signal) {
    if (pendingTemporary[0] != '\0') {
        ::unlink(pendingTemporary);
    }
    // The default action was restored when the handler was entered.
    ::raise(signal);
}

void rememberTemporary(const std::string &path) {
    if (path.size() >= sizeof pendingTemporary) {
        return;
    }
    std::memcpy(pendingTemporary, path.c_str(), path.size() + 1);
    for (const int signal : kFatalSignals) {
        struct sigaction current = {};
        // A signal that the caller has switched off stays off.
        if (::sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_DFL) {
            struct sigaction action = {};
            action.sa_handler = removeTemporary;
            action.sa_flags = SA_RESETHAND;
            ::sigaction(signal, &action, nullptr);
        }
    }
}

std::system_error lastError(const std::string &name) {
    return std::system_error(errno, std::generic_category(), name);
}

// The path with symbolic links followed, so that a link stays a link and its target is replaced.
std::string followLinks(const std::string &path) {
    char *resolved = ::realpath(path.c_str(), nullptr);
    std::string result = resolved != nullptr ? resolved : path;
    std::free(resolved);
    return result;
}

} // namespace

Output::Output(const std::string &path) : name_(path) {
    if (path.empty() || path == "-") {
        name_ = "standard output";
        descriptor_ = STDOUT_FILENO;
        return;
    }
    struct stat facts = {};
    const bool exists = ::stat(path.c_str(), &facts) == 0;
    if (exists && !S_ISREG(facts.st_mode)) {
        descriptor_ = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    } else {
        path_ = followLinks(path);
        // A file that must not be written must not be replaced either.
        if (exists && ::access(path_.c_str(), W_OK) != 0) {
            throw lastError(name_);
        }
        openTemporary();
        const mode_t mask = ::umask(0);
        ::umask(mask);
        if (descriptor_ >= 0) {
            // A file that cannot be given its old mode is still a good file.
            static_cast<void>(::fchmod(descriptor_, exists ? facts.st_mode & 07777 : 0666 & ~mask));
        }
    }
    if (descriptor_ < 0) {
        throw lastError(name_);
    }
    owned_ = true;
}

void Output::openTemporary() {
    temporary_ = path_ + ".XXXXXX";
    descriptor_ = ::mkostemp(temporary_.data(), O_CLOEXEC);
    if (descriptor_ < 0) {
        temporary_.clear();
        return;
    }
    rememberTemporary(temporary_);
}

Output::~Output() {
    if (owned_) {
        ::close(descriptor_);
    }
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
        pendingTemporary[0] = '\0';
    }
}

void Output::write(const char *text, std::size_t size) {
    while (size != 0) {
        const ssize_t count = ::write(descriptor_, text, size);
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno == EPIPE) {
                throw BrokenPipe();
            }
            throw lastError(name_);
        }
        text += count;
        size -= static_cast<std::size_t>(count);
    }
}

void Output::commit() {
    if (!owned_) {
        return;
    }
    owned_ = false;
    // Some file systems tell of a full disk only here.
    if (::close(descriptor_) != 0) {
        throw lastError(name_);
    }
    if (temporary_.empty()) {
        return;
    }
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) {
        throw lastError(name_);
    }
    temporary_.clear();
    pendingTemporary[0] = '\0';
}

} // namespace velnls::tool
