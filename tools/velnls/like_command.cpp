// velnls like: the lines that match an SQL pattern.
#include "commands.hpp"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <stdexcept>

#include "line_reader.hpp"
#include "ordered_page.hpp"
#include "output.hpp"

namespace velnls::tool {

namespace {

struct Wildcards {
    std::uint32_t one;
    std::uint32_t any;
    std::uint32_t escape; // 0: none
};

// The library tells of a misplaced escape character only where a line's walk reaches it, so the pattern is
// looked at once by itself.
void checkPattern(const OrderedPage &page, const std::string &pattern, const Wildcards &wildcards) {
    bool escaped = false;
    bool good = true;
    for (std::size_t at = 0; at < pattern.size();) {
        std::uint32_t number = 0;
        for (std::size_t left = page.step(static_cast<unsigned char>(pattern[at]));
             left != 0 && at < pattern.size(); --left) {
            number = number << 8 | static_cast<unsigned char>(pattern[at++]);
        }
        const bool isEscape = number == wildcards.escape;
        good = good && (!escaped || isEscape || number == wildcards.one || number == wildcards.any);
        escaped = !escaped && isEscape;
    }
    if (!good || escaped) {
        throw std::runtime_error(
            "in the pattern, the escape character stands before none of _, % and itself");
    }
}

} // namespace

int runLike(const LikeOptions &options) {
    OrderedPage page(options.order);
    const std::string pattern = page.argument(options.pattern, "pattern");
    const Wildcards wildcards = {page.character("_", "wildcard"), page.character("%", "wildcard"),
                                 options.escape.empty() ? 0
                                                        : page.character(options.escape, "escape character")};
    checkPattern(page, pattern, wildcards);
    const std::vector<std::string> files = namedInputs(options.files);
    Output output("");
    Gathered out(output);
    const char lineFeed = static_cast<char>(page.page().lineFeed);
    std::uint64_t count = 0;
    bool refused = false;
    for (const std::string &file : files) {
        LineReader reader(file, page.page().lineFeed);
        output.refuse(reader.input());
        while (const auto line = reader.next()) {
            if (line->find('\0') != std::string_view::npos) {
                std::fprintf(stderr, "%s:%" PRIu64 ": the line holds a NUL byte, not matched\n",
                             reader.name().c_str(), reader.number());
                refused = true;
                continue;
            }
            const nlsStatus result = nlsSqlLike(page.locale(), pattern.c_str(), line->data(), page.mode(),
                                                wildcards.escape, wildcards.one, wildcards.any);
            if (result > 1) {
                throw StatusError("matching", result);
            }
            if ((result == 1) == options.invert) {
                continue;
            }
            ++count;
            if (!options.count) {
                out.write(*line);
                out.write(lineFeed);
            }
        }
    }
    if (options.count) {
        out.write(std::to_string(count) + "\n");
    }
    out.flush();
    return refused ? kExitFailed : count != 0 ? kExitFound : kExitNotFound;
}

} // namespace velnls::tool
