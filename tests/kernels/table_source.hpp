// The conversion tables of the default data file, for tests that call kernels directly.
#pragma once

#include "convert/converter.hpp"

#include <string>
#include <vector>

namespace kernel_tests {

// The mapping of a page to UTF-8; null when it cannot be built. Lives as long as the process.
const velnls::MappingBody *mappingOf(const std::string &page);

// Some pages of every kind of table.
const std::vector<std::string> &pages();

} // namespace kernel_tests
