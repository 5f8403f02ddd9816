// Columns in the order of a compare.
#pragma once

#include "string_texts.hpp"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace bench {

// The places of `count` texts from the first to the last; compare(a, b) of two places is below, at or above
// 0.
template <typename Compare>
std::vector<std::uint32_t> sorted(std::size_t count, Compare compare) {
    std::vector<std::uint32_t> places(count);
    std::iota(places.begin(), places.end(), 0u);
    std::sort(places.begin(), places.end(),
              [&compare](std::uint32_t a, std::uint32_t b) { return compare(a, b) < 0; });
    return places;
}

template <typename Compare>
Column inOrder(const Column &column, Compare compare) {
    Column out;
    for (const std::uint32_t place : sorted(column.size(), compare)) {
        out.page.add({column.pageText(place), column.pageLength(place)});
        out.utf8.add({column.utf8Text(place), column.utf8Length(place)});
        out.utf16.push_back(column.utf16[place]);
    }
    return out;
}

} // namespace bench
