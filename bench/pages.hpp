// The code pages of the benchmark, with the name that each contestant knows them by.
#pragma once

#include <string_view>

namespace bench {

struct Page {
    const char *velnls;
    const char *iconv;
    const char *icu;
    int unit; // bytes of a code unit
};

inline bool isUtf8(const Page &page) {
    return std::string_view(page.velnls) == "UTF-8";
}
inline bool isUnicode(const Page &page) {
    return std::string_view(page.velnls).substr(0, 3) == "UTF";
}

// The page of that velnls name; every name used in rows.cpp exists.
const Page &pageNamed(std::string_view velnlsName);

} // namespace bench
