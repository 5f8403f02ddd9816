// `nlsgen build`: sources to data files, with every check before the first byte is written.
#pragma once

#include "page.hpp"

#include <iosfwd>
#include <string>

namespace velnls::nlsgen {

// Writes velnls.dat and velnls-small.dat into `folder` and the counts to `report`. Throws Problem, and then
// leaves the folder's files as they were.
void build(const Sources &sources, const std::string &folder, std::ostream &report);

} // namespace velnls::nlsgen
