// nlsSearchForw, nlsSearchBack, nlsReplace, nlsReplaceAll.
#include "locale/checks.hpp"
#include "string/out_text.hpp"
#include "string/search.hpp"

#include <algorithm>
#include <cstring>

using namespace velnls;

namespace {

const std::uint8_t *bytes(const char *text) {
    return reinterpret_cast<const std::uint8_t *>(text);
}

// Matches point into the caller's text, which the caller may write to.
char *text(const std::uint8_t *at) {
    return reinterpret_cast<char *>(const_cast<std::uint8_t *>(at));
}

std::uint32_t offset(const std::uint8_t *at, const std::uint8_t *from) {
    return static_cast<std::uint32_t>(at - from);
}

// A NUL-terminated string and its end.
struct Whole {
    const std::uint8_t *at;
    const std::uint8_t *end;

    explicit Whole(const char *string) : at(bytes(string)), end(at + std::strlen(string)) {}
    [[nodiscard]] bool empty() const {
        return at == end;
    }
};

nlsStatus checkNotCut(const nlsLocale &locale, const Whole &string) {
    return isCut(locale, string.at, string.end) ? NLS_R_CUT : NLS_OK;
}

nlsStatus countWhole(const nlsLocale &locale, const Whole &string, Counted &counted) {
    return countText(locale, string.at, static_cast<std::size_t>(string.end - string.at), counted);
}

// The first match of a pattern that is not empty. Neither string is cut.
template <typename Page>
nlsStatus findFirst(const Page &page, const nlsLocale &locale, const Whole &sought, const Whole &where,
                    Match &match) {
    if constexpr (Page::kQuick) {
        match = QuickSearch(page, sought.at, sought.end, where.at, where.end).next(where.at);
        return NLS_OK;
    } else {
        Counted pattern{};
        Counted rest{};
        countWhole(locale, sought, pattern);
        countWhole(locale, where, rest);
        return CountedSearch(page, pattern).forwards(rest, match);
    }
}

// Calls `found(match)` for one match after the other, none of which overlap, until it gives false. The status
// of the first search; a later one that fails only ends the search.
template <typename Page, typename Found>
nlsStatus findAll(const Page &page, const nlsLocale &locale, const Whole &sought, const Whole &where,
                  Found found) {
    if constexpr (Page::kQuick) {
        QuickSearch search(page, sought.at, sought.end, where.at, where.end);
        for (Match match = search.next(where.at); match.at != nullptr && found(match);)
            match = search.next(match.end);
        return NLS_OK;
    } else {
        Counted pattern{};
        Counted rest{};
        countWhole(locale, sought, pattern);
        countWhole(locale, where, rest);
        const CountedSearch search(page, pattern);
        Match match{};
        if (const nlsStatus status = search.forwards(rest, match); status != NLS_OK)
            return status;
        // The text is counted once: behind a match, its rest has the pattern's characters less.
        while (match.at != nullptr && found(match)) {
            rest.at = match.end;
            rest.characters -= pattern.characters;
            if (search.forwards(rest, match) != NLS_OK)
                break;
        }
        return NLS_OK;
    }
}

} // namespace

nlsStatus nlsSearchForw(nlsLocale *locale, const char *pattern, const char *text_, uint16_t caseFlag,
                        uint32_t *position, uint32_t *endOffset, char **found) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (position != nullptr)
        *position = 0;
    if (found != nullptr)
        *found = nullptr;
    if (pattern == nullptr || text_ == nullptr || found == nullptr || position == nullptr ||
        endOffset == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const Whole sought(pattern);
    const Whole where(text_);
    if (const nlsStatus status = checkNotCut(*locale, sought); status != NLS_OK)
        return status;
    if (const nlsStatus status = checkNotCut(*locale, where); status != NLS_OK)
        return status;
    if (sought.empty()) {
        *position = *endOffset = offset(where.end, where.at) + 1;
        *found = text(where.end);
        return NLS_OK;
    }
    return withPage(*locale, caseFlag, [&](const auto &page) {
        Match match{};
        const nlsStatus status = findFirst(page, *locale, sought, where, match);
        if (status == NLS_OK && match.at != nullptr) {
            *found = text(match.at);
            *position = offset(match.at, where.at) + 1;
            *endOffset = offset(match.end, where.at);
        }
        return status;
    });
}

nlsStatus nlsSearchBack(nlsLocale *locale, const char *pattern, const char *text_, int32_t textLength,
                        uint16_t caseFlag, uint32_t *position, char **found) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (position != nullptr)
        *position = 0;
    if (found != nullptr)
        *found = nullptr;
    if (pattern == nullptr || text_ == nullptr || found == nullptr || position == nullptr || textLength < 0)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const CharTable &table = *locale->charTable;
    Counted sought{};
    Counted rest{};
    if (const nlsStatus status = countWhole(*locale, Whole(pattern), sought); status != NLS_OK)
        return status;
    const std::size_t length = ::strnlen(text_, static_cast<std::size_t>(textLength));
    if (const nlsStatus status = countText(*locale, bytes(text_), length, rest); status != NLS_OK)
        return status;
    if (sought.at == sought.end) {
        *position = static_cast<std::uint32_t>(textLength) + 1;
        *found = text(rest.at + textLength);
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
            *found = text(match.at);
            *position = offset(match.at, rest.at) + 1;
        }
        return status;
    });
}

nlsStatus nlsReplace(nlsLocale *locale, const char *pattern, const char *replacement, const char *text_,
                     uint16_t caseFlag, nlsStr *out, uint32_t *position, uint32_t *endOffset, char **found) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (replacement == nullptr || out == nullptr || out->buffer == nullptr)
        return NLS_E_NULLARG;
    if (const nlsStatus status = nlsSearchForw(locale, pattern, text_, caseFlag, position, endOffset, found);
        status != NLS_OK)
        return status;
    const Whole where(text_);
    const Whole instead(replacement);
    OutText result(*out);
    if (*found == nullptr)
        return result.copy(where.at, where.end);
    // An empty pattern is found behind the end.
    const std::uint8_t *const behind = std::min(where.at + *endOffset, where.end);
    if (const nlsStatus status = result.begin(where.at, bytes(*found)); status != NLS_OK)
        return status;
    if (const nlsStatus status = result.append(instead.at, instead.end); status != NLS_OK)
        return result.blank(status);
    if (const nlsStatus status = result.append(behind, where.end); status != NLS_OK)
        return result.blank(status);
    return NLS_OK;
}

nlsStatus nlsReplaceAll(nlsLocale *locale, const char *pattern, const char *replacement, const char *text_,
                        uint16_t caseFlag, nlsStr *out, uint32_t *count) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (pattern == nullptr || replacement == nullptr || text_ == nullptr || out == nullptr ||
        out->buffer == nullptr || count == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    *count = 0;
    const Whole sought(pattern);
    if (const nlsStatus status = checkNotCut(*locale, sought); status != NLS_OK)
        return status;
    if (sought.empty())
        return NLS_E_NULLARG;
    const Whole where(text_);
    if (const nlsStatus status = checkNotCut(*locale, where); status != NLS_OK)
        return status;
    const Whole instead(replacement);
    return withPage(*locale, caseFlag, [&](const auto &page) {
        OutText result(*out);
        const std::uint8_t *written = nullptr; // what stands before is in `out`, or replaced there
        nlsStatus status = NLS_OK;
        const auto replace = [&](const Match &match) {
            status = written == nullptr ? result.begin(where.at, match.at) : result.append(written, match.at);
            if (status != NLS_OK)
                return false;
            written = match.at;
            if (result.append(instead.at, instead.end) != NLS_OK)
                return false;
            written = match.end;
            ++*count;
            return true;
        };
        if (const nlsStatus failure = findAll(page, *locale, sought, where, replace); failure != NLS_OK)
            return failure;
        if (written == nullptr && status == NLS_OK)
            return result.copy(where.at, where.end);
        // Where the text before the first match does not fit, all of it does not.
        if (written != nullptr)
            status = result.append(written, where.end);
        return status == NLS_OK ? NLS_OK : result.blank(status);
    });
}
