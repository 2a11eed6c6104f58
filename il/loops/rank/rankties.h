/// \file
/// Medians of windows that are too large for the row kernels: their keys by a histogram that slides along a
/// row, their places among equal keys by following the exchanges of FindMedian.
#pragma once

#include "il/loops/frame/runarray.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <numeric>

namespace vfil {

/// A median's key and the number of keys below it.
template <class Sample>
struct MiddleKey {
    Sample key;
    std::size_t below;
};

/// Counts of keys, also by their upper halves, so that a rank is found in two short searches.
template <class Sample>
class KeyCounts {
public:
    /// False when memory is short. Clear comes before all else.
    bool Allocate() { return m_counts.Allocate(kHalves * kHalves); }
    void Clear()
    {
        std::fill_n(m_counts.Data(), kHalves * kHalves, 0U);
        std::ranges::fill(m_sums, 0U);
    }
    void Add(Sample key)
    {
        ++m_counts[key];
        ++m_sums[key >> kHalfBits];
    }
    void Remove(Sample key)
    {
        --m_counts[key];
        --m_sums[key >> kHalfBits];
    }
    std::size_t operator[](std::size_t key) const { return m_counts[key]; }

    Sample Largest() const
    {
        std::size_t key = kHalves * kHalves - 1;
        while (m_sums[key >> kHalfBits] == 0)
            key -= kHalves;
        while (m_counts[key] == 0)
            --key;
        return static_cast<Sample>(key);
    }

    /// The key at a position of the ascending order.
    MiddleKey<Sample> KeyAt(std::size_t position) const
    {
        std::size_t below = 0;
        std::size_t half = 0;
        for (; below + m_sums[half] <= position; ++half)
            below += m_sums[half];
        std::size_t key = half << kHalfBits;
        for (; below + m_counts[key] <= position; ++key)
            below += m_counts[key];
        return {static_cast<Sample>(key), below};
    }

private:
    static constexpr std::size_t kHalfBits = 4 * sizeof(Sample);
    static constexpr std::size_t kHalves = std::size_t{1} << kHalfBits;

    RunArray<std::uint32_t> m_counts;
    std::array<std::uint32_t, kHalves> m_sums{};
};

/// Tells which of a window's equal keys repeated selection would choose, as FindMedian does it.
///
/// The larger keys go to the end one after the other, the largest first, of equal ones the one that stands
/// last; each changes places with what stands where it goes. So it is enough to take the larger keys in their
/// order and to know where each pixel stands. The keys that equal the median's then go to the end of what is
/// left in the order in which they stand: the one for the middle follows from the number of smaller keys.
template <class Sample>
class MiddlePlace {
public:
    /// Makes room for windows of so many keys. False when memory is short.
    bool Allocate(std::size_t count)
    {
        return m_sorted.Allocate(count + 1) && m_standing.Allocate(count) && m_position.Allocate(count) &&
               m_marks.Allocate((count + 63) / 64);
    }
    /// \param keys    of the window, in row order
    /// \param counts  of these keys
    std::size_t operator()(const Sample* keys, std::size_t count, const KeyCounts<Sample>& counts,
                           const MiddleKey<Sample>& middle)
    {
        const Place* const sortedEnd = SortFromLargest(keys, count, counts, middle.key);
        std::iota(m_standing.Data(), m_standing.Data() + count, 0U);
        std::copy_n(m_standing.Data(), count, m_position.Data());
        std::fill_n(m_marks.Data(), (count + 63) / 64, std::uint64_t{0});
        std::size_t end = count;
        const Place* group = m_sorted.Data();
        while (keys[*group] != middle.key) {
            const Place* const next = std::find_if(
                group, sortedEnd, [keys, key = keys[*group]](Place i) { return keys[i] != key; });
            MoveToEnd(group, next, end);
            group = next;
        }
        Mark(group, sortedEnd);
        return m_standing[PositionOfMark((count >> 1) - middle.below)];
    }

private:
    using Place = std::uint32_t;

    /// Puts the places of keys that are not below the middle into m_sorted, the largest first. Their end.
    const Place* SortFromLargest(const Sample* keys, std::size_t count, const KeyCounts<Sample>& counts,
                                 Sample middle)
    {
        Place* const sorted = m_sorted.Data();
        if constexpr (sizeof(Sample) == 1) {
            std::array<Place, 256> starts;
            Place larger = 0;
            for (std::size_t key = counts.Largest(); key >= middle; --key) {
                starts[key] = larger;
                larger += static_cast<Place>(counts[key]);
                if (key == 0) break;
            }
            // Which keys are smaller is hard to foresee: they are written too, to one place at the end.
            std::fill_n(starts.begin(), middle, larger);
            for (Place i = 0; i < count; ++i) {
                Place& place = starts[keys[i]];
                sorted[place] = i;
                place += keys[i] >= middle ? 1U : 0U;
            }
            return sorted + larger;
        } else {
            Place* end = sorted;
            for (Place i = 0; i < count; ++i)
                if (keys[i] >= middle) *end++ = i;
            std::ranges::sort(sorted, end, std::greater{}, [keys](Place i) { return keys[i]; });
            return end;
        }
    }

    /// Marks the positions of some places.
    void Mark(const Place* first, const Place* last)
    {
        for (; first != last; ++first)
            m_marks[m_position[*first] / 64] |= std::uint64_t{1} << m_position[*first] % 64;
    }

    /// Takes places of equal keys, in the range, out of what stands before `end`.
    void MoveToEnd(const Place* first, const Place* last, std::size_t& end)
    {
        const auto exchange = [this, &end](std::uint32_t position) {
            const std::uint32_t moved = m_standing[--end];
            m_standing[position] = moved;
            m_position[moved] = position;
        };
        if (last - first == 1) return exchange(m_position[*first]);
        Mark(first, last);
        for (std::size_t word = (end + 63) / 64; word-- > 0;)
            for (std::uint64_t& marks = m_marks[word]; marks != 0;) {
                const auto bit = static_cast<std::uint32_t>(63 - std::countl_zero(marks));
                marks ^= std::uint64_t{1} << bit;
                exchange(static_cast<std::uint32_t>(64 * word) + bit);
            }
    }

    /// The position of a mark that follows so many others.
    std::size_t PositionOfMark(std::size_t others) const
    {
        std::size_t word = 0;
        for (; static_cast<std::size_t>(std::popcount(m_marks[word])) <= others; ++word)
            others -= static_cast<std::size_t>(std::popcount(m_marks[word]));
        std::uint64_t marks = m_marks[word];
        for (; others > 0; --others)
            marks &= marks - 1;
        return 64 * word + static_cast<std::size_t>(std::countr_zero(marks));
    }

    RunArray<Place> m_sorted;
    RunArray<Place> m_standing;      ///< places by the positions where they stand
    RunArray<Place> m_position;      ///< the reverse
    RunArray<std::uint64_t> m_marks; ///< a bit a position
};

} // namespace vfil
