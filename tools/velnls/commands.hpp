// The commands of the program. Each returns the exit code; what goes wrong with files, names and the data
// file is thrown and told by main().
#pragma once

#include <string>
#include <vector>

#include "platform.hpp"

namespace velnls::tool {

enum ExitCode : int {
    kExitDone = 0,
    kExitEqual = 0,       // compare: the texts are equal
    kExitDifferent = 1,   // compare: they are not
    kExitFound = 0,       // like: a line matches
    kExitNotFound = 1,    // like: none does
    kExitMoved = 1,       // record verify: characters moved
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

// What orders and compares text: a code page, one of its collations, and whether letter case counts.
struct OrderOptions {
    std::string page = "UTF-8";
    std::string collation = "basic";
    bool ignoreCase = false;
    std::string data;
};

struct SortOptions {
    OrderOptions order;
    std::vector<std::string> keys; // each "N" or "N,M"; none: the whole line
    std::string separator;         // of fields; empty: blanks and tabs
    bool unique = false;
    bool reverse = false;
    std::string output;
    std::string memory = "256M";
    std::string folder = platform::temporaryFolder(); // of temporary files
    std::vector<std::string> files;
};

struct KeyOptions {
    OrderOptions order;
    bool raw = false;
    std::vector<std::string> files;
};

struct CompareOptions {
    OrderOptions order;
    std::string first;
    std::string second;
};

struct LikeOptions {
    OrderOptions order;
    std::string pattern;
    std::string escape; // empty: none
    bool invert = false;
    bool count = false;
    std::vector<std::string> files;
};

struct ReplaceOptions {
    OrderOptions order;
    std::string pattern;
    std::string replacement;
    bool count = false;
    std::string output;
    std::vector<std::string> files;
};

struct CaseOptions {
    std::string page = "UTF-8";
    std::string table = "basic";
    bool upper = false;
    std::string data;
    std::string output;
    std::vector<std::string> files;
};

struct CountOptions {
    std::string page = "UTF-8";
    std::string data;
    std::vector<std::string> files;
};

struct CheckOptions {
    std::string page = "UTF-8";
    std::string data;
    std::vector<std::string> files;
};

struct WordsOptions {
    std::string page = "UTF-8";
    std::string data;
    std::vector<std::string> files;
};

struct RecordOptions {
    std::string action; // make, show, verify
    std::string page = "UTF-8";
    std::string collation = "basic";
    std::string data;
    std::string file; // of the record
};

int runConvert(const ConvertOptions &options);
int runList(const ListOptions &options);
int runInfo(const InfoOptions &options);
int runSort(const SortOptions &options);
int runKey(const KeyOptions &options);
int runCompare(const CompareOptions &options);
int runLike(const LikeOptions &options);
int runReplace(const ReplaceOptions &options);
int runCase(const CaseOptions &options);
int runCount(const CountOptions &options);
int runCheck(const CheckOptions &options);
int runWords(const WordsOptions &options);
int runRecord(const RecordOptions &options);

} // namespace velnls::tool
