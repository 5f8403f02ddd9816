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

// What the short way tells of a pattern that begins with an any-string wildcard. Any other is mostly decided
// by its first character.
ShortLike likeShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *string,
                      unsigned mode, const LikeSigns &signs) {
    constexpr std::uint32_t kBehindAscii = 0x80;
    if (*pattern != signs.anyString || (signs.anyString | signs.oneCharacter | signs.escape) >= kBehindAscii)
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
    if (brief != ShortLike::Unsettled)
        return brief == ShortLike::Yes ? kLikeYes : kLikeNo;
    return withPage(*locale, mode, [&signs, pattern, string](const auto &page) {
        return likeOn(page, signs, pattern, string);
    });
}
