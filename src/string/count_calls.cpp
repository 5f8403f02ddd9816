// nlsCountBytes, nlsCountChars, nlsCountColumns, nlsSubstr, nlsExtract, nlsValidateString.
#include "core/text.hpp"
#include "locale/checks.hpp"
#include "locale/text.hpp"
#include "locale/walk.hpp"
#include "string/count.hpp"
#include "string/out_text.hpp"
#include "string/short_fast.hpp"

#include <algorithm>
#include <cstring>

using namespace velnls;

namespace {

// 0, 13, 24, 16 (`argumentsGiven` is false) or 27. The count is set to 0 before arguments are looked at.
nlsStatus checkText(const nlsLocale *locale, bool argumentsGiven, std::uint32_t *count) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (count != nullptr)
        *count = 0;
    if (!argumentsGiven)
        return NLS_E_NULLARG;
    return locale->charTable == nullptr ? NLS_E_NOCHARTAB : NLS_OK;
}

// The string's length as far as it matters: no byte behind `limit` is looked at.
std::uint32_t lengthUpTo(const char *str, std::uint32_t limit) {
    return static_cast<std::uint32_t>(::strnlen(str, limit));
}

// As nlsCopyString copies text without a NUL in it.
nlsStatus copyTo(const nlsLocale &locale, nlsStr &out, const std::uint8_t *from, const std::uint8_t *to) {
    return out.buffer == nullptr ? NLS_E_NULLARG : OutText(out, locale.header.proofs).copy(from, to);
}

} // namespace

nlsStatus nlsCountBytes(nlsLocale *locale, const char *str, int32_t chars, uint32_t *bytes) {
    if (const nlsStatus status = checkText(locale, str != nullptr && bytes != nullptr, bytes);
        status != NLS_OK)
        return status;
    if (chars < 0)
        return NLS_E_NULLARG;
    const auto length = static_cast<std::uint32_t>(std::strlen(str));
    const auto wanted = static_cast<std::uint32_t>(chars);
    if (wanted > length) {
        *bytes = length;
        return NLS_OK;
    }
    return countBytes(*locale->charTable, bytesOf(str), length, wanted, *bytes);
}

nlsStatus nlsCountChars(nlsLocale *locale, const char *str, int32_t bytes, uint32_t *chars) {
    if (const nlsStatus status = checkText(locale, str != nullptr && chars != nullptr, chars);
        status != NLS_OK)
        return status;
    if (bytes < 0)
        return NLS_E_NULLARG;
    const auto limit = static_cast<std::uint32_t>(bytes);
    if (!locale->charTable->has(file::kMultibyte)) {
        *chars = lengthUpTo(str, limit);
        return NLS_OK;
    }
    if (const ShortCount brief = fast::shortCharacters<false>(*locale, bytesOf(str), limit);
        brief.settled()) {
        *chars = brief.count;
        return NLS_OK;
    }
    return countCharacters(*locale, bytesOf(str), limit, *chars);
}

nlsStatus nlsCountColumns(nlsLocale *locale, const char *str, int32_t bytes, uint32_t *columns) {
    if (const nlsStatus status = checkText(locale, str != nullptr && columns != nullptr, columns);
        status != NLS_OK)
        return status;
    if (bytes < 0)
        return NLS_E_NULLARG;
    const auto limit = static_cast<std::uint32_t>(bytes);
    return countColumns(*locale, bytesOf(str), limit, *columns) ? NLS_OK : NLS_E_NULLARG;
}

nlsStatus nlsSubstr(nlsLocale *locale, const char *str, int32_t start, int32_t length, uint32_t *chars,
                    nlsStr *out) {
    const bool given = str != nullptr && chars != nullptr && out != nullptr;
    if (const nlsStatus status = checkText(locale, given, chars); status != NLS_OK)
        return status;
    if (start < 1 || length < 0)
        return NLS_E_NULLARG;
    const ShortStretch brief = fast::shortStretch(
        *locale, bytesOf(str), static_cast<std::uint32_t>(start - 1), static_cast<std::uint32_t>(length));
    if (brief.settled) {
        *chars = brief.count;
        return copyTo(*locale, *out, bytesOf(str) + brief.from, bytesOf(str) + brief.to);
    }
    const auto needed = static_cast<std::uint32_t>(std::max(start, length));
    if (lengthUpTo(str, needed) < needed)
        return NLS_E_NULLARG;
    const CharTable &table = *locale->charTable;
    const std::uint8_t *const begin = bytesOf(str);
    const std::uint8_t *from = begin + (start - 1);
    const std::uint8_t *const end = from + length; // behind the byte range
    while (*from != 0 && !beginsCharacter(table, from, begin))
        ++from;
    if (from >= end)
        return copyTo(*locale, *out, from, from);
    const std::uint8_t *const to =
        from + countWhole(*locale, from, static_cast<std::uint32_t>(end - from), *chars);
    return copyTo(*locale, *out, from, to);
}

nlsStatus nlsExtract(nlsLocale *locale, const char *str, uint32_t chars, nlsStr *out) {
    if (const nlsStatus status = checkText(locale, str != nullptr && out != nullptr, nullptr);
        status != NLS_OK)
        return status;
    std::uint32_t bytes = 0;
    constexpr std::uint32_t kAll = 0x7FFFFFFF; // more characters than any string has
    const nlsStatus status =
        nlsCountBytes(locale, str, static_cast<std::int32_t>(std::min(chars, kAll)), &bytes);
    return status != NLS_OK ? status : nlsCopyString(str, static_cast<std::int32_t>(bytes), out);
}

nlsStatus nlsValidateString(nlsLocale *locale, const void *data, int32_t length, uint32_t byteOrder,
                            uint32_t *count) {
    if (const nlsStatus status = checkText(locale, data != nullptr && count != nullptr, count);
        status != NLS_OK)
        return status;
    if (length < 0)
        return NLS_E_NULLARG;
    const CharTable &table = *locale->charTable;
    const auto *const bytes = static_cast<const std::uint8_t *>(data);
    if (!table.has(file::kMultibyte)) {
        const auto whole = static_cast<std::uint32_t>(length);
        *count = lengthUpTo(static_cast<const char *>(data), whole);
        return *count == whole ? NLS_OK : NLS_E_END;
    }
    if (table.has(file::kWide))
        return validateUtf16(bytes, length, byteOrder > 0, *count);
    if (table.has(file::kUnits32))
        return validateUtf32(bytes, length, byteOrder > 0, *count);
    if (const ShortCount brief =
            fast::shortCharacters<true>(*locale, bytes, static_cast<std::uint32_t>(length));
        brief.settled()) {
        *count = brief.count;
        return brief.bytes == static_cast<std::uint32_t>(length) ? NLS_OK : NLS_E_END;
    }
    return validateBytes(*locale, bytes, length, *count);
}
