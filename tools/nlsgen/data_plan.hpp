// Everything that goes into the data file, in the order of its directory: pages, their tables, all entries.
#pragma once

#include "character_order.hpp"
#include "data_file.hpp"
#include "page.hpp"

#include <memory>
#include <set>
#include <vector>

namespace velnls::nlsgen {

// A collation with weights and what it was made from.
struct PlannedCollation {
    std::shared_ptr<const Page> page;
    std::string name;
    std::shared_ptr<const CharacterOrder> order;
    std::set<std::uint32_t> expanding; // characters that weigh 0
};

struct DataPlan {
    std::vector<std::shared_ptr<const Page>> pages; // those with codes of their own
    std::vector<PlannedCollation> collations;       // those with weights
    std::vector<PlannedEntry> entries;
};

// Reads the sources and makes every record. Throws Problem.
DataPlan makeDataPlan(const Sources &sources);

// The same pages, case tables and collations, of the conversions only those with UTF-8 and the Japanese ones:
// its directory fits a block of the smallest size.
std::vector<PlannedEntry> smallEntries(const std::vector<PlannedEntry> &entries);

} // namespace velnls::nlsgen
