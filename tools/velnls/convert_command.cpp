// velnls convert: from files to a file, and the account of what was lost.
#include "commands.hpp"

#include <cinttypes>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "input.hpp"
#include "output.hpp"
#include "page_names.hpp"
#include "progress.hpp"
#include "stream.hpp"

namespace velnls::tool {

namespace {

// Large enough that calls to the system do not count, small enough to stay in the second-level cache.
constexpr std::size_t kInputBuffer = 256 * 1024;

std::string placeWords(const Place &place) {
    return place.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + ": byte " +
           place.bytes + ": ";
}

std::string countWords(std::uint64_t count, const char *one, const char *many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

// Tells on standard error what was lost, and chooses the exit code.
int account(const Report &report, const ConvertOptions &options, const Page &target) {
    const char *fate = options.drop ? "left out" : "substituted";
    const bool refused = report.malformed != 0 && !options.drop && !options.lossy;
    std::string words;
    if (report.substituted != 0) {
        words +=
            placeWords(report.firstSubstituted) + "no counterpart in " + target.name + ", " + fate + "\n";
        words += "velnls: " + countWords(report.substituted, "character", "characters") + " " + fate + "\n";
    }
    if (report.malformed != 0) {
        words += placeWords(report.firstMalformed) + report.firstFault + "\n";
        if (!refused) {
            words += "velnls: " + countWords(report.malformed, "malformed sequence", "malformed sequences") +
                     " " + fate + "\n";
        }
    }
    std::fputs(words.c_str(), stderr);
    if (refused) {
        return kExitMalformed;
    }
    const bool lost = report.substituted != 0 || report.malformed != 0;
    return lost && !options.lossy ? kExitSubstituted : kExitDone;
}

// The bytes of all inputs together, when they are known: nothing when one of them is a pipe. Every input is
// looked at, so that one that is missing is found before anything is written.
std::optional<std::uint64_t> totalSize(const std::vector<std::string> &files) {
    std::optional<std::uint64_t> total = 0;
    for (const std::string &file : files) {
        const std::optional<std::uint64_t> size = Input::sizeOf(file);
        total = total && size ? std::optional(*total + *size) : std::nullopt;
    }
    return total;
}

} // namespace

int runConvert(const ConvertOptions &options) {
    if (options.list) {
        return runList({"charsets", options.data});
    }
    const DataSource data(options.data);
    Library library(data);
    const Page source = describePage(library, resolvePage(library, options.from));
    const Page target = describePage(library, resolvePage(library, options.to));
    Route route(library, source, target);

    const std::vector<std::string> files =
        options.files.empty() ? std::vector<std::string>{"-"} : options.files;
    const std::optional<std::uint64_t> total = totalSize(files);
    Output output(options.output);
    Progress progress = terminalProgress(total, output.descriptor());

    StreamOptions streamOptions;
    streamOptions.drop = options.drop;
    streamOptions.acceptMalformed = options.drop || options.lossy;
    Stream stream(route, streamOptions,
                  [&](const char *text, std::size_t size) { output.write(text, size); });
    const auto buffer = std::make_unique<unsigned char[]>(kInputBuffer);
    std::uint64_t done = 0;
    bool going = true;
    for (const std::string &file : files) {
        Input input(file);
        output.refuse(input);
        stream.begin(input.name());
        std::size_t count = 0;
        while (going && (count = input.read(buffer.get(), kInputBuffer)) != 0) {
            going = stream.feed(buffer.get(), count);
            done += count;
            progress.update(done);
        }
        going = going && stream.finish();
        if (!going) {
            break;
        }
    }
    // Up to the malformed place, standard output gets what was converted; a file is not made from half a
    // text.
    stream.flush();
    if (going) {
        output.commit();
    }
    progress.clear();
    return account(stream.report(), options, target);
}

} // namespace velnls::tool
