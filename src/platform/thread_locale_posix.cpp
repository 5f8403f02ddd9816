// The thread's locale on POSIX systems: a name, from which follows what Windows would answer.
#include "platform/thread_locale.hpp"

#include "platform/locale_name.hpp"

#include <charconv>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include <langinfo.h>

namespace velnls::platform {

namespace {

// The name of what uselocale() set for this thread, else of what setlocale() set for all.
const char *currentLocale() {
#if defined(NL_LOCALE_NAME)
    return nl_langinfo(NL_LOCALE_NAME(LC_CTYPE));
#else
    return std::setlocale(LC_CTYPE, nullptr);
#endif
}

// What a program would get that took its locale from the environment.
const char *environmentLocale() {
    for (const char *const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char *const value = std::getenv(variable);
        if (value != nullptr && *value != '\0')
            return value;
    }
    return "";
}

// A program that never chose a locale runs in "C", which has no language: its user's choice counts then.
bool threadLocale(LocaleName &out) {
    const char *const current = currentLocale();
    return (current != nullptr && parseLocaleName(current, out)) || parseLocaleName(environmentLocale(), out);
}

std::size_t give(const char *answer, char *text, std::size_t size) {
    const std::size_t count = std::strlen(answer) + 1;
    if (count > size)
        return 0;
    std::memcpy(text, answer, count);
    return count;
}

} // namespace

std::size_t threadAnsiCodePage(char *text, std::size_t size) {
    LocaleName name;
    if (!threadLocale(name))
        return 0;
    char digits[8] = {};
    std::to_chars(digits, digits + sizeof digits - 1, ansiCodePage(name));
    return give(digits, text, size);
}

std::size_t threadCountryName(char *text, std::size_t size) {
    LocaleName name;
    const char *const country = threadLocale(name) ? countryName(name) : nullptr;
    return country == nullptr ? 0 : give(country, text, size);
}

} // namespace velnls::platform
