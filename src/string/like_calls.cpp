// nlsSqlLike.
#include "locale/checks.hpp"
#include "string/like.hpp"

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

nlsStatus nlsSqlLike(nlsLocale *locale, const char *pattern, const char *string, uint16_t mode,
                     uint32_t escape, uint32_t oneChar, uint32_t anyString) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (pattern == nullptr || string == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const LikeSigns signs{escape, oneChar, anyString};
    return withPage(*locale, mode, [&](const auto &page) { return likeOn(page, signs, pattern, string); });
}
