/// \file
/// The choice of a window's median by repeated selection. It decides which of several equal keys is taken:
/// every faster form has to end at the same place.
#pragma once

#include <cstddef>
#include <utility>

namespace vfil {

/// A pixel of a window: its key and its place in the window, in row order.
template <class Sample>
struct RankedPlace {
    Sample key;
    std::size_t place;
};

/// The place whose key is at count / 2 in ascending order. Moves the pixels of the largest key to the end,
/// the last of them first, until that position is reached.
template <class Sample>
std::size_t FindMedian(RankedPlace<Sample>* list, std::size_t count)
{
    const std::size_t middle = count >> 1;
    std::size_t left = count; // not yet moved to the end
    while (left > middle) {
        Sample largest = list[0].key;
        bool differ = false;
        for (std::size_t i = 1; i < left; ++i) {
            differ = differ || list[i].key != list[0].key;
            if (list[i].key > largest) largest = list[i].key;
        }
        if (!differ) break;
        for (std::size_t i = left; i-- > 0;)
            if (list[i].key == largest) std::swap(list[i], list[--left]);
    }
    return list[middle].place;
}

} // namespace vfil
