// Counting, validation, navigation and substrings beside the C library and ICU.
#include "string_rows.hpp"

#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>

namespace bench {
namespace {

constexpr std::size_t kInvalid = ~std::size_t{0};

// ---- What the peers do ----------------------------------------------------------------------------------

// Counts and validates at once.
std::size_t wideCount(const char *text) {
    std::mbstate_t state{};
    return std::mbsrtowcs(nullptr, &text, 0, &state);
}

std::size_t mbrlenCount(const char *text, std::size_t length) {
    std::mbstate_t state{};
    std::size_t count = 0;
    for (const char *const end = text + length; text != end; ++count) {
        const std::size_t step = mbrlen(text, static_cast<std::size_t>(end - text), &state);
        if (step == 0 || step > length)
            return kInvalid;
        text += step;
    }
    return count;
}

std::size_t u8NextCount(const char *text, std::size_t length) {
    const auto *const bytes = reinterpret_cast<const std::uint8_t *>(text);
    std::size_t count = 0;
    for (std::size_t at = 0; at < length; ++count) {
        UChar32 character = 0;
        U8_NEXT(bytes, at, length, character);
        if (character < 0)
            return kInvalid;
    }
    return count;
}

std::size_t u8ForwardCount(const char *text, std::size_t length) {
    const auto *const bytes = reinterpret_cast<const std::uint8_t *>(text);
    std::size_t count = 0;
    for (std::size_t at = 0; at < length; ++count)
        U8_FWD_1(bytes, at, length);
    return count;
}

// Counts the bytes that begin a character and looks at nothing else; compilers make vector code of it.
std::size_t leadByteCount(const char *text, std::size_t length) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < length; ++i)
        count += static_cast<signed char>(text[i]) > -65;
    return count;
}

std::size_t wideColumns(const char *text, std::vector<wchar_t> &wide) {
    std::mbstate_t state{};
    const std::size_t count = std::mbsrtowcs(wide.data(), &text, wide.size(), &state);
    return static_cast<std::size_t>(wcswidth(wide.data(), count));
}

std::size_t icuColumns(const char *text, std::size_t length) {
    const auto *const bytes = reinterpret_cast<const std::uint8_t *>(text);
    std::size_t columns = 0;
    for (std::size_t at = 0; at < length;) {
        UChar32 character = 0;
        U8_NEXT(bytes, at, length, character);
        const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
        columns += width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
    }
    return columns;
}

// An open converter that reads a page.
class IcuReader {
public:
    IcuReader(const Page &page, std::size_t room) : units_(room) {
        UErrorCode error = U_ZERO_ERROR;
        converter_.reset(ucnv_open(page.icu, &error), ucnv_close);
    }
    std::size_t count(const char *text, std::size_t length) {
        UErrorCode error = U_ZERO_ERROR;
        const std::int32_t units =
            ucnv_toUChars(converter_.get(), units_.data(), static_cast<std::int32_t>(units_.size()), text,
                          static_cast<std::int32_t>(length), &error);
        return static_cast<std::size_t>(u_countChar32(units_.data(), units));
    }
    std::size_t walk(const char *text, std::size_t length) {
        UErrorCode error = U_ZERO_ERROR;
        std::size_t count = 0;
        for (const char *const end = text + length; text != end; ++count)
            ucnv_getNextUChar(converter_.get(), &text, end, &error);
        return count;
    }

private:
    std::shared_ptr<UConverter> converter_;
    std::vector<UChar> units_;
};

// ---- The rows -------------------------------------------------------------------------------------------

enum class Question {
    characters,
    validity,
    columns,
    walk
};

std::size_t walk(nlsLocale *locale, const char *text, std::size_t length) {
    std::size_t count = 0;
    char *at = const_cast<char *>(text);
    if (length == 0)
        return 0;
    do
        ++count;
    while (nlsGetNextChar(locale, at, &at) == NLS_OK);
    return count;
}

template <typename Call>
Contender counting(const Column &column, nlsLocale *locale, Call call) {
    return asking("velnls", column.size(), [&column, locale, call](std::size_t i) -> std::size_t {
        std::uint32_t answer = 0;
        const auto length = static_cast<std::int32_t>(column.pageLength(i));
        return call(locale, column.pageText(i), length, &answer) == NLS_OK ? answer : kInvalid;
    });
}

// What is asked is settled before the time is taken, for us as for the peers.
Contender ours(const Column &column, nlsLocale *locale, Question question) {
    switch (question) {
    case Question::characters:
        return counting(column, locale, nlsCountChars);
    case Question::validity:
        return counting(column, locale,
                        [](nlsLocale *of, const char *text, std::int32_t length, std::uint32_t *answer) {
                            return nlsValidateString(of, text, length, 0, answer);
                        });
    case Question::columns:
        return counting(column, locale, nlsCountColumns);
    case Question::walk:
        break;
    }
    return asking("velnls", column.size(), [&column, locale](std::size_t i) {
        return walk(locale, column.pageText(i), column.pageLength(i));
    });
}

std::vector<Contender> contendersFor(const Column &column, const Page &page, Question question) {
    nlsLocale *const locale = basicLocale(page);
    const std::size_t strings = column.size();
    const auto at = [&column](std::size_t i) { return column.pageText(i); };
    const auto lengthAt = [&column](std::size_t i) { return column.pageLength(i); };
    const locale_t system = systemLocale(isUtf8(page) ? kSystemUtf8 : kSystemShiftJis);
    const auto wide =
        std::make_shared<std::vector<wchar_t>>(question == Question::columns ? column.page.longest() + 1 : 1);
    const auto reader = std::make_shared<IcuReader>(page, column.page.longest() + 1);

    std::vector<Contender> contenders;
    contenders.push_back(ours(column, locale, question));
    switch (question) {
    case Question::columns:
        if (system != nullptr)
            contenders.push_back(askingUnder(system, "mbsrtowcs + wcswidth", strings,
                                             [=](std::size_t i) { return wideColumns(at(i), *wide); }));
        if (isUtf8(page))
            contenders.push_back(asking("ICU U8_NEXT + East Asian width", strings,
                                        [=](std::size_t i) { return icuColumns(at(i), lengthAt(i)); }));
        return contenders;
    case Question::walk:
        // One call a character: the loops that a macro puts inline are the limit, not a peer.
        if (system != nullptr)
            contenders.push_back(askingUnder(system, "mbrlen", strings,
                                             [=](std::size_t i) { return mbrlenCount(at(i), lengthAt(i)); }));
        contenders.push_back(asking("ICU ucnv_getNextUChar", strings,
                                    [=](std::size_t i) { return reader->walk(at(i), lengthAt(i)); }));
        return contenders;
    case Question::characters:
        if (isUtf8(page)) {
            contenders.push_back(asking("ICU U8_FWD_1 loop", strings,
                                        [=](std::size_t i) { return u8ForwardCount(at(i), lengthAt(i)); }));
            contenders.push_back(asking("lead byte loop", strings,
                                        [=](std::size_t i) { return leadByteCount(at(i), lengthAt(i)); }));
        }
        break;
    case Question::validity:
        break;
    }
    if (system != nullptr) {
        contenders.push_back(
            askingUnder(system, "mbsrtowcs", strings, [=](std::size_t i) { return wideCount(at(i)); }));
        contenders.push_back(askingUnder(system, "mbrlen loop", strings,
                                         [=](std::size_t i) { return mbrlenCount(at(i), lengthAt(i)); }));
    }
    if (isUtf8(page))
        contenders.push_back(asking("ICU U8_NEXT loop", strings,
                                    [=](std::size_t i) { return u8NextCount(at(i), lengthAt(i)); }));
    else
        contenders.push_back(asking("ICU ucnv_toUChars + u_countChar32", strings,
                                    [=](std::size_t i) { return reader->count(at(i), lengthAt(i)); }));
    return contenders;
}

Result measureCount(const char *pageName, const char *language, Question question, Size size, int rounds) {
    const Page &page = pageNamed(pageName);
    CharacterText text = charactersOf(language, page);
    {
        const Column each = eachCharacter(text);
        const std::vector<Contender> contenders = contendersFor(each, page, question);
        keepOnly(text, [&](std::size_t i) { return agree(contenders, i); });
    }
    const Column column = columnOf(text, size);
    return contest(contendersFor(column, page, question), column.size(), column.page.sourceBytes(), rounds);
}

// The middle third of each string: from its first boundary on, whole characters, counted.
Result measureSubstring(const char *pageName, const char *language, Size size, int rounds) {
    const Page &page = pageNamed(pageName);
    nlsLocale *const locale = basicLocale(page);
    const Column column = columnOf(charactersOf(language, page), size);
    const std::size_t room = column.page.longest() + 1;
    std::vector<Contender> contenders;
    contenders.push_back(
        writing("velnls", column.size(), room, [&](std::size_t i, std::vector<char> &out) -> std::size_t {
            nlsStr result{out.data(), static_cast<std::uint32_t>(out.size()), 0};
            const auto third = static_cast<std::int32_t>(column.pageLength(i) / 3);
            std::uint32_t count = 0;
            nlsSubstr(locale, column.pageText(i), third + 1, third, &count, &result);
            return result.length;
        }));
    contenders.push_back(
        writing("ICU U8_FWD_1 + memcpy", column.size(), room, [&](std::size_t i, std::vector<char> &out) {
            const char *const text = column.pageText(i);
            const auto *const bytes = reinterpret_cast<const std::uint8_t *>(text);
            const std::size_t length = ::strnlen(text, column.pageLength(i) / 3 + 1);
            const std::size_t end = column.pageLength(i) / 3 * 2;
            std::size_t from = length - 1;
            while (from < end && U8_IS_TRAIL(bytes[from]))
                ++from;
            std::size_t to = from;
            std::size_t counted = 0;
            while (to < end) {
                std::size_t next = to;
                U8_FWD_1(bytes, next, column.pageLength(i));
                if (next > end)
                    break;
                to = next;
                ++counted;
            }
            benchmark::DoNotOptimize(counted);
            std::memcpy(out.data(), text + from, to - from);
            out[to - from] = '\0';
            return to - from;
        }));
    return contest(contenders, column.size(), column.page.sourceBytes(), rounds);
}

} // namespace

std::vector<StringRow> countRows() {
    struct Kind {
        const char *name;
        Question question;
        double utf8Short, utf8Buffer;
        double pairsShort, pairsBuffer;
    };
    struct Place {
        const char *page;
        const char *language;
    };
    std::vector<StringRow> rows;
    for (const Kind &kind : {Kind{"count_chars/", Question::characters, 0.8, 0.1, 3, 4},
                             Kind{"validate/", Question::validity, 0.8, 0.6, 3, 4},
                             Kind{"count_columns/", Question::columns, 1.3, 1.5, 3, 4},
                             Kind{"walk/", Question::walk, 2, 2, 2, 2}})
        for (const Place &place :
             {Place{"UTF-8", "de"}, Place{"UTF-8", "ru"}, Place{"UTF-8", "ja"}, Place{"SHIFT-JIS", "ja"}}) {
            const bool utf8 = std::string_view(place.page) == "UTF-8";
            rows.push_back({kind.name + std::string(place.page) + "_" + place.language,
                            {Size::shortStrings, Size::buffer},
                            utf8 ? kind.utf8Short : kind.pairsShort,
                            utf8 ? kind.utf8Buffer : kind.pairsBuffer,
                            [place, question = kind.question](Size size, int rounds) {
                                return measureCount(place.page, place.language, question, size, rounds);
                            }});
        }
    for (const char *const language : {"de", "ja"})
        rows.push_back({std::string("substring/UTF-8_") + language,
                        {Size::shortStrings, Size::buffer},
                        0.8,
                        0.9,
                        [language](Size size, int rounds) {
                            return measureSubstring("UTF-8", language, size, rounds);
                        }});
    return rows;
}

} // namespace bench
