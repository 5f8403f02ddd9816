// Children by fork, and the loader's functions in place of the C library's.
#include <gtest/gtest.h>

#include "process_parts.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace process {

namespace {
int report = -1; // in a child: where the statuses seen are written
}

void isolated(const std::function<void()> &body) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        close(ends[0]);
        report = ends[1];
        body();
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    close(ends[1]);
    std::string rows;
    char part[4096];
    for (ssize_t size = 0; (size = read(ends[0], part, sizeof part)) > 0;)
        rows.append(part, static_cast<std::size_t>(size));
    close(ends[0]);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << "the process of this case: " << (WIFSIGNALED(status) ? "signal " : "exit ")
        << (WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status));
    countRows(rows);
}

bool isChild() {
    return report >= 0;
}

bool reportRow(const std::string &row) {
    const std::string line = row + "\n";
    return report < 0 || write(report, line.data(), line.size()) == static_cast<ssize_t>(line.size());
}

std::string makeFolder() {
    std::string name = std::filesystem::temp_directory_path() / "velnls-icu-XXXXXX";
    return mkdtemp(name.data()) == nullptr ? std::string("/nonexistent") : name;
}

void refuseLargeBlocks() {
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = 160U << 20;
    ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
}

void setVariable(const char *name, const std::string &value) {
    setenv(name, value.c_str(), 1);
}

void clearVariable(const char *name) {
    unsetenv(name);
}

} // namespace process

// Sanitizers look names up before anything is ready: their builds see nothing of the loader.
#if !VELNLS_SANITIZED

namespace {
template <typename Function>
Function real(const char *name) {
    return reinterpret_cast<Function>(dlvsym(RTLD_NEXT, name, "GLIBC_2.34"));
}
} // namespace

// These stand before the C library's own for everything that this program loads.
extern "C" {

void *dlopen(const char *path, int mode) noexcept;
void *dlsym(void *library, const char *name) noexcept;
int dlclose(void *library) noexcept;

void *dlopen(const char *path, int mode) noexcept {
    void *const library = real<void *(*)(const char *, int)>("dlopen")(path, mode);
    if (path != nullptr)
        process::loader().loaded(path, library);
    return library;
}

void *dlsym(void *library, const char *name) noexcept {
    if (process::loader().isHidden(name))
        return nullptr;
    return real<void *(*)(void *, const char *)>("dlsym")(library, name);
}

int dlclose(void *library) noexcept {
    process::loader().unloading(library);
    return real<int (*)(void *)>("dlclose")(library);
}

} // extern "C"

#endif
