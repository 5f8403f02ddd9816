// Upper and lower case beside ICU and the C library. Characters whose case they map differently, or to
// several characters, are left out of the texts.
#include "string_rows.hpp"

#include <unicode/ucasemap.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <cctype>
#include <cwchar>
#include <cwctype>
#include <memory>

namespace bench {
namespace {

std::vector<nlsStr> countedStrings(const Column &column) {
    std::vector<nlsStr> strings;
    for (std::size_t i = 0; i < column.size(); ++i)
        strings.push_back({const_cast<char *>(column.pageText(i)),
                           static_cast<std::uint32_t>(column.pageLength(i)) + 1,
                           static_cast<std::uint32_t>(column.pageLength(i))});
    return strings;
}

Contender ours(nlsLocale *locale, const Column &column, bool upper, std::size_t room) {
    const auto sources = std::make_shared<std::vector<nlsStr>>(countedStrings(column));
    return writing("velnls", column.size(), room, [=](std::size_t i, std::vector<char> &out) -> std::size_t {
        nlsStr result{out.data(), static_cast<std::uint32_t>(out.size()), 0};
        if (upper)
            nlsUpperCase(locale, &(*sources)[i], &result);
        else
            nlsLowerCase(locale, &(*sources)[i], &result);
        return result.length;
    });
}

Contender icuUtf8(const Column &column, bool upper, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    const std::shared_ptr<UCaseMap> map(ucasemap_open("", 0, &error), ucasemap_close);
    return writing(upper ? "ICU ucasemap_utf8ToUpper" : "ICU ucasemap_utf8ToLower", column.size(), room,
                   [map, &column, upper](std::size_t i, std::vector<char> &out) {
                       UErrorCode failure = U_ZERO_ERROR;
                       const auto length = static_cast<std::int32_t>(column.pageLength(i));
                       const auto size = static_cast<std::int32_t>(out.size());
                       const auto convert = upper ? ucasemap_utf8ToUpper : ucasemap_utf8ToLower;
                       return static_cast<std::size_t>(
                           convert(map.get(), out.data(), size, column.pageText(i), length, &failure));
                   });
}

Contender icuThroughPage(const Column &column, const Page &page, bool upper, std::size_t room) {
    UErrorCode error = U_ZERO_ERROR;
    const std::shared_ptr<UConverter> converter(ucnv_open(page.icu, &error), ucnv_close);
    const auto units = std::make_shared<std::vector<UChar>>(room);
    const auto mapped = std::make_shared<std::vector<UChar>>(room);
    return writing(upper ? "ICU u_strToUpper between converters" : "ICU u_strToLower between converters",
                   column.size(), room, [=, &column](std::size_t i, std::vector<char> &out) {
                       UErrorCode failure = U_ZERO_ERROR;
                       const auto size = static_cast<std::int32_t>(out.size());
                       const std::int32_t count =
                           ucnv_toUChars(converter.get(), units->data(), size, column.pageText(i),
                                         static_cast<std::int32_t>(column.pageLength(i)), &failure);
                       const auto convert = upper ? u_strToUpper : u_strToLower;
                       const std::int32_t written =
                           convert(mapped->data(), size, units->data(), count, "", &failure);
                       return static_cast<std::size_t>(ucnv_fromUChars(converter.get(), out.data(), size,
                                                                       mapped->data(), written, &failure));
                   });
}

// mbstowcs, one towupper_l a character, wcstombs.
Contender wideLoop(const Column &column, bool upper, std::size_t room) {
    const locale_t locale = systemLocale(kSystemUtf8);
    const auto wide = std::make_shared<std::vector<wchar_t>>(room);
    Contender plain =
        writing(upper ? "towupper_l loop" : "towlower_l loop", column.size(), room,
                [=, &column](std::size_t i, std::vector<char> &out) {
                    const std::size_t count = std::mbstowcs(wide->data(), column.pageText(i), wide->size());
                    for (std::size_t k = 0; k < count; ++k)
                        (*wide)[k] =
                            static_cast<wchar_t>(upper ? towupper_l(static_cast<wint_t>((*wide)[k]), locale)
                                                       : towlower_l(static_cast<wint_t>((*wide)[k]), locale));
                    return std::wcstombs(out.data(), wide->data(), out.size());
                });
    return {plain.name,
            [locale, run = plain.run] {
                const SystemLocaleScope scope(locale);
                return run();
            },
            [locale, answer = plain.answer](std::size_t i) {
                const SystemLocaleScope scope(locale);
                return answer(i);
            }};
}

Contender byteLoop(const Column &column, bool upper, std::size_t room, locale_t locale) {
    return writing(upper ? "toupper_l loop" : "tolower_l loop", column.size(), room,
                   [=, &column](std::size_t i, std::vector<char> &out) {
                       const char *const text = column.pageText(i);
                       std::size_t k = 0;
                       for (; text[k] != '\0'; ++k) {
                           const auto byte = static_cast<unsigned char>(text[k]);
                           out[k] =
                               static_cast<char>(upper ? toupper_l(byte, locale) : tolower_l(byte, locale));
                       }
                       out[k] = '\0';
                       return k;
                   });
}

std::vector<Contender> contendersFor(const Column &column, const Page &page, nlsLocale *locale, bool upper) {
    const std::size_t room = column.page.longest() * 3 + 64;
    std::vector<Contender> contenders{ours(locale, column, upper, room)};
    if (isUtf8(page)) {
        contenders.push_back(icuUtf8(column, upper, room));
        contenders.push_back(wideLoop(column, upper, room));
        return contenders;
    }
    contenders.push_back(icuThroughPage(column, page, upper, room));
    if (const locale_t system = systemLocale(kSystem1252); system != nullptr)
        contenders.push_back(byteLoop(column, upper, room, system));
    return contenders;
}

Result measureCase(const char *pageName, const char *language, bool upper, Size size, int rounds) {
    const Page &page = pageNamed(pageName);
    nlsLocale *const locale = basicLocale(page);
    CharacterText text = charactersOf(language, page);
    {
        const Column each = eachCharacter(text);
        const std::vector<Contender> contenders = contendersFor(each, page, locale, upper);
        keepOnly(text, [&](std::size_t i) { return agree(contenders, i); });
    }
    const Column column = columnOf(text, size);
    return contest(contendersFor(column, page, locale, upper), column.size(), column.page.sourceBytes(),
                   rounds);
}

} // namespace

std::vector<StringRow> caseRows() {
    struct Place {
        const char *page;
        const char *language;
        double floorShort;
        double floorBuffer;
    };
    std::vector<StringRow> rows;
    for (const Place &place :
         {Place{"UTF-8", "de", 2.5, 8}, Place{"UTF-8", "ru", 2.5, 3}, Place{"1252", "de", 1, 4}})
        for (const bool upper : {true, false})
            rows.push_back({std::string(upper ? "upper/" : "lower/") + place.page + "_" + place.language,
                            {Size::shortStrings, Size::buffer},
                            place.floorShort,
                            place.floorBuffer,
                            [place, upper](Size size, int rounds) {
                                return measureCase(place.page, place.language, upper, size, rounds);
                            }});
    return rows;
}

} // namespace bench
