// Loading of a locale's collation: from the data file, borrowed from another page, or from outside.
#pragma once

#include "collate/record.hpp"
#include "core/handle.hpp"
#include "locale/tables.hpp"

namespace velnls {

// 0, or 1 (no room, or an "ICU-" collator that could not be opened), 10, 21, 25. Records from the data file
// are kept on their directory entry and shared.
nlsStatus loadCollation(nlsHandle &handle, const CharTable &charTable, const char *charSetName,
                        const char *collationName, Collation *&out);

} // namespace velnls
