// Rows about calls on strings: LIKE, search, replace, letter case, counts, validation, navigation.
#pragma once

#include "contest.hpp"
#include "pages.hpp"
#include "string_texts.hpp"
#include "velnls.h"

#include <clocale>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct StringRow {
    std::string name;
    std::vector<Size> sizes;
    double floorShort;  // ratio to the best peer that must hold on short strings and on lines
    double floorBuffer; // the same for one 8 MB buffer
    std::function<Result(Size, int rounds)> measure;
};

std::vector<StringRow> likeRows();
std::vector<StringRow> searchRows();
std::vector<StringRow> caseRows();
std::vector<StringRow> countRows();

// All of them, as lines of the table.
Jobs stringJobs();

// ---- What the rows share --------------------------------------------------------------------------------

// A locale of the page with the collation and the case table "basic".
nlsLocale *basicLocale(const Page &page);

// UTF-8 text in a page that has it all.
std::string inPage(const Page &page, const std::string &utf8);

// A locale of the C library; null where it is not installed.
locale_t systemLocale(const char *name);
inline constexpr char kSystemUtf8[] = "C.UTF-8";
inline constexpr char kSystem1252[] = "de_DE.CP1252"; // script/bench makes these two
inline constexpr char kSystemShiftJis[] = "ja_JP.CP932";

// Holds a locale of the C library for calls that have no locale argument.
class SystemLocaleScope {
public:
    explicit SystemLocaleScope(locale_t locale) : before_(uselocale(locale)) {}
    ~SystemLocaleScope() {
        uselocale(before_);
    }
    SystemLocaleScope(const SystemLocaleScope &) = delete;
    SystemLocaleScope &operator=(const SystemLocaleScope &) = delete;

private:
    locale_t before_;
};

// A contender whose answers are numbers: `ask(i)` answers for string i.
template <typename Ask>
Contender asking(std::string name, std::size_t strings, Ask ask) {
    return {std::move(name),
            [strings, ask] {
                std::size_t sum = 0;
                for (std::size_t i = 0; i < strings; ++i)
                    sum += ask(i);
                return sum;
            },
            [ask](std::size_t i) { return std::to_string(ask(i)); }};
}

// The same under a locale of the C library.
template <typename Ask>
Contender askingUnder(locale_t locale, std::string name, std::size_t strings, Ask ask) {
    Contender plain = asking(std::move(name), strings, ask);
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

// A contender that writes text: `write(i, out)` writes the text for string i and gives its length.
template <typename Write>
Contender writing(std::string name, std::size_t strings, std::size_t room, Write write) {
    const auto out = std::make_shared<std::vector<char>>(room);
    return {std::move(name),
            [strings, write, out] {
                std::size_t sum = 0;
                for (std::size_t i = 0; i < strings; ++i)
                    sum += write(i, *out);
                return sum;
            },
            [write, out](std::size_t i) { return std::string(out->data(), write(i, *out)); }};
}

// Whether all contenders give the same answer for a string.
bool agree(const std::vector<Contender> &contenders, std::size_t string);

} // namespace bench
