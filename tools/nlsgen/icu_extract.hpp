// `nlsgen from-icu`: makes the files below data/ that no other public package has. Compiled only with the
// option VELNLS_FROM_ICU; an ordinary build reads the files and needs no ICU.
#pragma once

#include "page.hpp"

#include <string>
#include <vector>

namespace velnls::nlsgen {

struct ExtractedFile {
    std::string name; // below data/
    std::string text;
};

// Page 720 and the user-defined areas of CP936, CP949 and CP950.
std::vector<ExtractedFile> extractTables(const Sources &sources);

// The orders of the languages. The pages they are made for must be there, page 720 among them.
std::vector<ExtractedFile> extractOrders(const Sources &sources);

} // namespace velnls::nlsgen
