/// \file
/// YCC to BGR.

#include "il/loops/convert/yccloop.h"

#include <utility>

using namespace vfil;

namespace {

constexpr vfILRGBFormats kFormats{L"vfILYCCA2BGRA", PXFormat_BGRA32, PXFormat_BGR24, false};

} // namespace

vfILYCCA2BGRA::vfILYCCA2BGRA() : vfILYCC2RGBProc(kFormats)
{}

void* vfILYCCA2BGRA::GetConvertedColor(const vfILColor& color)
{
    const GUID output = OutputFormat();
    if (output == PXFormat_BGRA32 || output == PXFormat_BGR24) {
        color.GetColorAs32(m_color8.data(), PXColorModel_RGB);
        std::swap(m_color8[0], m_color8[2]);
        return m_color8.data();
    }
    color.GetColorAs64(m_color16.data(), PXColorModel_RGB);
    std::swap(m_color16[0], m_color16[2]);
    return m_color16.data();
}
