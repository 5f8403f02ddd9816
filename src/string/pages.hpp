// Characters of a string as the matching calls see them: how long each is and which are equal, one class per
// kind of code page and collation. The class is chosen once per call.
#pragma once

#include "collate/basic.hpp"
#include "collate/compare.hpp"
#include "locale/locale.hpp"
#include "locale/text.hpp"

#include <cstring>

namespace velnls {

// One character: its bytes, fewer than announced where the string ends inside it. No bytes: the string's end.
struct Character {
    const std::uint8_t *at;
    unsigned length;

    [[nodiscard]] const std::uint8_t *end() const {
        return at + length;
    }
};

inline Text textOf(Character character) {
    return {character.at, character.end()};
}

// Any code page under any collation.
class AnyPage {
public:
    AnyPage(const nlsLocale &locale, unsigned mode) : locale_(locale), mode_(mode) {}
    [[nodiscard]] Character characterAt(const std::uint8_t *at) const {
        return {at, terminatedText(at).available(locale_.charTable->trailCount(*at) + 1)};
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        if (locale_.collation == nullptr)
            return NLS_E_NOSORT;
        int result = 1;
        const nlsStatus status = compareTexts(locale_, textOf(a), textOf(b), mode_, result);
        equal = result == 0;
        return status;
    }

private:
    const nlsLocale &locale_;
    unsigned mode_;
};

// Single bytes under weights or BASIC: two are equal when they fold to the same byte. A weight of 0 counts as
// that of "s"; the end of the string equals a blank.
class BytePage {
public:
    BytePage(const std::uint8_t *folds, std::uint8_t zeroFold) : folds_(folds), zeroFold_(zeroFold) {}
    [[nodiscard]] Character characterAt(const std::uint8_t *at) const {
        return {at, *at != 0 ? 1u : 0u};
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        if (a.length != 0 && b.length != 0)
            equal = fold(*a.at) == fold(*b.at);
        else
            equal = isBlankOrEnd(a) && isBlankOrEnd(b);
        return NLS_OK;
    }

private:
    [[nodiscard]] std::uint8_t fold(std::uint8_t byte) const {
        const std::uint8_t folded = folds_[byte];
        return folded != 0 ? folded : zeroFold_;
    }
    static bool isBlankOrEnd(Character character) {
        return character.length == 0 || *character.at == ' ';
    }
    const std::uint8_t *folds_;
    std::uint8_t zeroFold_;
};

// UTF-8 under BASIC.
class Utf8Page {
public:
    Utf8Page(const nlsLocale &locale, unsigned mode) : locale_(locale), folds_(mode == 0) {}
    [[nodiscard]] Character characterAt(const std::uint8_t *at) const {
        if (*at < 0x80)
            return {at, *at != 0 ? 1u : 0u};
        return {at, terminatedText(at).available(locale_.charTable->trailCount(*at) + 1)};
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        const bool same = a.length == b.length && std::memcmp(a.at, b.at, a.length) == 0;
        if (same || (!folds_ && a.length != 0 && b.length != 0))
            equal = same;
        else
            equal = (folds_ ? compareFolded(locale_, textOf(a), textOf(b))
                            : compareBytes(textOf(a), textOf(b))) == 0;
        return NLS_OK;
    }

private:
    const nlsLocale &locale_;
    bool folds_;
};

// Calls `use` with the page of a locale under a mode, and gives what it gives.
template <typename Use>
nlsStatus withPage(const nlsLocale &locale, unsigned mode, Use use) {
    const Collation *const collation = locale.collation;
    if (collation == nullptr)
        return use(AnyPage(locale, mode));
    const bool weighted = collation->kind != file::kBasic && collation->kind != file::kThai;
    if (weighted && mode <= 1 && (locale.header.proofs & kSingleBytePage) != 0) {
        const std::uint8_t *const weights = weightsOf(*collation, mode);
        return use(BytePage(weights, weights['s']));
    }
    if (collation->kind == file::kBasic && (locale.header.proofs & kUtf8Page) != 0)
        return use(Utf8Page(locale, mode));
    return use(AnyPage(locale, mode));
}

} // namespace velnls
