// SQL LIKE over whole characters.
//
// Only the last any-string wildcard is ever tried again. Which rest of the pattern matches from a place
// depends on nothing before that place, and a later start of an any-string wildcard leaves it fewer places to
// try; so when everything behind it has failed once, moving an earlier wildcard cannot help. The walk takes
// constant memory and time proportional to the pattern times the string at worst.
#pragma once

#include "string/like_call.hpp"
#include "string/seeker.hpp"

namespace velnls {

template <typename Page>
class LikeWalk {
public:
    LikeWalk(const Page &page, const LikeSigns &signs) : page_(page), signs_(signs) {}

    nlsStatus match(const std::uint8_t *pattern, const std::uint8_t *string) {
        pattern_ = pattern;
        string_ = string;
        nlsStatus result = matchTo(pattern, string);
        while (result == kAtAnyString)
            result = *pattern_ == 0 ? kLikeYes : matchAnywhere(pattern_, string_);
        return result;
    }

private:
    static constexpr nlsStatus kAtAnyString = 0x10000; // no status has this value

    struct Sign {
        std::uint32_t value;
        Character character;
    };

    [[nodiscard]] Sign signAt(const std::uint8_t *at) const {
        const Character character = page_.characters().characterAt(at);
        if (character.length == 1 && page_.characters().announced(*at) == 1)
            return {*at, character};
        std::uint32_t value = '?';
        if (page_.characters().announced(*at) <= 4) {
            value = 0;
            for (unsigned i = 0; i < character.length; ++i)
                value = value << 8 | character.at[i];
        }
        return {value, character};
    }
    [[nodiscard]] bool isOneCharacter(std::uint32_t value) const {
        return value == signs_.oneCharacter && value != signs_.escape;
    }
    [[nodiscard]] bool isAnyString(std::uint32_t value) const {
        return value == signs_.anyString && value != signs_.escape;
    }
    [[nodiscard]] bool isEscape(std::uint32_t value) const {
        return value == signs_.escape && value != 0;
    }
    [[nodiscard]] bool isAnySign(std::uint32_t value) const {
        return value == signs_.escape || value == signs_.oneCharacter || value == signs_.anyString;
    }
    [[nodiscard]] bool isWhole(Character character) const {
        return character.length != 0 && character.length == page_.characters().announced(*character.at);
    }
    [[nodiscard]] bool isOnlyAnyString(const std::uint8_t *pattern) const {
        const Sign sign = signAt(pattern);
        return isAnyString(sign.value) && *sign.character.end() == 0 && sign.character.length != 0;
    }

    // Tries what stands behind an any-string wildcard, at least one character, at each place of a string that
    // is not empty. A failure inside only means that there is no match at that place.
    nlsStatus matchAnywhere(const std::uint8_t *pattern, const std::uint8_t *string) {
        if constexpr (Page::kQuick) {
            const std::uint8_t *run = pattern;
            if (const std::uint8_t *const runEnd = literalRun(run); runEnd != run) {
                if (end_ == nullptr)
                    end_ = string + std::strlen(reinterpret_cast<const char *>(string));
                return matchRunAnywhere(pattern, run, runEnd, string);
            }
        }
        while (*string != 0) {
            const nlsStatus result = matchTo(pattern, string);
            if (result == kLikeYes || result == kAtAnyString)
                return result;
            string = behindAbsorbed(string);
        }
        return kLikeNo;
    }

    // The same where the pattern begins with literals: only places where they stand are tried.
    nlsStatus matchRunAnywhere(const std::uint8_t *pattern, const std::uint8_t *run,
                               const std::uint8_t *runEnd, const std::uint8_t *string) {
        // Most often they stand at the very first place, or a filter for the places is worth its making.
        nlsStatus result = matchRunAt(pattern, run, runEnd, string);
        if (result == kLikeYes || result == kAtAnyString)
            return result;
        string = behindAbsorbed(string);
        if (string >= end_)
            return kLikeNo;
        Seeker<Page> seeker(page_, run, runEnd, string, end_);
        while (string != end_ && (string = seeker.next(string)) != end_) {
            result = matchRunAt(pattern, run, runEnd, string);
            if (result == kLikeYes || result == kAtAnyString)
                return result;
            string = behindAbsorbed(string);
        }
        return kLikeNo;
    }

    // Tries the pattern, which begins with the literals, at one place of the string.
    nlsStatus matchRunAt(const std::uint8_t *pattern, const std::uint8_t *run, const std::uint8_t *runEnd,
                         const std::uint8_t *string) {
        const std::uint8_t *behind = string;
        const Standing standing = page_.stands(run, runEnd, behind, end_);
        absorbed_ = 0;
        if (standing == Standing::No)
            return kLikeNo;
        // Where the string ends within the literals or with them, blanks count as its end.
        return standing == Standing::Yes && *runEnd != 0 && behind != end_ ? matchTo(runEnd, behind)
                                                                           : matchTo(pattern, string);
    }

    // The next start worth a try, behind a failed one.
    [[nodiscard]] const std::uint8_t *behindAbsorbed(const std::uint8_t *start) const {
        for (std::size_t steps = absorbed_ + 1; steps > 0 && *start != 0; --steps)
            start = page_.characters().characterAt(start).end();
        return start;
    }

    // The literals that the pattern begins with, up to any sign and to a character that the pattern's end
    // cuts; an escaped literal stands alone. `run` moves behind the escape. Empty: the first is none.
    const std::uint8_t *literalRun(const std::uint8_t *&run) const {
        Sign sign = signAt(run);
        if (isEscape(sign.value)) {
            const Sign escaped = signAt(sign.character.end());
            if (!isAnySign(escaped.value))
                return run;
            run = sign.character.end();
            return isWhole(escaped.character) ? escaped.character.end() : run;
        }
        const std::uint8_t *end = run;
        for (; !isAnySign(sign.value) && isWhole(sign.character); sign = signAt(end))
            end = sign.character.end();
        return end;
    }

    // Matches up to a verdict or to the next any-string wildcard, whose places behind it and in the string it
    // leaves in pattern_ and string_. absorbed_ counts what the pattern's last literal took beyond its own
    // character: the character that stopped it stops every start as far as that, so they need not be tried.
    nlsStatus matchTo(const std::uint8_t *pattern, const std::uint8_t *string) {
        absorbed_ = 0;
        for (;;) {
            Sign sign = signAt(pattern);
            const std::uint8_t *rest = sign.character.end();
            if (isOneCharacter(sign.value)) {
                if (*string == 0)
                    return kLikeNo;
                string = page_.characters().characterAt(string).end();
                if (*rest == 0 && *string != 0)
                    return kLikeNo;
                pattern = rest;
                continue;
            }
            if (isAnyString(sign.value)) {
                pattern_ = rest;
                string_ = string;
                return *rest == 0 || *string != 0 ? kAtAnyString : kLikeNo;
            }
            if (isEscape(sign.value)) {
                sign = signAt(rest);
                if (!isAnySign(sign.value))
                    return kLikeBadEscape;
                rest = sign.character.end();
            }
            if (*rest == 0 && sign.character.length == 0 && *string == 0)
                return kLikeYes;
            nlsStatus verdict = kLikeNo;
            if (!takeLiteral(sign.character, rest, string, verdict))
                return verdict;
            pattern = rest;
        }
    }

    // Compares a literal with the string's character and steps over it. False where that decides.
    bool takeLiteral(Character literal, const std::uint8_t *rest, const std::uint8_t *&string,
                     nlsStatus &verdict) {
        for (;;) {
            const Character character = page_.characters().characterAt(string);
            bool equal = false;
            const nlsStatus status = page_.equal(literal, character, equal);
            if (status != NLS_OK || !equal) {
                verdict = status != NLS_OK ? status : kLikeNo;
                return false;
            }
            string = character.end();
            if (*string == 0) {
                verdict = *rest == 0 || isOnlyAnyString(rest) ? kLikeYes : kLikeNo;
                return false;
            }
            if (*rest != 0)
                return true;
            ++absorbed_; // the pattern's last literal takes repeats of itself
        }
    }

    const Page &page_;
    const LikeSigns &signs_;
    const std::uint8_t *pattern_ = nullptr;
    const std::uint8_t *string_ = nullptr;
    const std::uint8_t *end_ = nullptr; // of the string, once it is known
    std::size_t absorbed_ = 0;
};

} // namespace velnls
