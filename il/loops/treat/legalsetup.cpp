/// \file
/// The numbers that the legalizer's kernels take.
#include "il/loops/treat/legalsetup.h"

#include "il/rows/pixarith.h"

#include <vfil/color.h>

#include <algorithm>

namespace vfil {

namespace {

// Rows multiply the matrices from the left. Their constants are of 0 .. 1 where samples are of 0 .. 255.

std::int32_t Weight(const vfILColorMatrix& matrix, std::size_t row, std::size_t column)
{
    return RoundHalfAway(matrix[4 * row + column] * 65536);
}

std::int32_t Constant(const vfILColorMatrix& matrix, std::size_t column)
{
    return RoundHalfAway(matrix[12 + column] * 255 * 65536) + 32768;
}

ChannelForm ChannelOf(const vfILColorMatrix& toRgb, std::size_t column)
{
    return {Weight(toRgb, 1, column), Weight(toRgb, 2, column), Constant(toRgb, column)};
}

SampleForm SampleOf(const vfILColorMatrix& fromRgb, std::size_t column)
{
    return {Weight(fromRgb, 0, column), Weight(fromRgb, 1, column), Weight(fromRgb, 2, column),
            Constant(fromRgb, column)};
}

} // namespace

LegalParams LegalParamsOf(PXColorModel model, double factor)
{
    const bool is601 = model == PXColorModel_YCC;
    const vfILColorMatrix& toRgb = is601 ? s_dfArrayYCCAOffsettoRGBA : s_dfArrayYCCA709OffsettoRGBA;
    const vfILColorMatrix& fromRgb = is601 ? s_dfArrayRGBAtoYCCAOffset : s_dfArrayRGBAtoYCCA709Offset;
    const vfILColorMatrix& fullRange = is601 ? s_dfArrayYCCAtoRGBA : s_dfArrayYCCA709toRGBA;
    const double share = factor * 0.01;
    return {Weight(toRgb, 0, 0),  ChannelOf(toRgb, 0),  ChannelOf(toRgb, 1),
            ChannelOf(toRgb, 2),  SampleOf(fromRgb, 0), SampleOf(fromRgb, 1),
            SampleOf(fromRgb, 2), fullRange[4 + 2],     fullRange[8 + 0],
            fullRange[4 + 1],     fullRange[8 + 1],     share > 0 ? std::min(share, 1.0) : 0.0};
}

} // namespace vfil
