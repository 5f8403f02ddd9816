#include "string/short_match_by.hpp"

#include <cstring>

#if defined(VELNLS_SHORT_TEXTS)

namespace velnls::fast {

namespace {

// Half a block holds most texts, and is looked through in half the time.
using Masks = Sse2Masks<2>;

// A pattern in a block of its own.
class MovedPattern {
public:
    explicit MovedPattern(const char *pattern) : length_(::strnlen(pattern, kShortBlock)) {
        if (fits())
            std::memcpy(block_, pattern, length_ + 1); // behind it stands anything, as behind any string
    }
    [[nodiscard]] bool fits() const {
        return length_ < kShortBlock;
    }
    [[nodiscard]] const char *at() const {
        return block_;
    }

private:
    std::size_t length_;
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

ShortPlaces findMoved(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                      unsigned mode) {
    const MovedPattern moved(reinterpret_cast<const char *>(pattern));
    return moved.fits() ? placesIn(locale, bytesOf(moved.at()), text, mode) : kUnsettledPlaces;
}

nlsStatus likeMoved(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked) {
    const MovedPattern moved(pattern);
    return moved.fits() ? likeIn(locale, moved.at(), text, asked) : likeByPage(locale, pattern, text, asked);
}

} // namespace velnls::fast

#endif
