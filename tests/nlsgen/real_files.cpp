#include "real_files.hpp"

#include "file_view.hpp"

#include <algorithm>
#include <stdexcept>

namespace velnls::nlsgen::test {

Sources realSources() {
    Sources sources;
    sources.charmaps = NLSGEN_CHARMAPS;
    sources.unicode = NLSGEN_UNICODE;
    sources.data = NLSGEN_SOURCE_DIR "/data";
    sources.site = sources.data + "/site";
    return sources;
}

const DataPlan &realPlan() {
    static const DataPlan plan = makeDataPlan(realSources());
    return plan;
}

const Page &realPage(const std::string &name) {
    for (const auto &page : realPlan().pages)
        if (page->name == name)
            return *page;
    throw std::runtime_error("no page " + name);
}

const Bytes &smallSample() {
    static const Bytes sample = [] {
        const std::vector<std::string> pages = {"1252",   "ISO8859-1",   "IBM037", "SHIFT-JIS",
                                                "EUCJIS", "CP950-HKSCS", "UTF-8",  "UTF-16"};
        const auto wanted = [&pages](const std::string &name) {
            return std::find(pages.begin(), pages.end(), name) != pages.end();
        };
        std::vector<PlannedEntry> entries;
        for (const PlannedEntry &entry : realPlan().entries)
            if (wanted(entry.name) && (entry.kind != file::kConversion || wanted(entry.name2)))
                entries.push_back(entry);
        return layOut(entries);
    }();
    return sample;
}

std::size_t entryNumber(const Bytes &bytes, char kind, const std::string &name, const std::string &name2) {
    const FileView view(bytes);
    const auto header = view.at<file::Header>(0);
    const auto count = static_cast<std::size_t>(readNumber(header.entryCount, sizeof header.entryCount));
    for (std::size_t i = 0; i < count; i++) {
        const EntryView entry = view.entryAt(sizeof header + i * sizeof(file::Entry));
        if (entry.kind == kind - '0' && entry.name == name && entry.name2 == name2)
            return i;
    }
    throw std::runtime_error("no entry " + name + ", " + name2);
}

std::size_t recordOffset(const Bytes &bytes, std::size_t entry) {
    return static_cast<std::size_t>(
        FileView(bytes).entryAt(sizeof(file::Header) + entry * sizeof(file::Entry)).offset);
}

} // namespace velnls::nlsgen::test
