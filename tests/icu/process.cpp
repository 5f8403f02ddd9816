#include <gtest/gtest.h>

#include "process.hpp"

#include "status_rows.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace process {

namespace {

int report = -1; // in a child: where the statuses seen are written

struct Loader {
    std::mutex mutex;
    std::vector<std::string> calls;
    std::vector<std::string> hidden;
    std::map<void *, std::string> paths;
};
Loader &loader() {
    static Loader one;
    return one;
}

} // namespace

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
    for (std::size_t at = 0; at < rows.size();) {
        const std::size_t end = rows.find('\n', at);
        const std::size_t blank = rows.find(' ', at);
        const int number = std::stoi(rows.substr(blank + 1, end - blank - 1));
        EXPECT_TRUE(
            fixture::gives(rows.substr(at, blank - at).c_str(), number, static_cast<nlsStatus>(number)));
        at = end + 1;
    }
}

testing::AssertionResult seen(const char *exportName, std::int32_t expected, std::uint32_t actual) {
    if (static_cast<std::int32_t>(actual) != expected)
        return testing::AssertionFailure()
               << exportName << " gave " << static_cast<std::int32_t>(actual) << " instead of " << expected;
    const std::string row = std::string(exportName) + " " + std::to_string(expected) + "\n";
    if (report >= 0 && write(report, row.data(), row.size()) != static_cast<ssize_t>(row.size()))
        return testing::AssertionFailure() << "no report";
    return testing::AssertionSuccess();
}

std::vector<std::string> loaderCalls() {
    const std::scoped_lock lock(loader().mutex);
    return loader().calls;
}

void forgetLoaderCalls() {
    const std::scoped_lock lock(loader().mutex);
    loader().calls.clear();
}

void hideSymbol(const std::string &name) {
    const std::scoped_lock lock(loader().mutex);
    loader().hidden.push_back(name);
}

Home::Home() {
    std::string name = std::filesystem::temp_directory_path() / "velnls-icu-XXXXXX";
    path_ = mkdtemp(name.data()) == nullptr ? std::string("/nonexistent") : name;
    std::filesystem::create_directory(bin());
}

Home::~Home() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

void Home::put(const std::string &built, const std::string &name) const {
    std::filesystem::copy_file(std::string(VELNLS_FAKES) + "/" + built, bin() + "/" + name);
}

void Home::putIcu() const {
    put("data.so", "icudata-qmx.so");
    put("common.so", "icuuc-qmx.so");
    put("languages.so", "icui18n-qmx.so");
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
bool isOfInterest(const char *name) {
    const std::string text(name);
    return text.rfind("ucnv_", 0) == 0 || text.rfind("ucol_", 0) == 0 || text.rfind("UserSort", 0) == 0;
}
bool isLibraryOfInterest(const std::string &path) {
    return path.find("-qmx") != std::string::npos || path.find("usortwin") != std::string::npos;
}
} // namespace

// These stand before the C library's own for everything that this program loads.
extern "C" {

void *dlopen(const char *path, int mode);
void *dlsym(void *library, const char *name);
int dlclose(void *library);

void *dlopen(const char *path, int mode) {
    void *const library = real<void *(*)(const char *, int)>("dlopen")(path, mode);
    if (path == nullptr || !isLibraryOfInterest(path))
        return library;
    process::Loader &log = process::loader();
    const std::scoped_lock lock(log.mutex);
    log.calls.push_back(std::string("load ") + path);
    log.paths[library] = path;
    return library;
}

void *dlsym(void *library, const char *name) {
    if (isOfInterest(name)) {
        process::Loader &log = process::loader();
        const std::scoped_lock lock(log.mutex);
        log.calls.push_back(std::string("find ") + name);
        if (std::find(log.hidden.begin(), log.hidden.end(), name) != log.hidden.end())
            return nullptr;
    }
    return real<void *(*)(void *, const char *)>("dlsym")(library, name);
}

int dlclose(void *library) {
    {
        process::Loader &log = process::loader();
        const std::scoped_lock lock(log.mutex);
        if (log.paths.count(library) != 0)
            log.calls.push_back("unload " + log.paths[library]);
    }
    return real<int (*)(void *)>("dlclose")(library);
}

} // extern "C"

#endif
