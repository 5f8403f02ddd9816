// Prints what was measured as a markdown table.
#pragma once

#include "measure.hpp"

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace bench {

struct Line {
    Result result;
    double floor = 0;
};

// What each benchmark measured, by its name; the reporter looks it up there.
std::map<std::string, Line> &measured();

class TableReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;

    // Lines below their floor or with outputs that differ.
    [[nodiscard]] int failures() const {
        return failures_;
    }

private:
    int failures_ = 0;
};

} // namespace bench
