/// \file
/// Spill of a screen taken from the foreground.

#include "il/loops/keyer/tablekey.h"

#include <vfil/tablekeyer.h>

#include <cstring>

using namespace vfil;

const wchar_t* const vfILFGSurpress::m_ClassName = L"vfILFGSurpress";

const wchar_t* vfILFGSurpress::GetClassNameW() const
{
    return m_ClassName;
}

void vfILFGSurpress::SetKeyType(long type)
{
    m_keyType = type;
}

long vfILFGSurpress::GetKeyType() const
{
    return m_keyType;
}

void vfILFGSurpress::SetFgSurValue(double value)
{
    m_fgSurValue = RoundToSample<std::uint8_t>(value * 255);
}

double vfILFGSurpress::GetFgSurValue() const
{
    return m_fgSurValue * (1.0 / 255);
}

void vfILFGSurpress::SetConversionFactors(double, double, double)
{}

void vfILFGSurpress::GetConversionFactors(double*, double*, double*) const
{}

vfILStatus vfILFGSurpress::DoEffect()
{
    const GUID& format = FormatOf(Run());
    if (format == PXFormat_RGBA32) return Process8();
    if (format != PXFormat_RGBA64) return Fail(0x1000D, GetClassNameW());
    // A host that runs it on 16 bits is told so, but not stopped by that: the code is that of no error.
    Fail(0, "%s 16 bit processing not supported currently\n", GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILFGSurpress::Process8()
{
    const bool blue = m_keyType == VFIL_MODE_BLUE;
    const bool any = blue || m_keyType == VFIL_MODE_GREEN;
    const SurpressRow surpress = FindTableKeyRows(m_simdAvailable != 0).surpress[blue][Run().streaming];
    const auto treat = [&](const std::uint8_t* in, std::uint8_t* out, std::size_t pixels) {
        if (any) {
            surpress(in, out, pixels);
        } else if (in != out) {
            std::memcpy(out, in, 4 * pixels);
        }
    };
    RunKeyedRows(*this, Run(), InputWalk(), Run().mask.first != nullptr, treat);
    return VFIL_SUCCESS;
}
