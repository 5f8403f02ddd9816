// nlsFindCharForw, nlsFindCharBack, nlsFindLtrimPtrForw, nlsFindRtrimPtrBack.
#include "locale/checks.hpp"
#include "locale/text.hpp"
#include "string/search.hpp"

#include <cstring>

using namespace velnls;

namespace {

constexpr char kBlankSet[] = " ";

std::uint32_t positionOf(const std::uint8_t *at, const char *from) {
    return static_cast<std::uint32_t>(at - bytesOf(from)) + 1;
}

// The bytes of a packed character, leading zero bytes dropped, as a text.
struct Unpacked {
    std::uint8_t bytes[5];
    unsigned length;

    explicit Unpacked(std::uint32_t lchar) : bytes{}, length(0) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            const auto byte = static_cast<std::uint8_t>(lchar >> shift);
            if (byte != 0 || length != 0)
                bytes[length++] = byte;
        }
        length = terminatedText(bytes).available(length);
    }
};

// Calls `use` with the page that compares a packed character: any number may be given as one, and what is not
// one character of the code page is compared as the string that it is.
template <typename Use>
nlsStatus withPageFor(const nlsLocale &locale, unsigned mode, const Unpacked &sought, Use use) {
    if (sought.length != locale.charTable->trailCount(sought.bytes[0]) + 1)
        return use(AnyPage(locale, mode));
    return withPage(locale, mode, use);
}

// The first character of `str` that equals the sought one; null: none.
template <typename Page>
nlsStatus findForwards(const Page &page, Character sought, const std::uint8_t *str,
                       const std::uint8_t *&found) {
    found = nullptr;
    while (*str != 0) {
        const Character character = page.characters().characterAt(str);
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

// The same in a text that may be long.
template <typename Page>
nlsStatus findInText(const Page &page, const Unpacked &sought, const std::uint8_t *str,
                     const std::uint8_t *&found) {
    const Character character{sought.bytes, sought.length};
    if constexpr (Page::kQuick) {
        const std::uint8_t *const end = str + std::strlen(reinterpret_cast<const char *>(str));
        Seeker seeker(page, character.at, character.end(), str, end);
        for (const std::uint8_t *at = str; at != end && (at = seeker.next(at)) != end;) {
            const Character candidate = page.characters().characterAt(at);
            bool equal = false;
            page.equal(character, candidate, equal);
            if (equal) {
                found = at;
                return NLS_OK;
            }
            at = candidate.end();
        }
        found = nullptr;
        return NLS_OK;
    } else {
        return findForwards(page, character, str, found);
    }
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
    const std::uint8_t *const end = bytesOf(str) + std::strlen(str);
    position = positionOf(end, str);
    *found = callersText(end);
}

// A character as the left trim reads it: those of more than four bytes count as "?".
template <typename Characters>
Character trimCharacter(const Characters &characters, Character character) {
    static constexpr std::uint8_t kQuestionMark[] = "?";
    return characters.announced(*character.at) > 4 ? Character{kQuestionMark, 1} : character;
}

// Whether the trim set holds what stands between two places of a text; it ends at a NUL.
template <typename Page>
nlsStatus isIn(const Page &page, const nlsLocale &locale, const std::uint8_t *from, const std::uint8_t *to,
               const std::uint8_t *set, bool &isInSet) {
    Counted sought{};
    Counted rest{};
    const std::size_t length = terminatedText(from).available(static_cast<unsigned>(to - from));
    if (const nlsStatus status = countText(locale, from, length, sought); status != NLS_OK)
        return status;
    const std::size_t setLength = std::strlen(reinterpret_cast<const char *>(set));
    if (const nlsStatus status = countText(locale, set, setLength, rest); status != NLS_OK)
        return status;
    Match match{};
    if (length != 0)
        if (const nlsStatus status = CountedSearch(page, sought).forwards(rest, match); status != NLS_OK)
            return status;
    isInSet = length == 0 || match.at != nullptr; // an empty text is found in any
    return NLS_OK;
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
    const Unpacked sought(*lchar);
    return withPageFor(*locale, caseFlag, sought, [&](const auto &page) {
        const std::uint8_t *at = nullptr;
        const nlsStatus status = findInText(page, sought, bytesOf(str), at);
        if (at != nullptr) {
            *found = callersText(at);
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
    const Unpacked sought(*lchar);
    return withPageFor(*locale, caseFlag, sought, [&](const auto &page) -> nlsStatus {
        BackWalk walk(*locale->charTable, bytesOf(str));
        for (const std::uint8_t *at = bytesOf(str) + length; at != bytesOf(str);) {
            at = walk.before(at);
            bool equal = false;
            if (const nlsStatus status =
                    page.equal({sought.bytes, sought.length}, page.characters().characterAt(at), equal);
                status != NLS_OK)
                return status;
            if (equal) {
                *found = callersText(at);
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
    const std::uint8_t *const set = bytesOf(trimSet == nullptr ? kBlankSet : trimSet);
    return withPage(*locale, caseFlag, [&](const auto &page) {
        const std::uint8_t *at = bytesOf(str);
        while (*at != 0) {
            const Character character = page.characters().characterAt(at);
            const std::uint8_t *inSet = nullptr;
            if (const nlsStatus status =
                    findForwards(page, trimCharacter(page.characters(), character), set, inSet);
                status != NLS_OK)
                return status;
            if (inSet == nullptr)
                break;
            at = character.end();
        }
        *result = callersText(at);
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
    const std::uint8_t *const set = bytesOf(trimSet == nullptr ? kBlankSet : trimSet);
    return withPage(*locale, caseFlag, [&](const auto &page) {
        BackWalk walk(*locale->charTable, bytesOf(str));
        const std::uint8_t *end = bytesOf(str) + length;
        while (end != bytesOf(str)) {
            const std::uint8_t *const start = walk.before(end);
            bool isInSet = false;
            if (const nlsStatus status = isIn(page, *locale, start, end, set, isInSet); status != NLS_OK)
                return status;
            if (!isInSet)
                break;
            end = start;
        }
        *result = callersText(end);
        *position = positionOf(end, str);
        return NLS_OK;
    });
}
