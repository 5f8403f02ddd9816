#include "locale/load.hpp"

#include "core/arena.hpp"
#include "core/data_file.hpp"
#include "core/file_layout.hpp"
#include "core/text.hpp"
#include "locale/page_facts.hpp"
#include "locale/unicode_case.hpp"

#include <algorithm>
#include <cstring>

namespace velnls {

namespace {

// How much of a 256-byte array a stored count fills. The count itself is kept as it stands in the file.
std::size_t arrayBytes(std::int32_t count) {
    return static_cast<std::size_t>(std::clamp<std::int32_t>(count, 0, 256));
}

nlsStatus readByteCaseTable(nlsHandle &handle, std::uint32_t offset, const void *&out) {
    file::CaseTable raw;
    if (!readAt(handle, offset, &raw, sizeof raw))
        return NLS_E_TABLE;
    ByteCaseTable *table = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *table, 1, table); status != NLS_OK)
        return status;
    const std::int32_t count = parseNumber(raw.count, sizeof raw.count);
    table->count = static_cast<std::uint32_t>(count);
    std::memcpy(table->upper, raw.upper, arrayBytes(count));
    std::memcpy(table->lower, raw.lower, arrayBytes(count));
    out = table;
    return NLS_OK;
}

nlsStatus readUnicodeCaseTable(nlsHandle &handle, std::uint32_t offset, const void *&out) {
    file::UnicodeCaseTable raw;
    if (!readAt(handle, offset, &raw, sizeof raw))
        return NLS_E_TABLE;
    UnicodeCaseTable *table = nullptr;
    if (const nlsStatus status = allocate(handle, sizeof *table, 2, table); status != NLS_OK)
        return status;
    const auto takePage = [&handle](std::int32_t size, void *&page) {
        return allocate(handle, size, 2, page);
    };
    if (const nlsStatus status = fillUnicodeCaseTable(raw, *table, takePage); status != NLS_OK)
        return status;
    // The room of a zero page is taken, although the constant serves.
    void *unused = nullptr;
    out = table;
    return takePage(sizeof kZeroCasePage, unused);
}

} // namespace

nlsStatus loadCharTable(nlsHandle &handle, const char *codePageName, const CharTable *&out) {
    Entry *const entry = findEntry(handle, file::kCharSet, codePageName);
    if (entry == nullptr)
        return NLS_E_NOCHARSET;
    if (entry->table == nullptr) {
        CharTable *table = nullptr;
        if (const nlsStatus status = allocate(handle, sizeof *table, 1, table); status != NLS_OK)
            return status;
        file::CharTable raw;
        if (!readAt(handle, entry->offset, &raw, sizeof raw))
            return NLS_E_TABLE;
        const std::int32_t count = parseNumber(raw.count, sizeof raw.count);
        table->count = static_cast<std::uint32_t>(count);
        table->flags = entry->format;
        std::memcpy(table->classes, raw.classes, arrayBytes(count));
        std::memcpy(table->attributes, raw.attributes, arrayBytes(count));
        std::memcpy(table->trailValid, raw.trailValid, arrayBytes(count));
        findFacts(*table);
        entry->table = table;
    }
    out = static_cast<const CharTable *>(entry->table);
    return NLS_OK;
}

nlsStatus loadCaseTable(nlsHandle &handle, const CharTable &charTable, const char *codePageName,
                        const char *caseTableName, const void *&out) {
    Entry *const entry = findEntry(handle, file::kCaseTable, codePageName, caseTableName);
    if (entry == nullptr)
        return NLS_E_NOCASETABLE;
    // UTF-8 text is mapped through pages, which a byte table does not have.
    const bool paged = entry->format == file::kUnicodeCaseFormat;
    if (charTable.has(file::kUtf8) && !paged)
        return NLS_E_BADTABLE;
    if (entry->table == nullptr) {
        const void *table = nullptr;
        const nlsStatus status = paged ? readUnicodeCaseTable(handle, entry->offset, table)
                                       : readByteCaseTable(handle, entry->offset, table);
        if (status != NLS_OK)
            return status;
        entry->table = table;
    }
    out = entry->table;
    return NLS_OK;
}

} // namespace velnls
