// velnls sort: lines in the order of a collation.
#include "commands.hpp"

#include <cctype>
#include <charconv>
#include <limits>
#include <stdexcept>

#include "key_maker.hpp"
#include "line_reader.hpp"
#include "output.hpp"
#include "sort_fields.hpp"
#include "sorter.hpp"

namespace velnls::tool {

namespace {

// "64M" and the like, in bytes.
std::size_t parseSize(const std::string &text) {
    std::size_t size = 0;
    const char *const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, size);
    bool good = error == std::errc();
    unsigned shift = 0;
    if (good && at != end) {
        const int unit = std::toupper(static_cast<unsigned char>(*at));
        shift = unit == 'K' ? 10 : unit == 'M' ? 20 : unit == 'G' ? 30 : 0;
        good = shift != 0 && at + 1 == end;
    }
    if (!good || size > std::numeric_limits<std::size_t>::max() >> shift) {
        throw std::runtime_error("'" + text +
                                 "' is no size: expected a number of bytes, or one with K, M or G");
    }
    return size << shift;
}

FieldCutter fieldCutter(OrderedPage &page, const std::string &separator) {
    const std::string wanted = separator == "\\t" ? "\t" : separator;
    if (!wanted.empty()) {
        // Refuses more than one character.
        static_cast<void>(page.character(wanted, "separator"));
    }
    std::vector<std::size_t> steps(256);
    for (unsigned byte = 0; byte < 256; ++byte) {
        steps[byte] = page.step(static_cast<unsigned char>(byte));
    }
    return FieldCutter(page.argument(wanted, "separator"), page.argument(" ", "blank"),
                       page.argument("\t", "tab"), std::move(steps));
}

} // namespace

int runSort(const SortOptions &options) {
    SorterOptions sorterOptions;
    sorterOptions.memory = parseSize(options.memory);
    sorterOptions.folder = options.folder;
    sorterOptions.unique = options.unique;
    sorterOptions.reverse = options.reverse;
    std::vector<FieldRange> ranges;
    for (const std::string &key : options.keys) {
        ranges.push_back(parseFieldRange(key));
    }
    OrderedPage page(options.order);
    const FieldCutter cutter = fieldCutter(page, options.separator);
    const std::vector<std::string> files = namedInputs(options.files);
    Output output(options.output);

    Sorter sorter(sorterOptions);
    KeyMaker keys(page);
    std::string key;
    for (const std::string &file : files) {
        LineReader reader(file, page.page().lineFeed);
        while (const auto line = reader.next()) {
            key.clear();
            try {
                if (ranges.empty()) {
                    keys.append(*line, key);
                }
                for (const FieldRange &range : ranges) {
                    keys.append(cutter.cut(*line, range), key);
                    KeyMaker::end(key);
                }
            } catch (const StatusError &error) {
                throw std::runtime_error(reader.place() + ": " + error.what());
            }
            sorter.add(key, *line);
        }
    }
    Gathered out(output);
    const char lineFeed = static_cast<char>(page.page().lineFeed);
    sorter.finish([&](std::string_view line) {
        out.write(line);
        out.write(lineFeed);
    });
    out.flush();
    output.commit();
    return kExitDone;
}

} // namespace velnls::tool
