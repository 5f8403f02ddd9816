// velnls replace: every occurrence of a text.
#include "commands.hpp"

#include <cinttypes>
#include <cstdio>
#include <stdexcept>

#include "checked_input.hpp"
#include "line_reader.hpp"
#include "output.hpp"
#include "replacer.hpp"
#include "scan.hpp"

namespace velnls::tool {

namespace {

// The message for the first malformed place of a line; empty when there is none.
std::string lineFault(const Page &page, std::string_view line, const LineReader &reader) {
    const auto *text = reinterpret_cast<const unsigned char *>(line.data());
    const Scan scan = scanText(page, text, line.size(), true);
    if (scan.bad == 0) {
        return {};
    }
    Position position(page);
    position.advance(text, scan.good);
    return malformedWords(
        reader.name(), reader.number(), position.column(), text + scan.good, scan.bad,
        describeFault(page, scan.fault, text + scan.good, scan.bad, line.size() - scan.good));
}

} // namespace

int runReplace(const ReplaceOptions &options) {
    OrderedPage page(options.order);
    const std::string pattern = page.argument(options.pattern, "pattern");
    const std::string replacement = page.argument(options.replacement, "replacement");
    const char lineFeed = static_cast<char>(page.page().lineFeed);
    if (pattern.empty()) {
        throw std::runtime_error("the pattern is empty");
    }
    if (pattern.find(lineFeed) != std::string::npos) {
        throw std::runtime_error("the pattern holds a line feed; text is replaced line by line");
    }
    const std::vector<std::string> files = namedInputs(options.files);
    Output output(options.output);
    Gathered out(output);
    Replacer replacer(page, pattern, replacement);
    std::string result;
    for (const std::string &file : files) {
        LineReader reader(file, page.page().lineFeed);
        output.refuse(reader.input());
        while (const auto line = reader.next()) {
            const std::string fault = lineFault(page.page(), *line, reader);
            if (!fault.empty()) {
                out.flush();
                std::fprintf(stderr, "%s\n", fault.c_str());
                return kExitMalformed;
            }
            result.clear();
            replacer.append(*line, result);
            out.write(result);
            if (reader.ended()) {
                out.write(lineFeed);
            }
        }
    }
    out.flush();
    output.commit();
    if (options.count) {
        std::fprintf(stderr, "velnls: %" PRIu64 " replaced\n", replacer.count());
    }
    return kExitDone;
}

} // namespace velnls::tool
