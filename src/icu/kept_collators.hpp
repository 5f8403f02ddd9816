// Collators of locales that lie in a caller's own block. The handle keeps note of them in lent memory, so
// that it can close them whatever became of the block.
#pragma once

#include "collate/record.hpp"
#include "core/handle.hpp"

namespace velnls::icu {

// As openCollator, and keeps the note: 0, or 1 also where there is no room for it.
nlsStatus openKeptCollator(nlsHandle &handle, Collation &record);

// Closes the record's collator, if it has one, and makes its note free for the next.
void closeKeptCollator(nlsHandle &handle, Collation &record);

// Closes every collator that the handle keeps note of, without a look at their records.
void closeKeptCollatorsOf(nlsHandle &handle);

} // namespace velnls::icu
