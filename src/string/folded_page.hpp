// The characters of a code page under BASIC by lower case, for matching.
#pragma once

#include "collate/basic.hpp"
#include "locale/unicode_case.hpp"
#include "string/case_map.hpp"
#include "string/characters.hpp"
#include "string/place_filter.hpp"

#include <cstring>

namespace velnls {

// BASIC by lower case: characters are equal when they fold to the same number.
template <typename Characters>
class FoldedPage {
public:
    static constexpr bool kQuick = true;
    static constexpr std::ptrdiff_t kFilterWorth = 2048;
    static constexpr std::ptrdiff_t kUnfiltered = 3; // a character that is cut there may fold to any other

    explicit FoldedPage(const nlsLocale &locale)
        : characters_{*locale.charTable}, locale_(locale),
          paged_(locale.charTable->has(file::kUtf8) ? static_cast<const UnicodeCaseTable *>(locale.caseTable)
                                                    : nullptr) {}
    [[nodiscard]] const Characters &characters() const {
        return characters_;
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        if (a.length != 0 && b.length != 0)
            equal = foldOf(a) == foldOf(b);
        else
            equal = compareFolded(locale_, textOf(a), textOf(b)) == 0;
        return NLS_OK;
    }
    [[nodiscard]] const std::uint8_t *seek(const std::uint8_t *at, const std::uint8_t *end,
                                           Character sought) const {
        const std::uint32_t wanted = foldOf(sought);
        while (at != end) {
            const Character character = characters_.characterAt(at);
            if (foldOf(character) == wanted)
                break;
            at = character.end();
        }
        return at;
    }
    [[nodiscard]] bool stands(const std::uint8_t *wanted, const std::uint8_t *wantedEnd,
                              const std::uint8_t *&at, const std::uint8_t *end) const {
        const std::uint8_t *place = at;
        while (wanted != wantedEnd) {
            if (place == end)
                return false;
            const Character sought = characters_.characterAt(wanted);
            const Character found = characters_.characterAt(place);
            if (foldOf(sought) != foldOf(found))
                return false;
            wanted = sought.end();
            place = found.end();
        }
        at = place;
        return true;
    }
    // By the first character alone, or by it and the first byte of the next one.
    bool makeFilter(const std::uint8_t *run, const std::uint8_t *runEnd, PlaceFilter &filter) const {
        if (paged_ != nullptr && !Characters::kAsciiIsSingle)
            return false;
        const Character character = characters_.characterAt(run);
        FoldForms forms;
        if (!formsOf(character, forms))
            return false;
        filter.first = forms.first;
        filter.distance = 1;
        if (forms.shortest != forms.longest)
            return true;
        if (forms.longest > 1) {
            if (!forms.manySeconds)
                filter.second = forms.second;
            return true;
        }
        FoldForms next;
        if (character.end() != runEnd && formsOf(characters_.characterAt(character.end()), next))
            filter.second = next.first;
        return true;
    }

private:
    // How the characters begin that fold to the same number.
    struct FoldForms {
        ByteForms first;
        ByteForms second; // of those of two bytes and more
        bool manySeconds = false;
        unsigned shortest = 8;
        unsigned longest = 0;

        bool add(std::uint8_t firstByte, std::uint8_t secondByte, unsigned length) {
            if (length > 1 && !second.add(secondByte))
                manySeconds = true;
            shortest = std::min(shortest, length);
            longest = std::max(longest, length);
            return first.add(firstByte);
        }
    };

    [[nodiscard]] std::uint32_t foldOf(Character character) const {
        std::uint32_t number = *character.at;
        if (Characters::kAsciiIsSingle && number < 0x80 && paged_ != nullptr)
            return mapUtf8Case<Case::Lower>(*paged_, number);
        const unsigned announced = characters_.announced(*character.at);
        if (announced > 4)
            number = '?';
        else
            for (unsigned i = 1; i < character.length; ++i)
                number = number << 8 | character.at[i];
        if (paged_ != nullptr && number < 0x1000000)
            return mapUtf8Case<Case::Lower>(*paged_, number);
        return foldNumber(locale_, number);
    }

    // Characters of three bytes and more fold within their first byte, and outside the pages of UTF-8 those
    // of two bytes do not fold at all. False when there are too many, or when some read as "?".
    bool formsOf(Character character, FoldForms &forms) const {
        const unsigned length = character.length;
        if (length > 4 || length != characters_.announced(*character.at))
            return false;
        if (length > 2 || (length == 2 && paged_ == nullptr)) {
            const std::uint8_t lead = character.at[0];
            forms.manySeconds = paged_ != nullptr && (lead == 0xE1 || lead == 0xE2 || lead == 0xEF);
            return forms.add(lead, character.at[1], length);
        }
        return paged_ != nullptr ? pagedForms(foldOf(character), forms) : byteForms(foldOf(character), forms);
    }
    bool byteForms(std::uint32_t folded, FoldForms &forms) const {
        for (unsigned byte = 1; byte < 256; ++byte) {
            const auto first = static_cast<std::uint8_t>(byte);
            const unsigned length = characters_.announced(first);
            if (length > 4)
                return false;
            if (length == 1 && foldNumber(locale_, byte) == folded && !forms.add(first, 0, 1))
                return false;
        }
        return forms.longest != 0;
    }
    // A page's index leaves out the high bit of the last byte, so either value of it is a form.
    bool pagedForms(std::uint32_t folded, FoldForms &forms) const {
        if (mapUtf8Case<Case::Lower>(*paged_, folded) == folded && !addNumber(folded, forms))
            return false;
        for (unsigned page = 0; page < 0xE0; page = page == 0 ? 0xC0 : page + 1) {
            const std::uint16_t *const values = paged_->pages[page];
            if (values == kZeroCasePage)
                continue;
            const unsigned half = caseHalf(page);
            for (unsigned index = 0; index < half; ++index) {
                std::uint16_t value;
                std::memcpy(&value, reinterpret_cast<const unsigned char *>(values) + 2 * (half + index),
                            sizeof value);
                if (value != folded)
                    continue;
                const std::uint32_t number = page << 8 | index;
                if (!addNumber(number, forms) || !addNumber(number | 0x80, forms))
                    return false;
            }
        }
        return forms.longest != 0;
    }
    bool addNumber(std::uint32_t number, FoldForms &forms) const {
        const auto last = static_cast<std::uint8_t>(number);
        const auto lead = static_cast<std::uint8_t>(number >> 8);
        if (lead != 0)
            return characters_.announced(lead) != 2 || forms.add(lead, last, 2);
        return last == 0 || characters_.announced(last) != 1 || forms.add(last, 0, 1);
    }

    Characters characters_;
    const nlsLocale &locale_;
    const UnicodeCaseTable *paged_; // null: no pages of UTF-8
};

} // namespace velnls
