// Search and replacement beside the C library and ICU. A word is looked for in many short strings, and one
// that stands at the very end in a buffer.
#include "string_rows.hpp"

#include <unicode/ucol.h>
#include <unicode/usearch.h>
#include <unicode/ustring.h>

#include <cstring>

namespace bench {
namespace {

constexpr std::size_t kNotFound = ~std::size_t{0};
constexpr char kLastWord[] = "Zwiebelfisch";

std::string wordFor(Size size, const char *language) {
    return size == Size::buffer ? kLastWord : std::string(language) == "ja" ? "\u3059\u308B" : "werden";
}

Column searchedColumn(const char *language, const Page &page, Size size) {
    Column column = columnOf(charactersOf(language, page), size);
    if (size == Size::buffer)
        appendToLast(column, kLastWord);
    return column;
}

// An open search of ICU's, given text after text.
class IcuSearch {
public:
    IcuSearch(const std::u16string &pattern, bool caseSensitive) : pattern_(pattern) {
        UErrorCode error = U_ZERO_ERROR;
        collator_ = ucol_open("", &error);
        ucol_setStrength(collator_, caseSensitive ? UCOL_TERTIARY : UCOL_SECONDARY);
        search_ = usearch_openFromCollator(pattern_.data(), static_cast<std::int32_t>(pattern_.size()),
                                           pattern_.data(), static_cast<std::int32_t>(pattern_.size()),
                                           collator_, nullptr, &error);
    }
    ~IcuSearch() {
        usearch_close(search_);
        ucol_close(collator_);
    }
    IcuSearch(const IcuSearch &) = delete;
    IcuSearch &operator=(const IcuSearch &) = delete;

    bool finds(const std::u16string &text) {
        UErrorCode error = U_ZERO_ERROR;
        usearch_setText(search_, text.data(), static_cast<std::int32_t>(text.size()), &error);
        return usearch_first(search_, &error) != USEARCH_DONE;
    }

private:
    std::u16string pattern_;
    UCollator *collator_;
    UStringSearch *search_;
};

std::u16string utf16Of(const std::string &utf8) {
    return asciiColumn({utf8}).utf16[0];
}

// The C library looks for bytes: where a trail byte may look like a character, it gets the UTF-8 form, and
// what is compared is whether a string has the word.
Result measureSearch(const char *pageName, const char *language, bool caseSensitive, Size size, int rounds) {
    const Page &page = pageNamed(pageName);
    nlsLocale *const locale = basicLocale(page);
    const Column column = searchedColumn(language, page, size);
    const std::string word = wordFor(size, language);
    const std::string pattern = inPage(page, word);
    const bool samePlaces = std::string_view(pageName) != "SHIFT-JIS";
    const auto result = [samePlaces](std::size_t place) {
        return samePlaces ? place : std::size_t{place != kNotFound};
    };
    const Strings &theirs = samePlaces ? column.page : column.utf8;
    const auto textAt = [&theirs](std::size_t i) { return theirs.bytes.data() + theirs.pieces[i].offset; };
    const auto placeOf = [](const void *found, const char *text) {
        return found == nullptr ? kNotFound
                                : static_cast<std::size_t>(static_cast<const char *>(found) - text);
    };

    std::vector<Contender> contenders;
    contenders.push_back(asking("velnls", column.size(), [&](std::size_t i) {
        std::uint32_t position = 0;
        std::uint32_t end = 0;
        char *found = nullptr;
        nlsSearchForw(locale, pattern.c_str(), column.pageText(i), caseSensitive, &position, &end, &found);
        return result(found == nullptr ? kNotFound : position - 1);
    }));
    if (caseSensitive) {
        contenders.push_back(asking("strstr", column.size(), [&](std::size_t i) {
            return result(placeOf(std::strstr(textAt(i), word.c_str()), textAt(i)));
        }));
        contenders.push_back(asking("memmem", column.size(), [&](std::size_t i) {
            return result(
                placeOf(memmem(textAt(i), theirs.pieces[i].length, word.data(), word.size()), textAt(i)));
        }));
    } else {
        contenders.push_back(asking("strcasestr", column.size(), [&](std::size_t i) {
            return result(placeOf(strcasestr(textAt(i), word.c_str()), textAt(i)));
        }));
    }
    IcuSearch icu(utf16Of(word), caseSensitive);
    if (size == Size::shortStrings) { // in a buffer it is slower than the rest by a factor of hundreds
        Contender contender = asking("usearch", column.size(), [&](std::size_t i) -> std::size_t {
            return icu.finds(column.utf16[i]);
        });
        if (samePlaces)
            contender.answer = nullptr; // its places count units
        contenders.push_back(std::move(contender));
    }
    return contest(contenders, column.size(), column.page.sourceBytes(), rounds);
}

// Replaces by what a C program would do: find, copy what stands before, go on behind.
template <typename Find>
std::size_t replaceBy(const char *text, std::size_t length, const std::string &word,
                      const std::string &replacement, std::vector<char> &out, Find find) {
    char *to = out.data();
    const char *const end = text + length;
    const auto put = [&to](const char *from, std::size_t count) {
        std::memcpy(to, from, count);
        to += count;
    };
    for (const char *found; (found = find(text, end)) != nullptr; text = found + word.size()) {
        put(text, static_cast<std::size_t>(found - text));
        put(replacement.data(), replacement.size());
    }
    put(text, static_cast<std::size_t>(end - text) + 1);
    return static_cast<std::size_t>(to - out.data()) - 1;
}

// What is replaced by what: a word of some texts, or the blanks of all.
struct Replacement {
    const char *row;
    const char *word;
    const char *instead;
};

Result measureReplace(const char *pageName, const Replacement &what, bool caseSensitive, Size size,
                      int rounds) {
    const Page &page = pageNamed(pageName);
    nlsLocale *const locale = basicLocale(page);
    const Column column = columnOf(charactersOf("de", page), size);
    const std::string word = what.word;
    const std::string replacement = what.instead;
    const std::size_t room = column.page.longest() * 6 + 64;
    std::vector<Contender> contenders;
    contenders.push_back(
        writing("velnls", column.size(), room, [&](std::size_t i, std::vector<char> &out) -> std::size_t {
            nlsStr result{out.data(), static_cast<std::uint32_t>(out.size()), 0};
            std::uint32_t count = 0;
            nlsReplaceAll(locale, word.c_str(), replacement.c_str(), column.pageText(i), caseSensitive,
                          &result, &count);
            return result.length;
        }));
    if (caseSensitive)
        contenders.push_back(writing("memmem + memcpy", column.size(), room,
                                     [&](std::size_t i, std::vector<char> &out) -> std::size_t {
                                         return replaceBy(column.pageText(i), column.pageLength(i), word,
                                                          replacement, out,
                                                          [&](const char *text, const char *end) {
                                                              return static_cast<const char *>(memmem(
                                                                  text, static_cast<std::size_t>(end - text),
                                                                  word.data(), word.size()));
                                                          });
                                     }));
    if (caseSensitive)
        contenders.push_back(writing(
            "strstr + memcpy", column.size(), room,
            [&](std::size_t i, std::vector<char> &out) -> std::size_t {
                return replaceBy(column.pageText(i), column.pageLength(i), word, replacement, out,
                                 [&](const char *text, const char *) {
                                     return static_cast<const char *>(std::strstr(text, word.c_str()));
                                 });
            }));
    else
        contenders.push_back(
            writing("strcasestr + memcpy", column.size(), room,
                    [&](std::size_t i, std::vector<char> &out) -> std::size_t {
                        return replaceBy(column.pageText(i), column.pageLength(i), word, replacement, out,
                                         [&](const char *text, const char *) {
                                             return static_cast<const char *>(strcasestr(text, word.c_str()));
                                         });
                    }));
    return contest(contenders, column.size(), column.page.sourceBytes(), rounds);
}

} // namespace

std::vector<StringRow> searchRows() {
    struct Place {
        const char *page;
        const char *language;
        double floorExact;
    };
    std::vector<StringRow> rows;
    for (const Place &place :
         {Place{"1252", "de", 0.1}, Place{"UTF-8", "de", 0.08}, Place{"SHIFT-JIS", "ja", 0.08}})
        for (const bool caseSensitive : {true, false}) {
            const double floor = caseSensitive ? place.floorExact : 1;
            rows.push_back(
                {std::string("search_") + (caseSensitive ? "cs/" : "ci/") + place.page + "_" + place.language,
                 {Size::shortStrings, Size::buffer},
                 floor,
                 floor,
                 [place, caseSensitive](Size size, int rounds) {
                     return measureSearch(place.page, place.language, caseSensitive, size, rounds);
                 }});
        }
    for (const Replacement &what :
         {Replacement{"replace_all_", "werden", "geworden sein"}, {"replace_blanks_", " ", "&nbsp;"}})
        for (const char *const page : {"1252", "UTF-8"})
            for (const bool caseSensitive : {true, false})
                rows.push_back({std::string(what.row) + (caseSensitive ? "cs/" : "ci/") + page + "_de",
                                {Size::shortStrings, Size::buffer},
                                1,
                                1,
                                [page, what, caseSensitive](Size size, int rounds) {
                                    return measureReplace(page, what, caseSensitive, size, rounds);
                                }});
    return rows;
}

} // namespace bench
