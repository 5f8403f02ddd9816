#include "pages.hpp"

#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

// Machine byte order is little-endian on every machine that this runs on, so the LE names make the peers do
// the same work without a byte-order mark.
constexpr Page kPages[] = {
    {"UTF-8", "UTF-8", "UTF-8", 1},          {"UTF-16", "UTF-16LE", "UTF-16LE", 2},
    {"UTF-32", "UTF-32LE", "UTF-32LE", 4},   {"1251", "CP1251", "windows-1251", 1},
    {"1252", "CP1252", "windows-1252", 1},   {"KOI8-R", "KOI8-R", "KOI8-R", 1},
    {"IBM850", "CP850", "ibm-850", 1},       {"SHIFT-JIS", "CP932", "windows-31j", 1},
    {"EUCJIS", "EUC-JP-MS", "EUC-JP", 1},    {"CP949", "CP949", "windows-949-2000", 1},
    {"CP936", "GBK", "windows-936-2000", 1}, {"CP950", "CP950", "windows-950-2000", 1},
};

} // namespace

const Page &pageNamed(std::string_view velnlsName) {
    for (const Page &page : kPages)
        if (velnlsName == page.velnls)
            return page;
    std::fprintf(stderr, "velnls_bench: no page %.*s\n", int(velnlsName.size()), velnlsName.data());
    std::abort();
}

} // namespace bench
