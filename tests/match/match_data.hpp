// The code pages and collations that matching tells apart, for tests and fuzz targets.
#pragma once

#include "data_file.hpp"

#include <string>
#include <vector>

namespace fixture {

struct PageData {
    std::string name; // for messages
    std::string codePage;
    const char *collation;
    const char *caseTable;
    CharacterTable table;
    std::vector<std::string> alphabet; // characters worth mixing, some of them equal to each other
};

// All that order every two strings in the modes 0 and 1.
const std::vector<PageData> &matchPageData();

// The data file that has them.
DataFile matchFile();

} // namespace fixture
