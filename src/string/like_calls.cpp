// nlsSqlLike.
#include "locale/checks.hpp"
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

// What the short ways tell: of a pattern that begins with an any-string wildcard by masks, of any other by
// the first character, which decides most.
ShortLike likeShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *string,
                      unsigned mode, const LikeSigns &signs) {
    constexpr std::uint32_t kBehindAscii = 0x80;
    if (*pattern != signs.anyString)
        return beginsOtherwise(locale, pattern, string, mode, signs) ? ShortLike::No : ShortLike::Unsettled;
    if ((signs.anyString | signs.oneCharacter | signs.escape) >= kBehindAscii)
        return ShortLike::Unsettled;
    return fast::likeShortly(locale, mode, pattern, string,
                             {static_cast<std::uint8_t>(signs.escape),
                              static_cast<std::uint8_t>(signs.oneCharacter),
                              static_cast<std::uint8_t>(signs.anyString)});
}

} // namespace

nlsStatus nlsSqlLike(nlsLocale *locale, const char *pattern, const char *string, uint16_t mode,
                     uint32_t escape, uint32_t oneChar, uint32_t anyString) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (pattern == nullptr || string == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const LikeSigns signs{escape, oneChar, anyString};
    const ShortLike brief = likeShortly(*locale, reinterpret_cast<const std::uint8_t *>(pattern),
                                        reinterpret_cast<const std::uint8_t *>(string), mode, signs);
    if (brief == ShortLike::Yes || brief == ShortLike::No)
        return brief == ShortLike::Yes ? kLikeYes : kLikeNo;
    return withPage(*locale, mode, [&signs, pattern, string](const auto &page) {
        return likeOn(page, signs, pattern, string);
    });
}
