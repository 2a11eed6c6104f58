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
    return CheckTables(OutputFormat(), m_luminanceMap != nullptr, GetClassNameW());
}

void vfILLumKeyImg::SetLuminanceMapLUT(void* const lut)
{
    m_luminanceMap = lut;
}

void* vfILLumKeyImg::GetLuminanceMapLUT() const
{
    return m_luminanceMap;
}

vfILStatus vfILLumKeyImg::DoEffect()
{
    const vfILStatus status = CheckTables(FormatOf(Run()), m_luminanceMap != nullptr, GetClassNameW());
    return status == VFIL_SUCCESS ? Process8() : status;
}

vfILStatus vfILLumKeyImg::Key8(const void* matteMap, bool mask, bool keepAlpha)
{
    LumKeyTable table;
    MapAlphas(m_luminanceMap, matteMap, table.alphaOf);
    const LumKeyRow key = FindTableKeyRows(m_simdAvailable != 0).lumKey[keepAlpha][Run().streaming];
    RunKeyedRows(
        *this, Run(), InputWalk(), mask,
        [&](const std::uint8_t* in, std::uint8_t* out, std::size_t pixels) { key(in, out, pixels, table); });
    return VFIL_SUCCESS;
}
