// velnls check: whether files are well-formed text of their code page.
#include "commands.hpp"

#include <cstdio>

#include "checked_input.hpp"
#include "data_source.hpp"
#include "line_reader.hpp"
#include "page_names.hpp"

namespace velnls::tool {

int runCheck(const CheckOptions &options) {
    const DataSource data(options.data);
    Library library(data);
    const Page page = describePage(library, resolvePage(library, options.page));
    int exitCode = kExitDone;
    for (const std::string &file : namedInputs(options.files)) {
        CheckedInput input(file, page, 256 * 1024);
        while (!input.next().empty()) {
        }
        if (input.fault()) {
            std::fprintf(stderr, "%s\n", input.fault()->c_str());
            exitCode = kExitMalformed;
        }
    }
    return exitCode;
}

} // namespace velnls::tool
