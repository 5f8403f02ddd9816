#include "platform/locale_name.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velnls::platform {

namespace {

using Script = LocaleName::Script;

// The first row that fits a name has its page. Languages without a row are written in Unicode alone.
//
// Source: what Windows answers to LOCALE_IDEFAULTANSICODEPAGE, as Wine's locale.nls (Debian package libwine)
// has it. A test under Wine compares the two. The usual script is that of the POSIX locale, where sr_RS is
// Cyrillic.
struct PageRow {
    char language[4];
    char territory[3]; // empty: any
    Script script;     // kUsual: any
    std::uint16_t page;
};

constexpr PageRow kPages[] = {
    {"af", "", Script::kUsual, 1252},    {"ar", "", Script::kUsual, 1256},
    {"arn", "", Script::kUsual, 1252},   {"az", "", Script::kCyrillic, 1251},
    {"az", "IR", Script::kUsual, 0}, // in Arabic letters
    {"az", "", Script::kUsual, 1254},    {"ba", "", Script::kUsual, 1251},
    {"be", "", Script::kUsual, 1251},    {"bg", "", Script::kUsual, 1251},
    {"bin", "", Script::kUsual, 1252},   {"br", "", Script::kUsual, 1252},
    {"bs", "", Script::kCyrillic, 1251}, {"bs", "", Script::kUsual, 1250},
    {"ca", "", Script::kUsual, 1252},    {"ckb", "", Script::kUsual, 1256},
    {"cmn", "TW", Script::kUsual, 950}, // a name of "zh" when it is spoken
    {"co", "", Script::kUsual, 1252},    {"cs", "", Script::kUsual, 1250},
    {"cy", "", Script::kUsual, 1252},    {"da", "", Script::kUsual, 1252},
    {"de", "", Script::kUsual, 1252},    {"dsb", "", Script::kUsual, 1252},
    {"el", "", Script::kUsual, 1253},    {"en", "", Script::kUsual, 1252},
    {"es", "", Script::kUsual, 1252},    {"et", "", Script::kUsual, 1257},
    {"eu", "", Script::kUsual, 1252},    {"fa", "", Script::kUsual, 1256},
    {"ff", "", Script::kUsual, 1252},    {"fi", "", Script::kUsual, 1252},
    {"fil", "", Script::kUsual, 1252},   {"fo", "", Script::kUsual, 1252},
    {"fr", "", Script::kUsual, 1252},    {"fy", "", Script::kUsual, 1252},
    {"ga", "", Script::kUsual, 1252},    {"gd", "", Script::kUsual, 1252},
    {"gl", "", Script::kUsual, 1252},    {"gn", "", Script::kUsual, 1252},
    {"gsw", "", Script::kUsual, 1252},   {"ha", "", Script::kUsual, 1252},
    {"haw", "", Script::kUsual, 1252},   {"he", "", Script::kUsual, 1255},
    {"hr", "", Script::kUsual, 1250},    {"hsb", "", Script::kUsual, 1252},
    {"hu", "", Script::kUsual, 1250},    {"id", "", Script::kUsual, 1252},
    {"ig", "", Script::kUsual, 1252},    {"is", "", Script::kUsual, 1252},
    {"it", "", Script::kUsual, 1252},    {"iu", "", Script::kLatin, 1252},
    {"ja", "", Script::kUsual, 932},     {"jv", "", Script::kUsual, 1252},
    {"kl", "", Script::kUsual, 1252},    {"ko", "", Script::kUsual, 949},
    {"kr", "", Script::kUsual, 1252},    {"ku", "IQ", Script::kUsual, 1256},
    {"ky", "", Script::kUsual, 1251},    {"la", "", Script::kUsual, 1252},
    {"lb", "", Script::kUsual, 1252},    {"lt", "", Script::kUsual, 1257},
    {"lv", "", Script::kUsual, 1257},    {"mk", "", Script::kUsual, 1251},
    {"mn", "CN", Script::kUsual, 0}, // in Mongolian letters
    {"mn", "", Script::kUsual, 1251},    {"moh", "", Script::kUsual, 1252},
    {"ms", "", Script::kUsual, 1252},    {"nb", "", Script::kUsual, 1252},
    {"nl", "", Script::kUsual, 1252},    {"nn", "", Script::kUsual, 1252},
    {"no", "", Script::kUsual, 1252},    {"nso", "", Script::kUsual, 1252},
    {"oc", "", Script::kUsual, 1252},    {"pa", "PK", Script::kUsual, 1256},
    {"pl", "", Script::kUsual, 1250},    {"prs", "", Script::kUsual, 1256},
    {"pt", "", Script::kUsual, 1252},    {"quc", "", Script::kUsual, 1252},
    {"quz", "", Script::kUsual, 1252},   {"rm", "", Script::kUsual, 1252},
    {"ro", "", Script::kUsual, 1250},    {"ru", "", Script::kUsual, 1251},
    {"rw", "", Script::kUsual, 1252},    {"sah", "", Script::kUsual, 1251},
    {"sd", "", Script::kDevanagari, 0},  {"sd", "", Script::kUsual, 1256},
    {"se", "", Script::kUsual, 1252},    {"sk", "", Script::kUsual, 1250},
    {"sl", "", Script::kUsual, 1250},    {"sma", "", Script::kUsual, 1252},
    {"smj", "", Script::kUsual, 1252},   {"smn", "", Script::kUsual, 1252},
    {"sms", "", Script::kUsual, 1252},   {"sq", "", Script::kUsual, 1250},
    {"sr", "", Script::kLatin, 1250},    {"sr", "", Script::kUsual, 1251},
    {"sv", "", Script::kUsual, 1252},    {"sw", "", Script::kUsual, 1252},
    {"tg", "", Script::kUsual, 1251},    {"th", "", Script::kUsual, 874},
    {"tk", "", Script::kUsual, 1250},    {"tl", "", Script::kUsual, 1252}, // "fil" by its older name
    {"tn", "", Script::kUsual, 1252},    {"tr", "", Script::kUsual, 1254},
    {"tt", "", Script::kUsual, 1251},    {"tzm", "DZ", Script::kUsual, 1252},
    {"ug", "", Script::kUsual, 1256},    {"uk", "", Script::kUsual, 1251},
    {"ur", "", Script::kUsual, 1256},    {"uz", "AF", Script::kUsual, 0}, // in Arabic letters
    {"uz", "", Script::kCyrillic, 1251}, {"uz", "", Script::kUsual, 1254},
    {"vi", "", Script::kUsual, 1258},    {"wa", "", Script::kUsual, 1252},
    {"wo", "", Script::kUsual, 1252},    {"xh", "", Script::kUsual, 1252},
    {"yo", "", Script::kUsual, 1252},    {"zh", "HK", Script::kUsual, 950},
    {"zh", "MO", Script::kUsual, 950},   {"zh", "TW", Script::kUsual, 950},
    {"zh", "", Script::kUsual, 936},     {"zu", "", Script::kUsual, 1252},
};

// Two letters of the territory, its name, a NUL, and so on; an empty one ends it.
//
// Source: /usr/share/zoneinfo/iso3166.tab (Debian package tzdata), in the public domain; names in ASCII
// letters.
constexpr char kTerritories[] =
    // clang-format off
    "AD" "Andorra\0"
    "AE" "United Arab Emirates\0"
    "AF" "Afghanistan\0"
    "AG" "Antigua & Barbuda\0"
    "AI" "Anguilla\0"
    "AL" "Albania\0"
    "AM" "Armenia\0"
    "AO" "Angola\0"
    "AQ" "Antarctica\0"
    "AR" "Argentina\0"
    "AS" "Samoa (American)\0"
    "AT" "Austria\0"
    "AU" "Australia\0"
    "AW" "Aruba\0"
    "AX" "Aland Islands\0"
    "AZ" "Azerbaijan\0"
    "BA" "Bosnia & Herzegovina\0"
    "BB" "Barbados\0"
    "BD" "Bangladesh\0"
    "BE" "Belgium\0"
    "BF" "Burkina Faso\0"
    "BG" "Bulgaria\0"
    "BH" "Bahrain\0"
    "BI" "Burundi\0"
    "BJ" "Benin\0"
    "BL" "St Barthelemy\0"
    "BM" "Bermuda\0"
    "BN" "Brunei\0"
    "BO" "Bolivia\0"
    "BQ" "Caribbean NL\0"
    "BR" "Brazil\0"
    "BS" "Bahamas\0"
    "BT" "Bhutan\0"
    "BV" "Bouvet Island\0"
    "BW" "Botswana\0"
    "BY" "Belarus\0"
    "BZ" "Belize\0"
    "CA" "Canada\0"
    "CC" "Cocos (Keeling) Islands\0"
    "CD" "Congo (Dem. Rep.)\0"
    "CF" "Central African Rep.\0"
    "CG" "Congo (Rep.)\0"
    "CH" "Switzerland\0"
    "CI" "Cote d'Ivoire\0"
    "CK" "Cook Islands\0"
    "CL" "Chile\0"
    "CM" "Cameroon\0"
    "CN" "China\0"
    "CO" "Colombia\0"
    "CR" "Costa Rica\0"
    "CU" "Cuba\0"
    "CV" "Cape Verde\0"
    "CW" "Curacao\0"
    "CX" "Christmas Island\0"
    "CY" "Cyprus\0"
    "CZ" "Czech Republic\0"
    "DE" "Germany\0"
    "DJ" "Djibouti\0"
    "DK" "Denmark\0"
    "DM" "Dominica\0"
    "DO" "Dominican Republic\0"
    "DZ" "Algeria\0"
    "EC" "Ecuador\0"
    "EE" "Estonia\0"
    "EG" "Egypt\0"
    "EH" "Western Sahara\0"
    "ER" "Eritrea\0"
    "ES" "Spain\0"
    "ET" "Ethiopia\0"
    "FI" "Finland\0"
    "FJ" "Fiji\0"
    "FK" "Falkland Islands\0"
    "FM" "Micronesia\0"
    "FO" "Faroe Islands\0"
    "FR" "France\0"
    "GA" "Gabon\0"
    "GB" "Britain (UK)\0"
    "GD" "Grenada\0"
    "GE" "Georgia\0"
    "GF" "French Guiana\0"
    "GG" "Guernsey\0"
    "GH" "Ghana\0"
    "GI" "Gibraltar\0"
    "GL" "Greenland\0"
    "GM" "Gambia\0"
    "GN" "Guinea\0"
    "GP" "Guadeloupe\0"
    "GQ" "Equatorial Guinea\0"
    "GR" "Greece\0"
    "GS" "South Georgia & the South Sandwich Islands\0"
    "GT" "Guatemala\0"
    "GU" "Guam\0"
    "GW" "Guinea-Bissau\0"
    "GY" "Guyana\0"
    "HK" "Hong Kong\0"
    "HM" "Heard Island & McDonald Islands\0"
    "HN" "Honduras\0"
    "HR" "Croatia\0"
    "HT" "Haiti\0"
    "HU" "Hungary\0"
    "ID" "Indonesia\0"
    "IE" "Ireland\0"
    "IL" "Israel\0"
    "IM" "Isle of Man\0"
    "IN" "India\0"
    "IO" "British Indian Ocean Territory\0"
    "IQ" "Iraq\0"
    "IR" "Iran\0"
    "IS" "Iceland\0"
    "IT" "Italy\0"
    "JE" "Jersey\0"
    "JM" "Jamaica\0"
    "JO" "Jordan\0"
    "JP" "Japan\0"
    "KE" "Kenya\0"
    "KG" "Kyrgyzstan\0"
    "KH" "Cambodia\0"
    "KI" "Kiribati\0"
    "KM" "Comoros\0"
    "KN" "St Kitts & Nevis\0"
    "KP" "Korea (North)\0"
    "KR" "Korea (South)\0"
    "KW" "Kuwait\0"
    "KY" "Cayman Islands\0"
    "KZ" "Kazakhstan\0"
    "LA" "Laos\0"
    "LB" "Lebanon\0"
    "LC" "St Lucia\0"
    "LI" "Liechtenstein\0"
    "LK" "Sri Lanka\0"
    "LR" "Liberia\0"
    "LS" "Lesotho\0"
    "LT" "Lithuania\0"
    "LU" "Luxembourg\0"
    "LV" "Latvia\0"
    "LY" "Libya\0"
    "MA" "Morocco\0"
    "MC" "Monaco\0"
    "MD" "Moldova\0"
    "ME" "Montenegro\0"
    "MF" "St Martin (French)\0"
    "MG" "Madagascar\0"
    "MH" "Marshall Islands\0"
    "MK" "North Macedonia\0"
    "ML" "Mali\0"
    "MM" "Myanmar (Burma)\0"
    "MN" "Mongolia\0"
    "MO" "Macau\0"
    "MP" "Northern Mariana Islands\0"
    "MQ" "Martinique\0"
    "MR" "Mauritania\0"
    "MS" "Montserrat\0"
    "MT" "Malta\0"
    "MU" "Mauritius\0"
    "MV" "Maldives\0"
    "MW" "Malawi\0"
    "MX" "Mexico\0"
    "MY" "Malaysia\0"
    "MZ" "Mozambique\0"
    "NA" "Namibia\0"
    "NC" "New Caledonia\0"
    "NE" "Niger\0"
    "NF" "Norfolk Island\0"
    "NG" "Nigeria\0"
    "NI" "Nicaragua\0"
    "NL" "Netherlands\0"
    "NO" "Norway\0"
    "NP" "Nepal\0"
    "NR" "Nauru\0"
    "NU" "Niue\0"
    "NZ" "New Zealand\0"
    "OM" "Oman\0"
    "PA" "Panama\0"
    "PE" "Peru\0"
    "PF" "French Polynesia\0"
    "PG" "Papua New Guinea\0"
    "PH" "Philippines\0"
    "PK" "Pakistan\0"
    "PL" "Poland\0"
    "PM" "St Pierre & Miquelon\0"
    "PN" "Pitcairn\0"
    "PR" "Puerto Rico\0"
    "PS" "Palestine\0"
    "PT" "Portugal\0"
    "PW" "Palau\0"
    "PY" "Paraguay\0"
    "QA" "Qatar\0"
    "RE" "Reunion\0"
    "RO" "Romania\0"
    "RS" "Serbia\0"
    "RU" "Russia\0"
    "RW" "Rwanda\0"
    "SA" "Saudi Arabia\0"
    "SB" "Solomon Islands\0"
    "SC" "Seychelles\0"
    "SD" "Sudan\0"
    "SE" "Sweden\0"
    "SG" "Singapore\0"
    "SH" "St Helena\0"
    "SI" "Slovenia\0"
    "SJ" "Svalbard & Jan Mayen\0"
    "SK" "Slovakia\0"
    "SL" "Sierra Leone\0"
    "SM" "San Marino\0"
    "SN" "Senegal\0"
    "SO" "Somalia\0"
    "SR" "Suriname\0"
    "SS" "South Sudan\0"
    "ST" "Sao Tome & Principe\0"
    "SV" "El Salvador\0"
    "SX" "St Maarten (Dutch)\0"
    "SY" "Syria\0"
    "SZ" "Eswatini (Swaziland)\0"
    "TC" "Turks & Caicos Is\0"
    "TD" "Chad\0"
    "TF" "French S. Terr.\0"
    "TG" "Togo\0"
    "TH" "Thailand\0"
    "TJ" "Tajikistan\0"
    "TK" "Tokelau\0"
    "TL" "East Timor\0"
    "TM" "Turkmenistan\0"
    "TN" "Tunisia\0"
    "TO" "Tonga\0"
    "TR" "Turkey\0"
    "TT" "Trinidad & Tobago\0"
    "TV" "Tuvalu\0"
    "TW" "Taiwan\0"
    "TZ" "Tanzania\0"
    "UA" "Ukraine\0"
    "UG" "Uganda\0"
    "UM" "US minor outlying islands\0"
    "US" "United States\0"
    "UY" "Uruguay\0"
    "UZ" "Uzbekistan\0"
    "VA" "Vatican City\0"
    "VC" "St Vincent\0"
    "VE" "Venezuela\0"
    "VG" "Virgin Islands (UK)\0"
    "VI" "Virgin Islands (US)\0"
    "VN" "Vietnam\0"
    "VU" "Vanuatu\0"
    "WF" "Wallis & Futuna\0"
    "WS" "Samoa (western)\0"
    "YE" "Yemen\0"
    "YT" "Mayotte\0"
    "ZA" "South Africa\0"
    "ZM" "Zambia\0"
    "ZW" "Zimbabwe\0"
    // clang-format on
    "";

// ASCII letters alone, whatever the program's locale says.
char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}
bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}

// Copies letters up to the first other character, at least two: fewer, and more than fit, copy none.
template <std::size_t size>
const char *takeLetters(const char *from, char (&to)[size], char (*inCase)(char)) {
    std::size_t count = 0;
    for (; isLetter(from[count]); ++count) {
        if (count < size - 1)
            to[count] = inCase(from[count]);
    }
    to[count >= 2 && count < size ? count : 0] = '\0';
    return from + count;
}

Script scriptOf(const char *modifier) {
    if (std::strcmp(modifier, "@latin") == 0)
        return Script::kLatin;
    if (std::strcmp(modifier, "@cyrillic") == 0)
        return Script::kCyrillic;
    return std::strcmp(modifier, "@devanagari") == 0 ? Script::kDevanagari : Script::kUsual;
}

} // namespace

bool parseLocaleName(const char *name, LocaleName &out) {
    out = {};
    const char *at =
        takeLetters(name, out.language, lower); // "POSIX" is too long for a language, "C" too short
    if (out.language[0] == '\0')
        return false;
    if (*at == '_')
        at = takeLetters(at + 1, out.territory, upper);
    const char *const modifier = std::strchr(at, '@');
    out.script = modifier == nullptr ? Script::kUsual : scriptOf(modifier);
    return true;
}

int ansiCodePage(const LocaleName &name) {
    for (const PageRow &row : kPages) {
        if (std::strcmp(row.language, name.language) == 0 &&
            (row.territory[0] == '\0' || std::strcmp(row.territory, name.territory) == 0) &&
            (row.script == Script::kUsual || row.script == name.script))
            return row.page;
    }
    return 0;
}

const char *countryName(const LocaleName &name) {
    if (name.territory[0] == '\0')
        return nullptr;
    for (const char *at = kTerritories; *at != '\0'; at += std::strlen(at) + 1) {
        if (std::strncmp(at, name.territory, 2) == 0)
            return at + 2;
    }
    return nullptr;
}

} // namespace velnls::platform
