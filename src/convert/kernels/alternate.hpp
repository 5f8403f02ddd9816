// How a conversion goes on where its blocks stop: another kernel takes the characters there, mostly the plain
// one a single character.
#pragma once

#include "convert/kernels/kernels.hpp"
#include "convert/kernels/unicode_units.hpp"

namespace velnls {
namespace {

// Alternates between blocks and the other kernel, `plain`. `blocks` goes as far as it can; `window` says how
// many bytes make up the character (or few characters) at the source's position, and `plain` converts those.
// A status ends the conversion when `ends` says so; any other is remembered for the end.
template <typename Blocks, typename Window, typename Plain, typename Ends>
[[gnu::always_inline]] inline nlsStatus alternate(Source &source, Target &target, std::ptrdiff_t unit,
                                                  Blocks blocks, Window window, Plain plain, Ends ends) {
    nlsStatus result = NLS_OK;
    for (;;) {
        blocks(source, target);
        const std::ptrdiff_t left = source.end - source.at;
        if (left < unit)
            return result;
        const std::ptrdiff_t wanted = window(source);
        Source piece{source.at, source.at + (wanted < left ? wanted : left), source.behind};
        const nlsStatus status = plain(piece, target);
        source.at = piece.at;
        if (ends(status))
            return status;
        if (status != NLS_OK)
            result = status;
    }
}

inline std::ptrdiff_t utf8Window(const Source &source) {
    return utf8Trails(*source.at) + 1;
}

template <typename Unit>
std::ptrdiff_t unitWindow(const Source &source) {
    constexpr std::ptrdiff_t kWidth = sizeof(Unit);
    if (source.end - source.at < 2 * kWidth || !isHighSurrogate(loadNumber<Unit>(source.at)) ||
        !isLowSurrogate(loadNumber<Unit>(source.at + kWidth)))
        return kWidth;
    return 2 * kWidth;
}

// A cut sequence and a full target end a conversion; an unpaired surrogate does not, though it may give 16
// too.
inline bool endsUtf8(nlsStatus status) {
    return status == NLS_E_BUFFER || status == NLS_E_NULLARG;
}
inline bool endsUnits(nlsStatus status) {
    return status == NLS_E_BUFFER;
}

} // namespace
} // namespace velnls
