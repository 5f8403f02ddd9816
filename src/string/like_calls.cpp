// nlsSqlLike.
#include "locale/checks.hpp"
#include "locale/text.hpp"
#include "string/like.hpp"
#include "string/short_match_fast.hpp"

using namespace velnls;

namespace {

// A function of its own for each page, so that the call's checks do not pay for what the walk keeps.
template <typename Page>
[[gnu::noinline]] nlsStatus likeOn(const Page &page, const LikeSigns &signs, const char *pattern,
                                   const char *string) {
    return LikeWalk(page, signs)
        .match(reinterpret_cast<const std::uint8_t *>(pattern),
               reinterpret_cast<const std::uint8_t *>(string));
}

// Whether pattern and string plainly begin with different characters, the pattern's being no sign. False
// where it takes more to tell.
bool beginsOtherwise(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *string,
                     unsigned mode, const LikeSigns &signs) {
    constexpr std::uint32_t kBehindAscii = 0x80;
    const std::uint32_t proofs = locale.header.proofs;
    const std::uint32_t wanted = *pattern;
    const std::uint32_t found = *string;
    if (wanted == 0 || found == 0 || mode > 1 || locale.collation == nullptr)
        return false;
    if (wanted == signs.escape || wanted == signs.oneCharacter)
        return false;
    if ((proofs & kMatchesWeights) != 0) {
        bool equal = false;
        BytePage(weightsOf(*locale.collation, mode)).equal({pattern, 1}, {string, 1}, equal);
        return !equal;
    }
    if ((wanted | found) >= kBehindAscii)
        return false;
    // No letter's other case differs in another bit.
    const std::uint32_t difference = (wanted ^ found) & (mode == 1 ? ~0U : ~0x20U);
    return difference != 0 && (proofs & (mode == 1 ? kMatchesBytes : kMatchesAscii)) != 0;
}

// Patterns that begin with a character: the string's first one decides most.
[[gnu::noinline]] LikeCall likeFromStart;

nlsStatus likeFromStart(nlsLocale *locale, const char *pattern, const char *string, LikeAsked asked) {
    if (beginsOtherwise(*locale, bytesOf(pattern), bytesOf(string), asked.mode(), asked.signs()))
        return kLikeNo;
    return likeByPage(locale, pattern, string, asked);
}

} // namespace

[[gnu::noinline]] nlsStatus velnls::likeByPage(nlsLocale *locale, const char *pattern, const char *string,
                                               LikeAsked asked) {
    const LikeSigns signs = asked.signs();
    return withPage(*locale, asked.mode(), [&signs, pattern, string](const auto &page) {
        return likeOn(page, signs, pattern, string);
    });
}

// Only the checks are made here: each way takes what was asked, and goes on to the next one, so that no call
// keeps more than it needs itself.
nlsStatus nlsSqlLike(nlsLocale *locale, const char *pattern, const char *string, uint16_t mode,
                     uint32_t escape, uint32_t oneChar, uint32_t anyString) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (pattern == nullptr || string == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const LikeAsked asked({escape, oneChar, anyString}, mode);
    if (*bytesOf(pattern) != anyString)
        return likeFromStart(locale, pattern, string, asked);
#if defined(VELNLS_SHORT_TEXTS)
    if (fast::isForLikeIn(asked.signs()))
        return fast::likeIn(locale, pattern, string, asked);
#endif
    return likeByPage(locale, pattern, string, asked);
}
