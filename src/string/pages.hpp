// What is equal to what, for the calls that match character by character: one class per kind of code page and
// collation, chosen once per call.
//
// Every page compares two characters as the locale's collation does. A quick page never fails to, and
// can also look for the places where a character may stand.
#pragma once

#include "collate/compare.hpp"
#include "locale/page_facts.hpp"
#include "string/byte_page.hpp"
#include "string/exact_page.hpp"
#include "string/folded_page.hpp"

namespace velnls {

// Any code page under any collation.
class AnyPage {
public:
    static constexpr bool kQuick = false;

    AnyPage(const nlsLocale &locale, unsigned mode) : characters_(locale), locale_(locale), mode_(mode) {}
    [[nodiscard]] const TableCharacters &characters() const {
        return characters_;
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        if (locale_.collation == nullptr)
            return NLS_E_NOSORT;
        int result = 1;
        const nlsStatus status = compareTexts(locale_, textOf(a), textOf(b), mode_, result);
        equal = result == 0;
        return status;
    }

private:
    TableCharacters characters_;
    const nlsLocale &locale_;
    unsigned mode_;
};

// Where each comparison is a call by itself, the code around them is small rather than fast.
template <typename Use>
[[gnu::cold, gnu::noinline]] nlsStatus withAnyPage(const nlsLocale &locale, unsigned mode, const Use &use) {
    return use(AnyPage(locale, mode));
}

// Calls `use` with the page of a locale under a mode, and gives what it gives.
template <typename Use>
nlsStatus withPage(const nlsLocale &locale, unsigned mode, Use use) {
    const Collation *const collation = locale.collation;
    if (collation == nullptr)
        return withAnyPage(locale, mode, use);
    switch (collation->kind) {
    case file::kThai:
    case file::kSortExit:
    case file::kIcu:
    case kUnusable:
        break;
    case file::kBasic:
        // Where characters are counted as bytes, the quick pages' texts would end inside them.
        if (!locale.charTable->has(file::kMultibyte) && (locale.header.proofs & kSingleBytePage) == 0)
            break;
        return mode != 0 ? use(ExactPage<TableCharacters>(locale)) : use(FoldedPage(locale));
    default:
        if (mode > 1 || (locale.header.proofs & kSingleBytePage) == 0 ||
            locale.charTable->has(file::kThroughShiftJis))
            break;
        if (mode == 1 && (locale.header.proofs & kOwnWeights) != 0)
            return use(ExactPage<SingleBytes>(locale));
        return use(BytePage(weightsOf(*collation, mode), mode == 0 ? locale.header.proofs : 0));
    }
    return withAnyPage(locale, mode, use);
}

} // namespace velnls
