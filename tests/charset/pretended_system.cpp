#include "pretended_system.hpp"

#include "platform/thread_locale.hpp"

#include <algorithm>
#include <cstring>

namespace charset {

PretendedSystem &pretendedSystem() {
    static PretendedSystem system;
    return system;
}

void newPretendedSystem() {
    pretendedSystem() = {};
}

namespace {

std::size_t answer(const std::string &what, char *text, std::size_t size) {
    if (pretendedSystem().silent)
        return 0;
    const std::size_t count = what.size() + (pretendedSystem().terminated ? 1 : 0);
    std::memset(text, '#', size); // a system may use all the room it was given
    std::memcpy(text, what.c_str(), std::min(count, size));
    return count > size ? 0 : count;
}

} // namespace

} // namespace charset

namespace velnls::platform {

using charset::pretendedSystem;

std::size_t threadAnsiCodePage(char *text, std::size_t size) {
    ++pretendedSystem().pageQueries;
    pretendedSystem().pageRoom = size;
    return charset::answer(pretendedSystem().page, text, size);
}

std::size_t threadCountryName(char *text, std::size_t size) {
    ++pretendedSystem().countryQueries;
    pretendedSystem().countryRoom = size;
    return charset::answer(pretendedSystem().country, text, size);
}

} // namespace velnls::platform
