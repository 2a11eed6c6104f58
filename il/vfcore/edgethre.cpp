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
    return Fail(0x10029, className);
}

vfILStatus vfILEdgeThresholdProc::VerifySensitivity(const wchar_t* className)
{
    if (m_edgeSensitivity >= 0 && m_edgeSensitivity <= 1) return VFIL_SUCCESS;
    return Fail(0x1002A, className);
}
