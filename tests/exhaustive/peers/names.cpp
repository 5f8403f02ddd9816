// The pages and what iconv and ICU call them.
#include "peer.hpp"

namespace peers {

const std::vector<Names> &peerNames() {
    static const std::vector<Names> names = {
        {"708", "ISO-8859-6", "ISO-8859-6"},
        {"720", nullptr, "ibm-720"},
        {"ISO8859-1", "ISO-8859-1", "ISO-8859-1"},
        {"ISO8859-2", "ISO-8859-2", "ISO-8859-2"},
        {"ISO8859-5", "ISO-8859-5", "ISO-8859-5"},
        {"ISO8859-8", "ISO-8859-8", "ISO-8859-8"},
        {"ISO8859-15", "ISO-8859-15", "ISO-8859-15"},
        {"ROMAN-8", "HP-ROMAN8", "hp-roman8"},
        {"KOI8-R", "KOI8-R", "KOI8-R"},
        {"MAZOVIA", nullptr, nullptr},
        {"IBM437", "IBM437", "ibm-437"},
        {"IBM850", "IBM850", "ibm-850"},
        {"IBM851", "IBM851", "ibm-851"},
        {"IBM852", "IBM852", "ibm-852"},
        {"IBM857", "IBM857", "ibm-857"},
        {"IBM858", "IBM858", "ibm-858"},
        {"IBM861", "IBM861", "ibm-861"},
        {"IBM862", "IBM862", "ibm-862"},
        {"IBM866", "IBM866", "ibm-866"},
        {"IBM037", "IBM037", "ibm-37"},
        {"IBM273", "IBM273", "ibm-273"},
        {"IBM277", "IBM277", "ibm-277"},
        {"IBM278", "IBM278", "ibm-278"},
        {"IBM280", "IBM280", "ibm-280"},
        {"IBM284", "IBM284", "ibm-284"},
        {"IBM297", "IBM297", "ibm-297"},
        {"IBM500", "IBM500", "ibm-500"},
        {"1250", "CP1250", "windows-1250"},
        {"1251", "CP1251", "windows-1251"},
        {"1252", "CP1252", "windows-1252"},
        {"1253", "CP1253", "windows-1253"},
        {"1254", "CP1254", "windows-1254"},
        {"1256", "CP1256", "windows-1256"},
        {"1257", "CP1257", "windows-1257"},
        {"620-2533", "IBM1162", "ibm-1162"},
        {"SHIFT-JIS", "CP932", "windows-31j"},
        {"EUCJIS", "EUC-JP-MS", "EUC-JP"},
        {"KSC5601", "EUC-KR", "EUC-KR"},
        {"CP949", "CP949", "windows-949-2000"},
        {"CP1361", "JOHAB", nullptr},
        {"GB2312", "GB2312", "ibm-1383"},
        {"CP936", "GBK", "windows-936-2000"},
        {"BIG-5", "BIG5", "Big5"},
        {"CP950", "CP950", "windows-950-2000"},
        {"CP950-HKSCS", "BIG5-HKSCS", "ibm-1375"},
        {"ISO6937", "ISO_6937", nullptr},
    };
    return names;
}

} // namespace peers
