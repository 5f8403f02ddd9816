// nlsSearchBack: compiled for size, since long texts are searched forwards.
#include "locale/checks.hpp"
#include "locale/text.hpp"
#include "string/search.hpp"

#include <cstring>

using namespace velnls;

nlsStatus nlsSearchBack(nlsLocale *locale, const char *pattern, const char *text, int32_t textLength,
                        uint16_t caseFlag, uint32_t *position, char **found) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (position != nullptr)
        *position = 0;
    if (found != nullptr)
        *found = nullptr;
    if (pattern == nullptr || text == nullptr || found == nullptr || position == nullptr || textLength < 0)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const CharTable &table = *locale->charTable;
    Counted sought{};
    Counted rest{};
    if (const nlsStatus status = countText(*locale, bytesOf(pattern), std::strlen(pattern), sought);
        status != NLS_OK)
        return status;
    const std::size_t length = ::strnlen(text, static_cast<std::size_t>(textLength));
    if (const nlsStatus status = countText(*locale, bytesOf(text), length, rest); status != NLS_OK)
        return status;
    if (sought.at == sought.end) {
        *position = static_cast<std::uint32_t>(textLength) + 1;
        *found = callersText(rest.at + textLength);
        return NLS_OK;
    }
    if (length == 0)
        return NLS_E_END;
    return withPage(*locale, caseFlag, [&](const auto &page) {
        Match match{};
        const nlsStatus status =
            CountedSearch(page, sought)
                .backwards(rest, BackWalk(table, rest.at), BackWalk(table, sought.at), match);
        if (status == NLS_OK && match.at != nullptr) {
            *found = callersText(match.at);
            *position = static_cast<std::uint32_t>(match.at - rest.at) + 1;
        }
        return status;
    });
}
