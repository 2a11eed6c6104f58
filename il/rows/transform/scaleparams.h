/// \file
/// What the kernels of sampling along the axes take: they share what a row, or a column, has in common. Types
/// only, as in sampleparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Entries that tables have behind the last output, of pixels that may be read.
inline constexpr std::size_t kScaleSlack = 64;

/// Where the outputs of a line lie between two pixels.
struct LerpTaps {
    const std::int32_t* starts;     ///< the first of the two pixels
    const std::uint32_t* fractions; ///< the second one's weight in 65536ths, below 1, in both halves
    const double* exact;            ///< the weight itself, for samples of 16 bits
};

/// Where the outputs of a line lie among four pixels: weights in 65536ths, as 4 high + low, of the pixels 0
/// and 1, and of 2 and 3. The first of a pair is in the lower half.
struct CubicTaps {
    const std::int32_t* starts; ///< the first of the four pixels
    const std::uint32_t* high[2];
    const std::uint32_t* low[2];
    const double* exact; ///< four weights an output, for samples of 16 bits
};

/// What becomes of samples between the two passes.
template <class Sample>
struct BetweenPasses;
template <>
struct BetweenPasses<std::uint8_t> {
    using Lerped = std::uint8_t;
    using Column = std::int16_t; ///< 64 times a sample
};
template <>
struct BetweenPasses<std::uint16_t> {
    using Lerped = double;
    using Column = double;
};

/// The weight of the second of two rows, in 65536ths below 1, and exactly.
struct RowFraction {
    std::int32_t fixed;
    double exact;
};

/// The weights of four rows.
struct RowWeights {
    std::int32_t fixed[4];
    double exact[4];
};

/// A line of pixels mixed in pairs. Up to kScaleSlack outputs more may be written.
template <class Sample>
using LerpPixels = void (*)(const Sample* line, const LerpTaps& taps,
                            typename BetweenPasses<Sample>::Lerped* out, std::size_t pixels);
/// Two such rows mixed. kScaleSlack samples behind each may be read.
template <class Sample>
using LerpRows = void (*)(const typename BetweenPasses<Sample>::Lerped* low,
                          const typename BetweenPasses<Sample>::Lerped* high, const RowFraction& fraction,
                          Sample* out, std::size_t samples);
/// The columns of four rows.
template <class Sample>
using WeighColumns = void (*)(const Sample* const* rows, const RowWeights& weights,
                              typename BetweenPasses<Sample>::Column* out, std::size_t samples);
/// A row of such columns weighed in fours. kScaleSlack samples behind them are read.
template <class Sample>
using CubicPixels = void (*)(const typename BetweenPasses<Sample>::Column* columns, const CubicTaps& taps,
                             Sample* out, std::size_t pixels);

/// What the footprints of a line are where each is a box: its first pixel of a row, and how much of so many
/// pixels it is wide: at p pitch + k for pixel p of footprint k.
struct BoxTaps {
    const std::int32_t* starts;
    const double* widths;
    std::size_t pitch;
    std::size_t taps;
};

/// The means of pixels over boxes, truncated and limited to the full value: by pixels of the rows in
/// their order, each by its area.
///
/// Of samples alone kScaleSlack bytes more may be read behind each row.
///
/// \param heights How much of each row the boxes have.
template <class Sample>
using SumBoxRows = void (*)(const Sample* const* rows, const double* heights, std::size_t rowCount,
                            const BoxTaps& taps, Sample* out, std::size_t pixels);

/// The kernels of samples of a width, for one level. Arrays are of four channels and of one.
template <class Sample>
struct ScaleRowsOf {
    LerpPixels<Sample> lerpPixels[2];
    LerpRows<Sample> lerpRows[2]; ///< [streaming]
    WeighColumns<Sample> columns;
    CubicPixels<Sample> cubicPixels[2];
    SumBoxRows<Sample> sumBoxes[2];
};

/// Pixels of four bytes from their places in a line. 8 pixels from each place on may be read, and up to
/// kScaleSlack outputs more written.
using PickFours = void (*)(const std::uint8_t* line, const std::int32_t* places, std::uint8_t* out,
                           std::size_t pixels);

struct ScaleRows {
    PickFours pickFours;
    ScaleRowsOf<std::uint8_t> bytes;
    ScaleRowsOf<std::uint16_t> words;
};

} // namespace vfil
