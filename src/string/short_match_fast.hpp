// The short ways to search and to match by LIKE: by what is proved of the locale.
//
// The calls begin with placesIn() and likeIn(). Those have pattern and text moved where one of them may not
// be loaded by blocks, and choose the set of instructions: findShortly() and likeShortly(). LIKE ends in
// likeByPage() where no short way settles it.
#pragma once

#include "collate/compare.hpp"
#include "locale/text.hpp"
#include "string/like_call.hpp"
#include "string/short_fast.hpp"
#include "string/short_match.hpp"

// The kernels for processors with AVX-512; call them only where kWideVectors is proved.
namespace velnls::avx512 {

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode);
// As likeByPage(), which it calls where one block does not settle it. The pattern begins with an any-string
// sign, and pattern and text may be loaded by blocks, here and below.
LikeCall likeShortly;
// As likeByPage(), which it calls where the literals before the first sign do not settle it. The pattern
// begins with such.
LikeCall likePrefixShortly;
// As likeShortly() for a text that goes on behind its block: by how characters match.
LikeCall likeLongByBytes;
LikeCall likeLongByAscii;
LikeCall likeLongByWeights;
// Copies a string whose page of memory ends behind less than a block into one, kShortBlock aligned. False
// where it does not end in that page. By one store, which a load of the block does not wait for.
bool moveFromPageEnd(const std::uint8_t *string, std::uint8_t *block);

} // namespace velnls::avx512

// The same for processors with AVX2; call them only where kByteShuffles is proved.
namespace velnls::avx2 {

ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode);
LikeCall likeShortly;

} // namespace velnls::avx2

namespace velnls::fast {

#if defined(VELNLS_SHORT_TEXTS)

[[gnu::always_inline]] inline ShortPage pageOf(const nlsLocale &locale) {
    const std::uint32_t proofs = locale.header.proofs;
    return (proofs & kSingleBytePage) != 0 ? ShortPage::Bytes
           : (proofs & kUtf8Page) != 0     ? ShortPage::Utf8
                                           : ShortPage::Pairs;
}
// What is proved of how characters match under a mode; of weights, only what that says of ASCII.
[[gnu::always_inline]] inline ShortMatching matchingOf(const nlsLocale &locale, unsigned mode) {
    const std::uint32_t proofs = locale.header.proofs;
    ShortMatching matching{ShortOrder::Unknown, pageOf(locale), &factsOf(*locale.charTable)};
    if (mode <= 1 && (proofs & matchProof(mode)) != 0)
        matching.order = mode == 0 ? ShortOrder::Ascii : ShortOrder::Bytes;
    else if (mode == 0 && (proofs & kMatchesWeights) != 0 && (proofs & kAsciiAmongWeights) != 0)
        matching.order = ShortOrder::AsciiAlone;
    return matching;
}

// What the call gives by what a short way has said: the general way settles what that left.
[[gnu::always_inline]] inline nlsStatus answerOf(ShortLike said, nlsLocale *locale, const char *pattern,
                                                 const char *text, LikeAsked asked) {
    if (said == ShortLike::Yes || said == ShortLike::No)
        return said == ShortLike::Yes ? kLikeYes : kLikeNo;
    return likeByPage(locale, pattern, text, asked);
}

// The same for every processor.
ShortPlaces findShortly(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                        unsigned mode);
LikeCall likeShortly;

// By the set of instructions, of pattern and text of which 64 bytes may be loaded each.
[[gnu::always_inline]] inline ShortPlaces findLoadable(const nlsLocale &locale, const std::uint8_t *pattern,
                                                       const std::uint8_t *text, unsigned mode) {
    const std::uint32_t proofs = locale.header.proofs;
    return (proofs & kWideVectors) != 0    ? avx512::findShortly(locale, pattern, text, mode)
           : (proofs & kByteShuffles) != 0 ? avx2::findShortly(locale, pattern, text, mode)
                                           : findShortly(locale, pattern, text, mode);
}
[[gnu::always_inline]] inline nlsStatus likeLoadable(nlsLocale *locale, const char *pattern, const char *text,
                                                     LikeAsked asked) {
    const std::uint32_t proofs = locale->header.proofs;
    return (proofs & kWideVectors) != 0    ? avx512::likeShortly(locale, pattern, text, asked)
           : (proofs & kByteShuffles) != 0 ? avx2::likeShortly(locale, pattern, text, asked)
                                           : likeShortly(locale, pattern, text, asked);
}

// The same where one of them stands too near to the end of its page of memory.
ShortPlaces findMoved(const nlsLocale &locale, const std::uint8_t *pattern, const std::uint8_t *text,
                      unsigned mode);
LikeCall likeMoved;

// All places of a pattern in a short text.
[[gnu::always_inline]] inline ShortPlaces placesIn(const nlsLocale &locale, const std::uint8_t *pattern,
                                                   const std::uint8_t *text, unsigned mode) {
    return fitsBlock(pattern) && fitsBlock(text) ? findLoadable(locale, pattern, text, mode)
                                                 : findMoved(locale, pattern, text, mode);
}

// LIKE with a pattern that begins with an any-string sign, by signs of ASCII.
[[gnu::always_inline]] inline nlsStatus likeIn(nlsLocale *locale, const char *pattern, const char *text,
                                               LikeAsked asked) {
    return fitsBlock(bytesOf(pattern)) && fitsBlock(bytesOf(text))
               ? likeLoadable(locale, pattern, text, asked)
               : likeMoved(locale, pattern, text, asked);
}

#else

inline ShortPlaces placesIn(const nlsLocale &, const std::uint8_t *, const std::uint8_t *, unsigned) {
    return kUnsettledPlaces;
}

#endif

} // namespace velnls::fast
