// nlsFindCharForw, nlsFindCharBack, nlsFindLtrimPtrForw, nlsFindRtrimPtrBack.
#include "locale/checks.hpp"
#include "string/search.hpp"

#include <cstring>

using namespace velnls;

namespace {

constexpr char kBlankSet[] = " ";

const std::uint8_t *bytes(const char *text) {
    return reinterpret_cast<const std::uint8_t *>(text);
}

char *text(const std::uint8_t *at) {
    return reinterpret_cast<char *>(const_cast<std::uint8_t *>(at));
}

std::uint32_t positionOf(const std::uint8_t *at, const char *from) {
    return static_cast<std::uint32_t>(at - bytes(from)) + 1;
}

// The bytes of a packed character, leading zero bytes dropped.
struct Unpacked {
    std::uint8_t bytes[4];
    unsigned length;
};
Unpacked unpack(std::uint32_t lchar) {
    Unpacked unpacked{};
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<std::uint8_t>(lchar >> shift);
        if (byte != 0 || unpacked.length != 0)
            unpacked.bytes[unpacked.length++] = byte;
    }
    // As a text it ends at its first NUL.
    unpacked.length = terminatedText(unpacked.bytes).available(unpacked.length);
    return unpacked;
}

// The first character of `str` that equals the sought one; null: none.
template <typename Page>
nlsStatus findForwards(const Page &page, Character sought, const std::uint8_t *str,
                       const std::uint8_t *&found) {
    found = nullptr;
    while (*str != 0) {
        const Character character = page.characterAt(str);
        bool equal = false;
        if (const nlsStatus status = page.equal(sought, character, equal); status != NLS_OK)
            return status;
        if (equal) {
            found = str;
            return NLS_OK;
        }
        str = character.end();
    }
    return NLS_OK;
}

nlsStatus checkFind(const nlsLocale *locale, const uint32_t *lchar, const char *str, uint32_t *position,
                    char **found) {
    // Cleared before any other test.
    if (position != nullptr)
        *position = 0;
    if (found != nullptr)
        *found = nullptr;
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (position == nullptr || found == nullptr || lchar == nullptr || str == nullptr)
        return NLS_E_NULLARG;
    return locale->charTable == nullptr ? NLS_E_NOCHARTAB : NLS_OK;
}

// What both directions answer for the character 0.
void findTerminator(const char *str, std::uint32_t &position, char **found) {
    const std::uint8_t *const end = bytes(str) + std::strlen(str);
    position = positionOf(end, str);
    *found = text(end);
}

// The packed character at `at` as the trims read it: characters of more than four bytes count as "?".
Character trimCharacter(Character character) {
    static constexpr std::uint8_t kQuestionMark[] = "?";
    return character.length > 4 ? Character{kQuestionMark, 1} : character;
}

} // namespace

nlsStatus nlsFindCharForw(nlsLocale *locale, const uint32_t *lchar, const char *str, uint16_t caseFlag,
                          uint32_t *position, char **found) {
    if (const nlsStatus status = checkFind(locale, lchar, str, position, found); status != NLS_OK)
        return status;
    if (*lchar == 0) {
        findTerminator(str, *position, found);
        return NLS_OK;
    }
    const Unpacked sought = unpack(*lchar);
    return withPage(*locale, caseFlag, [&](const auto &page) {
        const std::uint8_t *at = nullptr;
        const nlsStatus status = findForwards(page, {sought.bytes, sought.length}, bytes(str), at);
        if (at != nullptr) {
            *found = text(at);
            *position = positionOf(at, str);
        }
        return status;
    });
}

nlsStatus nlsFindCharBack(nlsLocale *locale, const uint32_t *lchar, const char *str, int32_t length,
                          uint16_t caseFlag, uint32_t *position, char **found) {
    if (const nlsStatus status = checkFind(locale, lchar, str, position, found); status != NLS_OK)
        return status;
    if (*lchar == 0) {
        findTerminator(str, *position, found);
        return NLS_OK;
    }
    if (length < 0)
        return NLS_E_NULLARG;
    const Unpacked sought = unpack(*lchar);
    return withPage(*locale, caseFlag, [&](const auto &page) {
        BackWalk walk(*locale->charTable, bytes(str));
        for (const std::uint8_t *at = bytes(str) + length; at != bytes(str);) {
            at = walk.before(at);
            bool equal = false;
            if (const nlsStatus status =
                    page.equal({sought.bytes, sought.length}, page.characterAt(at), equal);
                status != NLS_OK)
                return status;
            if (equal) {
                *found = text(at);
                *position = positionOf(at, str);
                return NLS_OK;
            }
        }
        return NLS_OK;
    });
}

nlsStatus nlsFindLtrimPtrForw(nlsLocale *locale, const char *trimSet, const char *str, uint16_t caseFlag,
                              uint32_t *position, char **result) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (str == nullptr || result == nullptr || position == nullptr)
        return NLS_E_NULLARG;
    *position = 0;
    if (locale->charTable == nullptr) {
        *result = nullptr;
        return NLS_E_NOCHARTAB;
    }
    const std::uint8_t *const set = bytes(trimSet == nullptr ? kBlankSet : trimSet);
    return withPage(*locale, caseFlag, [&](const auto &page) {
        const std::uint8_t *at = bytes(str);
        while (*at != 0) {
            const Character character = page.characterAt(at);
            const std::uint8_t *inSet = nullptr;
            if (const nlsStatus status = findForwards(page, trimCharacter(character), set, inSet);
                status != NLS_OK)
                return status;
            if (inSet == nullptr)
                break;
            at = character.end();
        }
        *result = text(at);
        *position = positionOf(at, str);
        return NLS_OK;
    });
}

nlsStatus nlsFindRtrimPtrBack(nlsLocale *locale, const char *trimSet, char *str, int32_t length,
                              uint16_t caseFlag, uint32_t *position, char **result) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (str == nullptr || result == nullptr || position == nullptr || length < 0)
        return NLS_E_NULLARG;
    *position = 0;
    if (locale->charTable == nullptr) {
        *result = nullptr;
        return NLS_E_NOCHARTAB;
    }
    const CharTable &table = *locale->charTable;
    const char *const set = trimSet == nullptr ? kBlankSet : trimSet;
    return withPage(*locale, caseFlag, [&](const auto &page) {
        BackWalk walk(table, bytes(str));
        const std::uint8_t *end = bytes(str) + length;
        while (end != bytes(str)) {
            const std::uint8_t *const start = walk.before(end);
            Counted character{};
            Counted rest{};
            if (const nlsStatus status =
                    countText(table, start, static_cast<std::size_t>(end - start), character);
                status != NLS_OK)
                return status;
            if (const nlsStatus status = countText(table, bytes(set), std::strlen(set), rest);
                status != NLS_OK)
                return status;
            Match match{};
            if (const nlsStatus status = Searcher(page, character).forwards(rest, match); status != NLS_OK)
                return status;
            if (match.at == nullptr)
                break;
            end = start;
        }
        *result = text(end);
        *position = positionOf(end, str);
        return NLS_OK;
    });
}
