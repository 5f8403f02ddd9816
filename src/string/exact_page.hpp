// The characters of a code page under BASIC by bytes, for matching.
#pragma once

#include "collate/basic.hpp"
#include "string/characters.hpp"
#include "string/place_filter.hpp"
#include "velnls.h"

#include <cstring>

namespace velnls {

struct ExactPageTraits {
    static constexpr bool kQuick = true;
    static constexpr bool kFirstByteDecides = true;   // equal characters begin alike
    static constexpr std::ptrdiff_t kFilterWorth = 8; // bytes of text that repay the making of a filter
    static constexpr std::ptrdiff_t kUnfiltered = 0;
};

// BASIC by bytes: characters are equal when their bytes are. Only one that the string's end cuts may differ
// from another in blanks.
template <typename Characters>
class ExactPage : public ExactPageTraits {
public:
    explicit ExactPage(const nlsLocale &locale) : characters_(locale) {}
    [[nodiscard]] const Characters &characters() const {
        return characters_;
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        equal = a.length == b.length ? sameBytes(a.at, b.at, a.length) : equalWhereCut(a, b);
        return NLS_OK;
    }
    // Characters are looked for by their first bytes alone.
    using Sought = std::uint8_t;
    [[nodiscard]] Sought soughtFor(Character character, std::ptrdiff_t) const {
        return *character.at;
    }
    [[nodiscard]] Standing stands(const std::uint8_t *wanted, const std::uint8_t *wantedEnd,
                                  const std::uint8_t *&at, const std::uint8_t *end) const {
        const std::ptrdiff_t length = wantedEnd - wanted;
        if (end - at < length)
            return Standing::TextEnded;
        if (!sameBytes(wanted, at, static_cast<unsigned>(length)))
            return Standing::No;
        at += length;
        return Standing::Yes;
    }
    // By the last bytes of the first and of the last character: those of one script begin alike.
    bool makeFilter(const std::uint8_t *run, const std::uint8_t *runEnd, std::ptrdiff_t,
                    PlaceFilter &filter) const {
        const Character first = characters_.characterAt(run);
        filter.near.add(first.end()[-1]);
        filter.nearDistance = first.length - 1;
        filter.farDistance = static_cast<std::size_t>(runEnd - run) - 1;
        if (filter.farDistance != filter.nearDistance)
            filter.far.add(runEnd[-1]);
        return true;
    }

private:
    [[gnu::cold, gnu::noinline]] static bool equalWhereCut(Character a, Character b) {
        return compareBytes(textOf(a), textOf(b)) == 0;
    }
    static bool sameBytes(const std::uint8_t *a, const std::uint8_t *b, unsigned length) {
        for (unsigned i = 0; i < length; ++i)
            if (a[i] != b[i])
                return false;
        return true;
    }

    Characters characters_;
};

} // namespace velnls
