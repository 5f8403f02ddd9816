// Rows about beginning: from nothing open to the first converted string.
#pragma once

#include "measure.hpp"

namespace bench {

Jobs startJobs();

} // namespace bench
