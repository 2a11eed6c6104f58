/// \file
/// The base of the edge filters with a threshold.

#include <vfil/edges.h>

void vfILEdgeThresholdProc::SetBias(double bias)
{
    m_bias = bias;
}

double vfILEdgeThresholdProc::GetBias() const
{
    return m_bias;
}

void vfILEdgeThresholdProc::SetEdgeSensitivity(double sensitivity)
{
    m_edgeSensitivity = sensitivity;
}

double vfILEdgeThresholdProc::GetEdgeSensitivity() const
{
    return m_edgeSensitivity;
}

vfILStatus vfILEdgeThresholdProc::VerifyBias(const wchar_t* className)
{
    if (m_bias >= 0 && m_bias <= 1) return VFIL_SUCCESS;
    return Fail(0x10029, "%s ERROR Verify: Bias value is not in range [0..1]\n", className);
}

vfILStatus vfILEdgeThresholdProc::VerifySensitivity(const wchar_t* className)
{
    if (m_edgeSensitivity >= 0 && m_edgeSensitivity <= 1) return VFIL_SUCCESS;
    return Fail(0x1002A, "%s ERROR Verify: Edge sensitivity is not in range [0..1]\n", className);
}
