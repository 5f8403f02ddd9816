// nlsIsSortNeeded, nlsGetNextWord: calls that read the sort data of a rebuilt locale.
#include "collate/key.hpp"
#include "collate/sort_data.hpp"
#include "collate/words.hpp"
#include "icu/collate.hpp"
#include "locale/checks.hpp"

#include <algorithm>
#include <cstring>

using namespace velnls;

namespace {

constexpr nlsStatus kWordCut = 29;

const SortDataHead *sortDataOf(const nlsLocale &locale) {
    return static_cast<const SortDataHead *>(locale.blobExtra);
}

WordRules wordRules(const nlsLocale &locale, const SortDataHead &data) {
    const CharTable &chars = *locale.charTable;
    const bool plainMultibyte =
        chars.has(file::kMultibyte) && !chars.has(file::kUtf8 | file::kWide | file::kUnits32);
    return {reinterpret_cast<const std::uint8_t *>(&data) + data.classMap,
            data.format == kTwoByteFormat && plainMultibyte, chars.has(file::kUtf8)};
}

} // namespace

nlsStatus nlsIsSortNeeded(nlsLocale *locale, uint32_t *flag) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (flag == nullptr)
        return NLS_E_NULLARG;
    const SortDataHead *const data = sortDataOf(*locale);
    if (data == nullptr)
        return NLS_E_NOSORTTAB;
    if (locale->charTable->has(file::kUtf8) || data->format == kTwoByteFormat ||
        data->format == kUnsortedFormat)
        *flag = 0;
    else if (data->format == kSortedFormat)
        *flag = 1;
    else
        return NLS_E_VERSION;
    return NLS_OK;
}

nlsStatus nlsGetNextWord(nlsLocale *locale, char **string, int16_t mode, char *word, int32_t size,
                         uint32_t *length) {
    if (const nlsStatus status = checkLocale(locale); status != NLS_OK)
        return status;
    if (string == nullptr || *string == nullptr || word == nullptr || length == nullptr)
        return NLS_E_NULLARG;
    const SortDataHead *const data = sortDataOf(*locale);
    if (data == nullptr)
        return NLS_E_NOSORTTAB;
    Word found{};
    const std::uint8_t *const next =
        nextWord(wordRules(*locale, *data), reinterpret_cast<const std::uint8_t *>(*string), found);
    if (found.length == 0)
        return NLS_E_END;
    const auto room = static_cast<std::size_t>(std::max(size, 0));
    const bool asItStands = data->format < kFirstKeyedFormat && !locale->charTable->has(file::kUtf8);
    if (found.length >= room) {
        // What fits of a word stands in the buffer all the same.
        if (asItStands && room != 0) {
            std::memcpy(word, found.bytes, room - 1);
            word[room - 1] = '\0';
        }
        return NLS_E_BUFFER;
    }
    if (asItStands) {
        std::memcpy(word, found.bytes, found.length + 1);
        *length = static_cast<std::uint32_t>(found.length);
    } else {
        if (locale->collation == nullptr)
            return NLS_E_NOSORT;
        // Under ICU there is no table to make a key from, and the mode's high bits say something.
        const bool icu = icu::isServed(*locale->collation);
        const unsigned keyMode =
            static_cast<std::uint16_t>(mode) & (icu ? 0xFFFFu : ~(icu::kKeyIgnored | icu::kKeyPrimary));
        const nlsStatus status =
            (icu ? writeSortKey : writeTableKey)(*locale, terminatedText(found.bytes), keyMode, false,
                                                 reinterpret_cast<std::uint8_t *>(word), room);
        if (status != NLS_OK)
            return status;
        *length = static_cast<std::uint32_t>(std::strlen(word));
    }
    *string = reinterpret_cast<char *>(const_cast<std::uint8_t *>(next));
    return found.cut ? kWordCut : NLS_OK;
}
