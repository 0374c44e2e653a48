// Sorting with comparisons that cannot be trusted.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ht {

/// The items of a vector sorted stably by `compare(a, b)`, negative when a goes first. The comparison may
/// contradict itself (scripts supply some), which the C++ library's sorts answer with reads outside the
/// range; the order is then any, but all items are there. It may also change the vector that it was asked to
/// sort, so copies are sorted, and whether their order still counts is for the caller to see. N log N
/// comparisons.
template <class Items, class Compare> Items StableSorted(Items from, Compare compare)
{
    const std::size_t size = from.size();
    Items to(size);
    for (std::size_t width = 1; width < size; width *= 2) {
        for (std::size_t start = 0; start < size; start += 2 * width) {
            std::size_t left = start;
            const std::size_t middle = std::min(start + width, size);
            std::size_t right = middle;
            const std::size_t end = std::min(middle + width, size);
            for (std::size_t place = start; place < end; ++place) {
                const bool takeLeft =
                    left < middle && (right == end || compare(from[left], from[right]) <= 0);
                to[place] = std::move(from[takeLeft ? left++ : right++]);
            }
        }
        std::swap(from, to);
    }
    return from;
}

}
