/// \file
/// BGR to YCC.

#include "il/loops/convert/yccloop.h"

using namespace vfil;

namespace {

constexpr vfILRGBFormats kFormats{L"vfILBGRA2YCCA", PXFormat_BGRA32, PXFormat_BGR24, false};

} // namespace

vfILBGRA2YCCA::vfILBGRA2YCCA() : vfILRGB2YCCProc(kFormats)
{}
