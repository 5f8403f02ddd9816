// nlsGetNextChar, nlsGetPrevChar, nlsCharToLChar, nlsLCharToChar, nlsGetCharProperty.
#include "locale/checks.hpp"
#include "locale/text.hpp"
#include "locale/walk.hpp"

using namespace velnls;

namespace {

constexpr std::uint32_t kQuestionMark = '?';
constexpr nlsStatus kOtherCharacter = static_cast<nlsStatus>(-1);
constexpr nlsStatus kDigit = static_cast<nlsStatus>(-2);

// Packed characters that are not single bytes: two bytes up to 0xFFFE, or the UTF-8 forms of three bytes.
constexpr std::uint32_t kLowestThreeBytes = 0xE08080;
constexpr std::uint32_t kHighestThreeBytes = 0xF4BFC0;

nlsStatus endOr0(const std::uint8_t *at) {
    return *at == 0 ? NLS_E_END : NLS_OK;
}

[[gnu::always_inline]] inline nlsStatus stepTo(const std::uint8_t *at, char **next) {
    *next = callersText(at);
    return endOr0(at);
}

// Over any character, or none at the text's end.
[[gnu::noinline]] nlsStatus stepOver(const CharTable &table, const std::uint8_t *at, char **next) {
    return stepTo(*at != 0 ? nextCharacter(table, at) : at, next);
}

} // namespace

// Called for each character of a text: what it does for most of them lies in two lines of the cache.
[[gnu::aligned(64)]] nlsStatus nlsGetNextChar(nlsLocale *locale, const char *p, char **next) {
    if (!isOpenLocale(locale)) [[unlikely]]
        return refuseLocale(locale);
    if (p == nullptr || next == nullptr) [[unlikely]]
        return NLS_E_NULLARG;
    const std::uint8_t *const at = bytesOf(p);
    // The usual ones first, and without a look into the table where the page is proved to be UTF-8.
    if ((locale->header.proofs & kUtf8Page) != 0) [[likely]] {
        std::size_t lead = *at;
        asm("" : "+r"(lead));
        if (static_cast<std::int8_t>(lead) >= -0x40 && lead < 0xE0) [[likely]] {
            // Of one byte or of two: which comes next nobody could foresee, so that no jump depends on it.
            // The next call waits for this sum, which therefore has no step too many.
            const std::uint8_t *behindFirst = at + 1;
            asm("" : "+r"(behindFirst));
            const std::uint8_t *const behind = behindFirst + (lead >> 7);
            if (behind[-1] != 0) [[likely]]
                return stepTo(behind, next);
        } else if (lead >= 0xE0 && lead < 0xF0 && at[1] != 0 && at[2] != 0) [[likely]] {
            return stepTo(at + 3, next);
        }
    } else {
        if (locale->charTable == nullptr) [[unlikely]] {
            *next = nullptr;
            return NLS_E_NOCHARTAB;
        }
        const std::size_t trails = locale->charTable->trailCount(*at);
        if (trails <= 1 && *at != 0 && at[trails] != 0) [[likely]] // a record may say anything of NUL
            return stepTo(at + trails + 1, next);
    }
    return stepOver(*locale->charTable, at, next);
}

nlsStatus nlsGetPrevChar(nlsLocale *locale, const char *p, const char *start, char **prev) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (p == nullptr || start == nullptr || prev == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr) {
        *prev = nullptr;
        return NLS_E_NOCHARTAB;
    }
    if (p <= start) {
        *prev = callersText(bytesOf(start));
        return NLS_E_END;
    }
    *prev = callersText(BackWalk(*locale->charTable, bytesOf(start)).before(bytesOf(p)));
    return NLS_OK;
}

nlsStatus nlsGetCharProperty(nlsLocale *locale, const char *ch, int32_t classValue, uint32_t *value) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (ch == nullptr || value == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const CharTable &table = *locale->charTable;
    const std::uint8_t byte = *bytesOf(ch);
    if (table.classes[byte] != static_cast<std::uint8_t>(classValue)) {
        *value = static_cast<std::uint32_t>(classValue) + 1;
        return kOtherCharacter;
    }
    if (table.trailCount(byte) != 0) {
        *value = table.trailCount(byte) + 1;
        return kOtherCharacter;
    }
    if (byte >= '0' && byte <= '9') {
        *value = byte & 15u;
        return kDigit;
    }
    *value = byte;
    return NLS_OK;
}

nlsStatus nlsCharToLChar(nlsLocale *locale, char **pp, uint32_t *lchar) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (pp == nullptr || *pp == nullptr || lchar == nullptr)
        return NLS_E_NULLARG;
    *lchar = 0;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const std::uint8_t *at = bytesOf(*pp);
    if (*at == 0)
        return NLS_E_END;
    const unsigned trails = locale->charTable->trailCount(*at);
    const std::uint8_t *const next = nextCharacter(*locale->charTable, at);
    if (trails > kCheckedTrails) {
        *lchar = kQuestionMark;
    } else {
        for (; at != next; ++at)
            *lchar = *lchar << 8 | *at;
    }
    *pp = callersText(next);
    return endOr0(next);
}

nlsStatus nlsLCharToChar(nlsLocale *locale, uint32_t lchar, char **pp, uint16_t *length) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (pp == nullptr || *pp == nullptr || length == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const CharTable &table = *locale->charTable;
    char *const out = *pp;
    *length = 0;
    if (lchar < 256) {
        if (lchar >= 128 && table.has(file::kUtf8))
            return NLS_E_BADCHAR;
        out[0] = static_cast<char>(lchar);
        *length = 1;
        *pp = out + 1;
        return NLS_OK;
    }
    if (lchar >= 0xFFFF && (lchar < kLowestThreeBytes || lchar > kHighestThreeBytes))
        return NLS_E_BADCHAR;
    if (!table.has(file::kMultibyte | file::kUtf8))
        return NLS_E_BADCHAR;

    // Written before the checks that follow: callers find the bytes there even when they are refused.
    const std::uint16_t count = lchar > 0xFFFF ? 3 : 2;
    for (unsigned i = 0; i < count; ++i)
        out[i] = static_cast<char>(lchar >> 8 * (count - 1 - i));
    const std::uint8_t *const written = bytesOf(out);
    if (table.trailCount(written[0]) + 1 != count)
        return NLS_E_BADCHAR;
    *length = count;
    for (unsigned i = 1; i < count; ++i) {
        if (table.trailValid[written[i]] == 0)
            return NLS_E_BADCHAR;
    }
    *pp = out + count;
    return NLS_OK;
}
