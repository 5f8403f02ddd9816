#include "order_moves.hpp"

#include <algorithm>
#include <numeric>

namespace velnls::nlsgen {
namespace {

int orderOf(std::uint8_t a, std::uint8_t b) {
    return (a > b) - (a < b);
}

} // namespace

// The longest chain of items, each related to the next one in both orders alike. What holds from one to the
// next holds for all of the chain, so the rest are those that moved.
std::vector<std::size_t> movedItems(const std::vector<TwoWeights> &items) {
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> sorted(items.size());
    std::iota(sorted.begin(), sorted.end(), std::size_t{0});
    std::stable_sort(sorted.begin(), sorted.end(), [&items](std::size_t a, std::size_t b) {
        return items[a].before != items[b].before ? items[a].before < items[b].before
                                                  : items[a].after < items[b].after;
    });
    std::vector<std::size_t> length(sorted.size(), 1);
    std::vector<std::size_t> previous(sorted.size(), kNone);
    std::size_t last = kNone;
    for (std::size_t i = 0; i < sorted.size(); i++) {
        const TwoWeights &item = items[sorted[i]];
        for (std::size_t j = 0; j < i; j++) {
            const TwoWeights &other = items[sorted[j]];
            if (orderOf(other.before, item.before) == orderOf(other.after, item.after) &&
                length[j] + 1 > length[i]) {
                length[i] = length[j] + 1;
                previous[i] = j;
            }
        }
        if (last == kNone || length[i] > length[last])
            last = i;
    }
    std::vector<bool> stays(items.size(), false);
    for (; last != kNone; last = previous[last])
        stays[sorted[last]] = true;
    std::vector<std::size_t> moved;
    for (std::size_t i = 0; i < items.size(); i++)
        if (!stays[i])
            moved.push_back(i);
    return moved;
}

} // namespace velnls::nlsgen
