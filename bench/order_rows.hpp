// Rows about the order of strings: compares of neighbours, whole sorts, sort keys.
#pragma once

#include "measure.hpp"

namespace bench {

Jobs orderJobs();

} // namespace bench
