// velnls_bench: the library beside glibc and ICU, in one run, as a markdown table.
//
//   velnls_bench [--data=FILE] [--rounds=N] [--check] [ROW ...] [Google Benchmark options]
//   velnls_bench [--data=FILE] --plot[=FILE]
//
// A ROW is a regular expression over "row/language/size"; without one every row runs. With
// --check the exit status is 1 when a row is below its floor or when outputs differ. --plot measures time per
// byte of texts from 1 kB to 64 MB instead, prints it as a table and draws it to an SVG file.
#include "contestants.hpp"
#include "growth.hpp"
#include "icu_rows.hpp"
#include "measure.hpp"
#include "order_rows.hpp"
#include "parallel_rows.hpp"
#include "plot.hpp"
#include "reporter.hpp"
#include "start_rows.hpp"
#include "string_rows.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

int growth(const std::string &picture) {
    const std::vector<bench::Curve> curves = bench::measureGrowth();
    bench::printGrowth(curves);
    if (picture.empty())
        return 0;
    std::ofstream file(picture);
    file << bench::plotGrowth(curves);
    file.close();
    if (!file)
        std::fprintf(stderr, "velnls_bench: cannot write %s\n", picture.c_str());
    return file ? 0 : 2;
}

} // namespace

int main(int argc, char **argv) {
    std::string dataFile = VELNLS_BENCH_DATA;
    std::string filter;
    int rounds = 21;
    bool check = false;
    bool plot = false;
    std::string picture;
    std::vector<char *> passedOn{argv[0]};
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--data=", 0) == 0)
            dataFile = argument.substr(7);
        else if (argument.rfind("--rounds=", 0) == 0)
            rounds = std::max(1, std::atoi(argument.c_str() + 9));
        else if (argument == "--check")
            check = true;
        else if (argument == "--plot" || argument.rfind("--plot=", 0) == 0) {
            plot = true;
            picture = argument.size() > 7 ? argument.substr(7) : "";
        } else if (argument[0] == '-')
            passedOn.push_back(argv[i]);
        else
            filter += (filter.empty() ? "" : "|") + argument;
    }
    if (!filter.empty()) {
        filter = "--benchmark_filter=" + filter;
        passedOn.push_back(filter.data());
    }
    if (!bench::openDataFile(dataFile)) {
        std::fprintf(stderr, "velnls_bench: cannot open the data file %s\n", dataFile.c_str());
        return 2;
    }

    if (plot)
        return growth(picture);

    bench::Jobs jobs = bench::conversionJobs();
    for (const bench::Job &job : bench::orderJobs())
        jobs.push_back(job);
    for (const bench::Job &job : bench::icuJobs())
        jobs.push_back(job);
    for (const bench::Job &job : bench::stringJobs())
        jobs.push_back(job);
    for (const bench::Job &job : bench::startJobs())
        jobs.push_back(job);
    for (const bench::Job &job : bench::parallelJobs())
        jobs.push_back(job);
    for (const bench::Job &job : jobs) {
        const auto run = [&job, rounds](benchmark::State &state) {
            // The rounds are inside: contestants must alternate, which separate benchmarks cannot do.
            const bench::Result result = job.run(rounds);
            bench::measured()[job.name] = {result, job.floor};
            for (auto iteration : state) {
                (void)iteration;
                state.SetIterationTime(result.seconds);
            }
            state.SetBytesProcessed(static_cast<std::int64_t>(result.bytes));
            state.counters["ratio"] = result.ratio.median;
            state.counters["lowest"] = result.ratio.lowest;
            state.counters["highest"] = result.ratio.highest;
        };
        benchmark::RegisterBenchmark(job.name.c_str(), run)->UseManualTime()->Iterations(1);
    }

    int count = static_cast<int>(passedOn.size());
    benchmark::Initialize(&count, passedOn.data());
    if (benchmark::ReportUnrecognizedArguments(count, passedOn.data()))
        return 2;
    bench::TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return check && reporter.failures() > 0 ? 1 : 0;
}
