#include "string/short_match_by.hpp"

#include <cstring>

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

namespace {

// Half a block holds most texts, and is looked through in half the time.
using Masks = Sse2Masks<2>;

// A string that may be looked at by a block: moved into one of its own, unless it goes on behind its block
// and so into the next page of memory.
class Moved {
public:
    [[gnu::noinline, gnu::cold]] explicit Moved(const char *at) : at_(at) {
        const std::size_t length = ::strnlen(at, kShortBlock);
        if (length < kShortBlock)
            at_ = static_cast<const char *>(std::memcpy(block_, at, length + 1)); // behind it, anything
    }
    Moved(const Moved &) = delete;
    Moved &operator=(const Moved &) = delete;

    [[nodiscard]] const char *at() const {
        return at_;
    }

private:
    const char *at_;
    alignas(kShortBlock) char block_[kShortBlock];
};

} // namespace

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode) {
    if ((locale.header.proofs & kByteShuffles) != 0)
        return avx2::findShortly(locale, pattern, text, mode);
    return findShortlyBy<Masks>(locale, pattern, text, mode);
}

nlsStatus likeShortly(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    if ((locale->header.proofs & kByteShuffles) != 0)
        return avx2::likeShortly(locale, pattern, text, asked);
    return likeShortlyBy<Masks>(locale, pattern, text, asked);
}

[[gnu::cold]] ShortPlaces findMoved(const nlsLocale &locale, const std::uint8_t *pattern,
                                    const std::uint8_t *text, unsigned mode) {
    const Moved movedPattern(reinterpret_cast<const char *>(pattern));
    const Moved movedText(reinterpret_cast<const char *>(text));
    return findLoadable(locale, bytesOf(movedPattern.at()), bytesOf(movedText.at()), mode);
}

[[gnu::cold]] nlsStatus likeMoved(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const Moved movedPattern(pattern);
    const Moved movedText(text);
    return likeLoadable(locale, movedPattern.at(), movedText.at(), asked);
}

} // namespace velnls::fast

#endif
