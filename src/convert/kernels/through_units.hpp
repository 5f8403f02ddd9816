// Conversions by way of UTF-16: one kernel reads a stretch of text into units, another one writes them.
//
// A loop that did both would wait for its own results most of the time; and neither kernel has to know the
// other.
#pragma once

#include "convert/kernels/kernels.hpp"
#include "core/unaligned.hpp"

namespace velnls {
namespace {

inline constexpr std::ptrdiff_t kStretch = 512;   // source bytes, at most
inline constexpr std::ptrdiff_t kUnitsRoom = 256; // bytes behind a stretch's units, for whole registers

// The steps of such a conversion. Kernels go as far as they can and leave the positions there.
// - plain() writes text that needs no units: ASCII;
// - stretchOf() gives the end of the text before the next such, kStretch from its begin at most;
// - read() writes units;
// - write() reads them;
// - writeOne() writes the unit where write() stopped, or gives false;
// - lengthOf() gives the bytes of a character that was read, by its first one.
template <typename Steps>
[[gnu::always_inline]] inline void throughUnits(const Steps &steps, Source &source, Target &target) {
    constexpr std::ptrdiff_t kRoom = 2 * kStretch + kUnitsRoom; // a unit for each byte at most
    alignas(64) std::uint8_t units[kRoom];
    for (;;) {
        steps.plain(source, target);
        if (source.at == source.end)
            return;
        Source stretch{source.at, steps.stretchOf(source)};
        Target made{units, units + kRoom};
        steps.read(stretch, made);
        Source rest{units, made.at};
        for (;;) {
            steps.write(rest, target);
            if (rest.at == rest.end)
                break;
            if (!steps.writeOne(loadNumber<std::uint16_t>(rest.at), target)) {
                for (const std::uint8_t *unit = units; unit != rest.at; unit += 2)
                    source.at += steps.lengthOf(*source.at);
                return;
            }
            rest.at += 2;
        }
        if (stretch.at == source.at)
            return;
        source.at = stretch.at;
    }
}

} // namespace
} // namespace velnls
