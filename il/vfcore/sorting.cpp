/// \file
/// Sorting of an array of doubles.

#include <vfil/numeric.h>

#include <utility>

namespace {

struct Range {
    long low, high;
};

/// Brings what belongs left of the range's middle value to the left. Gives the two parts, which share no
/// index.
std::pair<Range, Range> Partition(double* data, Range range)
{
    const double pivot = data[(range.low + range.high) / 2];
    long i = range.low;
    long j = range.high;
    do {
        while (data[i] < pivot)
            ++i;
        while (pivot < data[j])
            --j;
        if (i <= j) std::swap(data[i++], data[j--]);
    } while (i <= j);
    return {{range.low, j}, {i, range.high}};
}

/// Recurses into the smaller part, so that it goes no deeper than the logarithm of the length: the parts
/// don't touch, their order is the same to the result.
void QuickSort(double* data, Range range)
{
    while (range.low < range.high) {
        auto [smaller, larger] = Partition(data, range);
        if (smaller.high - smaller.low > larger.high - larger.low) std::swap(smaller, larger);
        QuickSort(data, smaller);
        range = larger;
    }
}

} // namespace

vfILSortingEngine::vfILSortingEngine(double* data, long count, vfILSortingAlgorithm algorithm)
{
    SetData(data, count, algorithm);
}

void vfILSortingEngine::SetData(double* data, long count, vfILSortingAlgorithm algorithm)
{
    m_data = data;
    m_count = static_cast<std::int32_t>(count);
    m_algorithm = algorithm;
}

void vfILSortingEngine::SetAlgorithm(vfILSortingAlgorithm algorithm)
{
    m_algorithm = algorithm;
}

void vfILSortingEngine::Sort(const long* first, const long* last)
{
    if (m_algorithm != VFIL_SORT_QUICK) return;
    QuickSort(m_data, {first != nullptr ? *first : 0, last != nullptr ? *last : m_count - 1L});
}
