// Time per byte of the calls whose time should grow with their text, from 1 kB to 64 MB.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

struct Curve {
    std::string name;
    std::vector<double> nanosecondsPerByte; // one for each of growthSizes()
};

const std::vector<std::size_t> &growthSizes();

// Measures every curve; takes about a minute.
std::vector<Curve> measureGrowth();

// Prints the curves as a markdown table, sizes from left to right. Says how far each is from flat: the
// largest by the smallest time per byte.
void printGrowth(const std::vector<Curve> &curves);

} // namespace bench
