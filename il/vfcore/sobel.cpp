/// \file
/// The edge detector Sobel.

#include "il/loops/edge/edgerun.h"

using namespace vfil;

const wchar_t* const vfILSobelImg::m_ClassName = L"vfILSobelImg";

const wchar_t* vfILSobelImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILSobelImg::DoEffect()
{
    const EdgeRun run{*this, Run(), FormatOf(Run()), m_simdAvailable != 0};
    if (GetType() == VFIL_EDGE_ANGLE) return RunAngle(run, AngleOp::Sobel);
    return RunEdges(run, {{EdgeOp::Sobel}}, GetEdgeSensitivity(), GetBias());
}
