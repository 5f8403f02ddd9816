// See page.hpp.
#include "page.hpp"

#include "charmap.hpp"
#include "japanese.hpp"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>

namespace model {
namespace {

const std::string kCharmaps = "/usr/share/i18n/charmaps/";
const std::string kData = VELNLS_DATA_SOURCE_DIR "/";

struct Range {
    int first;
    int last;
};

void setLeads(Page &page, std::initializer_list<Range> ranges) {
    page.multibyte = true;
    for (const Range &range : ranges)
        for (int lead = range.first; lead <= range.last; ++lead)
            page.trailCount[static_cast<std::size_t>(lead)] = 1;
}

Page emptyPage(const std::string &name) {
    Page page;
    page.name = name;
    page.unicodeOfCode.assign(0x10000, kNone);
    page.codeOfUnicode.assign(0x30000, kNone);
    return page;
}

void map(Page &page, std::uint32_t code, std::uint32_t unicode, bool reversible = true) {
    page.unicodeOfCode.at(code) = unicode;
    if (reversible)
        page.codeOfUnicode.at(unicode) = code;
}

void unmap(Page &page, std::uint32_t code) {
    const std::uint32_t unicode = page.unicodeOfCode.at(code);
    page.unicodeOfCode[code] = kNone;
    if (unicode != kNone && page.codeOfUnicode[unicode] == code)
        page.codeOfUnicode[unicode] = kNone;
}

// A correction of a published table: the code's former character goes, also backwards.
void correct(Page &page, std::uint32_t code, std::uint32_t unicode) {
    unmap(page, code);
    map(page, code, unicode);
}

void addLines(Page &page, const std::vector<CharmapLine> &lines) {
    for (const CharmapLine &line : lines)
        if (line.codeLength <= 2)
            map(page, line.code, line.unicode, line.reversible);
}

Page fromCharmap(const std::string &name, const std::string &charmap) {
    Page page = emptyPage(name);
    addLines(page, readCharmap(kCharmaps + charmap + ".gz"));
    return page;
}

// Rows of user-defined characters: consecutive Unicode values in code order over the given trail ranges.
void addUserRows(Page &page, int firstLead, int lastLead, std::initializer_list<Range> trails,
                 std::uint32_t unicode) {
    for (int lead = firstLead; lead <= lastLead; ++lead)
        for (const Range &range : trails)
            for (int trail = range.first; trail <= range.last; ++trail)
                map(page, static_cast<std::uint32_t>(lead * 256 + trail), unicode++);
}

const std::map<std::string, std::string> &plainSources() {
    static const std::map<std::string, std::string> sources = {
        {"708", "ISO-8859-6"},       {"ISO8859-1", "ISO-8859-1"}, {"ISO8859-2", "ISO-8859-2"},
        {"ISO8859-5", "ISO-8859-5"}, {"ISO8859-8", "ISO-8859-8"}, {"ISO8859-15", "ISO-8859-15"},
        {"ROMAN-8", "HP-ROMAN8"},    {"KOI8-R", "KOI8-R"},        {"IBM437", "IBM437"},
        {"IBM850", "IBM850"},        {"IBM852", "IBM852"},        {"IBM857", "IBM857"},
        {"IBM858", "IBM858"},        {"IBM861", "IBM861"},        {"IBM862", "IBM862"},
        {"IBM866", "IBM866"},        {"IBM037", "IBM037"},        {"IBM273", "IBM273"},
        {"IBM277", "IBM277"},        {"IBM280", "IBM280"},        {"IBM284", "IBM284"},
        {"IBM297", "IBM297"},        {"IBM500", "IBM500"},        {"620-2533", "IBM1162"},
    };
    return sources;
}

Page windowsPage(const std::string &name) {
    Page page = fromCharmap(name, "CP" + name);
    for (std::uint32_t code = 0x80; code < 0xA0; ++code)
        if (page.unicodeOfCode[code] == kNone)
            map(page, code, code);
    return page;
}

// The published descriptions of the Polish page, written down a second time on purpose.
Page mazovia() {
    Page page = fromCharmap("MAZOVIA", "IBM437");
    static constexpr std::uint32_t kLetters[][2] = {
        {0x86, 0x0105}, {0x8D, 0x0107}, {0x8F, 0x0104}, {0x90, 0x0118}, {0x91, 0x0119}, {0x92, 0x0142},
        {0x95, 0x0106}, {0x98, 0x015A}, {0x9C, 0x0141}, {0x9E, 0x015B}, {0xA0, 0x0179}, {0xA1, 0x017B},
        {0xA2, 0x00F3}, {0xA3, 0x00D3}, {0xA4, 0x0144}, {0xA5, 0x0143}, {0xA6, 0x017A}, {0xA7, 0x017C},
    };
    for (const auto &letter : kLetters)
        correct(page, letter[0], letter[1]);
    return page;
}

Page ibm851() {
    Page page = fromCharmap("IBM851", "IBM851");
    for (const std::uint32_t code : {0xB7u, 0xB8u, 0xF7u})
        unmap(page, code);
    map(page, 0xB7, 0x039C);
    map(page, 0xB8, 0x039D);
    map(page, 0xF7, 0x00B8);
    return page;
}

Page ibm278() {
    Page page = fromCharmap("IBM278", "IBM278");
    for (const std::uint32_t code : {0x71u, 0xE0u})
        unmap(page, code);
    map(page, 0x71, 0x005C);
    map(page, 0xE0, 0x00C9);
    return page;
}

// No charmap: the upper half is our own table, the lower half is ASCII.
Page page720() {
    Page page = emptyPage("720");
    for (std::uint32_t code = 0; code < 0x80; ++code)
        map(page, code, code);
    addLines(page, readPairs(kData + "720.map"));
    return page;
}

Page shiftJis() {
    Page page = fromCharmap("SHIFT-JIS", "WINDOWS-31J");
    setLeads(page, {{0x81, 0x9F}, {0xE0, 0xFC}});
    return page;
}

// The image of SHIFT-JIS under the arithmetic of the Japanese converters.
Page eucJis() {
    const Page &source = model::page("SHIFT-JIS");
    Page page = emptyPage("EUCJIS");
    setLeads(page, {{0x8E, 0x8E}, {0xA1, 0xFE}});
    for (int pass = 0; pass < 2; ++pass) {
        for (std::uint32_t code = 0; code < 0x10000; ++code) {
            const std::uint32_t unicode = source.unicodeOfCode[code];
            const std::uint32_t euc = eucOfShiftJis(code);
            if (unicode == kNone || euc == kNone)
                continue;
            // The code that turns back in SHIFT-JIS turns back here; where that one has no form in this
            // page, another code of the same character takes its place.
            const bool preferred = source.codeOfUnicode[unicode] == code;
            if (pass == 0 && preferred)
                map(page, euc, unicode);
            if (pass == 1 && !preferred)
                map(page, euc, unicode, page.codeOfUnicode[unicode] == kNone);
        }
    }
    return page;
}

Page cp949() {
    Page page = fromCharmap("CP949", "CP949");
    setLeads(page, {{0x81, 0xFE}});
    addUserRows(page, 0xC9, 0xC9, {{0xA1, 0xFE}}, 0xE000);
    addUserRows(page, 0xFE, 0xFE, {{0xA1, 0xFE}}, 0xE05E);
    map(page, 0x80, 0x0080);
    map(page, 0xFF, 0xF8F7);
    return page;
}

Page cp1361() {
    Page page = fromCharmap("CP1361", "JOHAB");
    setLeads(page, {{0x84, 0xD3}, {0xD8, 0xDE}, {0xE0, 0xF9}});
    correct(page, 0x5C, 0x005C);
    return page;
}

Page cp936() {
    Page page = fromCharmap("CP936", "GBK");
    setLeads(page, {{0x81, 0xFE}});
    addLines(page, readPairs(kData + "cp936-user.map"));
    map(page, 0xFF, 0xF8F5);
    return page;
}

Page cp950() {
    Page page = fromCharmap("CP950", "BIG5");
    setLeads(page, {{0x81, 0xFE}});
    const std::initializer_list<Range> trails = {{0x40, 0x7E}, {0xA1, 0xFE}};
    addUserRows(page, 0xFA, 0xFE, trails, 0xE000);
    addUserRows(page, 0x8E, 0xA0, trails, 0xE311);
    addUserRows(page, 0x81, 0x8D, trails, 0xEEB8);
    map(page, 0xFF, 0xF8F8);
    return page;
}

Page hkscs() {
    Page page = fromCharmap("CP950-HKSCS", "BIG5-HKSCS");
    setLeads(page, {{0x81, 0xFE}});
    return page;
}

Page iso6937() {
    Page page = fromCharmap("ISO6937", "ISO_6937");
    setLeads(page, {{0xC1, 0xCF}});
    for (std::uint32_t lead = 0xC1; lead <= 0xCF; ++lead)
        unmap(page, lead); // a non-spacing accent alone is no character
    return page;
}

Page build(const std::string &name) {
    if (const auto plain = plainSources().find(name); plain != plainSources().end())
        return fromCharmap(name, plain->second);
    if (name.size() == 4 && name.rfind("125", 0) == 0)
        return windowsPage(name);
    if (name == "720")
        return page720();
    if (name == "MAZOVIA")
        return mazovia();
    if (name == "IBM851")
        return ibm851();
    if (name == "IBM278")
        return ibm278();
    if (name == "SHIFT-JIS")
        return shiftJis();
    if (name == "EUCJIS")
        return eucJis();
    if (name == "CP949")
        return cp949();
    if (name == "CP1361")
        return cp1361();
    if (name == "CP936")
        return cp936();
    if (name == "CP950")
        return cp950();
    if (name == "CP950-HKSCS")
        return hkscs();
    if (name == "ISO6937")
        return iso6937();
    const std::map<std::string, std::string> leadsFromA1 = {
        {"KSC5601", "EUC-KR"}, {"GB2312", "GB2312"}, {"BIG-5", "BIG5"}};
    if (const auto found = leadsFromA1.find(name); found != leadsFromA1.end()) {
        Page page = fromCharmap(name, found->second);
        setLeads(page, {{0xA1, 0xFE}});
        return page;
    }
    throw std::runtime_error("no such page: " + name);
}

std::vector<std::pair<std::string, std::string>> makePairs() {
    const std::vector<std::vector<std::string>> groups = {
        {"1252", "ISO8859-1", "ISO8859-15", "IBM850", "IBM858", "IBM437", "ROMAN-8"},
        {"1250", "ISO8859-2", "IBM852", "MAZOVIA"},
        {"1251", "ISO8859-5", "KOI8-R", "IBM866"},
        {"1253", "IBM851"},
        {"1254", "IBM857"},
        {"1256", "720", "708"},
        {"ISO8859-8", "IBM862"}};
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const auto &group : groups)
        for (const auto &source : group)
            for (const auto &target : group)
                if (source != target)
                    pairs.emplace_back(source, target);
    const auto both = [&](const std::string &one, const std::string &other) {
        pairs.emplace_back(one, other);
        pairs.emplace_back(other, one);
    };
    for (const auto &name : singleBytePages())
        if (isEbcdic(name))
            for (const char *other : {"ISO8859-1", "1252", "IBM850"})
                both(name, other);
    both("IBM861", "1252");
    both("IBM861", "IBM850");
    return pairs;
}

} // namespace

std::uint32_t Page::toUnicode(std::uint32_t code) const {
    if (code == 0)
        return 0;
    const std::uint32_t unicode = unicodeOfCode[code & 0xFFFF];
    if (unicode != kNone)
        return unicode;
    return code < 127 ? code : kNone;
}

std::uint32_t Page::fromUnicode(std::uint32_t unicode) const {
    if (unicode == 0)
        return 0;
    if (unicode < codeOfUnicode.size() && codeOfUnicode[unicode] != kNone)
        return codeOfUnicode[unicode];
    return unicode < 127 ? unicode : kNone;
}

const Page &page(const std::string &name) {
    static std::recursive_mutex lock; // one page is the image of another
    static std::map<std::string, std::unique_ptr<Page>> pages;
    const std::lock_guard<std::recursive_mutex> guard(lock);
    std::unique_ptr<Page> &slot = pages[name];
    if (!slot) {
        Page built = build(name);
        built.substitution = isEbcdic(name) ? 0x6F : '?';
        const auto isMapped = [](std::uint32_t value) { return value != kNone; };
        built.codes = static_cast<std::size_t>(
            std::count_if(built.unicodeOfCode.begin(), built.unicodeOfCode.end(), isMapped));
        built.reversible = static_cast<std::size_t>(
            std::count_if(built.codeOfUnicode.begin(), built.codeOfUnicode.end(), isMapped));
        slot = std::make_unique<Page>(std::move(built));
    }
    return *slot;
}

const std::vector<std::string> &singleBytePages() {
    static const std::vector<std::string> names = {
        "708",     "720",    "ISO8859-1", "ISO8859-2", "ISO8859-5", "ISO8859-15", "ISO8859-8",
        "ROMAN-8", "KOI8-R", "MAZOVIA",   "IBM437",    "IBM850",    "IBM852",     "IBM857",
        "IBM858",  "IBM861", "IBM862",    "IBM866",    "IBM851",    "IBM278",     "IBM037",
        "IBM273",  "IBM277", "IBM280",    "IBM284",    "IBM297",    "IBM500",     "1250",
        "1251",    "1252",   "1253",      "1254",      "1256",      "1257",       "620-2533"};
    return names;
}

const std::vector<std::string> &multibytePages() {
    static const std::vector<std::string> names = {"SHIFT-JIS", "EUCJIS",      "KSC5601", "CP949",
                                                   "CP1361",    "GB2312",      "CP936",   "BIG-5",
                                                   "CP950",     "CP950-HKSCS", "ISO6937"};
    return names;
}

std::vector<std::string> allPages() {
    std::vector<std::string> names = singleBytePages();
    names.insert(names.end(), multibytePages().begin(), multibytePages().end());
    return names;
}

const std::vector<std::pair<std::string, std::string>> &byteTablePairs() {
    static const std::vector<std::pair<std::string, std::string>> pairs = makePairs();
    return pairs;
}

bool hasByteTable(const std::string &source, const std::string &target) {
    static const std::set<std::pair<std::string, std::string>> pairs(byteTablePairs().begin(),
                                                                     byteTablePairs().end());
    return pairs.count({source, target}) != 0;
}

bool isEbcdic(const std::string &name) {
    static const std::set<std::string> names = {"IBM037", "IBM273", "IBM277", "IBM278",
                                                "IBM280", "IBM284", "IBM297", "IBM500"};
    return names.count(name) != 0;
}

} // namespace model
