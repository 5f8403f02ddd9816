// nlsgen: makes the data file of velnls from public tables, checks, prints and compares such files.
#include "build.hpp"
#include "checker.hpp"
#include "dumper.hpp"
#include "file_difference.hpp"
#include "problem.hpp"

#include <CLI/CLI.hpp>

#ifdef NLSGEN_HAS_ICU
#include "icu_extract.hpp"
#endif

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

std::vector<std::uint8_t> readFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw velnls::nlsgen::Problem(path, 0, "cannot be opened for reading");
    std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad())
        throw velnls::nlsgen::Problem(path, 0, "cannot be read");
    return bytes;
}

int check(const std::string &path) {
    const auto bytes = readFile(path);
    if (const auto fault = velnls::nlsgen::firstFault(bytes)) {
        std::cout << path << ": " << fault->text() << '\n';
        return kFailed;
    }
    std::cout << path << ": " << bytes.size() << " bytes, no fault\n";
    return 0;
}

// 0 when the library answers alike with both files, 1 when it does not, 2 when that cannot be told.
int diff(const std::string &before, const std::string &after, const std::string &unicode) {
    constexpr int kDifferent = 1;
    constexpr int kTrouble = 2;
    try {
        const velnls::nlsgen::CharacterNames names(unicode + "/UnicodeData.txt");
        const auto one = readFile(before);
        const auto other = readFile(after);
        const std::size_t count =
            velnls::nlsgen::reportDifferences({before, one}, {after, other}, names, std::cout);
        std::cout.flush();
        if (!std::cout)
            throw velnls::nlsgen::Problem("standard output", 0, "cannot be written");
        return count == 0 ? 0 : kDifferent;
    } catch (const std::exception &error) {
        std::cerr << "nlsgen: " << error.what() << '\n';
        return kTrouble;
    }
}

// Where velnls' own tables are installed: beside this program, wherever the tree was moved to.
std::string ownTables() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path beside =
        (program.parent_path() / NLSGEN_DATA_FROM_PROGRAM).lexically_normal();
    return !error && std::filesystem::is_directory(beside, error) ? beside.string() : NLSGEN_DATA_FOLDER;
}

#ifdef NLSGEN_HAS_ICU
void writeExtracted(const std::vector<velnls::nlsgen::ExtractedFile> &files, const std::string &folder) {
    for (const auto &extracted : files) {
        const std::string path = folder + "/" + extracted.name;
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file << extracted.text;
        file.close();
        if (!file)
            throw velnls::nlsgen::Problem(path, 0, "cannot be written");
        std::cout << path << '\n';
    }
}
#endif

} // namespace

int main(int argc, char **argv) {
    CLI::App app{"Makes the velnls data file from public tables, checks, prints and compares such files."};
    app.require_subcommand(1);

    velnls::nlsgen::Sources sources;
    sources.charmaps = "/usr/share/i18n/charmaps";
    sources.unicode = "/usr/share/unicode";
    sources.data = ownTables();
    std::string output = ".";
    CLI::App *build = app.add_subcommand("build", "Write velnls.dat and velnls-small.dat");
    build->add_option("--charmaps", sources.charmaps, "Folder of the POSIX charmaps, <name>.gz")
        ->capture_default_str();
    build->add_option("--unicode", sources.unicode, "Folder of UnicodeData.txt and allkeys.txt")
        ->capture_default_str();
    build->add_option("--data", sources.data, "Folder of velnls' own tables")->capture_default_str();
    build->add_option("--site", sources.site,
                      "Folder of your own pages, <name>.map (default: site below --data)");
    build->add_option("-o,--output", output, "Folder to write to")->capture_default_str();

    std::string file;
    CLI::App *checkCommand = app.add_subcommand("check", "Look for the first fault of a data file");
    checkCommand->add_option("FILE", file, "The data file")->required();
    std::string entry;
    CLI::App *dump = app.add_subcommand("dump", "Print header and directory of a data file, or tables");
    dump->add_option("FILE", file, "The data file")->required();
    dump->add_option("--entry", entry, "Print these entries: #NUMBER, NAME or NAME/SECOND");
    std::string otherFile;
    CLI::App *diffCommand = app.add_subcommand(
        "diff",
        "Say what changed from one data file to another; exits with 0 when nothing did, 1 or, in trouble, 2");
    diffCommand->add_option("A", file, "The data file before")->required();
    diffCommand->add_option("B", otherFile, "The data file after")->required();
    diffCommand->add_option("--unicode", sources.unicode, "Folder of UnicodeData.txt")->capture_default_str();
#ifdef NLSGEN_HAS_ICU
    CLI::App *fromIcu =
        app.add_subcommand("from-icu", "Write the tables below --data that are taken from ICU");
    fromIcu->add_option("--charmaps", sources.charmaps, "Folder of the POSIX charmaps")
        ->capture_default_str();
    fromIcu->add_option("--unicode", sources.unicode, "Folder of UnicodeData.txt")->capture_default_str();
    fromIcu->add_option("--data", sources.data, "Folder of velnls' own tables")->capture_default_str();
#endif

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    try {
        if (build->parsed()) {
            if (sources.site.empty())
                sources.site = sources.data + "/site";
            velnls::nlsgen::build(sources, output, std::cout);
        }
        if (checkCommand->parsed())
            return check(file);
        if (diffCommand->parsed())
            return diff(file, otherFile, sources.unicode);
        if (dump->parsed()) {
            const auto bytes = readFile(file);
            if (entry.empty())
                velnls::nlsgen::dumpDirectory(bytes, file, std::cout);
            else
                velnls::nlsgen::dumpEntry(bytes, file, entry, std::cout);
        }
#ifdef NLSGEN_HAS_ICU
        if (fromIcu->parsed()) {
            writeExtracted(velnls::nlsgen::extractTables(sources), sources.data);
            writeExtracted(velnls::nlsgen::extractOrders(sources), sources.data);
        }
#endif
        return 0;
    } catch (const std::exception &error) {
        std::cerr << "nlsgen: " << error.what() << '\n';
        return kFailed;
    }
}
