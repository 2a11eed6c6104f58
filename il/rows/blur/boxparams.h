/// \file
/// What the kernels of the box blur take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Samples that a row of column sums has behind its last one, for the kernels to read. Their values don't
/// matter.
inline constexpr std::size_t kColumnSlack = 64;

/// Moves a window down by a row: each column's sum gains a sample and loses one. kColumnSlack more sums may
/// become anything.
template <class Sum>
using MoveColumns = void (*)(const std::uint8_t* gained, const std::uint8_t* lost, Sum* columns,
                             std::size_t samples);

/// Sums of `width` neighbouring columns each, times scale / 2 to the power of 32, rounded to nearest.
///
/// \param columns  pixels + width - 1 of them, after any pixel and before the slack.
/// \param beyond   What each sum has beside them, of each channel.
template <class Sum>
using BoxRow = void (*)(const Sum* columns, std::size_t width, const Sum* beyond, std::uint32_t scale,
                        std::uint8_t* out, std::size_t pixels);

/// The kernels of the box blur, for one level. Sums of a window fit 32 bits.
struct BoxRows {
    MoveColumns<std::uint32_t> move;
    BoxRow<std::uint32_t> pixels; ///< of four channels
    BoxRow<std::uint32_t> mono;
};

} // namespace vfil
