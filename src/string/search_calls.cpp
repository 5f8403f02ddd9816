// nlsSearchForw, nlsSearchBack, nlsReplace, nlsReplaceAll.
#include "locale/checks.hpp"
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

std::uint32_t offset(const std::uint8_t *at, const char *from) {
    return static_cast<std::uint32_t>(at - bytes(from));
}

nlsStatus countWhole(const nlsLocale &locale, const char *string, Counted &counted) {
    return countText(*locale.charTable, bytes(string), std::strlen(string), counted);
}

// The room that a counted string has left; -1 and less: not even an empty piece fits.
std::int64_t roomLeft(const nlsStr &string) {
    return std::int64_t{static_cast<std::int32_t>(string.size)} - static_cast<std::int32_t>(string.length) -
           1;
}

nlsStatus blankOut(nlsStr &string, nlsStatus status) {
    const auto used = std::min(string.length, string.size);
    if (used != 0)
        std::memset(string.buffer, ' ', used);
    string.length = 0;
    if (string.size != 0)
        string.buffer[0] = '\0';
    return status;
}

nlsStatus appendBytes(const std::uint8_t *from, const std::uint8_t *to, nlsStr &out) {
    return nlsAppendString(reinterpret_cast<const char *>(from), static_cast<std::int32_t>(to - from), &out);
}

// Replaces what stands in `out` by the first bytes of a text.
nlsStatus beginWith(const std::uint8_t *from, const std::uint8_t *to, nlsStr &out) {
    const auto size = static_cast<std::int32_t>(out.size);
    if (size <= 0 || to - from > size)
        return NLS_E_BUFFER;
    if (to - from == size) // fits without its terminator, so nothing can follow
        return blankOut(out, NLS_E_BUFFER);
    return nlsCopyString(reinterpret_cast<const char *>(from), static_cast<std::int32_t>(to - from), &out);
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
    Counted sought{};
    Counted rest{};
    if (const nlsStatus status = countWhole(*locale, pattern, sought); status != NLS_OK)
        return status;
    if (const nlsStatus status = countWhole(*locale, text_, rest); status != NLS_OK)
        return status;
    if (sought.at == sought.end) {
        *position = *endOffset = offset(rest.end, text_) + 1;
        *found = text(rest.end);
        return NLS_OK;
    }
    return withPage(*locale, caseFlag, [&](const auto &page) {
        Match match{};
        const nlsStatus status = Searcher(page, sought).forwards(rest, match);
        if (status == NLS_OK && match.at != nullptr) {
            *found = text(match.at);
            *position = offset(match.at, text_) + 1;
            *endOffset = offset(match.end, text_);
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
    if (const nlsStatus status = countWhole(*locale, pattern, sought); status != NLS_OK)
        return status;
    const std::size_t length = ::strnlen(text_, static_cast<std::size_t>(textLength));
    if (const nlsStatus status = countText(table, bytes(text_), length, rest); status != NLS_OK)
        return status;
    if (sought.at == sought.end) {
        *position = static_cast<std::uint32_t>(length) + 1;
        *found = text(rest.end);
        return NLS_OK;
    }
    if (length == 0)
        return NLS_E_END;
    return withPage(*locale, caseFlag, [&](const auto &page) {
        Match match{};
        const nlsStatus status =
            Searcher(page, sought)
                .backwards(rest, BackWalk(table, rest.at), BackWalk(table, sought.at), match);
        if (status == NLS_OK && match.at != nullptr) {
            *found = text(match.at);
            *position = offset(match.at, text_) + 1;
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
    const std::uint8_t *const begin = bytes(text_);
    const std::uint8_t *const end = begin + std::strlen(text_);
    if (*found == nullptr)
        return nlsCopyString(text_, static_cast<std::int32_t>(end - begin), out);
    const std::uint8_t *const behind =
        std::min(begin + *endOffset, end); // an empty pattern is found behind the end
    if (const nlsStatus status = beginWith(begin, bytes(*found), *out); status != NLS_OK)
        return status;
    if (const nlsStatus status =
            nlsAppendString(replacement, static_cast<std::int32_t>(std::strlen(replacement)), out);
        status != NLS_OK)
        return blankOut(*out, status);
    if (const nlsStatus status = appendBytes(behind, end, *out); status != NLS_OK)
        return blankOut(*out, status);
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
    Counted sought{};
    Counted rest{};
    if (const nlsStatus status = countWhole(*locale, pattern, sought); status != NLS_OK)
        return status;
    if (sought.at == sought.end)
        return NLS_E_NULLARG;
    if (const nlsStatus status = countWhole(*locale, text_, rest); status != NLS_OK)
        return status;
    const auto replacementLength = static_cast<std::int32_t>(std::strlen(replacement));
    const std::uint8_t *written = rest.at; // what stands before is in `out`, or replaced there
    return withPage(*locale, caseFlag, [&](const auto &page) {
        const Searcher searcher(page, sought);
        Match match{};
        if (const nlsStatus status = searcher.forwards(rest, match); status != NLS_OK)
            return status;
        if (match.at == nullptr)
            return nlsCopyString(text_, static_cast<std::int32_t>(rest.end - bytes(text_)), out);
        // The text is counted once: behind a match, its rest has the pattern's characters less.
        bool stopped = beginWith(written, match.at, *out) != NLS_OK;
        if (!stopped)
            written = match.at;
        while (!stopped && match.at != nullptr) {
            if ((written != match.at && appendBytes(written, match.at, *out) != NLS_OK))
                break;
            written = match.at;
            if (replacementLength > roomLeft(*out) ||
                nlsAppendString(replacement, replacementLength, out) != NLS_OK)
                break;
            ++*count;
            written = rest.at = match.end;
            rest.characters -= sought.characters;
            if (searcher.forwards(rest, match) != NLS_OK)
                break;
        }
        const nlsStatus status = appendBytes(written, rest.end, *out);
        return status == NLS_OK ? NLS_OK : blankOut(*out, status);
    });
}
