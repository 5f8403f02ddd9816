// velnls count: bytes, characters and display columns.
#include "commands.hpp"

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>

#include "checked_input.hpp"
#include "line_reader.hpp"
#include "ordered_page.hpp"
#include "output.hpp"

namespace velnls::tool {

namespace {

struct Counts {
    std::uint64_t bytes = 0;
    std::uint64_t characters = 0;
    std::uint64_t columns = 0;

    Counts &operator+=(const Counts &other) {
        bytes += other.bytes;
        characters += other.characters;
        columns += other.columns;
        return *this;
    }
};

// Counts a text without NUL through the library; "text" has a NUL behind it.
Counts countText(nlsLocale *locale, const char *text, std::size_t size) {
    const auto length = static_cast<std::int32_t>(size);
    std::uint32_t characters = 0;
    std::uint32_t columns = 0;
    nlsStatus status = nlsCountChars(locale, text, length, &characters);
    if (status == NLS_OK) {
        status = nlsCountColumns(locale, text, length, &columns);
    }
    if (status != NLS_OK) {
        throw StatusError("counting", status);
    }
    return {size, characters, columns};
}

// A NUL is a character without columns, and so is a line feed.
Counts countStretch(const Page &page, std::span<const unsigned char> stretch, std::string &copy) {
    copy.assign(stretch.begin(), stretch.end());
    Counts counts;
    for (std::size_t at = 0; at < copy.size();) {
        const char *text = copy.c_str() + at;
        const std::size_t size = std::strlen(text);
        counts += countText(page.locale, text, size);
        at += size;
        if (at < copy.size()) {
            counts += {1, 1, 0};
            ++at;
        }
    }
    const auto lineFeeds = std::count(stretch.begin(), stretch.end(), page.lineFeed);
    counts.columns -= static_cast<std::uint64_t>(lineFeeds);
    return counts;
}

std::string row(const Counts &counts, const std::string &name) {
    char numbers[96];
    std::snprintf(numbers, sizeof numbers, "%10" PRIu64 " %10" PRIu64 " %10" PRIu64, counts.bytes,
                  counts.characters, counts.columns);
    return numbers + (name.empty() ? "" : " " + name) + "\n";
}

} // namespace

int runCount(const CountOptions &options) {
    const DataSource data(options.data);
    Library library(data);
    const Page page = describeWalkedPage(library, options.page);
    const std::vector<std::string> files = namedInputs(options.files);
    Output output("");
    Counts total;
    std::string copy;
    int exitCode = kExitDone;
    for (const std::string &file : files) {
        CheckedInput input(file, page);
        output.refuse(input.input());
        Counts counts;
        for (auto stretch = input.next(); !stretch.empty(); stretch = input.next()) {
            counts += countStretch(page, stretch, copy);
        }
        if (input.fault()) {
            std::fprintf(stderr, "%s\n", input.fault()->c_str());
            exitCode = kExitMalformed;
            continue;
        }
        total += counts;
        const std::string text = row(counts, options.files.empty() ? "" : file);
        output.write(text.data(), text.size());
    }
    if (files.size() > 1) {
        const std::string text = row(total, "total");
        output.write(text.data(), text.size());
    }
    return exitCode;
}

} // namespace velnls::tool
