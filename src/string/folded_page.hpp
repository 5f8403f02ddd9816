// The characters of a code page under BASIC by lower case, for matching.
#pragma once

#include "collate/basic.hpp"
#include "core/unaligned.hpp"
#include "locale/case_fast.hpp"
#include "locale/unicode_case.hpp"
#include "string/characters.hpp"
#include "string/place_filter.hpp"

namespace velnls {

// BASIC by lower case: characters are equal when they fold to the same number.
class FoldedPage {
public:
    static constexpr bool kQuick = true;
    static constexpr bool kFirstByteDecides = false;
    static constexpr std::ptrdiff_t kFilterWorth = 8; // bytes of text that repay the making of a filter
    static constexpr std::ptrdiff_t kSearchWorth =
        512;                                         // the same where the forms of a character are looked for
    static constexpr std::ptrdiff_t kUnfiltered = 3; // a character that is cut there may fold to any other
    static constexpr std::ptrdiff_t kAsciiSkipWorth = 48; // bytes of text
    static constexpr unsigned kMostLooked = 4; // characters behind the first that a filter looks at

    explicit FoldedPage(const nlsLocale &locale)
        : characters_(locale), locale_(locale),
          paged_(locale.charTable->has(file::kUtf8) ? static_cast<const UnicodeCaseTable *>(locale.caseTable)
                                                    : nullptr),
          asciiFolds_(paged_ == nullptr || !characters_.isUtf8() ? nullptr : lowerHalf(0)),
          asciiKnown_((locale.header.proofs & kFoldsApart) != 0) {}
    [[nodiscard]] const TableCharacters &characters() const {
        return characters_;
    }
    nlsStatus equal(Character a, Character b, bool &equal) const {
        if (a.length != 0 && b.length != 0)
            equal = foldOf(a) == foldOf(b);
        else
            equal = compareFolded(locale_, textOf(a), textOf(b)) == 0;
        return NLS_OK;
    }
    // A character as seek() looks for it.
    struct Sought {
        std::uint32_t fold;
        ByteForms ascii; // the single bytes below 80 that fold to it; none: not known
    };
    // For texts of `length` bytes.
    [[nodiscard]] Sought soughtFor(Character character, std::ptrdiff_t length) const {
        Sought sought{foldOf(character), {}};
        if (sought.fold >= 0x80)
            return sought;
        if (asciiKnown_)
            sought.ascii.addAscii(static_cast<std::uint8_t>(sought.fold));
        else if (asciiFolds_ != nullptr && length >= kAsciiSkipWorth && !asciiForms(sought))
            sought.ascii.count = 0;
        return sought;
    }
    // The first character from `at` on that equals `sought`, or the text's end.
    [[nodiscard]] const std::uint8_t *seek(const std::uint8_t *text, const std::uint8_t *at,
                                           const std::uint8_t *end, const Sought &sought) const {
        while (at != end) {
            if (sought.ascii.count != 0 && (at = skipOtherAscii(text, at, end, sought.ascii)) == end)
                break;
            if (foldsAsAscii(*at)) {
                if (foldOfAscii(*at) == sought.fold)
                    break;
                ++at;
                continue;
            }
            const Character character = characters_.characterAt(at);
            if (foldOf(character) == sought.fold)
                break;
            at = character.end();
        }
        return at;
    }
    // Whether the characters from `wanted` to its end, none of them cut, stand at `at`, which then moves
    // behind them.
    [[nodiscard]] Standing stands(const std::uint8_t *wanted, const std::uint8_t *wantedEnd,
                                  const std::uint8_t *&at, const std::uint8_t *end) const {
        const std::uint8_t *place = at;
        while (wanted != wantedEnd) {
            if (place == end)
                return Standing::TextEnded;
            if (foldsAsAscii(*wanted) && foldsAsAscii(*place)) {
                if (*wanted != *place && foldOfAscii(*wanted) != foldOfAscii(*place))
                    return Standing::No;
                ++wanted;
                ++place;
                continue;
            }
            const Character sought = characters_.characterAt(wanted);
            const Character found = characters_.characterAt(place);
            if (foldOf(sought) != foldOf(found))
                return Standing::No;
            wanted = sought.end();
            place = found.end();
        }
        at = place;
        return Standing::Yes;
    }
    // By the first character, and by the furthest one that always stands at the same distance.
    bool makeFilter(const std::uint8_t *run, const std::uint8_t *runEnd, std::ptrdiff_t length,
                    PlaceFilter &filter) const {
        if (paged_ != nullptr && !characters_.isUtf8())
            return false;
        return makeSimpleFilter(run, runEnd, filter) || makeFoldedFilter(run, runEnd, length, filter);
    }

private:
    [[gnu::noinline]] bool makeFoldedFilter(const std::uint8_t *run, const std::uint8_t *runEnd,
                                            std::ptrdiff_t length, PlaceFilter &filter) const {
        const bool searches = length >= kSearchWorth;
        FoldForms forms;
        if (!formsOf(characters_.characterAt(run), searches, forms) || forms.first.count == 0)
            return false;
        filter.near = forms.first;
        if (forms.hasOneLength() && !forms.manyLasts) {
            filter.near = forms.last;
            filter.nearDistance = forms.longest - 1;
        }
        filter.farDistance = filter.nearDistance;
        std::size_t distance = 0;
        for (unsigned looked = 0; looked < kMostLooked && forms.hasOneLength(); ++looked) {
            distance += forms.longest;
            run = characters_.characterAt(run).end();
            forms = {};
            if (run == runEnd || !formsOf(characters_.characterAt(run), searches, forms))
                break;
            if (!forms.hasOneLength()) {
                filter.far = forms.first;
                filter.farDistance = distance;
            } else if (!forms.manyLasts) {
                filter.far = forms.last;
                filter.farDistance = distance + forms.longest - 1;
            }
        }
        return true;
    }

    // How the characters begin and end that fold to the same number.
    struct FoldForms {
        ByteForms first;
        ByteForms last;
        bool manyLasts = false;
        unsigned shortest = 8;
        unsigned longest = 0;

        [[nodiscard]] bool hasOneLength() const {
            return shortest == longest;
        }
        void addAscii(std::uint8_t byte) {
            first.addAscii(byte);
            last = first;
            shortest = longest = 1;
        }
        bool add(std::uint8_t firstByte, std::uint8_t lastByte, unsigned length) {
            manyLasts = manyLasts || !last.add(lastByte);
            shortest = std::min(shortest, length);
            longest = std::max(longest, length);
            return first.add(firstByte);
        }
    };

    // Whether the character is ASCII and equals its other case alone.
    [[nodiscard]] bool isSimpleAscii(std::uint8_t byte) const {
        return asciiKnown_ && byte < 0x80 && (paged_ == nullptr || (byte | 0x20) != 'i');
    }
    // The length of a character that equals itself alone; 0 for any other, as far as that is plain.
    [[nodiscard]] unsigned lengthOfOwn(const std::uint8_t *at, const std::uint8_t *end) const {
        const unsigned length = characters_.announced(*at);
        const bool own = paged_ == nullptr ? length == 2 : length == 3 && isCaseless(*at);
        return own && end - at >= static_cast<std::ptrdiff_t>(length) ? length : 0;
    }
    // By two characters of one kind, as most text begins; false where the run is none such.
    bool makeSimpleFilter(const std::uint8_t *run, const std::uint8_t *runEnd, PlaceFilter &filter) const {
        if (isSimpleAscii(*run)) {
            filter.near.addAscii(*run);
            std::size_t distance = 0;
            while (distance < kMostLooked && run + distance + 1 != runEnd && isSimpleAscii(run[distance + 1]))
                ++distance;
            filter.farDistance = distance;
            if (distance != 0)
                filter.far.addAscii(run[distance]);
            return true;
        }
        const unsigned first = run == runEnd ? 0 : lengthOfOwn(run, runEnd);
        if (first == 0)
            return false;
        filter.near.addOnly(run[first - 1]);
        filter.nearDistance = filter.farDistance = first - 1;
        const std::uint8_t *const next = run + first;
        if (const unsigned second = next == runEnd ? 0 : lengthOfOwn(next, runEnd); second != 0) {
            filter.farDistance = first + second - 1;
            filter.far.addOnly(next[second - 1]);
        }
        return true;
    }
    // Whether a byte is a character of its own that folds by the first page.
    [[nodiscard]] bool foldsAsAscii(std::uint8_t byte) const {
        return byte < 0x80 && (asciiKnown_ || asciiFolds_ != nullptr);
    }
    [[nodiscard]] std::uint32_t foldOfAscii(std::uint8_t byte) const {
        if (asciiKnown_)
            return byte - unsigned{'A'} < 26 ? byte | 0x20u : byte;
        const std::uint32_t folded = valueAt(asciiFolds_, byte);
        return folded != 0 ? folded : byte;
    }
    // The lower-case values of a page; 0: none. They need not be aligned.
    [[nodiscard]] const std::uint8_t *lowerHalf(unsigned page) const {
        return reinterpret_cast<const std::uint8_t *>(paged_->pages[page]) + std::size_t{2} * caseHalf(page);
    }
    static std::uint16_t valueAt(const std::uint8_t *values, unsigned index) {
        return loadNumber<std::uint16_t>(values + std::size_t{2} * index);
    }
    bool asciiForms(Sought &sought) const {
        if (foldOfAscii(static_cast<std::uint8_t>(sought.fold)) == sought.fold)
            sought.ascii.add(static_cast<std::uint8_t>(sought.fold));
        const auto fold = static_cast<std::uint16_t>(sought.fold);
        for (unsigned byte = 0; (byte = findValue(asciiFolds_, byte, 0x80, fold)) != 0x80; ++byte)
            if (!sought.ascii.add(static_cast<std::uint8_t>(byte)))
                return false;
        return true;
    }
    [[nodiscard]] std::uint32_t foldOf(Character character) const {
        return foldsAsAscii(*character.at) ? foldOfAscii(*character.at) : foldOfOther(character);
    }
    [[gnu::noinline]] [[nodiscard]] std::uint32_t foldOfOther(Character character) const {
        std::uint32_t number = *character.at;
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
    // of two bytes do not fold at all. False when there are too many, when some read as "?", or where they
    // are not known and not searched for.
    bool formsOf(Character character, bool searches, FoldForms &forms) const {
        const unsigned length = character.length;
        if (asciiKnown_ && *character.at < 0x80) {
            forms.addAscii(*character.at);
            if (paged_ != nullptr && (*character.at | 0x20) == 'i') {
                // The page's index leaves out the high bit of the last byte.
                forms.add(kDottedI >> 8, kDottedI & 0xFF, 2);
                forms.add(kDottedI >> 8, kDottedI & 0x7F, 2);
            }
            return true;
        }
        if (length > 4 || length != characters_.announced(*character.at))
            return false;
        if (length > 2 || (length == 2 && paged_ == nullptr)) {
            const std::uint8_t lead = character.at[0];
            forms.manyLasts = paged_ != nullptr && (lead == 0xE1 || lead == 0xE2 || lead == 0xEF);
            return forms.add(lead, character.end()[-1], length);
        }
        if (!searches)
            return false;
        return paged_ != nullptr ? pagedForms(foldOf(character), forms) : byteForms(foldOf(character), forms);
    }
    [[gnu::cold, gnu::noinline]] bool byteForms(std::uint32_t folded, FoldForms &forms) const {
        for (unsigned byte = 1; byte < 256; ++byte) {
            const auto first = static_cast<std::uint8_t>(byte);
            const unsigned length = characters_.announced(first);
            if (length > 4)
                return false;
            if (length == 1 && foldNumber(locale_, byte) == folded && !forms.add(first, first, 1))
                return false;
        }
        return forms.longest != 0;
    }
    // A page's index leaves out the high bit of the last byte, so either value of it is a form.
    [[gnu::cold, gnu::noinline]] bool pagedForms(std::uint32_t folded, FoldForms &forms) const {
        if (mapUtf8Case<Case::Lower>(*paged_, folded) == folded && !addNumber(folded, forms))
            return false;
        const auto fold = static_cast<std::uint16_t>(folded); // of one or two bytes
        for (unsigned page = 0; page < 0xE0; page = page == 0 ? 0xC0 : page + 1) {
            if (paged_->pages[page] == kZeroCasePage)
                continue;
            const std::uint8_t *const values = lowerHalf(page);
            const unsigned half = caseHalf(page);
            for (unsigned index = 0; (index = findValue(values, index, half, fold)) != half; ++index) {
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
        return last == 0 || characters_.announced(last) != 1 || forms.add(last, last, 1);
    }

    TableCharacters characters_;
    const nlsLocale &locale_;
    const UnicodeCaseTable *paged_;  // null: no pages of UTF-8
    const std::uint8_t *asciiFolds_; // its values for ASCII; null: not for single bytes by themselves
    bool asciiKnown_; // ASCII characters are single bytes and fold among themselves, as they do in C
};

} // namespace velnls
