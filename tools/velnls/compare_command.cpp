// velnls compare: which of two texts comes first.
#include "commands.hpp"

#include <cstdint>

#include "ordered_page.hpp"
#include "output.hpp"

namespace velnls::tool {

int runCompare(const CompareOptions &options) {
    OrderedPage page(options.order);
    const std::string first = page.argument(options.first, "first text");
    const std::string second = page.argument(options.second, "second text");
    std::int16_t order = 0;
    const nlsStatus status = nlsCompare(page.locale(), first.c_str(), second.c_str(),
                                        static_cast<std::int16_t>(page.mode()), &order);
    if (status != NLS_OK) {
        throw StatusError("comparing", status);
    }
    Output output("");
    output.write(order < 0 ? "<\n" : order > 0 ? ">\n" : "=\n", 2);
    return order == 0 ? kExitEqual : kExitDifferent;
}

} // namespace velnls::tool
