// One line of the table: makes the strings, compares the outputs, times the contestants against each other.
#pragma once

#include "rows.hpp"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

enum class Size {
    shortStrings,
    lines,
    buffer
};

const char *nameOf(Size size);

struct Spread {
    double median = 0;
    double lowest = 0;
    double highest = 0;
};

struct Result {
    std::string problem;     // empty when the outputs agreed and everything was timed
    std::size_t strings = 0; // strings of one pass
    std::size_t bytes = 0;   // source bytes of one pass
    double seconds = 0;      // ours: median of a pass
    std::string peer;        // the fastest of the others by its median
    double peerSeconds = 0;
    Spread ratio; // peer's time by ours, paired per round
};

// One line of the table, of any family of calls.
struct Job {
    std::string name; // "row/language/size"
    double floor;     // the ratio to the best peer that must hold
    std::function<Result(int rounds)> run;
};
using Jobs = std::vector<Job>;

// Contestants alternate within each of `rounds` rounds, another one first each time.
Result measure(const Row &row, Size size, int rounds);

// All conversions.
Jobs conversionJobs();

} // namespace bench
