// Pages of the user's own: what data/site/<name>.map leaves unsaid is taken from its codes.
#pragma once

#include "mapping.hpp"
#include "page.hpp"

#include <string>
#include <utility>

namespace velnls::nlsgen {

// A page of single bytes, or of single bytes and codes of two bytes. Lead and trail bytes are those in use;
// the window is the file's, else the 256 values that hold the most characters above ASCII (8192 for two
// bytes).
std::pair<Page, MappingData> makeSitePage(const std::string &name, const std::string &path,
                                          const UnicodeData &unicode);

} // namespace velnls::nlsgen
