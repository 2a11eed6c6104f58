/// \file
/// 16-bit samples to 8 bits.

#include "il/loops/convert/pairloop.h"

#include "il/rows/convert/depthrows.h"

using namespace vfil;

namespace {

constexpr vfILConvertPairs kPairs{L"vfIL16to8",
                                  {{PXFormat_RGBA64, PXFormat_RGBA32}, {PXFormat_Mono16, PXFormat_Mono8}}};

} // namespace

vfIL16to8::vfIL16to8() : vfILPairConvertProc(kPairs)
{}

vfILStatus vfIL16to8::DoEffect()
{
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    return OutputFormat() == PXFormat_RGBA32 ? ConvertRGBA() : ConvertMONO();
}

vfILStatus vfIL16to8::ConvertRGBA()
{
    return ConvertRows(FindDepthRows(m_simdAvailable != 0).narrow[Run().streaming], 4 * Run().width);
}

vfILStatus vfIL16to8::ConvertMONO()
{
    return ConvertRows(FindDepthRows(m_simdAvailable != 0).narrow[Run().streaming], Run().width);
}
