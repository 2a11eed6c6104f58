/// \file
/// RGBA to hue, lightness and saturation.

#include "il/loops/convert/pairloop.h"

#include "il/rows/convert/modelrows.h"

using namespace vfil;

namespace {

constexpr vfILConvertPairs kPairs{L"vfILRGBA2HLSA",
                                  {{PXFormat_RGBA32, PXFormat_HLSA32}, {PXFormat_RGBA64, PXFormat_HLSA64}}};

} // namespace

vfILRGBA2HLSA::vfILRGBA2HLSA() : vfILPairConvertProc(kPairs)
{}

vfILStatus vfILRGBA2HLSA::DoEffect()
{
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    return OutputFormat() == PXFormat_HLSA32 ? Convert8() : Convert16();
}

vfILStatus vfILRGBA2HLSA::Convert8()
{
    return ConvertRows(FindModelRows(m_simdAvailable != 0).of8.rgbToHls, Run().width);
}

vfILStatus vfILRGBA2HLSA::Convert16()
{
    return ConvertRows(FindModelRows(m_simdAvailable != 0).of16.rgbToHls, Run().width);
}
