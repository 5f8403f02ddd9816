#include "collate/compare.hpp"

#include "collate/basic.hpp"
#include "collate/shift_jis.hpp"
#include "collate/sort_exit.hpp"
#include "collate/thai.hpp"
#include "collate/weights.hpp"
#include "icu/collate.hpp"

namespace velnls {

namespace {

// By the orders of the library and of the site.
[[gnu::noinline]] nlsStatus compareByTables(const nlsLocale &locale, Text a, Text b, unsigned mode,
                                            int &result) {
    const Collation &collation = *locale.collation;
    switch (collation.kind) {
    case file::kThai:
        result = compareThai(mode != 0 ? collation.caseSensitive : collation.caseInsensitive, a, b);
        return NLS_OK;
    case file::kBasic:
        result = mode != 0 ? compareBytes(a, b) : compareFolded(locale, a, b);
        return NLS_OK;
    case file::kSortExit:
        return compareByExit(collation, a, b, mode, result);
    default:
        break;
    }
    const WeightOrder order{weightsOf(collation, mode), locale.charTable};
    if (order.weights == nullptr)
        return NLS_E_NULLARG;
    if (locale.charTable->has(file::kThroughShiftJis)) {
        ShiftJisWay way{};
        if (const nlsStatus status = findShiftJisWay(locale, way); status != NLS_OK)
            return status;
        result = compareThroughShiftJis(order, way, a, b);
    } else if ((locale.header.proofs & kSingleBytePage) != 0) {
        result = compareByByteWeights(order, a, b);
    } else {
        result = compareByWeights(order, a, b);
    }
    return NLS_OK;
}

} // namespace

nlsStatus compareTexts(const nlsLocale &locale, Text a, Text b, unsigned mode, int &result) {
    return icu::isServed(*locale.collation) ? icu::compareTexts(*locale.collation, a, b, mode, result)
                                            : compareByTables(locale, a, b, mode, result);
}

} // namespace velnls
