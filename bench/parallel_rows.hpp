// Rows about threads: the work of two threads beside the same work on one.
#pragma once

#include "measure.hpp"

namespace bench {

Jobs parallelJobs();

} // namespace bench
