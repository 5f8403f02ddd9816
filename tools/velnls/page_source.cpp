// The pages and their sources.
#include "page_source.hpp"

namespace velnls::tool {

namespace {

struct PageSource {
    const char *page;
    const char *source;
};

constexpr char kUnicodeRule[] = "the rules of the Unicode standard";

constexpr PageSource kPageSources[] = {
    {"708", "charmap ISO-8859-6 of glibc"},
    {"720", "ICU converter ibm-720"},
    {"ISO8859-1", "charmap ISO-8859-1 of glibc"},
    {"ISO8859-2", "charmap ISO-8859-2 of glibc"},
    {"ISO8859-5", "charmap ISO-8859-5 of glibc"},
    {"ISO8859-8", "charmap ISO-8859-8 of glibc"},
    {"ISO8859-15", "charmap ISO-8859-15 of glibc"},
    {"ROMAN-8", "charmap HP-ROMAN8 of glibc"},
    {"KOI8-R", "charmap KOI8-R of glibc"},
    {"MAZOVIA", "charmap IBM437 of glibc with the 18 Polish letters of the Mazovia computer"},
    {"IBM437", "charmap IBM437 of glibc"},
    {"IBM850", "charmap IBM850 of glibc"},
    {"IBM851", "charmap IBM851 of glibc, two swapped letters corrected"},
    {"IBM852", "charmap IBM852 of glibc"},
    {"IBM857", "charmap IBM857 of glibc"},
    {"IBM858", "charmap IBM858 of glibc"},
    {"IBM861", "charmap IBM861 of glibc"},
    {"IBM862", "charmap IBM862 of glibc"},
    {"IBM866", "charmap IBM866 of glibc"},
    {"IBM037", "charmap IBM037 of glibc"},
    {"IBM273", "charmap IBM273 of glibc"},
    {"IBM277", "charmap IBM277 of glibc"},
    {"IBM278", "charmap IBM278 of glibc, two swapped characters corrected"},
    {"IBM280", "charmap IBM280 of glibc"},
    {"IBM284", "charmap IBM284 of glibc"},
    {"IBM297", "charmap IBM297 of glibc"},
    {"IBM500", "charmap IBM500 of glibc"},
    {"1250", "charmap CP1250 of glibc, undefined bytes as controls"},
    {"1251", "charmap CP1251 of glibc, undefined bytes as controls"},
    {"1252", "charmap CP1252 of glibc, undefined bytes as controls"},
    {"1253", "charmap CP1253 of glibc, undefined bytes as controls"},
    {"1254", "charmap CP1254 of glibc, undefined bytes as controls"},
    {"1256", "charmap CP1256 of glibc, undefined bytes as controls"},
    {"1257", "charmap CP1257 of glibc, undefined bytes as controls"},
    {"620-2533", "charmap IBM1162 of glibc (TIS-620 with euro, quotes and dashes)"},
    {"SHIFT-JIS", "charmap WINDOWS-31J of glibc"},
    {"EUCJIS", "charmap WINDOWS-31J of glibc, moved by the arithmetic between Shift_JIS and EUC"},
    {"KSC5601", "charmap EUC-KR of glibc"},
    {"CP949", "charmap CP949 of glibc with the user-defined area of Windows"},
    {"CP1361", "charmap JOHAB of glibc, backslash in place of the won sign"},
    {"GB2312", "charmap GB2312 of glibc"},
    {"CP936", "charmap GBK of glibc with the user-defined area of ICU windows-936-2000"},
    {"BIG-5", "charmap BIG5 of glibc"},
    {"CP950", "charmap BIG5 of glibc with the user-defined area of Windows"},
    {"CP950-HKSCS", "charmap BIG5-HKSCS of glibc, codes of two characters left out"},
    {"ISO6937", "charmap ISO_6937 of glibc"},
    {"GB18030", "ICU converter gb18030, at run time"},
    {"UTF-8", kUnicodeRule},
    {"UTF-16", kUnicodeRule},
    {"UTF-16BE", kUnicodeRule},
    {"UCS2", kUnicodeRule},
    {"UTF-32", kUnicodeRule},
    {"UTF-32BE", kUnicodeRule},
};

} // namespace

std::string pageSource(const std::string &page) {
    for (const PageSource &entry : kPageSources) {
        if (page == entry.page) {
            return entry.source;
        }
    }
    return "";
}

} // namespace velnls::tool
