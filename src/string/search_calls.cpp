// nlsSearchForw, nlsReplace, nlsReplaceAll.
#include "locale/checks.hpp"
#include "locale/text.hpp"
#include "string/out_text.hpp"
#include "string/replace_blocks.hpp"
#include "string/replace_short.hpp"
#include "string/search.hpp"
#include "string/short_match_fast.hpp"

#include <algorithm>
#include <cstring>

using namespace velnls;

namespace {

std::uint32_t offset(const std::uint8_t *at, const std::uint8_t *from) {
    return static_cast<std::uint32_t>(at - from);
}

// A NUL-terminated string and its end.
struct Whole {
    const std::uint8_t *at;
    const std::uint8_t *end;

    explicit Whole(const char *string) : at(bytesOf(string)), end(at + std::strlen(string)) {}
    [[nodiscard]] bool empty() const {
        return at == end;
    }
};

nlsStatus checkNotCut(const nlsLocale &locale, const Whole &string) {
    return isCut(locale, string.at, string.end) ? NLS_R_CUT : NLS_OK;
}

nlsStatus countWhole(const nlsLocale &locale, const Whole &string, Counted &counted) {
    return countText(locale, string.at, static_cast<std::size_t>(string.end - string.at), counted);
}

// Takes one match after the other. Gives the place from which the search goes on, or null to end it. On pages
// where characters match by their bytes, that may be any byte behind the match: a search there proves of each
// place that a character begins at it.
struct MatchTaker {
    const std::uint8_t *(*take)(void *taker, const Match &match);
    void *taker;

    const std::uint8_t *operator()(const Match &match) const {
        return take(taker, match);
    }
};

// Finds the matches of a pattern that is not empty, none of which overlap; neither string is cut. The search
// goes on behind a match, on quick pages where the taker says. The status of the first search; a later one
// that fails only ends it.
template <typename Page>
nlsStatus findOn(const Page &page, const nlsLocale &locale, const Whole &sought, const Whole &where,
                 MatchTaker taken) {
    if constexpr (Page::kQuick) {
        QuickSearch search(page, sought.at, sought.end, where.at, where.end);
        const std::uint8_t *at = where.at;
        for (Match match{}; at != nullptr && (match = search.next(at)).at != nullptr;)
            at = taken(match);
        return NLS_OK;
    } else {
        Counted pattern{};
        Counted rest{};
        countWhole(locale, sought, pattern);
        countWhole(locale, where, rest);
        const CountedSearch search(page, pattern);
        Match match{};
        if (const nlsStatus status = search.forwards(rest, match); status != NLS_OK)
            return status;
        // The text is counted once: behind a match, its rest has the pattern's characters less.
        while (match.at != nullptr && taken(match) != nullptr) {
            rest.at = match.end;
            rest.characters -= pattern.characters;
            if (search.forwards(rest, match) != NLS_OK)
                break;
        }
        return NLS_OK;
    }
}

// One function for all who search: there is code in it for each page.
[[gnu::noinline]] nlsStatus findMatches(const nlsLocale &locale, unsigned mode, const Whole &sought,
                                        const Whole &where, MatchTaker taken) {
    return withPage(locale, mode,
                    [&](const auto &page) { return findOn(page, locale, sought, where, taken); });
}

// Whether characters match by their bytes, in a page in which blocks can tell where they begin.
bool replacesByBlocks(const nlsLocale &locale, unsigned mode, const Whole &sought) {
    const std::uint32_t proofs = locale.header.proofs;
    return mode == 1 && (proofs & kMatchesBytes) != 0 && (proofs & kWideVectors) != 0 &&
           (proofs & (kUtf8Page | kSingleBytePage)) != 0 &&
           sought.end - sought.at <= avx512::ByteReplacement::kMost;
}

// Puts a text together in the caller's string with its matches replaced.
class Replacing {
public:
    Replacing(const nlsLocale &locale, const std::uint8_t *where, const char *replacement, nlsStr &out,
              std::uint32_t &count)
        : result_(out, locale.header.proofs), where_(where), replacement_(replacement), count_(count) {}

    // Replaces a match behind the ones before. Null where no room is left; otherwise the match's end.
    [[gnu::noinline]] const std::uint8_t *replace(const Match &match) {
        if (insteadEnd_ == nullptr)
            insteadEnd_ = bytesOf(replacement_) + std::strlen(replacement_);
        status_ = written_ == nullptr ? result_.begin(where_, match.at) : result_.append(written_, match.at);
        if (status_ != NLS_OK)
            return nullptr;
        written_ = match.at;
        if (result_.append(bytesOf(replacement_), insteadEnd_) != NLS_OK)
            return nullptr;
        written_ = match.end;
        ++count_;
        return written_;
    }
    // Replaces matches as a search finds them.
    MatchTaker taker() {
        const auto take = [](void *replacing, const Match &match) {
            return static_cast<Replacing *>(replacing)->replace(match);
        };
        return {take, this};
    }
    // The same, and what follows a match as far as blocks go. Stays as long as the taker is used.
    struct ByBlocks {
        Replacing &replacing;
        const Whole &sought;
        const Whole &where;
        bool isUtf8;

        MatchTaker taker() {
            const auto take = [](void *self, const Match &match) {
                const ByBlocks &by = *static_cast<const ByBlocks *>(self);
                return by.replacing.replace(match) == nullptr
                           ? nullptr
                           : by.replacing.replaceBlocks(by.sought, by.where, by.isUtf8);
            };
            return {take, this};
        }
    };
    // Adds what is left of the text up to its end.
    nlsStatus finish(const std::uint8_t *end) {
        if (written_ == nullptr && status_ == NLS_OK)
            return result_.copy(where_, end);
        // Where the text before the first match does not fit, all of it does not.
        if (written_ != nullptr)
            status_ = result_.append(written_, end);
        return status_ == NLS_OK ? NLS_OK : result_.blank(status_);
    }

private:
    // Behind a match, replaces what follows. Gives the place behind that.
    const std::uint8_t *replaceBlocks(const Whole &sought, const Whole &where, bool isUtf8) {
        const avx512::ByteReplacement by{sought.at, sought.end - sought.at, bytesOf(replacement_),
                                         insteadEnd_ - bytesOf(replacement_), isUtf8};
        // Where the room may not do, each piece is looked at before it is written.
        if (by.insteadLength > by.kMost || where.end - written_ < by.kWorthwhile ||
            by.longestOf(where.end - written_) > result_.room())
            return written_;
        avx512::ReplacedText text{where.at, written_, where.end, result_.end(), count_};
        avx512::replaceBlocks(by, text);
        result_.endAt(text.out);
        written_ = text.at;
        count_ = text.count;
        return written_;
    }

    OutText result_;
    const std::uint8_t *where_;
    const char *replacement_;
    std::uint32_t &count_;
    const std::uint8_t *insteadEnd_ = nullptr; // of the replacement, once it is needed
    const std::uint8_t *written_ = nullptr;    // what stands before is in the string, or replaced there
    nlsStatus status_ = NLS_OK;
};

// A search that is checked. A function of its own, so that a short text does not pay for what this keeps.
[[gnu::noinline]] nlsStatus searchByPage(nlsLocale *locale, const char *pattern, const char *text_,
                                         std::uint16_t caseFlag, std::uint32_t *position,
                                         std::uint32_t *endOffset, char **found) {
    const Whole sought(pattern);
    const Whole where(text_);
    if (const nlsStatus status = checkNotCut(*locale, sought); status != NLS_OK)
        return status;
    if (const nlsStatus status = checkNotCut(*locale, where); status != NLS_OK)
        return status;
    if (sought.empty()) {
        *position = *endOffset = offset(where.end, where.at) + 1;
        *found = callersText(where.end);
        return NLS_OK;
    }
    Match first{nullptr, nullptr};
    const auto takeFirst = [](void *taker, const Match &match) -> const std::uint8_t * {
        *static_cast<Match *>(taker) = match;
        return nullptr;
    };
    const nlsStatus status = findMatches(*locale, caseFlag, sought, where, {takeFirst, &first});
    if (status == NLS_OK && first.at != nullptr) {
        *found = callersText(first.at);
        *position = offset(first.at, where.at) + 1;
        *endOffset = offset(first.end, where.at);
    }
    return status;
}

} // namespace

nlsStatus nlsSearchForw(nlsLocale *locale, const char *pattern, const char *text_, uint16_t caseFlag,
                        uint32_t *position, uint32_t *endOffset, char **found) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (position != nullptr)
        *position = 0;
    if (found != nullptr)
        *found = nullptr;
    if (pattern == nullptr || text_ == nullptr || found == nullptr || position == nullptr ||
        endOffset == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    const ShortPlaces brief = fast::placesIn(*locale, bytesOf(pattern), bytesOf(text_), caseFlag);
    if (!brief.settled())
        return searchByPage(locale, pattern, text_, caseFlag, position, endOffset, found);
    if (brief.places != 0) {
        const auto place = static_cast<std::uint32_t>(__builtin_ctzll(brief.places));
        *found = callersText(bytesOf(text_) + place);
        *position = place + 1;
        *endOffset = place + brief.patternLength();
    }
    return NLS_OK;
}

nlsStatus nlsReplace(nlsLocale *locale, const char *pattern, const char *replacement, const char *text_,
                     uint16_t caseFlag, nlsStr *out, uint32_t *position, uint32_t *endOffset, char **found) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (replacement == nullptr || out == nullptr || out->buffer == nullptr)
        return NLS_E_NULLARG;
    if (const nlsStatus status = nlsSearchForw(locale, pattern, text_, caseFlag, position, endOffset, found);
        status != NLS_OK)
        return status;
    const Whole where(text_);
    const Whole instead(replacement);
    OutText result(*out, locale->header.proofs);
    if (*found == nullptr)
        return result.copy(where.at, where.end);
    // An empty pattern is found behind the end.
    const std::uint8_t *const behind = std::min(where.at + *endOffset, where.end);
    if (const nlsStatus status = result.begin(where.at, bytesOf(*found)); status != NLS_OK)
        return status;
    if (const nlsStatus status = result.append(instead.at, instead.end); status != NLS_OK)
        return result.blank(status);
    if (const nlsStatus status = result.append(behind, where.end); status != NLS_OK)
        return result.blank(status);
    return NLS_OK;
}

namespace {

// Replaces what was found in a short text.
nlsStatus replaceAt(ShortPlaces found, const std::uint8_t *text_, Replacing &replacing) {
    for (std::uint64_t left = found.places; left != 0;) {
        const unsigned place = static_cast<unsigned>(__builtin_ctzll(left));
        const std::uint8_t *const at = text_ + place;
        if (replacing.replace({at, at + found.patternLength()}) == nullptr)
            break;
        // None of the matches overlap.
        left &= ~std::uint64_t{0} << (place + found.patternLength() - 1) << 1;
    }
    return replacing.finish(text_ + found.textLength());
}

[[gnu::noinline]] nlsStatus replaceByPage(const nlsLocale &locale, const char *pattern, const char *text_,
                                          unsigned mode, Replacing &replacing) {
    const Whole sought(pattern);
    if (const nlsStatus status = checkNotCut(locale, sought); status != NLS_OK)
        return status;
    if (sought.empty())
        return NLS_E_NULLARG;
    const Whole where(text_);
    if (const nlsStatus status = checkNotCut(locale, where); status != NLS_OK)
        return status;
    Replacing::ByBlocks byBlocks{replacing, sought, where, (locale.header.proofs & kUtf8Page) != 0};
    const MatchTaker taken = replacesByBlocks(locale, mode, sought) ? byBlocks.taker() : replacing.taker();
    const nlsStatus status = findMatches(locale, mode, sought, where, taken);
    return status != NLS_OK ? status : replacing.finish(where.end);
}

// Piece by piece, where one block settles neither the text nor the room. A function of its own, so that
// others do not pay for what this keeps.
[[gnu::noinline]] nlsStatus replaceAny(const nlsLocale &locale, const char *pattern, const char *replacement,
                                       const char *text_, unsigned mode, ShortPlaces brief, nlsStr &out,
                                       std::uint32_t &count) {
    Replacing replacing(locale, bytesOf(text_), replacement, out, count);
    return brief.settled() ? replaceAt(brief, bytesOf(text_), replacing)
                           : replaceByPage(locale, pattern, text_, mode, replacing);
}

} // namespace

nlsStatus nlsReplaceAll(nlsLocale *locale, const char *pattern, const char *replacement, const char *text_,
                        uint16_t caseFlag, nlsStr *out, uint32_t *count) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (pattern == nullptr || replacement == nullptr || text_ == nullptr || out == nullptr ||
        out->buffer == nullptr || count == nullptr)
        return NLS_E_NULLARG;
    if (locale->charTable == nullptr)
        return NLS_E_NOCHARTAB;
    *count = 0;
    const ShortPlaces brief = fast::placesIn(*locale, bytesOf(pattern), bytesOf(text_), caseFlag);
    if (brief.settled() && brief.places == 0)
        return OutText(*out, locale->header.proofs).copy(bytesOf(text_), bytesOf(text_) + brief.textLength());
    if (brief.settled() && (locale->header.proofs & kWideVectors) != 0 &&
        avx512::replaceShort(brief, bytesOf(text_), bytesOf(replacement), *out, *count))
        return NLS_OK;
    return replaceAny(*locale, pattern, replacement, text_, caseFlag, brief, *out, *count);
}
