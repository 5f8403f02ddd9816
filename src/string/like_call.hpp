// What LIKE is asked and what it answers, on every way that settles it.
#pragma once

#include "velnls.h"

namespace velnls {

inline constexpr unsigned kBehindAscii = 0x80;

// Character values: bytes read as a big-endian number; 63 for characters of five bytes and more. Escape 0:
// none.
struct LikeSigns {
    std::uint32_t escape;
    std::uint32_t oneCharacter;
    std::uint32_t anyString;

    [[nodiscard]] [[gnu::always_inline]] bool areAscii() const {
        return (escape | oneCharacter | anyString) < kBehindAscii;
    }
    // Whether a byte is a sign by itself, other than the any-string sign.
    [[nodiscard]] [[gnu::always_inline]] bool isOther(unsigned byte) const {
        return byte == escape || byte == oneCharacter;
    }
};

// In two registers, so that each way hands to the next one what it was asked without memory. (Of smaller
// members compilers make a detour through the stack.)
class LikeAsked {
public:
    [[gnu::always_inline]] LikeAsked(LikeSigns signs, unsigned mode)
        : escapeAndOne_(signs.escape | std::uint64_t{signs.oneCharacter} << 32),
          anyAndMode_(signs.anyString | std::uint64_t{mode} << 32) {}
    [[nodiscard]] [[gnu::always_inline]] LikeSigns signs() const {
        return {static_cast<std::uint32_t>(escapeAndOne_), static_cast<std::uint32_t>(escapeAndOne_ >> 32),
                static_cast<std::uint32_t>(anyAndMode_)};
    }
    [[nodiscard]] [[gnu::always_inline]] unsigned mode() const {
        return static_cast<unsigned>(anyAndMode_ >> 32);
    }

private:
    std::uint64_t escapeAndOne_;
    std::uint64_t anyAndMode_;
};

inline constexpr nlsStatus kLikeNo = 0;
inline constexpr nlsStatus kLikeYes = 1;
inline constexpr nlsStatus kLikeBadEscape = static_cast<nlsStatus>(-1);

// nlsSqlLike, of arguments that were checked.
using LikeCall = nlsStatus(nlsLocale *locale, const char *pattern, const char *text, LikeAsked asked);

// The general way, by the walk over a page.
LikeCall likeByPage;
// With a pattern that does not begin with the any-string sign.
LikeCall likeFromStart;

} // namespace velnls
