/// \file
/// What the row kernels between colour models take, and the table of pointers. Types only, as in
/// compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Pixels of three components and alpha, which is copied. The output may be the input, but may not partly
/// overlap it. Rows need no alignment; nothing past the count is read or written.
template <class Sample>
using ModelRow = void (*)(const Sample* in, Sample* out, std::size_t pixels);

/// \param matrix  16 coefficients in the layout of vfILColorMatrix.
template <class Sample>
using MatrixRow = void (*)(const Sample* in, Sample* out, std::size_t pixels, const double* matrix);

template <class Sample>
struct ModelCases {
    MatrixRow<Sample> transform; ///< by a matrix, as between RGB and YCC
    ModelRow<Sample> rgbToHls;
    ModelRow<Sample> hlsToRgb;
};

/// The kernels of one level.
struct ModelRows {
    ModelCases<std::uint8_t> of8;
    ModelCases<std::uint16_t> of16;
};

} // namespace vfil
