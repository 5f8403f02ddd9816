// LIKE beside SQLite's: its GLOB where case counts, its LIKE where it does not. SQLite reads UTF-8, so it
// gets the UTF-8 form of the same strings and patterns.
#include "string_rows.hpp"

#include <sqlite3.h>

namespace bench {
namespace {

struct LikeCase {
    const char *name;
    const char *pattern; // in UTF-8
    bool adversarial;    // over strings of one letter instead of text
    double floor;
};

std::string globOf(std::string pattern) {
    for (char &c : pattern)
        c = c == '%' ? '*' : c == '_' ? '?' : c;
    return pattern;
}

// Strings that hold every literal of the pattern but the last, as often as there is room.
Column adversarialColumn(Size size) {
    std::vector<std::string> strings;
    for (std::size_t i = 0; i < (size == Size::lines ? 1000u : 10'000u); ++i)
        strings.emplace_back(size == Size::lines ? 100 + i % 100 : 8 + i % 33, 'a');
    return asciiColumn(strings);
}

Result measureLike(const char *pageName, const char *language, const LikeCase &like, bool caseSensitive,
                   Size size, int rounds) {
    const Page &page = pageNamed(pageName);
    nlsLocale *const locale = basicLocale(page);
    const Column column =
        like.adversarial ? adversarialColumn(size) : columnOf(charactersOf(language, page), size);
    const std::string pattern = inPage(page, like.pattern);
    const std::string theirs = caseSensitive ? globOf(like.pattern) : like.pattern;
    std::vector<Contender> contenders;
    contenders.push_back(asking("velnls", column.size(), [&](std::size_t i) -> std::size_t {
        return nlsSqlLike(locale, pattern.c_str(), column.pageText(i), caseSensitive, 0, '_', '%');
    }));
    if (caseSensitive)
        contenders.push_back(asking("sqlite3_strglob", column.size(), [&](std::size_t i) -> std::size_t {
            return sqlite3_strglob(theirs.c_str(), column.utf8Text(i)) == 0;
        }));
    else
        contenders.push_back(asking("sqlite3_strlike", column.size(), [&](std::size_t i) -> std::size_t {
            return sqlite3_strlike(theirs.c_str(), column.utf8Text(i), 0) == 0;
        }));
    return contest(contenders, column.size(), column.page.sourceBytes(), rounds);
}

} // namespace

std::vector<StringRow> likeRows() {
    static const LikeCase german[] = {{"contains", "%werden%", false, 0.5},
                                      {"prefix", "Die%", false, 0.4},
                                      {"three-wildcards", "%ie%er%n%", false, 0.5},
                                      {"adversarial", "%a%a%a%a%a%a%b", true, 0.5}};
    static const LikeCase japanese[] = {{"contains", "%\u30D5\u30A1\u30A4\u30EB%", false, 0.5},
                                        {"prefix", "\u3053\u306E%", false, 0.4},
                                        {"three-wildcards", "%\u306E%\u3092%\u308B%", false, 0.5},
                                        {"adversarial", "%a%a%a%a%a%a%b", true, 0.5}};
    struct Place {
        const char *page;
        const char *language;
        const LikeCase *cases;
    };
    std::vector<StringRow> rows;
    for (const Place &place : {Place{"1252", "de", german}, Place{"UTF-8", "de", german},
                               Place{"UTF-8", "ja", japanese}, Place{"SHIFT-JIS", "ja", japanese}})
        for (const LikeCase *like = place.cases; like != place.cases + 4; ++like)
            for (const bool caseSensitive : {true, false})
                rows.push_back({std::string("LIKE_") + like->name + (caseSensitive ? "_cs/" : "_ci/") +
                                    place.page + "_" + place.language,
                                {Size::shortStrings, Size::lines},
                                like->floor,
                                like->floor,
                                [place, like, caseSensitive](Size size, int rounds) {
                                    return measureLike(place.page, place.language, *like, caseSensitive, size,
                                                       rounds);
                                }});
    return rows;
}

} // namespace bench
