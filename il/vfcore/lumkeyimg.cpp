/// \file
/// Alpha by luminance.

#include "il/loops/keyer/tablekey.h"

#include <vfil/tablekeyer.h>

using namespace vfil;

const wchar_t* const vfILLumKeyImg::m_ClassName = L"vfILLumKeyImg";

const wchar_t* vfILLumKeyImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILLumKeyImg::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if (m_luminanceMap == nullptr)
        return Fail(0x10018, "%s ERROR Verify: Invalid input LUT\n", GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILLumKeyImg::SetLuminanceMapLUT(void* const lut)
{
    m_luminanceMap = lut;
}

void* vfILLumKeyImg::GetLuminanceMapLUT() const
{
    return m_luminanceMap;
}

void vfILLumKeyImg::SetMatteMapLUT(void* const lut)
{
    m_matteMap = lut;
}

void* vfILLumKeyImg::GetMatteMapLUT() const
{
    return m_matteMap;
}

void vfILLumKeyImg::KeepOriginalAlpha(int keep)
{
    m_keepOriginalAlpha = keep;
}

int vfILLumKeyImg::IsKeepOriginalAlpha() const
{
    return m_keepOriginalAlpha;
}

void vfILLumKeyImg::SetConversionFactors(double, double, double)
{}

void vfILLumKeyImg::GetConversionFactors(double*, double*, double*) const
{}

void vfILLumKeyImg::InvertKey(int)
{}

vfILStatus vfILLumKeyImg::DoEffect()
{
    if (FormatOf(Run()) != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if (m_luminanceMap == nullptr)
        return Fail(0x10018, "%s ERROR Verify: Invalid input LUT\n", GetClassNameW());
    return Process8();
}

vfILStatus vfILLumKeyImg::Process8()
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

template <bool matteMap, bool mask, bool keepAlpha>
vfILStatus vfILLumKeyImg::Key8()
{
    LumKeyTable table;
    MapAlphas(m_luminanceMap, matteMap ? m_matteMap : nullptr, table.alphaOf);
    const LumKeyRow key = FindTableKeyRows(m_simdAvailable != 0).lumKey[keepAlpha][Run().streaming];
    RunKeyedRows<mask>(
        *this, Run(), InputWalk(),
        [&](const std::uint8_t* in, std::uint8_t* out, std::size_t pixels) { key(in, out, pixels, table); });
    return VFIL_SUCCESS;
}

vfILStatus vfILLumKeyImg::ProcessMatteMapMaskKeepAlpha8()
{
    return Key8<true, true, true>();
}

vfILStatus vfILLumKeyImg::ProcessMatteMapMaskNoKeepAlpha8()
{
    return Key8<true, true, false>();
}

vfILStatus vfILLumKeyImg::ProcessMatteMapNoMaskKeepAlpha8()
{
    return Key8<true, false, true>();
}

vfILStatus vfILLumKeyImg::ProcessMatteMapNoMaskNoKeepAlpha8()
{
    return Key8<true, false, false>();
}

vfILStatus vfILLumKeyImg::ProcessNoMatteMapMaskKeepAlpha8()
{
    return Key8<false, true, true>();
}

vfILStatus vfILLumKeyImg::ProcessNoMatteMapMaskNoKeepAlpha8()
{
    return Key8<false, true, false>();
}

vfILStatus vfILLumKeyImg::ProcessNoMatteMapNoMaskKeepAlpha8()
{
    return Key8<false, false, true>();
}

vfILStatus vfILLumKeyImg::ProcessNoMatteMapNoMaskNoKeepAlpha8()
{
    return Key8<false, false, false>();
}
