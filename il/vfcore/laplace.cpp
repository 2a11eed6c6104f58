/// \file
/// Laplacians with a threshold.

#include "il/loops/edge/edgerun.h"

using namespace vfil;

const wchar_t* const vfILLaplaceImg::m_ClassName = L"vfILLaplaceImg";

const wchar_t* vfILLaplaceImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILLaplaceImg::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_type != VFIL_LAPLACE_SQUARE && m_type != VFIL_LAPLACE_DIAMOND) {
        return Fail(0x10027, GetClassNameW());
    }
    if (VerifyBias(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifySensitivity(GetClassNameW());
}

vfILStatus vfILLaplaceImg::DoEffect()
{
    const EdgeOp op = m_type == VFIL_LAPLACE_DIAMOND ? EdgeOp::DiamondLaplace : EdgeOp::SquareLaplace;
    return RunEdges({*this, Run(), FormatOf(Run()), m_simdAvailable != 0}, {{op}}, GetEdgeSensitivity(),
                    GetBias());
}

void vfILLaplaceImg::SetType(vfILLaplaceType type)
{
    m_type = type;
}

vfILLaplaceType vfILLaplaceImg::GetType() const
{
    return m_type;
}
