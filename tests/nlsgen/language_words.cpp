#include "language_words.hpp"

#include <unicode/uchar.h>
#include <unicode/ucurr.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/uscript.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>

namespace velnls::nlsgen::test {
namespace {

bool belongsToWord(UChar unit) {
    const auto mask = U_GET_GC_MASK(unit);
    return (mask & (U_GC_L_MASK | U_GC_M_MASK)) != 0;
}

using Words = std::set<std::u16string>;

void addWords(const std::u16string &text, Words &words) {
    auto at = text.begin();
    while (at != text.end()) {
        at = std::find_if(at, text.end(), belongsToWord);
        const auto end = std::find_if_not(at, text.end(), belongsToWord);
        if (end != at)
            words.emplace(at, end);
        at = end;
    }
}

class NameCollector {
public:
    explicit NameCollector(std::string locale) : locale_(std::move(locale)) {}

    Words collect() {
        for (const char *const *code = uloc_getISOLanguages(); *code != nullptr; code++)
            add(uloc_getDisplayLanguage, *code);
        for (const char *const *code = uloc_getISOCountries(); *code != nullptr; code++)
            add(uloc_getDisplayCountry, std::string("und_").append(*code));
        for (int script = 0; script < u_getIntPropertyMaxValue(UCHAR_SCRIPT); script++)
            if (const char *code = uscript_getShortName(static_cast<UScriptCode>(script)))
                add(uloc_getDisplayScript, std::string("und_").append(code));
        addCurrencies();
        addCalendar();
        return std::move(words_);
    }

private:
    using DisplayName = int32_t(const char *, const char *, UChar *, int32_t, UErrorCode *);

    // A name that the language lacks comes back as the code, with a warning.
    void add(DisplayName *nameOf, const std::string &code) {
        UChar buffer[256];
        UErrorCode error = U_ZERO_ERROR;
        const int32_t length = nameOf(code.c_str(), locale_.c_str(), buffer, 256, &error);
        if (U_SUCCESS(error) && error != U_USING_DEFAULT_WARNING)
            addWords({buffer, buffer + length}, words_);
    }

    void addCurrencies() {
        UErrorCode error = U_ZERO_ERROR;
        UEnumeration *currencies = ucurr_openISOCurrencies(UCURR_ALL, &error);
        while (const UChar *code = uenum_unext(currencies, nullptr, &error)) {
            UBool isChoice = false;
            int32_t length = 0;
            UErrorCode nameError = U_ZERO_ERROR;
            const UChar *name =
                ucurr_getName(code, locale_.c_str(), UCURR_LONG_NAME, &isChoice, &length, &nameError);
            if (U_SUCCESS(nameError) && nameError != U_USING_DEFAULT_WARNING)
                addWords({name, name + length}, words_);
        }
        uenum_close(currencies);
    }

    void addCalendar() {
        UErrorCode error = U_ZERO_ERROR;
        UDateFormat *format =
            udat_open(UDAT_FULL, UDAT_FULL, locale_.c_str(), nullptr, 0, nullptr, 0, &error);
        for (const UDateFormatSymbolType type :
             {UDAT_MONTHS, UDAT_WEEKDAYS, UDAT_STANDALONE_MONTHS, UDAT_ERA_NAMES, UDAT_QUARTERS}) {
            const int32_t count = U_SUCCESS(error) ? udat_countSymbols(format, type) : 0;
            for (int32_t i = 0; i < count; i++) {
                UChar buffer[128];
                const int32_t length = udat_getSymbols(format, type, i, buffer, 128, &error);
                if (U_SUCCESS(error))
                    addWords({buffer, buffer + length}, words_);
            }
        }
        udat_close(format);
    }

    std::string locale_;
    Words words_;
};

} // namespace

std::vector<std::u16string> wordsOfText(const std::u16string &text) {
    Words words;
    addWords(text, words);
    return {words.begin(), words.end()};
}

std::vector<std::u16string> wordsOfIcuNames(const std::string &locale) {
    const Words words = NameCollector(locale).collect();
    return {words.begin(), words.end()};
}

std::vector<std::u16string> wordsOfFile(const std::string &path, std::size_t limit) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::u16string text(bytes.size(), u'\0');
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8WithSub(text.data(), static_cast<int32_t>(text.size()), &length, bytes.data(),
                         static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr, &error);
    text.resize(static_cast<std::size_t>(length));
    std::vector<std::u16string> words = wordsOfText(text);
    if (words.size() <= limit)
        return words;
    std::vector<std::u16string> picked;
    for (std::size_t i = 0; i < limit; i++)
        picked.push_back(words[i * words.size() / limit]);
    return picked;
}

} // namespace velnls::nlsgen::test
