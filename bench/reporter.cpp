#include "reporter.hpp"

#include "core/instruction_sets.hpp"

#include <cstdio>
#include <fstream>

namespace bench {
namespace {

std::string processorName() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0)
            return line.substr(line.find(':') + 2);
    return "unknown processor";
}

const char *instructionSet() {
    if ((velnls::instructionSets() & velnls::kWideVectors) != 0)
        return "AVX-512";
    if ((velnls::instructionSets() & velnls::kByteShuffles) != 0)
        return "AVX2";
#if defined(__x86_64__)
    return "SSE2";
#else
    return "plain";
#endif
}

} // namespace

std::map<std::string, Line> &measured() {
    static std::map<std::string, Line> lines;
    return lines;
}

bool TableReporter::ReportContext(const Context &) {
    std::printf("Processor: %s. Peers choose their own instruction set at run time.\n\n",
                processorName().c_str());
    std::printf("| Row | Size | Ours | Best peer | Peer | Ratio | Lowest | Highest | Floor | Set |\n");
    std::printf("|---|---|---|---|---|---|---|---|---|---|\n");
    std::fflush(stdout);
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run> &runs) {
    for (const Run &run : runs) {
        const auto found =
            measured().find(run.benchmark_name().substr(0, run.benchmark_name().find("/iterations")));
        if (found == measured().end())
            continue;
        const Line &line = found->second;
        const Result &result = line.result;
        const std::string &name = found->first;
        const std::size_t slash = name.rfind('/');
        const std::string row = name.substr(0, slash);
        const std::string size = name.substr(slash + 1);
        if (!result.problem.empty()) {
            std::printf("| %s | %s | %s | | | | | | | |\n", row.c_str(), size.c_str(),
                        result.problem.c_str());
            ++failures_;
            continue;
        }
        char ours[32];
        char theirs[32];
        const bool perString = result.strings > 1;
        const double amount =
            perString ? static_cast<double>(result.strings) : static_cast<double>(result.bytes);
        if (perString) {
            std::snprintf(ours, sizeof ours, "%.1f ns", result.seconds / amount * 1e9);
            std::snprintf(theirs, sizeof theirs, "%.1f ns", result.peerSeconds / amount * 1e9);
        } else {
            std::snprintf(ours, sizeof ours, "%.2f GB/s", amount / result.seconds / 1e9);
            std::snprintf(theirs, sizeof theirs, "%.2f GB/s", amount / result.peerSeconds / 1e9);
        }
        const bool held = result.ratio.median >= line.floor;
        if (!held)
            ++failures_;
        std::printf("| %s | %s | %s | %s | %s | %s%.2f%s | %.2f | %.2f | %.2g | %s |\n", row.c_str(),
                    size.c_str(), ours, result.peer.c_str(), theirs, held ? "" : "**", result.ratio.median,
                    held ? "" : "**", result.ratio.lowest, result.ratio.highest, line.floor,
                    instructionSet());
    }
    std::fflush(stdout);
}

} // namespace bench
