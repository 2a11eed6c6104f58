/// \file
/// Compass gradients with a threshold.

#include "il/loops/edge/edgerun.h"

using namespace vfil;

const wchar_t* const vfILGradientImg::m_ClassName = L"vfILGradientImg";

const wchar_t* vfILGradientImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILGradientImg::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_directions == 0 || m_directions > 0xFF) {
        return Fail(0x10028, "%s ERROR Verify: Gradient direction is unknown\n", GetClassNameW());
    }
    if (VerifySensitivity(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifyBias(GetClassNameW());
}

vfILStatus vfILGradientImg::DoEffect()
{
    return RunEdges({*this, Run(), FormatOf(Run()), m_simdAvailable != 0}, CompassOps(m_directions),
                    GetEdgeSensitivity(), GetBias());
}

void vfILGradientImg::SetDirection(unsigned long directions)
{
    m_directions = directions;
}

unsigned long vfILGradientImg::GetDirection() const
{
    return m_directions;
}
