// What is different between two orders of the same items.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velnls::nlsgen {

// An item's weight in two tables; equal weights are one place.
struct TwoWeights {
    std::uint8_t before;
    std::uint8_t after;
};

// The fewest items without which both orders are the same, by their indexes, ascending.
std::vector<std::size_t> movedItems(const std::vector<TwoWeights> &items);

} // namespace velnls::nlsgen
