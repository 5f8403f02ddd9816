// Keeps account of which (export, status) pairs the tests have seen, so that a pair nobody proves is found.
#pragma once

#include "velnls.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fixture {

struct StatusRow {
    std::string exportName;
    std::vector<std::int32_t> statuses;
};

// Succeeds when a call gave the status that is claimed; the row then counts as covered.
testing::AssertionResult gives(const char *exportName, std::int32_t expected, nlsStatus actual);

// Prints the table at the end of the run and, when nothing was filtered out, fails for every row not covered.
void watchStatusRows(std::vector<StatusRow> rows);

} // namespace fixture
