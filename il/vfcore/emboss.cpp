/// \file
/// Compass gradients as they are.

#include "il/loops/edge/edgerun.h"

using namespace vfil;

const wchar_t* const vfILEmbossImg::m_ClassName = L"vfILEmbossImg";

const wchar_t* vfILEmbossImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILEmbossImg::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_directions == 0 || m_directions > 0xFF) {
        return Fail(0x10028, "%s ERROR Verify: Emboss direction is unknown\n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILEmbossImg::DoEffect()
{
    // Full sensitivity without bias is no threshold: what is not above 0 becomes 0.
    return RunEdges({*this, Run(), FormatOf(Run()), m_simdAvailable != 0}, CompassOps(m_directions), 1.0,
                    0.0);
}

void vfILEmbossImg::SetDirection(unsigned long directions)
{
    m_directions = directions;
}

unsigned long vfILEmbossImg::GetDirection() const
{
    return m_directions;
}
