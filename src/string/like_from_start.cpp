// LIKE with patterns that begin with a character: the string's first one decides most.
#include "locale/case_map.hpp"
#include "locale/page_facts.hpp"
#include "string/short_match_fast.hpp"

namespace velnls {

namespace {

// Whether matchProof() holds of ASCII at least. `mode`: 0 or 1.
constexpr bool isAsciiProved(std::uint32_t proofs, unsigned mode) {
    constexpr std::uint32_t kAmongWeights = kMatchesWeights | kAsciiAmongWeights;
    return (proofs & matchProof(mode)) != 0 || (mode == 0 && (proofs & kAmongWeights) == kAmongWeights);
}

// Whether a pattern and a string plainly begin with different characters, one of them at least not of ASCII.
// False where it takes more to tell, as where the end cuts one. `folds`: letters match in either case.
bool beginsOtherwiseInUtf8(const std::uint8_t *pattern, const std::uint8_t *string, bool folds) {
    const auto isOfThree = [](unsigned lead) { return lead - 0xE0 < 0x10; };
    const unsigned wanted = *pattern;
    const unsigned found = *string;
    if (wanted < kBehindAscii)
        return isOfThree(found) && string[1] != 0 && string[2] != 0;
    const bool plain = folds ? isCaseless(wanted) : isOfThree(wanted);
    if (!plain || pattern[1] == 0 || pattern[2] == 0)
        return false;
    if (string[1] == 0 || string[2] == 0)
        return found < kBehindAscii;
    // Which byte differs nobody could foresee: one jump for all.
    const unsigned difference = (wanted ^ found) | (pattern[1] ^ string[1]) | (pattern[2] ^ string[2]);
    return difference != 0;
}

// The same where characters are of one byte or two, or all of one: the facts of such a page have no lead
// bytes.
bool beginsOtherwiseInPairs(const PageFacts &facts, const std::uint8_t *pattern, const std::uint8_t *string,
                            bool folds) {
    const unsigned wanted = *pattern;
    const unsigned found = *string;
    if (!facts.isLead(wanted)) // bytes that are not of ASCII fold by a table
        return wanted != found && !(folds && wanted >= kBehindAscii) &&
               (string[1] != 0 || !facts.isLead(found));
    if (pattern[1] == 0)
        return false;
    if (string[1] == 0)
        return !facts.isLead(found);
    return ((wanted ^ found) | (pattern[1] ^ string[1])) != 0;
}

// The same of any characters but the end and two of ASCII, the pattern's being no sign.
bool beginsOtherwise(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *string,
                     unsigned mode) {
    const std::uint32_t proofs = locale.header.proofs;
    if (mode > 1 || (*pattern | *string) < kBehindAscii || (proofs & matchProof(mode)) == 0)
        return false;
    return (proofs & kUtf8Page) != 0
               ? beginsOtherwiseInUtf8(pattern, string, mode == 0)
               : beginsOtherwiseInPairs(factsOf(*locale.charTable), pattern, string, mode == 0);
}

// What two characters of ASCII leave unsettled. A function of its own, so that they do not pay for what it
// keeps.
[[gnu::noinline]] nlsStatus likeFromOther(nlsLocale *locale, const char *pattern_, const char *string_,
                                          LikeAsked asked) {
    const std::uint8_t *const pattern = bytesOf(pattern_);
    const std::uint8_t *const string = bytesOf(string_);
    const LikeSigns signs = asked.signs();
    if (*pattern == 0 || *string == 0 || signs.isOther(*pattern) || !signs.areAscii())
        return likeByPage(locale, pattern_, string_, asked);
    if (beginsOtherwise(*locale, pattern, string, asked.mode()))
        return kLikeNo;
#if defined(VELNLS_SHORT_TEXTS)
    if ((locale->header.proofs & kWideVectors) != 0 && fast::fitsBlock(pattern) && fast::fitsBlock(string))
        return avx512::likePrefixShortly(locale, pattern_, string_, asked);
#endif
    return likeByPage(locale, pattern_, string_, asked);
}

} // namespace

nlsStatus likeFromStart(nlsLocale *locale, const char *pattern, const char *string, LikeAsked asked) {
    const unsigned wanted = *bytesOf(pattern);
    // First what is the same for all strings: nobody could foresee how they begin.
    if (wanted != 0 && wanted < kBehindAscii && asked.mode() <= 1 &&
        isAsciiProved(locale->header.proofs, asked.mode()) && !asked.signs().isOther(wanted)) {
        const unsigned found = *bytesOf(string);
        // No letter's other case differs in another bit.
        const unsigned difference = (wanted ^ found) & (asked.mode() == 0 ? ~0x20U : ~0U);
        if (difference != 0 && found != 0 && found < kBehindAscii)
            return kLikeNo;
    }
    return likeFromOther(locale, pattern, string, asked);
}

} // namespace velnls
