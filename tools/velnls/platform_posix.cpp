// Files, terminals and programs of POSIX systems.
#include "platform.hpp"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace velnls::tool::platform {

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

void fill(FileFacts &facts, const struct stat &from) {
    facts.regular = S_ISREG(from.st_mode);
    facts.size = static_cast<std::uint64_t>(from.st_size);
    facts.identity = {from.st_dev, from.st_ino, 0};
    facts.mode = from.st_mode & 07777;
}

} // namespace

std::vector<std::string> startProgram(int argc, char **argv) {
    return {argv, argv + argc};
}

bool isTerminal(int file) {
    return ::isatty(file) != 0;
}

std::string temporaryFolder() {
    return "/tmp";
}

bool factsOf(const std::string &path, FileFacts &facts) {
    struct stat found = {};
    if (::stat(path.c_str(), &found) != 0) {
        return false;
    }
    fill(facts, found);
    return true;
}

bool factsOf(int file, FileFacts &facts) {
    struct stat found = {};
    if (::fstat(file, &found) != 0) {
        return false;
    }
    fill(facts, found);
    return true;
}

bool isReadable(const std::string &path) {
    return ::access(path.c_str(), R_OK) == 0;
}

bool isWritable(const std::string &path) {
    return ::access(path.c_str(), W_OK) == 0;
}

int openToRead(const std::string &path) {
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

int openToWrite(const std::string &path) {
    return ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
}

int openTemporary(std::string &path) {
    std::string name = path + ".XXXXXX";
    const int file = ::mkostemp(name.data(), O_CLOEXEC);
    if (file >= 0) {
        path = name;
    }
    return file;
}

int openNameless(const std::string &folder) {
    std::string name = folder + "/velnls-sort.XXXXXX";
    const int file = ::mkostemp(name.data(), O_CLOEXEC);
    if (file >= 0) {
        ::unlink(name.c_str());
    }
    return file;
}

bool closeFile(int file) {
    return ::close(file) == 0;
}

long long readFile(int file, void *buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = ::read(file, buffer, size);
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

long long writeFile(int file, const void *bytes, std::size_t size) {
    for (;;) {
        const ssize_t count = ::write(file, bytes, size);
        if (count >= 0 || errno != EINTR) {
            return count;
        }
    }
}

bool rewindFile(int file) {
    return ::lseek(file, 0, SEEK_SET) == 0;
}

void setRights(int file, const FileFacts *replaced) {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    static_cast<void>(::fchmod(file, replaced != nullptr ? replaced->mode : 0666 & ~mask));
}

std::string followLinks(const std::string &path) {
    // As many as the system follows; a link to a file that is not there yet is followed too.
    constexpr int kMostLinks = 40;
    std::filesystem::path file = path;
    for (int links = 0; links < kMostLinks; ++links) {
        std::error_code none;
        const std::filesystem::path target = std::filesystem::read_symlink(file, none);
        if (none) {
            break;
        }
        file = file.parent_path() / target; // which is the target alone where that is absolute
    }
    return file.string();
}

bool renameOver(const std::string &from, const std::string &to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

void removeFile(const std::string &path) {
    ::unlink(path.c_str());
}

void removeOnInterrupt(const std::string &path) {
    if (path.size() >= sizeof pendingTemporary) {
        return;
    }
    std::memcpy(pendingTemporary, path.c_str(), path.size() + 1);
    if (path.empty()) {
        return;
    }
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

} // namespace velnls::tool::platform
