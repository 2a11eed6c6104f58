/// \file
/// The base of the edge detectors.

#include <vfil/edges.h>

vfILStatus vfILEdgeDetectProc::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_type != VFIL_EDGE_MAGNITUDE && m_type != VFIL_EDGE_ANGLE) {
        return Fail(0x10049, GetClassNameW());
    }
    if (VerifyBias(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifySensitivity(GetClassNameW());
}

void vfILEdgeDetectProc::SetType(vfILEdgeDetectType type)
{
    m_type = type;
}

vfILEdgeDetectType vfILEdgeDetectProc::GetType() const
{
    return m_type;
}
