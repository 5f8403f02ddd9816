// Rows about collations that ICU serves: the library beside the same ICU called directly.
#pragma once

#include "measure.hpp"

namespace bench {

Jobs icuJobs();

} // namespace bench
