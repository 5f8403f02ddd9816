#include "collate/prefix.hpp"

#if defined(VELNLS_READS_AHEAD)

#include <algorithm>

namespace velnls {

std::size_t equalBytesFrom(std::size_t at, std::size_t most, const std::uint8_t *a, const std::uint8_t *b) {
    constexpr std::size_t kStride = 2 * kAheadBytes;
    while (at < most) {
        // What may be looked at: up to the end of either page, whatever the texts' bounds are.
        const std::size_t stop = at + std::min(leftInPage(a + at), leftInPage(b + at));
        for (; stop - at >= kStride && at < most; at += kStride)
            if (anyZero(
                    least(sameAhead(a + at, b + at), sameAhead(a + at + kAheadBytes, b + at + kAheadBytes))))
                break;
        for (; stop - at >= kAheadBytes && at < most; at += kAheadBytes)
            if (const std::uint32_t stops = differencesAhead(a + at, b + at); stops != 0)
                return std::min(at + firstOf(stops), most);
        // The last bytes of a page: in a block that begins among those that are done with, if there is one.
        if (at != stop && at < most && stop >= kAheadBytes) {
            const std::size_t last = stop - kAheadBytes;
            if (const std::uint32_t stops = differencesAhead(a + last, b + last); stops != 0)
                return std::min(last + firstOf(stops), most);
            at = stop;
        }
        for (; at != stop && at < most; ++at)
            if (a[at] != b[at] || a[at] == 0)
                return at;
    }
    return most;
}

std::size_t lengthFrom(std::size_t at, std::size_t most, const std::uint8_t *text) {
    constexpr std::size_t kStride = 4 * kAheadBytes;
    while (at < most) {
        const std::size_t stop = at + leftInPage(text + at);
        for (; stop - at >= kStride && at < most; at += kStride) {
            const std::uint8_t *const block = text + at;
            if (anyZero(least(least(loadAhead(block), loadAhead(block + kAheadBytes)),
                              least(loadAhead(block + 2 * kAheadBytes), loadAhead(block + 3 * kAheadBytes)))))
                break;
        }
        for (; stop - at >= kAheadBytes && at < most; at += kAheadBytes)
            if (const std::uint32_t ends = endsAhead(text + at); ends != 0)
                return std::min(at + firstOf(ends), most);
        if (at != stop && at < most && stop >= kAheadBytes) {
            const std::size_t last = stop - kAheadBytes;
            if (const std::uint32_t ends = endsAhead(text + last); ends != 0)
                return std::min(last + firstOf(ends), most);
            at = stop;
        }
        for (; at != stop && at < most; ++at)
            if (text[at] == 0)
                return at;
    }
    return most;
}

} // namespace velnls

#endif
