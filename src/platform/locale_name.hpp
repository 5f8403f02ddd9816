// Names of locales as POSIX systems write them, and what Windows knows about their languages and territories.
#pragma once

namespace velnls::platform {

// A name such as "sr_RS.UTF-8@latin", taken apart. Parts that are missing are empty.
struct LocaleName {
    char language[4];  // lower case
    char territory[3]; // upper case
    enum class Script {
        kUsual,
        kLatin,
        kCyrillic,
        kDevanagari,
    } script;
};

// False for names without a language: "C", "POSIX", "", and whatever is no such name.
bool parseLocaleName(const char *name, LocaleName &out);

// The ANSI code page that Windows has for the language; 0 for the languages that it writes in Unicode alone.
int ansiCodePage(const LocaleName &name);

// The English name of the territory; null when there is none or it is unknown.
const char *countryName(const LocaleName &name);

} // namespace velnls::platform
