// Which public table each page of the built-in data file was made from. The data file itself does not say.
#pragma once

#include <string>

namespace velnls::tool {

// Empty for a page that is not in the built-in file.
std::string pageSource(const std::string &page);

} // namespace velnls::tool
