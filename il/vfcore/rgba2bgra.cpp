/// \file
/// Red and blue exchanged, and the rows turned over.

#include "il/loops/convert/pairloop.h"

#include "il/rows/convert/depthrows.h"

using namespace vfil;

namespace {

constexpr vfILConvertPairs kPairs{L"vfILRGBA2BGRA",
                                  {{PXFormat_RGBA32, PXFormat_BGRA32}, {PXFormat_BGRA32, PXFormat_RGBA32}}};

} // namespace

vfILRGBA2BGRA::vfILRGBA2BGRA() : vfILPairConvertProc(kPairs)
{}

vfILStatus vfILRGBA2BGRA::DoEffect()
{
    if (VerifyFormats() != VFIL_SUCCESS) return VFIL_FAILURE;
    return Convert8_RGBA2BGRA();
}

vfILStatus vfILRGBA2BGRA::Convert8_RGBA2BGRA()
{
    return ConvertRows(FindDepthRows(m_simdAvailable != 0).swap[Run().streaming], Run().width, true);
}
