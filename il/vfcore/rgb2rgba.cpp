/// \file
/// Alpha added to RGB, and dropped.

#include "il/loops/convert/pairloop.h"

#include "il/rows/convert/depthrows.h"

using namespace vfil;

namespace {

constexpr vfILConvertPairs kPairs{L"vfILRGB2RGBA",
                                  {{PXFormat_RGB24, PXFormat_RGBA32}, {PXFormat_RGBA32, PXFormat_RGB24}}};

} // namespace

vfILRGB2RGBA::vfILRGB2RGBA() : vfILPairConvertProc(kPairs)
{}

vfILStatus vfILRGB2RGBA::DoEffect()
{
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    const DepthRows& rows = FindDepthRows(m_simdAvailable != 0);
    const auto& kernels = OutputFormat() == PXFormat_RGBA32 ? rows.expand[false] : rows.drop[false];
    return ConvertRows(kernels[Run().streaming], Run().width);
}
