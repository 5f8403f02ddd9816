// Rebuilding of a locale from a stored collation record, inside one block of the caller's memory.
#pragma once

#include "locale/locale.hpp"

namespace velnls {

// The handle is live and not busy; the block is as large as blockSizeNeeded says or larger. 0, or 1 (the case
// pages do not fit into the block), 10, 21, 25, or a status of createLocale or createConversion.
nlsStatus rebuildLocale(nlsHandle &handle, const nlsDbCollation &record, const char *name,
                        std::uint32_t blockSize, void *block, nlsLocale *&out);

} // namespace velnls
