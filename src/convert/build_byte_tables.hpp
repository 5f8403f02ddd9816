// Construction of the direct single-byte to UTF-8 tables (kinds 19 and 51) and of their reverse (kind 20).
#pragma once

#include "convert/converter.hpp"
#include "core/handle.hpp"

namespace velnls {

// Builds the table for source to target from the 256 UTF-16 units of the record's body, and stores its
// reverse for target to source: 0, 1, or 22 (two characters that claim one slot, or one beyond three bytes).
nlsStatus buildByteTables(nlsHandle &handle, const char *source, const char *target, std::int32_t type,
                          const file::Conversion &record, const void *&out);

} // namespace velnls
