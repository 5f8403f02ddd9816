// One function for each command: its options, its examples.
#include "text_options.hpp"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"

namespace velnls::tool {

namespace {

using Run = std::function<int()>;

// A command whose options live as long as the parser, and which runs "function" with them.
template <typename Options>
std::shared_ptr<Options> addCommand(CLI::App *command, int (*function)(const Options &), Run &run) {
    auto options = std::make_shared<Options>();
    command->callback(
        [options, function, &run] { run = [options, function] { return function(*options); }; });
    return options;
}

void addPage(CLI::App *command, std::string &page, std::string &data) {
    command->add_option("-p,--page", page, "Code page of the text (UTF-8 when not given)")->type_name("PAGE");
    command->add_option("--data", data, "Take the tables from this data file, not from the built-in one")
        ->type_name("FILE");
}

void addOrder(CLI::App *command, OrderOptions &order) {
    addPage(command, order.page, order.data);
    command->add_option("-C,--collation", order.collation, "Collation of the page (basic when not given)")
        ->type_name("NAME");
    command->add_flag("-i,--ignore-case", order.ignoreCase, "Letter case does not matter");
}

void addFiles(CLI::App *command, std::vector<std::string> &files) {
    command->add_option("FILES", files, "Input files, one after the other; - is standard input");
}

void addOutput(CLI::App *command, std::string &output) {
    command->add_option("-o,--output", output, "Write to this file, which is replaced once all is done")
        ->type_name("FILE");
}

void addSort(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("sort", "Sort lines by a collation");
    const auto options = addCommand<SortOptions>(command, runSort, run);
    addOrder(command, options->order);
    command->add_option("-k,--key", options->keys, "Sort by field N, or by fields N to M; may be repeated")
        ->type_name("N[,M]")
        ->allow_extra_args(false);
    command
        ->add_option("-t,--field-separator", options->separator,
                     "Character between fields (\\t is a tab); else runs of blanks and tabs")
        ->type_name("SEP");
    command->add_flag("-u,--unique", options->unique, "Of lines with equal keys, the first alone");
    command->add_flag("-r,--reverse", options->reverse, "Largest first; equal lines stay in their order");
    addOutput(command, options->output);
    command
        ->add_option("--memory", options->memory, "Memory for lines and keys: a number, or one with K, M, G")
        ->type_name("SIZE")
        ->capture_default_str();
    command->add_option("-T,--temporary-directory", options->folder, "Folder of temporary files")
        ->type_name("FOLDER")
        ->capture_default_str();
    addFiles(command, options->files);
    command->footer("Lines with equal keys stay in their order. Input larger than the memory is sorted\n"
                    "by parts, which wait in temporary files.\n"
                    "\n"
                    "Examples:\n"
                    "  velnls sort names.txt\n"
                    "  velnls sort -p 1252 --collation basic -i -u names.txt -o names.txt\n"
                    "  velnls sort -t ';' -k 2,2 -k 1,1 table.csv\n");
}

void addKey(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("key", "Print the sort keys of lines");
    const auto options = addCommand<KeyOptions>(command, runKey, run);
    addOrder(command, options->order);
    command->add_flag("--raw", options->raw, "Bytes with 00 00 behind each key, not hexadecimal lines");
    addFiles(command, options->files);
    command->footer("Examples:\n"
                    "  velnls key -p 1252 names.txt\n"
                    "  echo Moon | velnls key -i\n");
}

void addCompare(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("compare", "Compare two texts: prints <, = or >");
    const auto options = addCommand<CompareOptions>(command, runCompare, run);
    addOrder(command, options->order);
    command->add_option("A", options->first, "First text, in UTF-8")->required();
    command->add_option("B", options->second, "Second text, in UTF-8")->required();
    command->footer("Exit codes:\n"
                    "  0  the texts are equal\n"
                    "  1  they are not\n"
                    "  2  usage, unknown names, a text that the page cannot hold\n"
                    "\n"
                    "Examples:\n"
                    "  velnls compare -p 1252 cote cot\xC3\xA9\n"
                    "  velnls compare -i Moon moon && echo equal\n");
}

void addLike(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("like", "Print the lines that match an SQL LIKE pattern");
    const auto options = addCommand<LikeOptions>(command, runLike, run);
    addOrder(command, options->order);
    command->add_option("--escape", options->escape, "Escape character of the pattern")->type_name("C");
    command->add_flag("-v,--invert-match", options->invert, "Print the lines that do not match");
    command->add_flag("-c,--count", options->count, "Print how many lines there are, not the lines");
    command->add_option("PATTERN", options->pattern, "_ is any character, % is any text; in UTF-8")
        ->required();
    addFiles(command, options->files);
    command->footer("A pattern matches whole lines.\n"
                    "\n"
                    "Exit codes:\n"
                    "  0  a line was selected\n"
                    "  1  none was\n"
                    "  2  usage, files, pattern, or a line with a NUL byte\n"
                    "\n"
                    "Examples:\n"
                    "  velnls like '%moon%' poem.txt\n"
                    "  velnls like -i --escape '!' '100!%%' prices.txt\n");
}

void addReplace(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("replace", "Replace every occurrence of a text");
    const auto options = addCommand<ReplaceOptions>(command, runReplace, run);
    addOrder(command, options->order);
    command->add_flag("--count", options->count, "Tell on standard error how many were replaced");
    addOutput(command, options->output);
    command->add_option("PATTERN", options->pattern, "What to replace, in UTF-8")->required();
    command->add_option("REPLACEMENT", options->replacement, "What to put in its place, in UTF-8")
        ->required();
    addFiles(command, options->files);
    command->footer("Characters match where the collation calls them equal. Exit code 3 is malformed input.\n"
                    "\n"
                    "Examples:\n"
                    "  velnls replace colour color letter.txt\n"
                    "  velnls replace -i -p 1252 moon sun poem.txt -o poem.txt\n");
}

void addCase(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("case", "Turn text into upper or lower case");
    const auto options = addCommand<CaseOptions>(command, runCase, run);
    addPage(command, options->page, options->data);
    command->add_option("--table", options->table, "Case table of the page (basic when not given)")
        ->type_name("NAME");
    addOutput(command, options->output);
    command
        ->add_option_function<std::string>(
            "DIRECTION", [options](const std::string &word) { options->upper = word == "upper"; },
            "upper or lower")
        ->required()
        ->check(CLI::IsMember({"upper", "lower"}));
    addFiles(command, options->files);
    command->footer("Exit code 3 is malformed input.\n"
                    "\n"
                    "Examples:\n"
                    "  velnls case upper letter.txt\n"
                    "  velnls case lower -p 1254 --table turkish names.txt\n");
}

void addCount(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("count", "Count bytes, characters and display columns");
    const auto options = addCommand<CountOptions>(command, runCount, run);
    addPage(command, options->page, options->data);
    addFiles(command, options->files);
    command->footer("Line feeds take no columns. Exit code 3 is malformed input.\n"
                    "\n"
                    "Examples:\n"
                    "  velnls count -p SHIFT-JIS letter.txt\n");
}

void addCheck(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("check", "Check that files are text of their code page");
    const auto options = addCommand<CheckOptions>(command, runCheck, run);
    addPage(command, options->page, options->data);
    addFiles(command, options->files);
    command->footer("The first malformed place of each file is named with line, column and bytes.\n"
                    "\n"
                    "Exit codes:\n"
                    "  0  everything is well-formed\n"
                    "  2  usage, files, unknown code page\n"
                    "  3  a file is malformed\n"
                    "\n"
                    "Examples:\n"
                    "  velnls check notes.txt && echo sound\n"
                    "  velnls check -p SHIFT-JIS *.txt\n");
}

void addWords(CLI::App &app, Run &run) {
    CLI::App *command = app.add_subcommand("words", "Print the words of text, one a line");
    const auto options = addCommand<WordsOptions>(command, runWords, run);
    addPage(command, options->page, options->data);
    addFiles(command, options->files);
    command->footer(
        "Letters and digits form words, as a database's word index cuts them. A character of three\n"
        "or four bytes in UTF-8, and one of two in a double-byte page, is a word by itself.\n"
        "\n"
        "Examples:\n"
        "  velnls words poem.txt | velnls sort -i -u\n"
        "  velnls words -p 1251 letter.txt\n");
}

void addRecord(CLI::App &app, Run &run) {
    CLI::App *command =
        app.add_subcommand("record", "Keep a collation in a file, and compare it with today's");
    const auto options = addCommand<RecordOptions>(command, runRecord, run);
    addPage(command, options->page, options->data);
    command->add_option("-C,--collation", options->collation, "Collation of the page (basic when not given)")
        ->type_name("NAME");
    command->add_option("ACTION", options->action, "make, show or verify")
        ->required()
        ->check(CLI::IsMember({"make", "show", "verify"}));
    command->add_option("FILE", options->file, "File of the record")->required();
    command->footer("make writes the record, show tells what it holds, verify names the characters that the\n"
                    "data file orders otherwise. Page and collation are given to make alone.\n"
                    "\n"
                    "Exit codes of verify:\n"
                    "  0  the order is the same\n"
                    "  1  characters moved\n"
                    "  2  usage, files, a record that is none\n"
                    "\n"
                    "Examples:\n"
                    "  velnls record make -p 1252 --collation basic names.rec\n"
                    "  velnls record verify names.rec --data new.dat\n");
}

} // namespace

void addTextCommands(CLI::App &app, std::function<int()> &run) {
    addSort(app, run);
    addKey(app, run);
    addCompare(app, run);
    addLike(app, run);
    addReplace(app, run);
    addCase(app, run);
    addCount(app, run);
    addCheck(app, run);
    addWords(app, run);
    addRecord(app, run);
}

} // namespace velnls::tool
