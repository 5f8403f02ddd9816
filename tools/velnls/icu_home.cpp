#include "icu_home.hpp"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace velnls::tool {

#if defined(_WIN32)

// Windows begins with the program's own folder where it looks for a bare name; and BINPATHX could not name a
// folder with characters from outside the system's code page.
void useOwnIcu() {}

#else

namespace {

constexpr char kHome[] = "BINPATHX";
constexpr char kCommonLibrary[] = "icuuc-qmx.so";

std::filesystem::path ownPath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

} // namespace

void useOwnIcu() {
    const char *const told = std::getenv(kHome);
    if (told != nullptr && *told != '\0')
        return;
    const std::filesystem::path folder = ownPath().parent_path();
    std::error_code error;
    // Only the folder "bin" of a home can be named this way.
    if (folder.filename() == "bin" && std::filesystem::exists(folder / kCommonLibrary, error))
        setenv(kHome, folder.parent_path().c_str(), 1);
}

#endif

} // namespace velnls::tool
