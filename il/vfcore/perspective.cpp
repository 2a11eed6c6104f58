/// \file
/// The projective map.

#include "il/loops/frame/saturate.h"
#include "il/loops/transform/sampling.h"
#include "il/rows/transform/projectrows.h"

#include <vfil/perspective.h>

#include <algorithm>

using namespace vfil;

namespace {

/// A row of a matrix times (x, y, 1).
double RowTimes(const float* row, double x, double y)
{
    return x * row[0] + y * row[1] + row[2];
}

ProjectSign SignOf(vfILClipMode mode)
{
    if (mode == VFIL_CLIP_NEGATIVE) return ProjectSign::Negative;
    return mode == VFIL_CLIP_POSITIVE ? ProjectSign::Positive : ProjectSign::Both;
}

} // namespace

const wchar_t* const vfILPerspectiveTransform::m_ClassName = L"vfILPerspectiveTransform";

vfILPerspectiveTransform::vfILPerspectiveTransform()
{
    SetCoefficientCount(9);
    KeepsLines();
}

vfILPerspectiveTransform::~vfILPerspectiveTransform() = default;

const wchar_t* vfILPerspectiveTransform::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILPerspectiveTransform::Verify()
{
    return VerifyTransform(VFIL_INTERP_SUM_NEAREST, GetClassNameW());
}

vfILStatus vfILPerspectiveTransform::SetUpCoefficients()
{
    std::copy_n(GetCoefficients(), 9, m_forward);
    const auto minor = [this](int a, int b, int c, int d) {
        return SaturateToFloat(double{m_forward[a]} * m_forward[b] - double{m_forward[c]} * m_forward[d]);
    };
    const float adjugate[] = {minor(4, 8, 5, 7), minor(2, 7, 8, 1), minor(1, 5, 4, 2),
                              minor(5, 6, 8, 3), minor(8, 0, 2, 6), minor(2, 3, 5, 0),
                              minor(7, 3, 4, 6), minor(6, 1, 7, 0), minor(4, 0, 3, 1)};
    std::copy_n(adjugate, 9, m_adjugate);
    return VFIL_SUCCESS;
}

void vfILPerspectiveTransform::TransformPointXY(float& x, float& y)
{
    const double d = RowTimes(m_forward + 6, x, y);
    const double scale = d == 0 ? 0 : 1 / d;
    const double newX = RowTimes(m_forward, x, y) * scale;
    y = SaturateToFloat(RowTimes(m_forward + 3, x, y) * scale);
    x = SaturateToFloat(newX);
}

int vfILPerspectiveTransform::InvertTransformPointXYZ(float& x, float& y, float& w)
{
    w = SaturateToFloat(RowTimes(m_adjugate + 6, x, y));
    const double newX = RowTimes(m_adjugate, x, y);
    y = SaturateToFloat(RowTimes(m_adjugate + 3, x, y));
    x = SaturateToFloat(newX);
    return IsBefore(w, SignOf(m_clipMode)) ? 1 : 0;
}

void vfILPerspectiveTransform::InvertTransformPointXY(float& x, float& y)
{
    const double w = RowTimes(m_adjugate + 6, x, y);
    const double scale = w == 0 ? 1 : 1 / w;
    const double newX = RowTimes(m_adjugate, x, y) * scale;
    y = SaturateToFloat(RowTimes(m_adjugate + 3, x, y) * scale);
    x = SaturateToFloat(newX);
}

void vfILPerspectiveTransform::ProjectLineOf(vfILInterpolationType type, const vfILVector2f& start,
                                             long width, unsigned char* output)
{
    const double x = start[0];
    const double y = start[1];
    ProjectLine line{RowTimes(m_adjugate, x, y),
                     RowTimes(m_adjugate + 3, x, y),
                     RowTimes(m_adjugate + 6, x, y),
                     m_adjugate[0],
                     m_adjugate[3],
                     m_adjugate[6],
                     SignOf(m_clipMode)};
    const bool useVectors = m_simdAvailable != 0;
    const ProjectKernel project = FindProjectKernel(useVectors);
    const SampleRow sample = FindSampleRow(useVectors, SampleFormOf(type), SamplePixelOf(Run().output));
    const SampleSource source = SourceOf(Run());
    for (long done = 0; done < width; done += kSampleBlock) {
        const auto pixels = static_cast<std::size_t>(std::min(width - done, kSampleBlock));
        double u[kSampleBlock], v[kSampleBlock];
        project(line, pixels, u, v);
        sample(source, u, v, pixels, output + std::ptrdiff_t{done} * Run().output.pixelBytes);
    }
}

void vfILPerspectiveTransform::TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start,
                                                                             long width,
                                                                             unsigned char* output)
{
    ProjectLineOf(VFIL_INTERP_NEAREST, start, width, output);
}

void vfILPerspectiveTransform::TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                                      unsigned char* output)
{
    ProjectLineOf(VFIL_INTERP_BILINEAR, start, width, output);
}

void vfILPerspectiveTransform::TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                                                     unsigned char* output)
{
    ProjectLineOf(VFIL_INTERP_BICUBIC, start, width, output);
}

void vfILPerspectiveTransform::GetNumClipPlanes(unsigned long& first, unsigned long& second)
{
    first = 4;
    second = SignOf(m_clipMode) == ProjectSign::Both ? 4 : 0;
}

void vfILPerspectiveTransform::GetClipPlaneCoefficients(unsigned long i, long width, long height, double& a,
                                                        double& b, double& c, double& d)
{
    // The planes of the frame's homogeneous points: what stands alone there goes with w here.
    vfILMonadicTransformProc::GetClipPlaneCoefficients(i % 4, width, height, a, b, d, c);
    const ProjectSign sign = SignOf(m_clipMode);
    const bool isReversed = sign == ProjectSign::Negative || (sign == ProjectSign::Both && i >= 4);
    if (!isReversed) return;
    for (double* const coefficient : {&a, &b, &c, &d})
        *coefficient = -*coefficient;
}

void vfILPerspectiveTransform::SetClipMode(vfILClipMode mode)
{
    m_clipMode = mode;
}

vfILClipMode vfILPerspectiveTransform::GetClipMode() const
{
    return m_clipMode;
}
