/// \file
/// The edge detector Sobel.

#include "edgerun.h"

using namespace vfil;

const wchar_t* const vfILSobelImg::m_ClassName = L"vfILSobelImg";

const wchar_t* vfILSobelImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILSobelImg::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_type != VFIL_EDGE_MAGNITUDE && m_type != VFIL_EDGE_ANGLE) {
        return Fail(0x10049, "%s ERROR Verify: Type of edge detection is unknown\n", GetClassNameW());
    }
    if (VerifyBias(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifySensitivity(GetClassNameW());
}

vfILStatus vfILSobelImg::DoEffect()
{
    const EdgeRun run{*this, Run(), OutputFormat(), m_simdAvailable != 0};
    if (m_type == VFIL_EDGE_ANGLE) return RunAngle(run, AngleOp::Sobel);
    return RunEdges(run, {{EdgeOp::Sobel}}, GetEdgeSensitivity(), GetBias());
}

void vfILSobelImg::SetType(vfILEdgeDetectType type)
{
    m_type = type;
}

vfILEdgeDetectType vfILSobelImg::GetType() const
{
    return m_type;
}
