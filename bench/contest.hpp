// Times calls that do more than convert beside what their peers do for the same question.
//
// A contender answers one question about each of many strings. What it answers is compared, string by string,
// before anything is timed; then contenders take turns within each round, another one first each time.
#pragma once

#include "measure.hpp"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Contender {
    std::string name;
    // Answers for every string, one call each, and gives a sum that depends on all answers.
    std::function<std::size_t()> run;
    // The answer for one string, for the comparison. Empty: this contender answers another question, which
    // its name says.
    std::function<std::string(std::size_t)> answer;
};

// The first contender is ours; `strings` of together `bytes` are what each one runs over.
Result contest(const std::vector<Contender> &contenders, std::size_t strings, std::size_t bytes, int rounds);

// Fills in medians, the best peer and the ratios from the seconds that each contender took in each round.
void setOutcome(Result &result, const std::vector<std::vector<double>> &seconds,
                const std::vector<std::string> &names);

} // namespace bench
