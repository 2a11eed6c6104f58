/// \file
/// The sums of colour correction, for its plain forms.
#pragma once

#include "il/rows/pixarith.h"
#include "il/rows/treat/correctparams.h"

#include <algorithm>
#include <array>

namespace vfil {

/// Three components, as they are between the steps: of any size.
using CorrectedColour = std::array<std::int64_t, 3>;

inline CorrectedColour ThroughMatrix(const CorrectionMatrix& matrix, const CorrectedColour& in)
{
    CorrectedColour out;
    for (std::size_t k = 0; k < 3; ++k) {
        out[k] =
            (in[0] * matrix.at[0][k] + in[1] * matrix.at[1][k] + in[2] * matrix.at[2][k] + matrix.at[3][k]) >>
            8;
    }
    return out;
}

inline std::int64_t AlphaThroughMatrix(const CorrectionMatrix& matrix, std::int64_t alpha)
{
    return (alpha * matrix.at[0][3] + matrix.at[3][3]) >> 8;
}

template <class Sample>
Sample ClampToSample(std::int64_t v)
{
    return static_cast<Sample>(std::clamp<std::int64_t>(v, 0, Arith<Sample>::kFull));
}

} // namespace vfil
