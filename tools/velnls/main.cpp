// The command line: options, help, and the last place where failures are caught.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "commands.hpp"
#include "icu_home.hpp"
#include "output.hpp"
#include "platform.hpp"
#include "text_options.hpp"

namespace {

using namespace velnls::tool;

constexpr char kConvertFooter[] =
    "Text is converted as it stands: a byte order mark is a character like any other.\n"
    "Pairs that the data file does not list go through UTF-8.\n"
    "\n"
    "Exit codes:\n"
    "  0  everything was converted, or --lossy accepted what was not\n"
    "  1  characters were substituted, or left out by -c; the output is complete\n"
    "  2  usage, files, unknown code page, broken data file\n"
    "  3  malformed input; the message names file, line, column and bytes\n"
    "\n"
    "Examples:\n"
    "  velnls convert -f SHIFT-JIS -t UTF-8 letter.txt -o letter.utf8\n"
    "  zcat dump.sql.gz | velnls convert -f 1251 | less\n"
    "  velnls convert -t 1252 --lossy notes.txt > notes.1252\n"
    "  velnls convert -f UTF-16 -o table.csv table.csv      (in place)\n";

constexpr char kListFooter[] = "Without a word all groups are listed, each line as GROUP<TAB>NAME.\n"
                               "\n"
                               "Examples:\n"
                               "  velnls list charsets\n"
                               "  velnls list conversions | grep '^SHIFT-JIS '\n"
                               "  velnls list | cut -f1 | uniq -c\n";

constexpr char kInfoFooter[] =
    "One-way codes are codes whose character turns into another code on the way back.\n"
    "\n"
    "Examples:\n"
    "  velnls info SHIFT-JIS\n"
    "  velnls info 1252 --data site.dat\n";

constexpr char kMainFooter[] = "Examples:\n"
                               "  velnls convert -f SHIFT-JIS -t UTF-8 letter.txt\n"
                               "  velnls list charsets\n"
                               "  velnls info CP949\n"
                               "  velnls sort -p 1252 -i names.txt\n"
                               "  velnls convert --help\n";

// CLI11 takes a word in brackets for a list, "[a,b]" for the two files a and b. A byte behind such words
// hides them from it until they have been sorted into options.
constexpr char kBehindBrackets = '\1';

bool isBracketed(const std::string &word) {
    const std::size_t last = word.find_last_not_of(kBehindBrackets);
    return word.front() == '[' && word[last] == ']';
}

std::string hidden(const std::string &word) {
    return !word.empty() && isBracketed(word) ? word + kBehindBrackets : word;
}

std::string revealed(std::string word) {
    if (!word.empty() && isBracketed(word)) {
        word.pop_back();
    }
    return word;
}

int run(const std::vector<std::string> &words) {
    CLI::App app("Converts, orders, matches and changes text in code pages.", "velnls");
    app.allow_windows_style_options(false); // the same letters everywhere, and a path may begin with a slash
    app.footer(kMainFooter);
    app.set_version_flag("--version", std::string("velnls ") + VELNLS_VERSION);
    app.require_subcommand(1);
    // Every command takes its tables from the built-in data file unless it is told another.
    const auto addData = [](CLI::App *command, std::string &path) {
        command->add_option("--data", path, "Take the tables from this data file, not from the built-in one")
            ->type_name("FILE");
    };

    ConvertOptions convert;
    CLI::App *convertCommand = app.add_subcommand("convert", "Convert text from one code page to another");
    convertCommand->footer(kConvertFooter);
    convertCommand
        ->add_option("-f,--from-code", convert.from, "Code page of the input (UTF-8 when not given)")
        ->type_name("PAGE");
    convertCommand->add_option("-t,--to-code", convert.to, "Code page of the output (UTF-8 when not given)")
        ->type_name("PAGE");
    convertCommand
        ->add_option("-o,--output", convert.output,
                     "Write to this file, which is replaced once all is converted")
        ->type_name("FILE");
    convertCommand->add_flag("-c", convert.drop, "Leave out what cannot be converted");
    convertCommand->add_flag("-l,--list", convert.list, "List the code pages");
    convertCommand->add_flag("--lossy", convert.lossy,
                             "Accept losses: substitute malformed input too, and exit with 0");
    addData(convertCommand, convert.data);
    convertCommand->add_option("FILES", convert.files,
                               "Input files, one after the other; - is standard input");

    ListOptions list;
    CLI::App *listCommand = app.add_subcommand("list", "List the names of the data file, one a line");
    listCommand->footer(kListFooter);
    listCommand->add_option("GROUP", list.group, "charsets, case, collations or conversions")
        ->check(CLI::IsMember({"charsets", "case", "collations", "conversions"}));
    addData(listCommand, list.data);

    InfoOptions info;
    CLI::App *infoCommand =
        app.add_subcommand("info", "Tell about a code page: bytes, source, codes, tables");
    infoCommand->footer(kInfoFooter);
    infoCommand->add_option("PAGE", info.page, "Code page")->required();
    addData(infoCommand, info.data);

    std::function<int()> runText;
    addTextCommands(app, runText);

    for (CLI::App *command : app.get_subcommands({})) {
        for (CLI::Option *option : command->get_options()) {
            option->transform(revealed);
        }
    }
    try {
        std::vector<std::string> hiddenWords;
        std::transform(words.begin(), words.end(), std::back_inserter(hiddenWords), hidden);
        std::vector<const char *> arguments;
        for (const std::string &word : hiddenWords) {
            arguments.push_back(word.c_str());
        }
        app.parse(static_cast<int>(arguments.size()), arguments.data());
    } catch (const CLI::ParseError &error) {
        // Asking for help or the version is no error, unless it cannot be told.
        const bool asked = app.exit(error) == 0;
        return asked && std::cout.flush() ? kExitDone : kExitFailed;
    }
    if (runText) {
        return runText();
    }
    if (convertCommand->parsed()) {
        return runConvert(convert);
    }
    return listCommand->parsed() ? runList(list) : runInfo(info);
}

} // namespace

int main(int argc, char **argv) {
    try {
        useOwnIcu();
        return run(platform::startProgram(argc, argv));
    } catch (const BrokenPipe &) {
        return kExitFailed;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "velnls: %s\n", error.what());
        return kExitFailed;
    }
}
