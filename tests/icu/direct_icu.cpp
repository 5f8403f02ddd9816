#include "direct_icu.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <utility>

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

namespace direct {

namespace {
using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

bool isSurrogate(std::uint32_t point) {
    return point >= 0xD800 && point <= 0xDFFF;
}
} // namespace

Words manyWords() {
    Words all = {u"a",
                 u"A",
                 u"\u00E1",
                 u"\u00C4pfel",
                 u"Apfel",
                 u"apfel",
                 u"Aepfel",
                 u"\u00D6l",
                 u"Ofen",
                 u"Stra\u00DFe",
                 u"Strasse",
                 u"cote",
                 u"cot\u00E9",
                 u"c\u00F4te",
                 u"c\u00F4t\u00E9",
                 u"chico",
                 u"cinco",
                 u"dedo",
                 u"llama",
                 u"luz",
                 u"lz",
                 u"\u00F1u",
                 u"nz",
                 u"\u0161",
                 u"sz",
                 u"\u017E",
                 u"z",
                 u"\u00E5",
                 u"aa",
                 u"\u00E6",
                 u"\u00F8",
                 u"\u0142",
                 u"l",
                 u"lj",
                 u"Lj",
                 u"nj",
                 u"d\u017E",
                 u"\u0131",
                 u"i",
                 u"I",
                 u"\u0130",
                 u"ye-ye",
                 u"yeye",
                 u"co-op",
                 u"coop",
                 u"co op",
                 u"\u65E5\u672C",
                 u"\u4E2D\u6587",
                 u"\u5B57",
                 u"\u304B",
                 u"\u30AB",
                 u"\u304C",
                 u"\u30FC",
                 u"\uAC00",
                 u"\uB098",
                 u"1",
                 u"10",
                 u"2",
                 u"\u0661",
                 u"\U0001F600",
                 u"\U00020000"};
    constexpr std::pair<char16_t, char16_t> kScripts[] = {
        {0x61, 0x7A},     {0xC0, 0x17F},  {0x386, 0x3CE},   {0x410, 0x45F},   {0x5D0, 0x5EA},
        {0x621, 0x64A},   {0x905, 0x939}, {0xA85, 0xAB9},   {0xB85, 0xBB9},   {0xC05, 0xC39},
        {0xC85, 0xCB9},   {0xE01, 0xE4B}, {0x1EA0, 0x1EF9}, {0x3041, 0x30FA}, {0x4E00, 0x9FA5},
        {0xAC00, 0xD7A3}, {0x20, 0x40}};
    std::mt19937 random(4242);
    for (const auto &[first, last] : kScripts)
        for (int i = 0; i < 60; ++i) {
            std::u16string word;
            for (auto length = 1 + random() % 5; length > 0; --length)
                word += static_cast<char16_t>(first + random() % (last - first + 1U));
            all.push_back(word);
        }
    return all;
}

std::string utf8(const std::u16string &text) {
    std::string out(text.size() * 3 + 1, '\0');
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &length, text.data(),
                static_cast<int32_t>(text.size()), &error);
    EXPECT_TRUE(U_SUCCESS(error));
    out.resize(static_cast<std::size_t>(length));
    return out;
}

std::string nameToday(const std::string &name) {
    const std::map<std::string, std::string> changed = {{"UCA", ""},
                                                        {"de__PHONEBOOK", "de@collation=phonebook"},
                                                        {"es__TRADITIONAL", "es@collation=traditional"},
                                                        {"hi__DIRECT", "hi"},
                                                        {"ja__HQ", "ja"},
                                                        {"sh", "sr_Latn"},
                                                        {"zh__PINYIN", "zh@collation=pinyin"}};
    const auto found = changed.find(name);
    return found == changed.end() ? name : found->second;
}

Collator openCollator(const std::string &name, UCollationStrength strength) {
    UErrorCode error = U_ZERO_ERROR;
    Collator collator(ucol_open(nameToday(name).c_str(), &error), ucol_close);
    EXPECT_TRUE(U_SUCCESS(error)) << name;
    ucol_setStrength(collator.get(), strength);
    return collator;
}

std::u16string codePoints(std::uint32_t from, std::uint32_t to) {
    std::u16string text;
    for (std::uint32_t point = std::max(from, 1U); point < to; ++point) {
        if (isSurrogate(point))
            continue;
        if (point >= 0x10000) {
            text += static_cast<char16_t>(0xD7C0 + (point >> 10));
            text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        } else {
            text += static_cast<char16_t>(point);
        }
    }
    return text;
}

std::string gb18030(const std::u16string &text) {
    std::string out(text.size() * 4 + 1, '\0');
    UErrorCode error = U_ZERO_ERROR;
    const Converter converter(ucnv_open("gb18030", &error), ucnv_close);
    const int32_t length = ucnv_fromUChars(converter.get(), out.data(), static_cast<int32_t>(out.size()),
                                           text.data(), static_cast<int32_t>(text.size()), &error);
    EXPECT_TRUE(U_SUCCESS(error));
    out.resize(static_cast<std::size_t>(std::max(length, 0)));
    return out;
}

} // namespace direct
