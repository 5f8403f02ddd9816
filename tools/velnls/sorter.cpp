// Fills one block of memory from both ends, sorts the entries and merges the runs.
#include "sorter.hpp"

#include <algorithm>
#include <iterator>
#include <new>
#include <stdexcept>
#include <utility>

namespace velnls::tool {

namespace {

// Runs of one level that are merged into one of the next. Three levels hold a quarter of a million times the
// memory, and no more than some two hundred files are open.
constexpr std::size_t kMergeWidth = 64;

constexpr std::size_t kWord = sizeof(std::uint64_t);

std::size_t wordsFor(std::size_t bytes) {
    return (bytes + kWord - 1) / kWord;
}

std::uint64_t prefixOf(std::string_view key) {
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < kWord; ++i) {
        prefix = prefix << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0);
    }
    return prefix;
}

} // namespace

Sorter::Sorter(const SorterOptions &options) try
    : options_(options), words_(options.memory / kWord),
      memory_(std::make_unique_for_overwrite<std::uint64_t[]>(words_)) {
} catch (const std::bad_alloc &) {
    throw std::runtime_error("there is no memory of " + std::to_string(options.memory) + " bytes to sort in");
}

Sorter::Entry *Sorter::entries() const {
    return reinterpret_cast<Entry *>(memory_.get() + words_) - count_;
}

// A record is the two lengths, the key and the line.
std::string_view Sorter::keyOf(const Entry &entry) const {
    const std::uint64_t *record = memory_.get() + entry.offset;
    return {reinterpret_cast<const char *>(record + 2), record[0]};
}

std::string_view Sorter::lineOf(const Entry &entry) const {
    const std::uint64_t *record = memory_.get() + entry.offset;
    return {reinterpret_cast<const char *>(record + 2) + record[0], record[1]};
}

// std::string_view compares by unsigned bytes, then by length.
int Sorter::compare(std::string_view a, std::string_view b) const {
    return options_.reverse ? b.compare(a) : a.compare(b);
}

bool Sorter::fits(std::size_t size) const {
    const std::size_t needed = wordsFor(size) + 2 + sizeof(Entry) / kWord;
    return words_ - used_ - count_ * (sizeof(Entry) / kWord) >= needed;
}

void Sorter::add(std::string_view key, std::string_view line) {
    if (!fits(key.size() + line.size())) {
        spill();
        if (!fits(key.size() + line.size())) {
            spillAlone(key, line);
            return;
        }
    }
    std::uint64_t *record = memory_.get() + used_;
    record[0] = key.size();
    record[1] = line.size();
    char *bytes = reinterpret_cast<char *>(record + 2);
    std::copy(key.begin(), key.end(), bytes);
    std::copy(line.begin(), line.end(), bytes + key.size());
    ++count_;
    *entries() = {prefixOf(key), used_};
    used_ += 2 + wordsFor(key.size() + line.size());
}

void Sorter::handOut(const TakeRecord &take) {
    Entry *const begin = entries();
    Entry *const end = begin + count_;
    std::sort(begin, end, [this](const Entry &a, const Entry &b) {
        if (a.prefix != b.prefix) {
            return (a.prefix < b.prefix) != options_.reverse;
        }
        const int order = compare(keyOf(a), keyOf(b));
        return order != 0 ? order < 0 : a.offset < b.offset;
    });
    for (const Entry *entry = begin; entry != end; ++entry) {
        if (!options_.unique || entry == begin || keyOf(entry[-1]) != keyOf(*entry)) {
            take(keyOf(*entry), lineOf(*entry));
        }
    }
    used_ = 0;
    count_ = 0;
}

void Sorter::spill() {
    if (count_ == 0) {
        return;
    }
    SortRun run(options_.folder);
    handOut([&](std::string_view key, std::string_view line) { run.write(key, line); });
    addRun(std::move(run), 0);
}

// A line that is larger than the memory is a run by itself.
void Sorter::spillAlone(std::string_view key, std::string_view line) {
    SortRun run(options_.folder);
    run.write(key, line);
    addRun(std::move(run), 0);
}

void Sorter::addRun(SortRun run, unsigned level) {
    run.rewind();
    ++spills_;
    runs_.push_back({std::move(run), level});
    const std::size_t same = static_cast<std::size_t>(std::count_if(
        runs_.begin(), runs_.end(), [level](const Run &other) { return other.level == level; }));
    if (same < kMergeWidth) {
        return;
    }
    // Levels fall from front to back, so the runs of one level are neighbours and stay in order of arrival.
    std::vector<Run> last;
    std::move(runs_.end() - static_cast<std::ptrdiff_t>(same), runs_.end(), std::back_inserter(last));
    for (std::size_t i = 0; i < same; ++i) {
        runs_.pop_back();
    }
    SortRun merged(options_.folder);
    merge(last, [&](std::string_view key, std::string_view line) { merged.write(key, line); });
    last.clear();
    addRun(std::move(merged), level + 1);
}

void Sorter::merge(std::vector<Run> &runs, const TakeRecord &take) {
    // A heap of the runs by their next record; of equal keys, the earlier run comes first.
    const auto later = [&](std::size_t a, std::size_t b) {
        const int order = compare(runs[a].run.key(), runs[b].run.key());
        return order != 0 ? order > 0 : a > b;
    };
    std::vector<std::size_t> heap;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (runs[i].run.next()) {
            heap.push_back(i);
        }
    }
    std::make_heap(heap.begin(), heap.end(), later);
    std::string last;
    bool any = false;
    while (!heap.empty()) {
        std::pop_heap(heap.begin(), heap.end(), later);
        SortRun &run = runs[heap.back()].run;
        if (!options_.unique || !any || run.key() != last) {
            take(run.key(), run.line());
            if (options_.unique) {
                last = run.key();
            }
            any = true;
        }
        if (run.next()) {
            std::push_heap(heap.begin(), heap.end(), later);
        } else {
            heap.pop_back();
        }
    }
}

void Sorter::finish(const Take &take) {
    const TakeRecord takeRecord = [&](std::string_view, std::string_view line) { take(line); };
    if (runs_.empty()) {
        handOut(takeRecord);
        return;
    }
    spill();
    memory_.reset();
    merge(runs_, takeRecord);
}

} // namespace velnls::tool
