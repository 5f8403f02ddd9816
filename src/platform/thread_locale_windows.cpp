// The thread's locale on Windows.
#include "platform/thread_locale.hpp"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace velnls::platform {

namespace {

std::size_t ask(LCTYPE item, char *text, std::size_t size) {
    const int written = GetLocaleInfoA(GetThreadLocale(), item, text, static_cast<int>(size));
    return written < 0 ? 0 : static_cast<std::size_t>(written);
}

static_assert(LOCALE_IDEFAULTANSICODEPAGE == 4100);
static_assert(LOCALE_SENGCOUNTRY == 4098);

} // namespace

std::size_t threadAnsiCodePage(char *text, std::size_t size) {
    return ask(LOCALE_IDEFAULTANSICODEPAGE, text, size);
}

std::size_t threadCountryName(char *text, std::size_t size) {
    return ask(LOCALE_SENGCOUNTRY, text, size);
}

} // namespace velnls::platform
