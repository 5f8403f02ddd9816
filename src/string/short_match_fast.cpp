// The short ways to match on any processor, and strings that stand near the end of their page of memory.
#include "string/short_match_fast.hpp"

#include <cstring>

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

namespace {

// Half a block holds most texts, and is looked through in half the time.
using Masks = Sse2Masks<2>;

// A string that may be looked at by a block: where it stands, or moved into a block of its own, unless it
// goes on behind its page of memory, and so into the next one.
class Moved {
public:
    [[gnu::noinline, gnu::cold]] Moved(const nlsLocale &locale, const std::uint8_t *at) : at_(at) {
        if (!fitsBlock(at) && move(locale))
            at_ = block_;
    }
    Moved(const Moved &) = delete;
    Moved &operator=(const Moved &) = delete;

    [[nodiscard]] const std::uint8_t *at() const {
        return at_;
    }

private:
    bool move(const nlsLocale &locale) {
        if ((locale.header.proofs & kWideVectors) != 0)
            return avx512::moveFromPageEnd(at_, block_);
        const std::size_t left = leftInPage(at_);
        const auto *const end = static_cast<const std::uint8_t *>(std::memchr(at_, 0, left));
        if (end == nullptr)
            return false;
        std::memcpy(block_, at_, static_cast<std::size_t>(end - at_) + 1); // behind it, anything
        return true;
    }

    const std::uint8_t *at_;
    alignas(kShortBlock) std::uint8_t block_[kShortBlock];
};

} // namespace

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode) {
    const ShortMatching matching = matchingOf(locale, mode);
    return matching.order == ShortOrder::Unknown ? kUnsettledPlaces
                                                 : shortPlacesBy<Masks>(matching, pattern, text);
}

nlsStatus likeShortly(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const ShortMatching matching = matchingOf(*locale, asked.mode());
    if (matching.order == ShortOrder::Unknown)
        return likeByPage(locale, pattern, text, asked);
    const ShortLike said = shortLikeBy<Masks>(matching, bytesOf(pattern), bytesOf(text), asked.signs());
    return answerOf(said, locale, pattern, text, asked);
}

[[gnu::cold]] ShortPlaces findMoved(const nlsLocale &locale, const std::uint8_t *pattern,
                                    const std::uint8_t *text, unsigned mode) {
    const Moved movedPattern(locale, pattern);
    const Moved movedText(locale, text);
    return findLoadable(locale, movedPattern.at(), movedText.at(), mode);
}

[[gnu::cold]] nlsStatus likeMoved(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const Moved movedPattern(*locale, bytesOf(pattern));
    const Moved movedText(*locale, bytesOf(text));
    return likeLoadable(locale, reinterpret_cast<const char *>(movedPattern.at()),
                        reinterpret_cast<const char *>(movedText.at()), asked);
}

} // namespace velnls::fast

#endif
