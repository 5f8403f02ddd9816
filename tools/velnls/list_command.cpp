// velnls list: the names of the data file, one a line.
#include "commands.hpp"

#include <string>

#include "library.hpp"
#include "output.hpp"

namespace velnls::tool {

namespace {

struct Group {
    const char *word; // on the command line
    const char *item; // before each name when all groups are listed
    NameList list;
};

constexpr Group kGroups[] = {
    {"charsets", "charset", NameList::CodePages},
    {"case", "case", NameList::CaseTables},
    {"collations", "collation", NameList::Collations},
    {"conversions", "conversion", NameList::Conversions},
};

} // namespace

int runList(const ListOptions &options) {
    const DataSource data(options.data);
    const Library library(data);
    std::string text;
    for (const Group &group : kGroups) {
        if (!options.group.empty() && options.group != group.word) {
            continue;
        }
        for (const std::string &name : library.list(group.list)) {
            if (options.group.empty()) {
                text += std::string(group.item) + "\t";
            }
            text += name + "\n";
        }
    }
    Output output("");
    output.write(text.data(), text.size());
    return kExitDone;
}

} // namespace velnls::tool
