/// \file
/// The edge detector Roberts.

#include "edgerun.h"

using namespace vfil;

const wchar_t* const vfILRobertsImg::m_ClassName = L"vfILRobertsImg";

const wchar_t* vfILRobertsImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILRobertsImg::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_type != VFIL_EDGE_MAGNITUDE && m_type != VFIL_EDGE_ANGLE) {
        return Fail(0x10049, "%s ERROR Verify: Type of edge detection is unknown\n", GetClassNameW());
    }
    if (VerifyBias(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifySensitivity(GetClassNameW());
}

vfILStatus vfILRobertsImg::DoEffect()
{
    const EdgeRun run{*this, Run(), OutputFormat(), m_simdAvailable != 0};
    if (m_type == VFIL_EDGE_ANGLE) return RunAngle(run, AngleOp::Roberts);
    return RunEdges(run, {{EdgeOp::Roberts}}, GetEdgeSensitivity(), GetBias());
}

void vfILRobertsImg::SetType(vfILEdgeDetectType type)
{
    m_type = type;
}

vfILEdgeDetectType vfILRobertsImg::GetType() const
{
    return m_type;
}
