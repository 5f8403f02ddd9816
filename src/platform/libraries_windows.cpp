// Libraries, files and environment of Windows.
#include "platform/libraries.hpp"

#include <cstdint>
#include <cstdlib>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace velnls::platform {

void *loadLibrary(const char *path) {
    HMODULE const library = LoadLibraryA(path);
    // Values below 32 are errors of old systems.
    return reinterpret_cast<std::uintptr_t>(library) < 32 ? nullptr : reinterpret_cast<void *>(library);
}

void unloadLibrary(void *library) {
    FreeLibrary(reinterpret_cast<HMODULE>(library));
}

void *findSymbol(void *library, const char *name) {
    return reinterpret_cast<void *>(GetProcAddress(reinterpret_cast<HMODULE>(library), name));
}

bool isFile(const char *path) {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

const char *environmentValue(const char *name) {
    return std::getenv(name);
}

void yieldThread() {
    SwitchToThread();
}

} // namespace velnls::platform
