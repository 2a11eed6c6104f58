/// \file
/// Hue, lightness and saturation to RGBA.

#include "il/loops/convert/pairloop.h"

#include "il/rows/convert/modelrows.h"

using namespace vfil;

namespace {

constexpr vfILConvertPairs kPairs{L"vfILHLSA2RGBA",
                                  {{PXFormat_HLSA32, PXFormat_RGBA32}, {PXFormat_HLSA64, PXFormat_RGBA64}}};

} // namespace

vfILHLSA2RGBA::vfILHLSA2RGBA() : vfILPairConvertProc(kPairs)
{}

vfILStatus vfILHLSA2RGBA::DoEffect()
{
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    return OutputFormat() == PXFormat_RGBA32 ? Convert8() : Convert16();
}

vfILStatus vfILHLSA2RGBA::Convert8()
{
    return ConvertRows(FindModelRows(m_simdAvailable != 0).of8.hlsToRgb, Run().width);
}

vfILStatus vfILHLSA2RGBA::Convert16()
{
    return ConvertRows(FindModelRows(m_simdAvailable != 0).of16.hlsToRgb, Run().width);
}
