/// \file
/// The rows of device-independent bitmaps to YCC.

#include "il/loops/convert/yccloop.h"

using namespace vfil;

namespace {

constexpr vfILRGBFormats kFormats{L"vfILDIB2YCCA", PXFormat_Dib32, PXFormat_Dib24, false};

} // namespace

vfILDIB2YCCA::vfILDIB2YCCA() : vfILRGB2YCCProc(kFormats)
{}
