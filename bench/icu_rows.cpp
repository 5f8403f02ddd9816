#include "icu_rows.hpp"

#include "contest.hpp"
#include "sorted.hpp"
#include "string_rows.hpp"

#include <unicode/ucol.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>

namespace bench {
namespace {

struct Order {
    const char *collation; // the library's
    const char *icuLocale;
    const char *language; // of the text
};

constexpr Order kOrders[] = {
    {"ICU-UCA", "", "de"}, {"ICU-de__PHONEBOOK", "de@collation=phonebook", "de"}, {"ICU-ja", "ja", "ja"}};

// What must hold against ucol_strcollUTF8 and ucol_getSortKey. Each compare opens and closes a converter.
constexpr double kCompareFloor = 0.25;
constexpr double kKeyFloor = 0.8;

enum class What {
    Neighbours, // of the sorted list
    InTextOrder,
    Sort,
    Key
};

using Collator = std::shared_ptr<UCollator>;

Collator openCollator(const Order &order, int mode) {
    UErrorCode error = U_ZERO_ERROR;
    const Collator collator(ucol_open(order.icuLocale, &error), ucol_close);
    ucol_setStrength(collator.get(), mode != 0 ? UCOL_TERTIARY : UCOL_SECONDARY);
    return collator;
}

std::string words(int result) {
    return std::to_string((result > 0) - (result < 0));
}

template <typename Compare>
Contender comparing(const char *name, What what, std::size_t count, Compare compare) {
    const auto run = [=] {
        if (what != What::Sort) {
            std::size_t smaller = 1;
            for (std::size_t i = 1; i < count; ++i)
                smaller += compare(i - 1, i) < 0;
            return smaller;
        }
        std::vector<std::size_t> places(count);
        std::iota(places.begin(), places.end(), std::size_t{0});
        std::stable_sort(places.begin(), places.end(),
                         [&](std::size_t a, std::size_t b) { return compare(a, b) < 0; });
        return places[count / 2] + 1;
    };
    return {name, run, [=](std::size_t i) { return words(compare(i == 0 ? 0 : i - 1, i)); }};
}

// Text without blanks at its end, which do not count here but do in ICU.
std::size_t lengthWithoutBlanks(const Column &column, std::size_t i) {
    std::size_t length = column.utf8Length(i);
    while (length > 0 && column.utf8Text(i)[length - 1] == ' ')
        --length;
    return length;
}

struct OurCompare {
    const Column &column;
    nlsLocale *locale;
    int mode;
    int operator()(std::size_t a, std::size_t b) const {
        std::int16_t result = 0;
        nlsCompare(locale, column.utf8Text(a), column.utf8Text(b), static_cast<std::int16_t>(mode), &result);
        return int{result};
    }
};

Result compareResult(const Column &texts, nlsLocale *locale, const Order &order, int mode, What what,
                     int rounds) {
    const Column column = what == What::Neighbours ? inOrder(texts, OurCompare{texts, locale, mode}) : texts;
    const Collator collator = openCollator(order, mode);
    const auto direct = [&column, collator](std::size_t a, std::size_t b) {
        const auto lengthA = static_cast<std::int32_t>(lengthWithoutBlanks(column, a));
        const auto lengthB = static_cast<std::int32_t>(lengthWithoutBlanks(column, b));
        if (lengthA == 0 || lengthB == 0) // nothing is before something, even before what ICU ignores
            return static_cast<int>(lengthA != 0) - static_cast<int>(lengthB != 0);
        UErrorCode error = U_ZERO_ERROR;
        return static_cast<int>(ucol_strcollUTF8(collator.get(), column.utf8Text(a), lengthA,
                                                 column.utf8Text(b), lengthB, &error));
    };
    return contest({comparing("velnls", what, column.size(), OurCompare{column, locale, mode}),
                    comparing("ICU ucol_strcollUTF8", what, column.size(), direct)},
                   column.size(), column.utf8.sourceBytes(), rounds);
}

Result keyResult(const Column &column, nlsLocale *locale, const Order &order, int mode, int rounds) {
    constexpr std::size_t kRoom = 65535;
    const Collator collator = openCollator(order, mode);
    const auto ours = [&column, locale, mode](std::size_t i, std::vector<char> &out) {
        std::uint16_t length = 0;
        nlsSortKey(locale, const_cast<char *>(column.utf8Text(i)), kRoom, static_cast<std::uint16_t>(mode), 0,
                   reinterpret_cast<unsigned char *>(out.data()), &length);
        return std::size_t{length};
    };
    // From UTF-16, so the decoding alone is what we do more.
    const auto direct = [&column, collator](std::size_t i, std::vector<char> &out) {
        const std::u16string &text = column.utf16[i];
        const std::int32_t size =
            ucol_getSortKey(collator.get(), text.data(), static_cast<std::int32_t>(text.size()),
                            reinterpret_cast<std::uint8_t *>(out.data()), kRoom);
        return static_cast<std::size_t>(std::max(size - 1, 0)); // without its NUL
    };
    return contest({writing("velnls", column.size(), kRoom, ours),
                    writing("ICU ucol_getSortKey of UTF-16", column.size(), kRoom, direct)},
                   column.size(), column.utf8.sourceBytes(), rounds);
}

Result run(const Order &order, int mode, What what, Size size, int rounds) {
    setenv("BINPATHX", VELNLS_BENCH_ICU_HOME, 0); // where this build put the way to ICU
    const Column column = columnOf(charactersOf(order.language, pageNamed("UTF-8")), size);
    nlsLocale *locale = nullptr;
    Result failed;
    if (nlsCreateLocale(dataHandle(), "UTF-8", order.collation, nullptr, &locale) != NLS_OK) {
        failed.problem = "no such locale: is ICU's way built?";
        return failed;
    }
    return what == What::Key ? keyResult(column, locale, order, mode, rounds)
                             : compareResult(column, locale, order, mode, what, rounds);
}

} // namespace

Jobs icuJobs() {
    Jobs jobs;
    for (const Order &order : kOrders)
        for (const int mode : {1, 0}) {
            const auto rows = [&](const char *name, What what, double floor) {
                for (const Size size : {Size::shortStrings, Size::lines})
                    jobs.push_back({std::string(name) + "_UTF-8_" + order.collation +
                                        (mode != 0 ? "_cs/" : "_ci/") + order.language + "/" + nameOf(size),
                                    floor, [&order, mode, what, size](int rounds) {
                                        return run(order, mode, what, size, rounds);
                                    }});
            };
            rows("neighbours", What::Neighbours, kCompareFloor);
            rows("in_text_order", What::InTextOrder, 0); // these differ in their first bytes
            rows("sort", What::Sort, kCompareFloor);
            rows("key", What::Key, kKeyFloor);
        }
    return jobs;
}

} // namespace bench
