#include "contest.hpp"

#include <algorithm>
#include <ctime>

namespace bench {
namespace {

// Processor time of this thread: what other programs on the machine take is not counted.
double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

std::string compareAnswers(const std::vector<Contender> &contenders, std::size_t strings) {
    for (std::size_t string = 0; string < strings; ++string) {
        const std::string ours = contenders[0].answer(string);
        for (std::size_t i = 1; i < contenders.size(); ++i)
            if (contenders[i].answer && contenders[i].answer(string) != ours)
                return contenders[i].name + " and " + contenders[0].name + " differ on string " +
                       std::to_string(string);
    }
    return {};
}

} // namespace

void setOutcome(Result &result, const std::vector<std::vector<double>> &seconds,
                const std::vector<std::string> &names) {
    result.seconds = medianOf(seconds[0]);
    std::size_t best = 1;
    for (std::size_t i = 2; i < seconds.size(); ++i)
        if (medianOf(seconds[i]) < medianOf(seconds[best]))
            best = i;
    result.peer = names[best];
    result.peerSeconds = medianOf(seconds[best]);
    std::vector<double> ratios;
    for (std::size_t round = 0; round < seconds[0].size(); ++round)
        ratios.push_back(seconds[best][round] / seconds[0][round]);
    result.ratio = {medianOf(ratios), *std::min_element(ratios.begin(), ratios.end()),
                    *std::max_element(ratios.begin(), ratios.end())};
}

Result contest(const std::vector<Contender> &contenders, std::size_t strings, std::size_t bytes, int rounds) {
    Result result;
    result.strings = strings;
    result.bytes = bytes;
    result.problem = compareAnswers(contenders, strings);
    if (result.problem.empty() && contenders.size() < 2)
        result.problem = "no peer is there";
    if (!result.problem.empty())
        return result;
    volatile std::size_t sum = 0; // nothing that was answered may be left out
    std::vector<std::vector<double>> seconds(contenders.size());
    for (const Contender &contender : contenders)
        sum = sum + contender.run(); // pages in, warms caches
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            const std::size_t turn = (i + static_cast<std::size_t>(round)) % contenders.size();
            const double start = processorSeconds();
            sum = sum + contenders[turn].run();
            seconds[turn].push_back(processorSeconds() - start);
        }
    std::vector<std::string> names;
    for (const Contender &contender : contenders)
        names.push_back(contender.name);
    setOutcome(result, seconds, names);
    return result;
}

} // namespace bench
