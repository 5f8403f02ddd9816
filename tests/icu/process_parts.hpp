// What the parts of process.hpp share that differ between systems.
#pragma once

#include "process.hpp"

#include <map>
#include <mutex>

namespace process {

// The log of what the library asks of the loader, and what is hidden from it.
struct Loader {
    std::mutex mutex;
    std::vector<std::string> calls;
    std::vector<std::string> hidden;
    std::map<void *, std::string> paths;

    // Each is called with what the library asked for, and does nothing for what is not of interest here.
    void loaded(const std::string &path, void *library);
    bool isHidden(const std::string &name);
    void unloading(void *library);
};
Loader &loader();

// An empty folder that nobody else has.
std::string makeFolder();

// In a child: a row for the parent, "EXPORT STATUS".
bool reportRow(const std::string &row);
// In the parent: the rows of a child, a line each.
void countRows(const std::string &rows);

} // namespace process
