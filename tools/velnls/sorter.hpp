// Sorts records of a key and a line in bounded memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform.hpp"
#include "sort_run.hpp"

namespace velnls::tool {

struct SorterOptions {
    std::size_t memory = 256 * 1024 * 1024; // bytes for lines and keys
    std::string folder = platform::temporaryFolder();
    bool unique = false;  // of records with equal keys, the first alone
    bool reverse = false; // larger keys first; equal ones stay in order all the same
};

// Stable: records with equal keys come out in the order in which they were added. When the memory is full,
// what is there is sorted and written to a temporary file; the files are merged at the end.
class Sorter {
public:
    using Take = std::function<void(std::string_view line)>;

    explicit Sorter(const SorterOptions &options);
    void add(std::string_view key, std::string_view line);
    // Hands out all lines in order. The sorter is used up then.
    void finish(const Take &take);
    // Temporary files written so far.
    std::size_t spills() const {
        return spills_;
    }

private:
    // Stands at the end of the memory and grows downwards; the records grow upwards from its start.
    struct Entry {
        std::uint64_t prefix; // the first bytes of the key as a number, so most compares touch no record
        std::uint64_t offset; // of the record, which tells the order of arrival too
    };
    struct Run {
        SortRun run;
        unsigned level; // how often its records were merged
    };
    using TakeRecord = std::function<void(std::string_view key, std::string_view line)>;

    Entry *entries() const;
    std::string_view keyOf(const Entry &entry) const;
    std::string_view lineOf(const Entry &entry) const;
    int compare(std::string_view a, std::string_view b) const;
    bool fits(std::size_t size) const;
    void handOut(const TakeRecord &take);
    void spill();
    void spillAlone(std::string_view key, std::string_view line);
    void addRun(SortRun run, unsigned level);
    void merge(std::vector<Run> &runs, const TakeRecord &take);

    const SorterOptions options_;
    std::size_t words_; // of the memory, eight bytes each
    std::unique_ptr<std::uint64_t[]> memory_;
    std::size_t used_ = 0; // words of records
    std::size_t count_ = 0;
    std::size_t spills_ = 0;
    std::vector<Run> runs_; // in order of arrival
};

} // namespace velnls::tool
