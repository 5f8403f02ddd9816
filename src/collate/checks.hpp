// The first checks of the calls that order strings.
#pragma once

#include "locale/checks.hpp"

namespace velnls {

// 0, 13, 24, 16 (`argumentsGiven` is false), 27 or 25.
inline nlsStatus checkOrder(const nlsLocale *locale, bool argumentsGiven) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (!argumentsGiven)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    return locale->collation == nullptr ? NLS_E_NOSORT : NLS_OK;
}

} // namespace velnls
