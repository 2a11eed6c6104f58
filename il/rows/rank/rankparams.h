/// \file
/// What the row kernels of rank filters and morphology take, and the table of pointers. Types only, as in
/// compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// The smallest or the largest samples of some rows, one by one. The output may be one of the rows, exactly.
template <class Sample>
using ExtremeRow = void (*)(const Sample* const* rows, std::size_t count, Sample* out, std::size_t samples);

/// Windows of neighbouring rows that ExtremeWindows takes together.
constexpr std::size_t kWindowsAtOnce = 4;

/// The same of `height` rows from each of the first kWindowsAtOnce of height + kWindowsAtOnce - 1 rows on.
/// The height is at least kWindowsAtOnce. Outputs are none of the rows.
template <class Sample>
using ExtremeWindows = void (*)(const Sample* const* rows, std::size_t height, Sample* const* outs,
                                std::size_t samples);

/// A row of pixels of 32-bit words, and their keys: a word below 2 to the power of 31 for each word.
struct KeyedPixels {
    const std::uint32_t* keys;
    const std::uint8_t* pixels;
};

/// The words of the largest key among some rows, in the first of the rows that has it, and that key.
using PickRow = void (*)(const KeyedPixels* rows, std::size_t count, std::uint32_t* keys,
                         std::uint8_t* pixels, std::size_t words);

/// The brightness of four-channel pixels.
template <class Sample>
using BrightnessRow = void (*)(const Sample* pixels, Sample* keys, std::size_t count);

/// Rows that a MiddleRow can take: their numbers fit a byte.
constexpr std::size_t kMostMiddleRows = 256;

/// For each pixel the number of the row with the middle key, as FindMedian would choose.
template <class Sample>
using MiddleRow = void (*)(const Sample* const* keys, std::size_t count, Sample* chosen, std::size_t pixels);

/// A depth's kernels.
template <class Sample>
struct RankCases {
    ExtremeRow<Sample> extreme[2][2];  ///< [largest][streaming]
    ExtremeWindows<Sample> windows[2]; ///< [largest]
    BrightnessRow<Sample> key;
    MiddleRow<Sample> middle;
};

/// The kernels of one level.
struct RankRows {
    RankCases<std::uint8_t> cases8;
    RankCases<std::uint16_t> cases16;
    PickRow pick;
};

} // namespace vfil
