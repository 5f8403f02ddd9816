// Libraries, files and environment of POSIX systems.
#include "platform/libraries.hpp"

#include <cstdlib>

#include <dlfcn.h>
#include <sched.h>
#include <sys/stat.h>

namespace velnls::platform {

void *loadLibrary(const char *path) {
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void unloadLibrary(void *library) {
    dlclose(library);
}

void *findSymbol(void *library, const char *name) {
    return dlsym(library, name);
}

bool isFile(const char *path) {
    struct stat file {};
    return stat(path, &file) == 0 && !S_ISDIR(file.st_mode);
}

const char *environmentValue(const char *name) {
    return std::getenv(name);
}

void yieldThread() {
    sched_yield();
}

} // namespace velnls::platform
