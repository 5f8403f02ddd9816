// nlsgen: makes the data file of velnls from public tables, checks such files and prints them.
#include "build.hpp"
#include "problem.hpp"

#include <CLI/CLI.hpp>

#ifdef NLSGEN_HAS_ICU
#include "icu_extract.hpp"
#endif

#include <exception>
#include <fstream>
#include <iostream>

namespace {

constexpr int kFailed = 1;

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
    CLI::App app{"Makes the velnls data file from public tables, checks such files and prints them."};
    app.require_subcommand(1);

    velnls::nlsgen::Sources sources;
    sources.charmaps = "/usr/share/i18n/charmaps";
    sources.unicode = "/usr/share/unicode";
    sources.data = NLSGEN_DATA_FOLDER;
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

#ifdef NLSGEN_HAS_ICU
    CLI::App *fromIcu =
        app.add_subcommand("from-icu", "Write the tables below --data that are taken from ICU");
    fromIcu->add_option("--charmaps", sources.charmaps, "Folder of the POSIX charmaps")
        ->capture_default_str();
    fromIcu->add_option("--unicode", sources.unicode, "Folder of UnicodeData.txt")->capture_default_str();
    fromIcu->add_option("--data", sources.data, "Folder of velnls' own tables")->capture_default_str();
#endif

    CLI11_PARSE(app, argc, argv);
    try {
        if (build->parsed()) {
            if (sources.site.empty())
                sources.site = sources.data + "/site";
            velnls::nlsgen::build(sources, output, std::cout);
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
