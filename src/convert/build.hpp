// Construction of converters for a pair of code page names, from the data file's conversion entries.
#pragma once

#include "convert/converter.hpp"
#include "core/handle.hpp"

namespace velnls {

inline constexpr std::uint32_t kStrict = 1; // refuse byte maps that are not one-to-one

// Builds the converter for source to target, or gives the one built before. Null with 0 when none is needed.
// 0, or 1 (no room), 8 (no entry and no way over a Unicode page, or a part that cannot be built), 21 (short
// read), 22 (a byte table with characters that cannot be told apart).
nlsStatus buildConverter(nlsHandle &handle, const char *source, const char *target, std::uint32_t flags,
                         const void *&out);

} // namespace velnls
