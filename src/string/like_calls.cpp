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
    if (asked.signs().areAscii())
        return fast::likeIn(locale, pattern, string, asked);
#endif
    return likeByPage(locale, pattern, string, asked);
}
