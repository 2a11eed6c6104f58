/// \file
/// The frame of the keys by tables.

#include <vfil/tablekeyer.h>

void vfILTableKeyer::SetMatteMapLUT(void* const lut)
{
    m_matteMap = lut;
}

void* vfILTableKeyer::GetMatteMapLUT() const
{
    return m_matteMap;
}

void vfILTableKeyer::KeepOriginalAlpha(int keep)
{
    m_keepOriginalAlpha = keep;
}

int vfILTableKeyer::IsKeepOriginalAlpha() const
{
    return m_keepOriginalAlpha;
}

void vfILTableKeyer::SetConversionFactors(double, double, double)
{}

void vfILTableKeyer::GetConversionFactors(double*, double*, double*) const
{}

void vfILTableKeyer::InvertKey(int)
{}

vfILStatus vfILTableKeyer::CheckTables(const GUID& format, bool hasTables, const wchar_t* className)
{
    if (format != PXFormat_RGBA32) return Fail(0x1000D, className);
    if (!hasTables) return Fail(0x10018, "%s ERROR Verify: Invalid input LUT\n", className);
    return VFIL_SUCCESS;
}

vfILStatus vfILTableKeyer::Process8()
{
    const bool mask = Run().mask.first != nullptr;
    const bool keep = m_keepOriginalAlpha != 0;
    if (m_matteMap != nullptr && mask)
        return keep ? ProcessMatteMapMaskKeepAlpha8() : ProcessMatteMapMaskNoKeepAlpha8();
    if (m_matteMap != nullptr)
        return keep ? ProcessMatteMapNoMaskKeepAlpha8() : ProcessMatteMapNoMaskNoKeepAlpha8();
    if (mask) return keep ? ProcessNoMatteMapMaskKeepAlpha8() : ProcessNoMatteMapMaskNoKeepAlpha8();
    return keep ? ProcessNoMatteMapNoMaskKeepAlpha8() : ProcessNoMatteMapNoMaskNoKeepAlpha8();
}

vfILStatus vfILTableKeyer::ProcessMatteMapMaskKeepAlpha8()
{
    return Key8(m_matteMap, true, true);
}

vfILStatus vfILTableKeyer::ProcessMatteMapMaskNoKeepAlpha8()
{
    return Key8(m_matteMap, true, false);
}

vfILStatus vfILTableKeyer::ProcessMatteMapNoMaskKeepAlpha8()
{
    return Key8(m_matteMap, false, true);
}

vfILStatus vfILTableKeyer::ProcessMatteMapNoMaskNoKeepAlpha8()
{
    return Key8(m_matteMap, false, false);
}

vfILStatus vfILTableKeyer::ProcessNoMatteMapMaskKeepAlpha8()
{
    return Key8(nullptr, true, true);
}

vfILStatus vfILTableKeyer::ProcessNoMatteMapMaskNoKeepAlpha8()
{
    return Key8(nullptr, true, false);
}

vfILStatus vfILTableKeyer::ProcessNoMatteMapNoMaskKeepAlpha8()
{
    return Key8(nullptr, false, true);
}

vfILStatus vfILTableKeyer::ProcessNoMatteMapNoMaskNoKeepAlpha8()
{
    return Key8(nullptr, false, false);
}
