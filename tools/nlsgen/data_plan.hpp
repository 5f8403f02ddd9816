// Everything that goes into the data file, in the order of its directory: pages, their tables, all entries.
#pragma once

#include "data_file.hpp"
#include "page.hpp"

#include <memory>
#include <vector>

namespace velnls::nlsgen {

struct DataPlan {
    std::vector<std::shared_ptr<const Page>> pages; // those with codes of their own
    std::vector<PlannedEntry> entries;
};

// Reads the sources and makes every record. Throws Problem.
DataPlan makeDataPlan(const Sources &sources);

// The same pages, case tables and collations, of the conversions only those with UTF-8 and the Japanese ones:
// its directory fits a block of the smallest size.
std::vector<PlannedEntry> smallEntries(const std::vector<PlannedEntry> &entries);

} // namespace velnls::nlsgen
