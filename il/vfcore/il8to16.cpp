/// \file
/// 8-bit samples to 16 bits.

#include "il/loops/convert/pairloop.h"

#include "il/rows/convert/depthrows.h"

using namespace vfil;

namespace {

constexpr vfILConvertPairs kPairs{L"vfIL8to16",
                                  {{PXFormat_RGBA32, PXFormat_RGBA64}, {PXFormat_Mono8, PXFormat_Mono16}}};

} // namespace

vfIL8to16::vfIL8to16() : vfILPairConvertProc(kPairs)
{}

vfILStatus vfIL8to16::DoEffect()
{
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    return OutputFormat() == PXFormat_RGBA64 ? ConvertRGBA() : ConvertMONO();
}

vfILStatus vfIL8to16::ConvertRGBA()
{
    return ConvertRows(FindDepthRows(m_simdAvailable != 0).widen[Run().streaming], 4 * Run().width);
}

vfILStatus vfIL8to16::ConvertMONO()
{
    return ConvertRows(FindDepthRows(m_simdAvailable != 0).widen[Run().streaming], Run().width);
}
