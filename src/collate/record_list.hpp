// The process-wide list of loaded collation records, newest first. Safe to use from threads with a handle
// each.
#pragma once

#include "collate/record.hpp"
#include "core/handle.hpp"

namespace velnls {

// Whether an address lies in one of the handle's lent blocks.
bool liesInLentMemory(const nlsHandle &handle, const void *address);

void pushCollation(Collation &record);

// Takes every record off the list that lies in the handle's lent blocks, and gives them, linked by `next`.
Collation *forgetCollationsOf(const nlsHandle &handle);

// Takes one record off the list, if it is there.
void forgetCollation(const Collation &record);

} // namespace velnls
