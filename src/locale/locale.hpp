// The locale object: a code page with its character table, collation and case table.
#pragma once

#include "collate/record.hpp"
#include "core/handle.hpp"
#include "locale/tables.hpp"

struct [[gnu::packed]] nlsLocale {
    velnls::ObjectHeader header;
    nlsHandle *handle;
    const velnls::CharTable *charTable;
    velnls::Collation *collation; // null: none
    const void *caseTable;        // ByteCaseTable or, under the UTF-8 flag, UnicodeCaseTable; null: none
    char *blobName;
    char codePageName[20];
    char collationName[20];
    char caseTableName[20];
    std::uint32_t blobSize; // 0 unless rebuilt from a stored record
    void *blobExtra;
};
static_assert(sizeof(nlsLocale) == 136);

namespace velnls {

// The page that others collate through.
inline constexpr char kShiftJisName[] = "shift-jis";

} // namespace velnls
