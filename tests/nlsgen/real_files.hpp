// The sources of the default build, and data files made from them once for all tests.
#pragma once

#include "data_plan.hpp"

namespace velnls::nlsgen::test {

Sources realSources();

// Everything that the default build makes, from the installed packages.
const DataPlan &realPlan();
const Page &realPage(const std::string &name);

// A data file of a few pages of every layout: quick to check, yet with every kind of record.
const Bytes &smallSample();

// The number of the first entry of a kind with these names in a file made by layOut().
std::size_t entryNumber(const Bytes &file, char kind, const std::string &name, const std::string &name2);

// Of the entry's record, as its directory entry states it.
std::size_t recordOffset(const Bytes &file, std::size_t entry);

// The message of the Problem that an action throws; empty when it throws none.
template <typename Action>
std::string problemOf(Action action) {
    try {
        action();
    } catch (const Problem &problem) {
        return problem.what();
    }
    return {};
}

} // namespace velnls::nlsgen::test
