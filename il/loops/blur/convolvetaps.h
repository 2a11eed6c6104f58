/// \file
/// What the passes of a convolution are made of: weights with the places of their samples, and the two passes
/// of a separable kernel.
#pragma once

#include "il/loops/blur/fixedweights.h"
#include "il/loops/blur/interruptpoll.h"
#include "il/loops/frame/runarray.h"
#include "il/loops/frame/windowloop.h"
#include "il/rows/blur/convparams.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace vfil {

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
bool SetTaps(FloatTaps<In>& taps, const float* weights, long count, long distance)
{
    if (!taps.Allocate(static_cast<std::size_t>(count))) return false;
    for (long i = 0; i < count; ++i)
        taps.Add(i * distance, weights[i]);
    return true;
}

/// Fixed weights of one pass of two, without those at the ends that are 0.
class FixedWeights {
public:
    /// False when memory is short.
    bool SetUp(const float* weights, long count)
    {
        const auto counts = [](float weight) { return FixedWeight(weight) != 0; };
        const float* end = weights + count;
        const float* first = std::find_if(weights, end - 1, counts);
        while (end - first > 1 && !counts(end[-1]))
            --end;
        m_first = first - weights;
        m_count = end - first;
        if (!m_weights.Allocate(static_cast<std::size_t>(m_count + 1))) return false;
        std::transform(first, end, m_weights.Data(), FixedWeight);
        m_weights[static_cast<std::size_t>(m_count)] = 0;
        return true;
    }
    long First() const { return m_first; } ///< the place of the first of them in the kernel
    long Count() const { return m_count; }
    std::size_t EvenCount() const { return static_cast<std::size_t>(m_count + m_count % 2); }
    const std::int16_t* Data() const { return m_weights.Data(); }

private:
    RunArray<std::int16_t> m_weights;
    long m_first = 0;
    long m_count = 0;
};

/// The fixed weights of kTileRows rows of results by the sources of all of them, as FixedDownRows has them.
class FixedTile {
public:
    /// False when memory is short. Each row's window begins \p rowStep rows below the one before.
    bool SetUp(const FixedWeights& weights, long rowStep)
    {
        const long last = (long{kTileRows} - 1) * rowStep;
        m_count = static_cast<std::size_t>(weights.Count() + last + 1) / 2 * 2;
        if (!m_weights.Allocate(m_count * kTileRows) || !m_sources.Allocate(m_count)) return false;
        std::fill_n(m_weights.Data(), m_count * kTileRows, std::int16_t{0});
        for (long row = 0; row < long{kTileRows}; ++row)
            for (long k = 0; k < weights.Count(); ++k) {
                const long source = row * rowStep + k;
                m_weights[static_cast<std::size_t>(source / 2 * 2 * long{kTileRows} + 2 * row + source % 2)] =
                    weights.Data()[k];
            }
        return true;
    }
    std::size_t Count() const { return m_count; }
    const std::int16_t* Weights() const { return m_weights.Data(); }
    /// address(k) is where source k is.
    template <class Address>
    const std::int16_t* const* Sources(Address address) const
    {
        for (std::size_t k = 0; k < m_count; ++k)
            m_sources[k] = address(static_cast<long>(k));
        return m_sources.Data();
    }

private:
    RunArray<std::int16_t> m_weights;
    RunArray<const std::int16_t*> m_sources;
    std::size_t m_count = 0;
};

/// The results of a column times a row: sums along the rows, of which as many are kept as are still needed,
/// and sums down these. Rows are cut into pieces, of each of which some rows of results are made before the
/// next one's, and the sums of a piece lie together: so they come from the cache whatever the kernel's height
/// is. Results are made of tileRows rows at once.
template <class Sample, class Temporary, long tileRows>
class TwoPasses {
public:
    /// Samples of a row that are treated before the next row's.
    static constexpr std::size_t kPiece = 1024;

    TwoPasses(const vfILProcessor& processor, const vfILWindowRun& run) : m_run(run), m_poll(processor) {}
    /// False when memory is short.
    bool SetUp(long channels)
    {
        m_samples = static_cast<std::size_t>(m_run.processBox.GetSizeX() * channels);
        m_keptRows = m_run.kernelHeight + (kBlockRows - 1) * m_run.rowStep;
        const std::size_t pieces = (m_samples + kPiece - 1) / kPiece;
        constexpr std::size_t kMost = std::numeric_limits<std::ptrdiff_t>::max() / kPieceStep;
        return static_cast<std::size_t>(m_keptRows) <= kMost / pieces &&
               m_sums.Allocate(pieces * static_cast<std::size_t>(m_keptRows) * kPieceStep) &&
               m_results.Allocate(kBlockRows * ResultStep());
    }
    /// From a row of results to the next, which leaves room for whole grains.
    std::size_t ResultStep() const { return (m_samples + kGrain - 1) / kGrain * kGrain; }

    /// The results of a treated row; rows come in their order. Null when the run was interrupted.
    ///
    /// \param across  across(from, to, samples) makes sums along a row, whose first window begins at `from`.
    /// \param down    down(sums, to, samples) makes tileRows rows of results. sums(i) is row i of the first
    ///                one's sums; past the last row that is needed, that one again.
    template <class AcrossRow, class DownRows>
    const Sample* Row(long row, AcrossRow across, DownRows down)
    {
        if (row >= m_endOfBlock && !MakeBlock(row, across, down)) return nullptr;
        return m_results.Data() +
               static_cast<std::size_t>((row - m_firstOfBlock) / m_run.rowStep) * ResultStep();
    }

private:
    static constexpr long kBlockRows = 8;
    static_assert(kBlockRows % tileRows == 0 && kPiece % kGrain == 0);
    /// From a row of a piece to the next, which is a line of the cache more so that they don't fall into the
    /// same sets of it.
    static constexpr std::size_t kPieceStep = kPiece + 64 / sizeof(Temporary);

    /// False when the run was interrupted.
    template <class AcrossRow, class DownRows>
    bool MakeBlock(long first, AcrossRow across, DownRows down)
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
                across(RowOf<const Sample>(m_run.windows, row) + at, Sums(at, row % m_keptRows), samples);
                if (MustStop(samples, m_run.kernelWidth)) return false;
            }
            for (long i = 0; i < rows; i += tileRows) {
                down(SumsFrom(at, first + i * step),
                     m_results.Data() + static_cast<std::size_t>(i) * ResultStep() + at, samples);
                if (MustStop(samples * tileRows, m_run.kernelHeight)) return false;
            }
        }
        return true;
    }
    /// A weight takes a small part of what a step of another filter takes.
    bool MustStop(std::size_t samples, long weights)
    {
        return m_poll.MustStop(samples * static_cast<std::size_t>(weights) / 8);
    }
    /// Where the sums are of a distance below a row, in the piece that begins with a sample.
    auto SumsFrom(std::size_t at, long row) const
    {
        return [=, this, last = m_endOfSums - 1 - row, place = row % m_keptRows](long distance) {
            const long kept = place + std::min(distance, last);
            return static_cast<const Temporary*>(Sums(at, kept < m_keptRows ? kept : kept - m_keptRows));
        };
    }
    Temporary* Sums(std::size_t at, long kept) const
    {
        const auto row = at / kPiece * static_cast<std::size_t>(m_keptRows) + static_cast<std::size_t>(kept);
        return m_sums.Data() + row * kPieceStep;
    }

    const vfILWindowRun& m_run;
    InterruptPoll m_poll;
    std::size_t m_samples = 0; ///< of a row
    long m_keptRows = 0;
    RunArray<Temporary> m_sums;
    RunArray<Sample> m_results;
    long m_endOfSums = 0; ///< the first row whose sums were not made yet
    long m_firstOfBlock = 0;
    long m_endOfBlock = 0;
};

} // namespace vfil
