#include "order_rows.hpp"

#include "contest.hpp"
#include "order_check.hpp"
#include "sorted.hpp"
#include "string_rows.hpp"

#include <unicode/ucasemap.h>
#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <strings.h>

namespace bench {
namespace {

// ---- What is ordered ------------------------------------------------------------------------------------

// One of the library's orders, and the peers' orders of the same kind.
struct Order {
    const char *page;
    const char *collation;
    const char *language;
    const char *systemLocale; // of the C library
    const char *icuLocale;
    bool basic; // bytes or lower case, without weights

    [[nodiscard]] std::string name(const char *what, int mode, const char *size) const {
        return std::string(what) + "_" + page + "_" + collation + (mode != 0 ? "_cs/" : "_ci/") + language +
               "/" + size;
    }
};

constexpr Order kTable{"1252", "basic", "de", kSystem1252, "root", false};
constexpr Order kGerman{"1252", "german", "de", kSystem1252, "de", false}; // with an expanding character
constexpr Order kUtf8German{"UTF-8", "basic", "de", kSystemUtf8, "root", true};
constexpr Order kUtf8Russian{"UTF-8", "basic", "ru", kSystemUtf8, "root", true};
constexpr Order kShiftJis{"SHIFT-JIS", "basic", "ja", kSystemShiftJis, "ja", true};

nlsLocale *localeOf(const Order &order) {
    nlsLocale *locale = nullptr;
    const nlsStatus status = nlsCreateLocale(dataHandle(), order.page, order.collation, "basic", &locale);
    if (status != NLS_OK)
        std::fprintf(stderr, "velnls_bench: locale %s %s gives status %u\n", order.page, order.collation,
                     status);
    return locale;
}

Result failed(const std::string &problem) {
    Result result;
    result.problem = problem;
    return result;
}

// A locale of the C library with its collation; null where it is not installed.
locale_t collatingLocale(const char *name) {
    static std::map<std::string, locale_t> locales;
    const auto found = locales.find(name);
    if (found != locales.end())
        return found->second;
    const locale_t locale = newlocale(LC_ALL_MASK, name, nullptr);
    if (locale == nullptr)
        std::fprintf(stderr, "velnls_bench: the C library has no locale %s\n", name);
    return locales[name] = locale;
}

// The texts of a job. They are kept for the jobs that follow each other.
const CharacterText &charactersFor(const Order &order) {
    static std::string of;
    static CharacterText text;
    if (const std::string wanted = std::string(order.page) + order.language; of != wanted) {
        text = charactersOf(order.language, pageNamed(order.page));
        of = wanted;
    }
    return text;
}

constexpr std::size_t kLongText = 60'000; // bytes: what a sort key's 16-bit size has room for

// Texts of about kLongText bytes; `alike`: all the same but for their last character.
Column longTexts(const Order &order, bool alike) {
    const CharacterText &characters = charactersFor(order);
    const auto find = [&characters](const char *character) {
        return static_cast<std::uint32_t>(
            std::find(characters.utf8.begin(), characters.utf8.end(), character) - characters.utf8.begin());
    };
    const std::uint32_t lineFeed = find("\n");
    CharacterText pieces{characters.page, characters.utf8, {}};
    std::vector<std::uint32_t> piece;
    std::size_t bytes = 0;
    std::size_t i = 0;
    for (const char *last : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"}) {
        for (; bytes < kLongText; ++i) {
            const std::uint32_t character = characters.text[i % characters.text.size()];
            if (character == lineFeed)
                continue;
            piece.push_back(character);
            bytes += characters.page[character].size();
        }
        pieces.text.insert(pieces.text.end(), piece.begin(), piece.end());
        pieces.text.push_back(find(last));
        pieces.text.push_back(lineFeed);
        if (!alike) {
            piece.clear();
            bytes = 0;
        }
    }
    return columnOf(pieces, Size::lines);
}

// ---- The contenders' compares ---------------------------------------------------------------------------

struct CloseCollator {
    void operator()(UCollator *collator) const {
        ucol_close(collator);
    }
};
using Collator = std::shared_ptr<UCollator>;

// Tertiary strength sees case, secondary does not.
Collator openCollator(const Order &order, int mode) {
    UErrorCode error = U_ZERO_ERROR;
    const Collator collator(ucol_open(order.icuLocale, &error), CloseCollator());
    if (U_FAILURE(error))
        return nullptr;
    ucol_setStrength(collator.get(), mode != 0 ? UCOL_TERTIARY : UCOL_SECONDARY);
    return collator;
}

struct OurCompare {
    const Column &column;
    nlsLocale *locale;
    std::int16_t mode;
    int operator()(std::uint32_t a, std::uint32_t b) const {
        std::int16_t result = 0;
        nlsCompare(locale, column.pageText(a), column.pageText(b), mode, &result);
        return result;
    }
};

struct IcuCompareUtf8 {
    const Column &column;
    Collator collator;
    int operator()(std::uint32_t a, std::uint32_t b) const {
        UErrorCode error = U_ZERO_ERROR;
        return ucol_strcollUTF8(collator.get(), column.utf8Text(a),
                                static_cast<std::int32_t>(column.utf8Length(a)), column.utf8Text(b),
                                static_cast<std::int32_t>(column.utf8Length(b)), &error);
    }
};

struct IcuCompareUtf16 {
    const Column &column;
    Collator collator;
    int operator()(std::uint32_t a, std::uint32_t b) const {
        return ucol_strcoll(collator.get(), column.utf16[a].data(),
                            static_cast<std::int32_t>(column.utf16[a].size()), column.utf16[b].data(),
                            static_cast<std::int32_t>(column.utf16[b].size()));
    }
};

struct SystemCompare {
    const Column &column;
    locale_t locale;
    int (*call)(const char *, const char *, locale_t);
    int operator()(std::uint32_t a, std::uint32_t b) const {
        return call(column.pageText(a), column.pageText(b), locale);
    }
};

struct ByteCompare {
    const Column &column;
    int operator()(std::uint32_t a, std::uint32_t b) const {
        return std::strcmp(column.pageText(a), column.pageText(b));
    }
};

// Folds every letter, and orders by the folded units.
struct IcuFoldedCompare {
    const Column &column;
    int operator()(std::uint32_t a, std::uint32_t b) const {
        return u_strcasecmp(column.utf16[a].c_str(), column.utf16[b].c_str(), U_FOLD_CASE_DEFAULT);
    }
};

// Who is asked. Case-insensitive BASIC folds all letters of a page; strcasecmp_l of a multibyte locale folds
// those of ASCII and no other, which is another question: it has rows of its own.
enum class Peers {
    Same,
    Ascii
};

// Calls `use` with each contender's compare and its name, ours first.
template <typename Use>
void withCompares(const Order &order, int mode, Peers peers, const Column &column, Use use) {
    if (peers == Peers::Ascii) {
        use("velnls", OurCompare{column, localeOf(order), static_cast<std::int16_t>(mode)});
        if (const locale_t locale = collatingLocale(order.systemLocale); locale != nullptr)
            use("strcasecmp_l (ASCII letters)", SystemCompare{column, locale, strcasecmp_l});
        return;
    }
    use("velnls", OurCompare{column, localeOf(order), static_cast<std::int16_t>(mode)});
    if (const Collator collator = openCollator(order, mode); collator != nullptr) {
        use("ICU ucol_strcollUTF8", IcuCompareUtf8{column, collator});
        use("ICU ucol_strcoll", IcuCompareUtf16{column, collator});
    }
    if (const locale_t locale = collatingLocale(order.systemLocale); locale != nullptr) {
        // Case-sensitive of BASIC is the order of bytes; strcoll of the C locale is strcmp.
        if (mode != 0 && !order.basic)
            use("strcoll_l", SystemCompare{column, locale, strcoll_l});
        if (mode == 0 && !order.basic)
            use("strcasecmp_l", SystemCompare{column, locale, strcasecmp_l});
    }
    if (mode != 0 && order.basic)
        use("strcmp", ByteCompare{column});
    if (mode == 0 && order.basic)
        use("ICU u_strcasecmp", IcuFoldedCompare{column});
}

// ---- Compares of neighbours, sorts ----------------------------------------------------------------------

template <typename Compare>
Contender neighbours(const std::string &name, std::size_t count, Compare compare) {
    return {name,
            [count, compare] {
                std::size_t smaller = 1;
                for (std::uint32_t i = 1; i < count; ++i)
                    smaller += compare(i - 1, i) < 0;
                return smaller;
            },
            nullptr};
}

template <typename Compare>
Contender sorting(const std::string &name, std::size_t count, Compare compare) {
    return {name, [count, compare] { return std::size_t{sorted(count, compare)[count / 2]} + 1; }, nullptr};
}

std::string differs(std::size_t string) {
    return "velnls and the plain order differ on string " + std::to_string(string);
}

std::string checkNeighbours(const Column &column, const OurCompare &compare, PlainOrder &plain) {
    for (std::uint32_t i = 1; i < column.size(); ++i)
        for (const auto &[a, b] : {std::pair(i - 1, i), std::pair(i, i - 1), std::pair(i, i)})
            if (compare(a, b) != plain.compare(column.pageText(a), column.pageText(b)))
                return differs(i);
    return {};
}

std::string checkSort(const Column &column, const OurCompare &compare, PlainOrder &plain) {
    const std::vector<std::uint32_t> places = sorted(column.size(), compare);
    for (std::size_t i = 1; i < places.size(); ++i)
        if (plain.compare(column.pageText(places[i - 1]), column.pageText(places[i])) > 0)
            return differs(places[i]);
    return {};
}

enum class Compares {
    Neighbours,  // of the sorted list, which begin alike: what merging compares, and the end of a sort
    InTextOrder, // of the list as it is, or of long texts that are alike up to their last character
    Sort,        // the whole list, by the same std::sort for all
};

Result compareResult(const Order &order, int mode, Peers peers, Compares what, Size size, int rounds) {
    Column column = size == Size::buffer ? longTexts(order, true) : columnOf(charactersFor(order), size);
    nlsLocale *const locale = localeOf(order);
    if (locale == nullptr)
        return failed("no such locale");
    OurCompare ours{column, locale, static_cast<std::int16_t>(mode)};
    PlainOrder plain(locale, order.basic, static_cast<std::uint16_t>(mode));
    if (what == Compares::Neighbours)
        column = inOrder(column, ours);
    const std::string problem =
        what == Compares::Sort ? checkSort(column, ours, plain) : checkNeighbours(column, ours, plain);
    if (!problem.empty())
        return failed(problem);
    std::vector<Contender> contenders;
    withCompares(order, mode, peers, column, [&](const char *name, const auto &compare) {
        contenders.push_back(what == Compares::Sort ? sorting(name, column.size(), compare)
                                                    : neighbours(name, column.size(), compare));
    });
    contenders[0].answer = [](std::size_t) { return std::string(); };
    return contest(contenders, column.size(), column.page.sourceBytes(), rounds);
}

// ---- Sort keys ------------------------------------------------------------------------------------------

template <typename Key>
Contender keying(const std::string &name, std::size_t count, Key key) {
    return {name,
            [count, key] {
                std::size_t sum = 0;
                for (std::uint32_t i = 0; i < count; ++i)
                    sum += key(i);
                return sum;
            },
            nullptr};
}

Result keyResult(const Order &order, int mode, Size size, int rounds) {
    const Column column =
        size == Size::buffer ? longTexts(order, false) : columnOf(charactersFor(order), size);
    nlsLocale *const locale = localeOf(order);
    if (locale == nullptr)
        return failed("no such locale");
    // The keys of ICU and of the C library have several bytes a character.
    std::vector<char> room(65535 * 16);
    const auto key = [&](std::uint32_t i) {
        std::uint16_t length = 0;
        nlsSortKey(locale, const_cast<char *>(column.pageText(i)), 65535, static_cast<std::uint16_t>(mode), 0,
                   reinterpret_cast<unsigned char *>(room.data()), &length);
        return std::size_t{length};
    };
    PlainOrder plain(locale, order.basic, static_cast<std::uint16_t>(mode));
    for (std::uint32_t i = 0; i < column.size(); ++i)
        if (std::string(room.data(), key(i)) != plain.key(column.pageText(i)))
            return failed(differs(i));

    std::vector<Contender> contenders{keying("velnls", column.size(), key)};
    contenders[0].answer = [](std::size_t) { return std::string(); };
    if (const Collator collator = openCollator(order, mode); collator != nullptr)
        contenders.push_back(keying("ICU ucol_getSortKey", column.size(), [&, collator](std::uint32_t i) {
            return static_cast<std::size_t>(ucol_getSortKey(
                collator.get(), column.utf16[i].data(), static_cast<std::int32_t>(column.utf16[i].size()),
                reinterpret_cast<std::uint8_t *>(room.data()), static_cast<std::int32_t>(room.size())));
        }));
    // The C locale's keys are the bytes.
    const locale_t system = collatingLocale(order.basic ? "C" : order.systemLocale);
    if (mode != 0 && system != nullptr)
        contenders.push_back(keying(order.basic ? "strxfrm_l of the C locale" : "strxfrm_l", column.size(),
                                    [&, system](std::uint32_t i) {
                                        return strxfrm_l(room.data(), column.pageText(i), room.size(),
                                                         system);
                                    }));
    // A key of BASIC in mode 0 is the string in lower case.
    std::shared_ptr<UCaseMap> map;
    if (order.basic && mode == 0) {
        UErrorCode error = U_ZERO_ERROR;
        map.reset(ucasemap_open("", 0, &error), ucasemap_close);
        contenders.push_back(keying("ICU ucasemap_utf8ToLower", column.size(), [&, map](std::uint32_t i) {
            UErrorCode failed = U_ZERO_ERROR;
            return static_cast<std::size_t>(ucasemap_utf8ToLower(
                map.get(), room.data(), static_cast<std::int32_t>(room.size()), column.utf8Text(i),
                static_cast<std::int32_t>(column.utf8Length(i)), &failed));
        }));
    }
    return contest(contenders, column.size(), column.page.sourceBytes(), rounds);
}

// ---- The rows -------------------------------------------------------------------------------------------

struct Floors {
    double sort[2]; // by mode
    double neighbours[2];
    double key[2];
};
constexpr Floors kTableFloors{{0.8, 1.5}, {1.2, 3}, {5, 5}};
constexpr Floors kBasicFloors{{1, 0.8}, {1.5, 0.5}, {3, 0.6}};

void addJobs(Jobs &jobs, const Order &order, const Floors &floors) {
    for (const int mode : {1, 0}) {
        const auto compares = [&](const std::string &name, Compares what, Size size, double floor) {
            for (const Peers peers : {Peers::Same, Peers::Ascii}) {
                if (peers == Peers::Ascii && (mode != 0 || !order.basic))
                    continue;
                // Another question than ours has no floor.
                jobs.push_back({order.name((name + (peers == Peers::Ascii ? "_to_ascii" : "")).c_str(), mode,
                                           size == Size::buffer ? "long" : nameOf(size)),
                                peers == Peers::Ascii ? 0 : floor,
                                [&order, mode, peers, what, size](int rounds) {
                                    return compareResult(order, mode, peers, what, size, rounds);
                                }});
            }
        };
        compares("sort", Compares::Sort, Size::shortStrings, floors.sort[mode]);
        compares("sort", Compares::Sort, Size::lines, floors.sort[mode]);
        compares("neighbours", Compares::Neighbours, Size::shortStrings, floors.neighbours[mode]);
        compares("neighbours", Compares::InTextOrder, Size::buffer, floors.neighbours[mode]);
        // What has no floor: longer strings than such columns hold, and strings that differ in their first
        // bytes.
        compares("neighbours", Compares::Neighbours, Size::lines, 0);
        compares("in_text_order", Compares::InTextOrder, Size::shortStrings, 0);
        for (const Size size : {Size::shortStrings, Size::lines, Size::buffer})
            jobs.push_back(
                {order.name("key", mode, size == Size::buffer ? "long" : nameOf(size)), floors.key[mode],
                 [&order, mode, size](int rounds) { return keyResult(order, mode, size, rounds); }});
    }
}

} // namespace

Jobs orderJobs() {
    Jobs jobs;
    addJobs(jobs, kTable, kTableFloors);
    addJobs(jobs, kGerman, kTableFloors);
    addJobs(jobs, kUtf8German, kBasicFloors);
    addJobs(jobs, kUtf8Russian, kBasicFloors);
    addJobs(jobs, kShiftJis, kBasicFloors);
    return jobs;
}

} // namespace bench
