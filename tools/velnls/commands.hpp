// The commands of the program. Each returns the exit code; what goes wrong with files, names and the data
// file is thrown and told by main().
#pragma once

#include <string>
#include <vector>

namespace velnls::tool {

enum ExitCode : int {
    kExitDone = 0,
    kExitSubstituted = 1, // the output is complete, but characters were substituted or left out
    kExitFailed = 2,      // usage, files, names, data file
    kExitMalformed = 3,   // the input is not well-formed text of its code page
};

struct ConvertOptions {
    std::string from = "UTF-8";
    std::string to = "UTF-8";
    std::string output;             // empty: standard output
    std::vector<std::string> files; // none: standard input
    bool drop = false;              // leave out what cannot be converted
    bool lossy = false;             // accept losses and malformed input
    bool list = false;              // name the code pages instead
    std::string data;               // empty: the built-in data file
};

struct ListOptions {
    std::string group; // charsets, case, collations, conversions; empty: all, each line with its group
    std::string data;
};

struct InfoOptions {
    std::string page;
    std::string data;
};

int runConvert(const ConvertOptions &options);
int runList(const ListOptions &options);
int runInfo(const InfoOptions &options);

} // namespace velnls::tool
