// Construction of page mappings (kinds 17, 81, 89 and, for the way back, 18 and 50).
#pragma once

#include "convert/converter.hpp"
#include "core/handle.hpp"

namespace velnls {

// Builds the table for a conversion's entry, the first one of its names, and stores a copy for the way back,
// so that one file table serves both: 0, or 1, 8 (an entry is missing), 21 (short read).
nlsStatus buildMapping(nlsHandle &handle, const Entry &entry, std::int32_t type, const void *&out);

// Whether a converter's body is a MappingBody.
bool isMapping(const void *converter);

// Stores a copy of a body, with the header that the entry's format byte states and these proofs, as the table
// of a pair: 0, 1, or 8 (no such entry). `fits` says of a type whether the body is one of its kind: where the
// entry states another, nothing is stored and the pair is built from its own entry when it is asked for.
nlsStatus storeTable(nlsHandle &handle, const char *source, const char *target, const void *body,
                     std::int32_t size, std::uint32_t proofs, bool (*fits)(std::int32_t type));

} // namespace velnls
