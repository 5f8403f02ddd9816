// The conversion tables of the default data file, for tests that call kernels directly.
#pragma once

#include "convert/converter.hpp"
#include "locale/locale.hpp"

#include <string>
#include <vector>

namespace kernel_tests {

// The mapping of a page to UTF-8; null when it cannot be built. Lives as long as the process.
const velnls::MappingBody *mappingOf(const std::string &page);

// The converter from one page to another; null when it cannot be built, or for a plain copy. Lives as long as
// the process.
const void *converterOf(const std::string &from, const std::string &to);

// The locale of a page with a collation and the case table "basic"; null when it cannot be made. Lives as
// long as the process.
const nlsLocale *localeOf(const std::string &page, const std::string &collation);

// The names of all code pages.
std::vector<std::string> codePages();

// Some pages of every kind of table.
const std::vector<std::string> &pages();

} // namespace kernel_tests
