// Builds the paged case table of a UTF-8 locale from its record: two lists of UTF-16 pairs, upper then lower.
#pragma once

#include "core/file_layout.hpp"
#include "locale/tables.hpp"
#include "velnls.h"

#include <cstring>
#include <initializer_list>

namespace velnls {

// A character as its UTF-8 bytes, read as a big-endian number.
std::uint32_t utf8Number(std::uint16_t unit);

// Where a character's case values stand: page and index of the upper-case value; the lower-case value stands
// half a page further.
struct CaseSlot {
    unsigned page;
    unsigned index;
};
CaseSlot caseSlot(std::uint32_t utf8);

// Values of one direction on a page: 128 on page 0, 64 on any other.
constexpr unsigned caseHalf(unsigned page) {
    return page == 0 ? 128 : 64;
}

// The page of all characters without another case; a constant, so that no table outlives the memory of
// another.
inline constexpr std::uint16_t kZeroCasePage[512] = {};
inline constexpr std::uint32_t kZeroCasePageCount = 258; // what it adds to a table's size word

// Fills `table` (zeroed by the caller). `takePage(size, memory)` supplies zeroed memory for pages and gives a
// status. Later pairs overwrite earlier ones on the same slot. 0, 22 (an unpaired surrogate) or a status of
// takePage.
// Every page still missing is the zero page.
template <typename TakePage>
nlsStatus fillUnicodeCaseTable(const file::UnicodeCaseTable &record, UnicodeCaseTable &table,
                               TakePage takePage) {
    table.directoryOffset = offsetof(UnicodeCaseTable, pages);
    table.size = 2056;
    table.record = record;
    for (const file::CasePair *const list : {record.upper, record.lower}) {
        for (unsigned i = 0; i < sizeof record.upper / sizeof record.upper[0] && list[i].character != 0;
             ++i) {
            const std::uint32_t character = utf8Number(list[i].character);
            const std::uint32_t counterpart = utf8Number(list[i].counterpart);
            if (character == 0 || (counterpart == 0 && list[i].counterpart != 0))
                return NLS_E_BADTABLE;
            const CaseSlot slot = caseSlot(character);
            if (table.pages[slot.page] == nullptr) {
                const auto size = static_cast<std::int32_t>(caseHalf(slot.page) * 2 * sizeof(std::uint16_t));
                void *memory = nullptr;
                if (const nlsStatus status = takePage(size, memory); status != NLS_OK)
                    return status;
                table.pages[slot.page] = static_cast<const std::uint16_t *>(memory);
                table.size += static_cast<std::uint32_t>(size) + 2;
            }
            auto *const page = const_cast<std::uint16_t *>(table.pages[slot.page]);
            const unsigned index = slot.index + (list == record.lower ? caseHalf(slot.page) : 0);
            const auto value = static_cast<std::uint16_t>(counterpart);
            std::memcpy(page + index, &value, sizeof value);
        }
    }
    bool anyMissing = false;
    for (unsigned page = 0; page < 256; ++page) {
        if (table.pages[page] == nullptr) {
            table.pages[page] = kZeroCasePage;
            anyMissing = true;
        }
    }
    if (anyMissing)
        table.size += kZeroCasePageCount;
    return NLS_OK;
}

} // namespace velnls
