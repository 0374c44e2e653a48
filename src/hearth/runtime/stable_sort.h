// Sorting with comparisons that cannot be trusted.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ht {

/// Sorts a vector stably by `compare(a, b)`, negative when a goes first. The comparison may contradict itself
/// (scripts supply some), which the C++ library's sorts answer with reads outside the range; the order is
/// then any, but all items are there. When it throws, `items` is as before. N log N comparisons.
template <class Items, class Compare> void StableSort(Items& items, Compare compare)
{
    Items from = items;
    Items to(items.size());
    for (std::size_t width = 1; width < items.size(); width *= 2) {
        for (std::size_t start = 0; start < items.size(); start += 2 * width) {
            std::size_t left = start;
            const std::size_t middle = std::min(start + width, items.size());
            std::size_t right = middle;
            const std::size_t end = std::min(middle + width, items.size());
            for (std::size_t place = start; place < end; ++place) {
                const bool takeLeft =
                    left < middle && (right == end || compare(from[left], from[right]) <= 0);
                to[place] = std::move(from[takeLeft ? left++ : right++]);
            }
        }
        std::swap(from, to);
    }
    items.swap(from);
}

}
