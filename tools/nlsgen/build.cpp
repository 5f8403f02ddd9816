#include "build.hpp"

#include "case_table.hpp"
#include "checks.hpp"
#include "data_plan.hpp"
#include "verifier.hpp"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>

namespace velnls::nlsgen {
namespace {

Bytes finishedFile(const std::vector<PlannedEntry> &entries, const DataPlan &plan) {
    checkPairs(entries);
    checkBasics(entries);
    checkNames(entries);
    for (const PlannedEntry &entry : entries) {
        if (entry.kind == file::kCaseTable && entry.format == file::kUnicodeCaseFormat) {
            file::UnicodeCaseTable table;
            std::memcpy(&table, entry.record.data(), sizeof table);
            checkUnicodeCaseTable(table, entry.place);
        }
    }
    Bytes bytes = layOut(entries);
    verifyMappings(bytes, plan.pages);
    verifyCollations(bytes, plan.collations);
    return bytes;
}

void writeFile(const std::filesystem::path &path, const Bytes &bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw Problem(path.string(), 0, "cannot be written");
}

void reportCounts(const std::string &name, const std::vector<PlannedEntry> &entries, const Bytes &bytes,
                  std::ostream &report) {
    int counts[5] = {};
    for (const PlannedEntry &entry : entries)
        counts[entry.kind]++;
    report << name << ": " << entries.size() << " entries (" << counts[file::kCharSet] << " character sets, "
           << counts[file::kCaseTable] << " case tables, " << counts[file::kCollation] << " collations, "
           << counts[file::kConversion] << " conversions), " << bytes.size() << " bytes\n";
}

} // namespace

void build(const Sources &sources, const std::string &folder, std::ostream &report) {
    const DataPlan plan = makeDataPlan(sources);
    for (const auto &page : plan.pages)
        checkCharTable(*page);
    struct Output {
        std::string name;
        std::vector<PlannedEntry> entries;
        Bytes bytes;
    };
    Output outputs[] = {{"velnls.dat", plan.entries, {}},
                        {"velnls-small.dat", smallEntries(plan.entries), {}}};
    for (Output &output : outputs)
        output.bytes = finishedFile(output.entries, plan);

    std::filesystem::create_directories(folder);
    const auto temporary = [&folder](const Output &output) {
        return std::filesystem::path(folder) / (output.name + ".new");
    };
    for (const Output &output : outputs)
        writeFile(temporary(output), output.bytes);
    for (const Output &output : outputs) {
        std::filesystem::rename(temporary(output), std::filesystem::path(folder) / output.name);
        reportCounts(output.name, output.entries, output.bytes, report);
    }
}

} // namespace velnls::nlsgen
