/// \file
/// What the passes of a convolution are made of: weights with the places of their samples, and the two passes
/// of a separable kernel.
#pragma once

#include "il/rows/pixarith.h"
#include "runarray.h"
#include "windowloop.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace vfil {

/// 15 fraction bits, rounded half away from zero. Weights just below 1 would round to it.
inline std::int16_t FixedWeight(float weight)
{
    return RoundSaturated<std::int16_t>(double{weight} * 32768);
}

/// Weights that count, and where the samples of each are.
template <class In, class Weight>
class Taps {
public:
    /// Room for so many weights and one to make their number even.
    bool Allocate(std::size_t most)
    {
        return m_places.Allocate(most + 1) && m_weights.Allocate(most + 1) && m_sources.Allocate(most + 1);
    }
    /// A weight of 0 costs nothing.
    void Add(std::ptrdiff_t place, Weight weight)
    {
        if (weight != Weight{}) Append(place, weight);
    }
    void MakeEven()
    {
        if (m_count % 2 != 0) Append(m_places[0], Weight{});
    }
    /// The addresses of all places.
    template <class Address>
    const In* const* Sources(Address address) const
    {
        for (std::size_t k = 0; k < m_count; ++k)
            m_sources[k] = address(m_places[k]);
        return m_sources.Data();
    }
    const Weight* Weights() const { return m_weights.Data(); }
    std::size_t Count() const { return m_count; }

private:
    void Append(std::ptrdiff_t place, Weight weight)
    {
        m_places[m_count] = place;
        m_weights[m_count] = weight;
        ++m_count;
    }

    RunArray<std::ptrdiff_t> m_places;
    RunArray<Weight> m_weights;
    RunArray<const In*> m_sources;
    std::size_t m_count = 0;
};

template <class In>
using FixedTaps = Taps<In, std::int16_t>;
template <class In>
using FloatTaps = Taps<In, float>;

/// The weights of one pass of two.
template <class In>
bool SetTaps(FixedTaps<In>& taps, const float* weights, long count, long distance)
{
    if (!taps.Allocate(static_cast<std::size_t>(count))) return false;
    for (long i = 0; i < count; ++i)
        taps.Add(i * distance, FixedWeight(weights[i]));
    taps.MakeEven();
    return true;
}

template <class In>
bool SetTaps(FloatTaps<In>& taps, const float* weights, long count, long distance)
{
    if (!taps.Allocate(static_cast<std::size_t>(count))) return false;
    for (long i = 0; i < count; ++i)
        taps.Add(i * distance, weights[i]);
    return true;
}

/// The results of a column times a row: sums along the rows, of which as many are kept as are still needed,
/// and sums down these. Rows are cut into pieces, of each of which some rows of results are made before the
/// next one's, and the sums of a piece lie together: so they come from the cache whatever the kernel's height
/// is.
template <class Sample, class Weight, class Temporary>
class TwoPasses {
public:
    explicit TwoPasses(const vfILWindowRun& run) : m_run(run) {}
    /// False when memory is short.
    bool SetUp(const float* x, const float* y, long channels)
    {
        const long rows = std::min(kBlockRows, m_run.rows);
        m_samples = static_cast<std::size_t>(m_run.processBox.GetSizeX() * channels);
        m_keptRows = m_run.kernelHeight + (kBlockRows - 1) * m_run.rowStep;
        const std::size_t pieces = (m_samples + kPiece - 1) / kPiece;
        constexpr std::size_t kMost = std::numeric_limits<std::ptrdiff_t>::max() / kPieceStep;
        return static_cast<std::size_t>(m_keptRows) <= kMost / pieces &&
               SetTaps(m_kx, x, m_run.kernelWidth, channels) && SetTaps(m_ky, y, m_run.kernelHeight, 1) &&
               m_sums.Allocate(pieces * static_cast<std::size_t>(m_keptRows) * kPieceStep) &&
               m_results.Allocate(static_cast<std::size_t>(rows) * m_samples);
    }
    const Taps<Sample, Weight>& Across() const { return m_kx; }
    const Taps<Temporary, Weight>& Down() const { return m_ky; }

    /// The results of a treated row; rows come in their order.
    ///
    /// \param across  across(sources, to, samples) makes sums along a row.
    /// \param down    down(sources, to, samples) makes results of such sums.
    template <class AcrossRow, class DownRows>
    const Sample* Row(long row, AcrossRow across, DownRows down)
    {
        if (row >= m_endOfBlock) MakeBlock(row, across, down);
        return m_results.Data() +
               static_cast<std::size_t>((row - m_firstOfBlock) / m_run.rowStep) * m_samples;
    }

private:
    static constexpr long kBlockRows = 8;
    static constexpr std::size_t kPiece = 1024; ///< samples
    /// From a row of a piece to the next, which is a line of the cache more so that they don't fall into the
    /// same sets of it.
    static constexpr std::size_t kPieceStep = kPiece + 64 / sizeof(Temporary);

    /// The sums of the piece that begins with a sample, in the first of the rows that are kept.
    Temporary* Sums(std::size_t at) const
    {
        return m_sums.Data() + at / kPiece * static_cast<std::size_t>(m_keptRows) * kPieceStep;
    }

    template <class AcrossRow, class DownRows>
    void MakeBlock(long first, AcrossRow across, DownRows down)
    {
        const long step = m_run.rowStep;
        const long rows = std::min(kBlockRows, m_run.rows - (first - m_run.firstRow) / step);
        const long last = first + (rows - 1) * step;
        m_firstOfBlock = first;
        m_endOfBlock = last + 1;
        const long firstSums = std::max(m_endOfSums, first);
        m_endOfSums = last + m_run.kernelHeight;
        for (std::size_t at = 0; at < m_samples; at += kPiece) {
            const std::size_t samples = std::min(kPiece, m_samples - at);
            for (long row = firstSums; row < m_endOfSums; ++row) {
                const auto* from = RowOf<const Sample>(m_run.windows, row) + at;
                across(m_kx.Sources([from](std::ptrdiff_t place) { return from + place; }),
                       Sums(at) + row % m_keptRows * std::ptrdiff_t{kPieceStep}, samples);
            }
            for (long i = 0; i < rows; ++i)
                down(SourcesDown(Sums(at), first + i * step),
                     m_results.Data() + static_cast<std::size_t>(i) * m_samples + at, samples);
        }
    }
    const Temporary* const* SourcesDown(const Temporary* sums, long row) const
    {
        return m_ky.Sources([=, this, place = row % m_keptRows](std::ptrdiff_t distance) {
            const long kept = place + distance;
            return sums + (kept < m_keptRows ? kept : kept - m_keptRows) * std::ptrdiff_t{kPieceStep};
        });
    }

    const vfILWindowRun& m_run;
    std::size_t m_samples = 0; ///< of a row
    long m_keptRows = 0;
    Taps<Sample, Weight> m_kx;
    Taps<Temporary, Weight> m_ky;
    RunArray<Temporary> m_sums;
    RunArray<Sample> m_results;
    long m_endOfSums = 0; ///< the first row whose sums were not made yet
    long m_firstOfBlock = 0;
    long m_endOfBlock = 0;
};

} // namespace vfil
