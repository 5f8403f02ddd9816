#include "page_plan.hpp"

namespace velnls::nlsgen {
namespace {

constexpr Range kLatin1{0x00A0, 0x00FF};
constexpr Range kLatinExtended{0x00A0, 0x017F};
constexpr Range kGreek{0x0384, 0x03CE};
constexpr Range kCyrillic{0x0400, 0x0491};
constexpr Range kHebrew{0x05D0, 0x05EA};
constexpr Range kArabic{0x060C, 0x06D2};
constexpr Range kThai{0x0E01, 0x0E5B};
constexpr Range kBytes{0x0000, 0x00FF};

constexpr SingleBytePlan kSingleByte[] = {
    {.name = "708", .charmap = "ISO-8859-6", .window = kArabic, .order = "ar"},
    {.name = "720", .charmap = "", .window = kArabic, .map = "720.map", .order = "ar"},
    {.name = "ISO8859-1", .charmap = "ISO-8859-1", .window = kLatin1},
    {.name = "ISO8859-2", .charmap = "ISO-8859-2", .window = kLatinExtended},
    {.name = "ISO8859-5", .charmap = "ISO-8859-5", .window = kCyrillic, .order = "ru"},
    {.name = "ISO8859-15", .charmap = "ISO-8859-15", .window = kLatin1},
    {.name = "ISO8859-8", .charmap = "ISO-8859-8", .window = kHebrew, .order = "he"},
    {.name = "ROMAN-8", .charmap = "HP-ROMAN8", .window = kLatin1},
    {.name = "KOI8-R", .charmap = "KOI8-R", .window = kCyrillic, .order = "ru"},
    {.name = "MAZOVIA", .charmap = "IBM437", .window = kLatinExtended, .map = "mazovia.map"},
    {.name = "IBM437", .charmap = "IBM437", .window = kLatin1},
    {.name = "IBM850", .charmap = "IBM850", .window = kLatin1},
    {.name = "IBM852", .charmap = "IBM852", .window = kLatinExtended},
    {.name = "IBM857", .charmap = "IBM857", .window = kLatinExtended},
    {.name = "IBM858", .charmap = "IBM858", .window = kLatin1},
    {.name = "IBM861", .charmap = "IBM861", .window = kLatin1},
    {.name = "IBM862", .charmap = "IBM862", .window = kHebrew, .order = "he"},
    {.name = "IBM866", .charmap = "IBM866", .window = kCyrillic, .order = "ru"},
    {.name = "IBM851", .charmap = "IBM851", .window = kGreek, .map = "ibm851.map", .order = "el"},
    {.name = "IBM278", .charmap = "IBM278", .window = kBytes, .map = "ibm278.map"},
    {.name = "IBM037", .charmap = "IBM037", .window = kBytes},
    {.name = "IBM273", .charmap = "IBM273", .window = kBytes},
    {.name = "IBM277", .charmap = "IBM277", .window = kBytes},
    {.name = "IBM280", .charmap = "IBM280", .window = kBytes},
    {.name = "IBM284", .charmap = "IBM284", .window = kBytes},
    {.name = "IBM297", .charmap = "IBM297", .window = kBytes},
    {.name = "IBM500", .charmap = "IBM500", .window = kBytes},
    {.name = "1250", .charmap = "CP1250", .window = kLatinExtended, .fillControls = true},
    {.name = "1251", .charmap = "CP1251", .window = kCyrillic, .fillControls = true, .order = "ru"},
    {.name = "1252", .charmap = "CP1252", .window = kLatin1, .fillControls = true},
    {.name = "1253", .charmap = "CP1253", .window = kGreek, .fillControls = true, .order = "el"},
    {.name = "1254", .charmap = "CP1254", .window = kLatinExtended, .fillControls = true},
    {.name = "1256", .charmap = "CP1256", .window = kArabic, .fillControls = true, .order = "ar"},
    {.name = "1257", .charmap = "CP1257", .window = kLatinExtended, .fillControls = true},
    {.name = "620-2533", .charmap = "IBM1162", .window = kThai},
};

constexpr Range kIdeographs{0x4E00, 0x9FFF};
constexpr Range kHangul{0xAC00, 0xD7A3};
constexpr Range kKana{0x3000, 0x30FF};      // with the ideographic comma and full stop
constexpr Range kFullWidth{0xFF00, 0xFF5F}; // Chinese commas, question marks, parentheses
constexpr Range kUpperPart{0xE000, 0xFFFF}; // all above the ideographs: without them the rest is short
constexpr Range kQuotes{0x2010, 0x2027};    // dashes, quotation marks, dots
constexpr Range kAccented{0x00C0, 0x017F};

constexpr MultibytePlan kMultibytePages[] = {
    {.name = "SHIFT-JIS",
     .charmap = "WINDOWS-31J",
     .leads = {{{0x81, 0x9F}, {0xE0, 0xFC}}},
     .trails = {{{0x40, 0x7E}, {0x80, 0xFC}, {}}},
     .firstLead = 0x81,
     .leadGapLow = 0x9F,
     .leadGapHigh = 0xE0,
     .lastLead = 0xFC,
     .firstTrail = 0x40,
     .lastTrail = 0xFC,
     .window = kIdeographs,
     .second = kKana},
    {.name = "EUCJIS",
     .charmap = "",
     .leads = {{{0x8E, 0x8E}, {0xA1, 0xFE}}},
     .trails = {{{0xA1, 0xFE}, {}, {}}},
     .oneColumnLeads = {0x8E, 0x8E},
     .extraFlags = file::kThroughShiftJis,
     .firstLead = 0x8E,
     .leadGapLow = 0x8E,
     .leadGapHigh = 0xA1,
     .lastLead = 0xFE,
     .firstTrail = 0xA1,
     .lastTrail = 0xFE,
     .window = kIdeographs,
     .second = kKana},
    {.name = "KSC5601",
     .charmap = "EUC-KR",
     .leads = {{{0xA1, 0xFE}, {}}},
     .trails = {{{0xA1, 0xFE}, {}, {}}},
     .firstLead = 0xA1,
     .lastLead = 0xFE,
     .firstTrail = 0xA1,
     .lastTrail = 0xFE,
     .window = kHangul,
     .second = kQuotes},
    {.name = "CP949",
     .charmap = "CP949",
     .map = "cp949-user.map",
     .leads = {{{0x81, 0xFE}, {}}},
     .trails = {{{0x41, 0x5A}, {0x61, 0x7A}, {0x81, 0xFE}}},
     .firstLead = 0x81,
     .lastLead = 0xFE,
     .firstTrail = 0x41,
     .lastTrail = 0xFE,
     .window = kHangul,
     .second = kQuotes},
    {.name = "CP1361",
     .charmap = "JOHAB",
     .map = "cp1361.map",
     .leads = {{{0x84, 0xD3}, {0xD8, 0xDE}, {0xE0, 0xF9}}},
     .trails = {{{0x31, 0x7E}, {0x81, 0xFE}, {}}},
     .firstLead = 0x84,
     .leadGapLow = 0xD3,
     .leadGapHigh = 0xD8,
     .lastLead = 0xF9,
     .firstTrail = 0x31,
     .trailGapLow = 0x7E,
     .trailGapHigh = 0x81,
     .lastTrail = 0xFE,
     .window = kHangul,
     .second = kQuotes},
    {.name = "GB2312",
     .charmap = "GB2312",
     .leads = {{{0xA1, 0xFE}, {}}},
     .trails = {{{0xA1, 0xFE}, {}, {}}},
     .firstLead = 0xA1,
     .lastLead = 0xFE,
     .firstTrail = 0xA1,
     .lastTrail = 0xFE,
     .window = kIdeographs,
     .second = kFullWidth},
    {.name = "CP936",
     .charmap = "GBK",
     .map = "cp936-user.map",
     .leads = {{{0x81, 0xFE}, {}}},
     .trails = {{{0x40, 0x7E}, {0x80, 0xFE}, {}}},
     .firstLead = 0x81,
     .lastLead = 0xFE,
     .firstTrail = 0x40,
     .trailGapLow = 0x7E,
     .trailGapHigh = 0x80,
     .lastTrail = 0xFE,
     .window = kIdeographs,
     .second = kFullWidth},
    {.name = "BIG-5",
     .charmap = "BIG5",
     .leads = {{{0xA1, 0xFE}, {}}},
     .trails = {{{0x40, 0x7E}, {0xA1, 0xFE}, {}}},
     .firstLead = 0xA1,
     .lastLead = 0xFE,
     .firstTrail = 0x40,
     .trailGapLow = 0x7E,
     .trailGapHigh = 0xA1,
     .lastTrail = 0xFE,
     .window = kIdeographs,
     .second = kUpperPart},
    {.name = "CP950",
     .charmap = "BIG5",
     .map = "cp950-user.map",
     .leads = {{{0x81, 0xFE}, {}}},
     .trails = {{{0x40, 0x7E}, {0xA1, 0xFE}, {}}},
     .firstLead = 0x81,
     .lastLead = 0xFE,
     .firstTrail = 0x40,
     .trailGapLow = 0x7E,
     .trailGapHigh = 0xA1,
     .lastTrail = 0xFE,
     .window = kIdeographs,
     .second = kFullWidth},
    {.name = "CP950-HKSCS",
     .charmap = "BIG5-HKSCS",
     .leads = {{{0x81, 0xFE}, {}}},
     .trails = {{{0x40, 0x7E}, {0xA1, 0xFE}, {}}},
     .firstLead = 0x81,
     .lastLead = 0xFE,
     .firstTrail = 0x40,
     .trailGapLow = 0x7E,
     .trailGapHigh = 0xA1,
     .lastTrail = 0xFE,
     .window = kIdeographs},
    {.name = "ISO6937",
     .charmap = "ISO_6937",
     .leads = {{{0xC1, 0xCF}, {}}},
     .trails = {{{}, {}, {}}}, // trail bytes: those of the table
     .oneColumnLeads = {0xC1, 0xCF},
     .firstLead = 0xC1,
     .lastLead = 0xCF,
     .firstTrail = 0x20,
     .lastTrail = 0x7A,
     .window = kAccented},
};

constexpr std::uint8_t kGb18030Flags = file::kMultibyte;
constexpr std::uint8_t kUtf8Flags = file::kMultibyte | file::kUtf8;
constexpr std::uint8_t kUtf16Flags = file::kMultibyte | file::kWide;
constexpr std::uint8_t kUtf32Flags = file::kMultibyte | file::kUnits32;

constexpr RulePlan kRulePages[] = {
    // The four-byte codes are walked as two units of two bytes: the first byte alone tells the length.
    {"GB18030", kGb18030Flags, {{{0x81, 0xFE}, {}, {}}}, {{{0x30, 0x39}, {0x40, 0x7E}, {0x80, 0xFE}}}, true},
    {"UTF-8", kUtf8Flags, {{{0xC0, 0xDF}, {0xE0, 0xEF}, {0xF0, 0xF7}}}, {{{0x80, 0xBF}, {}, {}}}, true},
    {"UTF-16", kUtf16Flags, {}, {}, false},
    {"UTF-16BE", kUtf16Flags, {}, {}, false},
    {"UCS2", kUtf16Flags, {}, {}, false},
    {"UTF-32", kUtf32Flags, {}, {}, false},
    {"UTF-32BE", kUtf32Flags, {}, {}, false},
};

constexpr std::string_view kWestern[] = {"1252",   "ISO8859-1", "ISO8859-15", "IBM850",
                                         "IBM858", "IBM437",    "ROMAN-8"};
constexpr std::string_view kCentral[] = {"1250", "ISO8859-2", "IBM852", "MAZOVIA"};
constexpr std::string_view kCyrillicPages[] = {"1251", "ISO8859-5", "KOI8-R", "IBM866"};
constexpr std::string_view kGreekPages[] = {"1253", "IBM851"};
constexpr std::string_view kTurkishPages[] = {"1254", "IBM857"};
constexpr std::string_view kArabicPages[] = {"1256", "720", "708"};
constexpr std::string_view kHebrewPages[] = {"ISO8859-8", "IBM862"};
constexpr std::span<const std::string_view> kDirectGroups[] = {
    kWestern, kCentral, kCyrillicPages, kGreekPages, kTurkishPages, kArabicPages, kHebrewPages};

// From 144 up a type is one of the file's own numbers, which the library replaces as it loads the table.
constexpr TypedConversion kTyped[] = {
    {"UTF-16", "UTF-8", 23},       {"UTF-8", "UTF-16", 24},       {"UCS2", "UTF-8", 21},
    {"UTF-8", "UCS2", 22},         {"UTF-16BE", "UTF-8", 144},    {"UTF-8", "UTF-16BE", 145},
    {"UTF-32", "UTF-8", 25},       {"UTF-8", "UTF-32", 26},       {"UTF-32BE", "UTF-8", 148},
    {"UTF-8", "UTF-32BE", 149},    {"UTF-16", "UTF-32", 27},      {"UTF-32", "UTF-16", 28},
    {"UCS2", "UTF-32", 27},        {"UTF-32", "UCS2", 28},        {"UTF-16BE", "UTF-32", 152},
    {"UTF-32", "UTF-16BE", 153},   {"UTF-16", "UTF-32BE", 156},   {"UTF-32BE", "UTF-16", 157},
    {"UTF-16BE", "UTF-32BE", 160}, {"UTF-32BE", "UTF-16BE", 161}, {"SHIFT-JIS", "EUCJIS", 3},
    {"EUCJIS", "SHIFT-JIS", 4},    {"GB18030", "UTF-8", 177},     {"UTF-8", "GB18030", 176},
    {"GB18030", "UTF-16", 6},      {"UTF-16", "GB18030", 5},      {"GB18030", "UCS2", 6},
    {"UCS2", "GB18030", 5},        {"GB18030", "UTF-16BE", 175},  {"UTF-16BE", "GB18030", 174},
};

} // namespace

std::span<const SingleBytePlan> singleBytePlans() {
    return kSingleByte;
}

std::span<const MultibytePlan> multibytePlans() {
    return kMultibytePages;
}

std::span<const RulePlan> rulePlans() {
    return kRulePages;
}

std::span<const std::span<const std::string_view>> directGroups() {
    return kDirectGroups;
}

std::span<const std::string_view> turkishPages() {
    return kTurkishPages;
}

std::span<const TypedConversion> typedConversions() {
    return kTyped;
}

} // namespace velnls::nlsgen
