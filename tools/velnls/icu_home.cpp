#include "icu_home.hpp"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace velnls::tool {

namespace {

constexpr char kHome[] = "BINPATHX";

#if defined(_WIN32)
constexpr char kCommonLibrary[] = "icuuc-qmx.dll";

std::filesystem::path ownPath() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    return length < MAX_PATH ? std::filesystem::path(path, path + length) : std::filesystem::path();
}

void setHome(const std::filesystem::path &folder) {
    _putenv_s(kHome, folder.string().c_str());
}
#else
constexpr char kCommonLibrary[] = "icuuc-qmx.so";

std::filesystem::path ownPath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

void setHome(const std::filesystem::path &folder) {
    setenv(kHome, folder.c_str(), 1);
}
#endif

} // namespace

void useOwnIcu() {
    const char *const told = std::getenv(kHome);
    if (told != nullptr && *told != '\0')
        return;
    const std::filesystem::path folder = ownPath().parent_path();
    std::error_code error;
    // Only the folder "bin" of a home can be named this way.
    if (folder.filename() == "bin" && std::filesystem::exists(folder / kCommonLibrary, error))
        setHome(folder.parent_path());
}

} // namespace velnls::tool
