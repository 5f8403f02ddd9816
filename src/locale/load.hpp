// Loading of a code page's character table and of its case tables, each read once per handle.
#pragma once

#include "core/handle.hpp"
#include "locale/tables.hpp"

namespace velnls {

// 0, or 1, 9 (no such character set), 21.
nlsStatus loadCharTable(nlsHandle &handle, const char *codePageName, const CharTable *&out);

// 0, or 1, 11 (no such case table), 21, 22. A UnicodeCaseTable where the entry says so, which a UTF-8 page
// needs, or a ByteCaseTable. `charTable` is that of the page.
nlsStatus loadCaseTable(nlsHandle &handle, const CharTable &charTable, const char *codePageName,
                        const char *caseTableName, const void *&out);

} // namespace velnls
