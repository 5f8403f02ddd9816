// The rows of the table: which conversion of which text, and how much faster it must be at least.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Row {
    const char *source;
    const char *target;
    const char *language;
    double floorShort;  // ratio to the best peer that must hold on short strings
    double floorBuffer; // the same for one 8 MB buffer; lines need the lower of the two
};

const std::vector<Row> &rows();

} // namespace bench
