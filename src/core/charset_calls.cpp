// nlsGetOSCharset, nlsGetVelCharset: from the system's name of a code page to the library's.
#include "core/text.hpp"
#include "platform/thread_locale.hpp"

#include "velnls.h"

#include <cstring>

using namespace velnls;

namespace {

struct SystemPage {
    char key[8];
    char name[12];
};

// What the system calls its pages.
constexpr SystemPage kSystemPages[] = {
    {"1252", "1252"}, {"1250", "1250"}, {"1251", "1251"},      {"1253", "1253"},     {"1254", "1254"},
    {"1256", "1256"}, {"1257", "1257"}, {"1255", "ISO8859-8"}, {"932", "SHIFT-JIS"}, {"1361", "CP1361"},
    {"949", "CP949"}, {"936", "CP936"}, {"950", "CP950"},      {"CP950", "CP950"},   {"874", "620-2533"},
};

// The library's own names, which stand for themselves.
constexpr char kOwnNames[][12] = {
    "709",     "708",         "721",       "711",       "786",       "714",        "710",     "720",
    "ISO6937", "ISO8859-1",   "ISO8859-2", "ISO8859-5", "ISO8859-8", "ISO8859-15", "ROMAN-8", "MAZOVIA",
    "KOI8-R",  "IBM850",      "IBM851",    "IBM852",    "IBM857",    "IBM858",     "IBM861",  "IBM862",
    "IBM866",  "IBM437",      "IBM037",    "IBM278",    "IBM280",    "IBM500",     "IBM297",  "IBM273",
    "IBM277",  "IBM284",      "1250",      "1251",      "1252",      "1253",       "1254",    "1256",
    "1257",    "SHIFT-JIS",   "EUCJIS",    "KSC5601",   "BIG-5",     "GB2312",     "CP949",   "CP1361",
    "CP950",   "CP950-HKSCS", "CP936",     "620-2533",  "UTF-8",     "UTF-16",     "UTF-32",  "UCS2",
};
static_assert(sizeof kOwnNames / sizeof kOwnNames[0] == 56);

constexpr char kTaiwan[] = "CP950";
constexpr char kHongKong[] = "CP950-HKSCS";

// Looks a name up in both lists; `isName` gives a status and tells whether a listed name is the one.
template <typename IsName>
nlsStatus findName(IsName isName, const char *&found) {
    bool same = false;
    for (const SystemPage &page : kSystemPages) {
        found = page.name;
        if (const nlsStatus status = isName(page.key, same); status != NLS_OK || same)
            return status;
    }
    for (const char *const name : kOwnNames) {
        found = name;
        if (const nlsStatus status = isName(name, same); status != NLS_OK || same)
            return status;
    }
    return NLS_E_END;
}

bool threadIsInHongKong() {
    constexpr char kName[] = "Hong Kong";
    char country[40] = {};
    if (platform::threadCountryName(country, sizeof country) == 0)
        return false;
    country[sizeof kName - 1] = '\0'; // the system may say more, such as "Hong Kong SAR"
    return sameName(country, kName);
}

// Whether the data file has the Hong Kong page. A list of pages that is too long to look through is a no.
bool offersHongKong(nlsHandle *handle) {
    constexpr std::uint32_t kLongestList = 700;
    std::uint32_t length = 0;
    if (nlsGetIntNLSProperty(handle, 1, &length) != NLS_OK || length >= kLongestList)
        return false;
    char buffer[1000];
    nlsStr pages;
    return nlsInitString(buffer, sizeof buffer, &pages) == NLS_OK &&
           nlsGetStrNLSProperty(handle, 2, &pages) == NLS_OK && std::strstr(buffer, kHongKong) != nullptr;
}

} // namespace

nlsStatus nlsGetOSCharset(char *out) {
    if (out == nullptr)
        return NLS_E_NULLARG;
    out[0] = '\0';
    char page[20];
    const std::size_t count = platform::threadAnsiCodePage(page, sizeof page);
    if (count == 0)
        return NLS_E_OSLOCALE;
    std::size_t length = 0;
    while (length < count && length < sizeof page - 1 && page[length] != '\0') {
        out[length] = page[length];
        ++length;
    }
    out[length] = '\0';
    return NLS_OK;
}

nlsStatus nlsGetVelCharset(nlsHandle *handle, nlsLocale *locale, const char *osName, char *out) {
    if (osName == nullptr || out == nullptr)
        return NLS_E_NULLARG;
    const char *found = kTaiwan;
    if (sameName(osName, "950")) {
        // One number, two pages: the thread's country decides.
        if (threadIsInHongKong() && (handle == nullptr || offersHongKong(handle)))
            found = kHongKong;
    } else {
        const auto isNameInLocale = [&](const char *name, bool &same) {
            constexpr std::int16_t kIgnoreCase = 0;
            std::int16_t order = 1; // an ICU collation may leave it unwritten
            const nlsStatus status =
                nlsCompare(locale, osName, name, kIgnoreCase, &order); // checks the locale
            same = order == 0;
            return status;
        };
        const auto isName = [&](const char *name, bool &same) {
            same = sameName(osName, name);
            return NLS_OK;
        };
        const nlsStatus status =
            handle == nullptr ? findName(isName, found) : findName(isNameInLocale, found);
        if (status != NLS_OK)
            return status;
    }
    std::memcpy(out, found, std::strlen(found) + 1);
    return NLS_OK;
}
