/// \file
/// The map of a rectangle to a quadrilateral.

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/saturate.h"
#include "il/loops/transform/sampling.h"

#include <vfil/affine.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace vfil;

namespace {

using Way = double[2];

double Cross(const Way& a, const Way& b)
{
    return a[0] * b[1] - a[1] * b[0];
}

/// How far a share is from 0 .. 1; NaN is further than all.
double Beyond(double share)
{
    if (share != share) return std::numeric_limits<double>::infinity();
    return std::max({-share, share - 1, 0.0});
}

} // namespace

const wchar_t* const vfILBilinearTransform::m_ClassName = L"vfILBilinearTransform";

vfILBilinearTransform::vfILBilinearTransform()
{
    SetCoefficientCount(8);
}

vfILBilinearTransform::~vfILBilinearTransform() = default;

const wchar_t* vfILBilinearTransform::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILBilinearTransform::Verify()
{
    return VerifyTransform(VFIL_INTERP_SUM_NEAREST, GetClassNameW());
}

vfILStatus vfILBilinearTransform::SetUpCoefficients()
{
    if (GetInputImg() == nullptr) return VFIL_FAILURE;
    const ImageView input(GetInputImg());
    m_size[0] = static_cast<double>(std::max(input.width - 1, 0L));
    m_size[1] = static_cast<double>(std::max(input.height - 1, 0L));
    const float* const c = GetCoefficients();
    for (int i = 0; i < 2; ++i) {
        const double corners[] = {c[i], c[2 + i], c[4 + i], c[6 + i]};
        m_origin[i] = corners[0];
        m_along[i] = corners[1] - corners[0];
        m_across[i] = corners[3] - corners[0];
        m_twist[i] = corners[2] - corners[1] - m_across[i];
    }
    // The area that a point of the picture gets is the same mix of those at the corners as the point itself.
    const double area = Cross(m_along, m_across);
    const double areas[] = {area, area + Cross(m_along, m_twist), area + Cross(m_twist, m_across),
                            area + Cross(m_along, m_twist) + Cross(m_twist, m_across)};
    const bool turnsLeft = std::all_of(std::begin(areas), std::end(areas), [](double a) { return a > 0; });
    const bool turnsRight = std::all_of(std::begin(areas), std::end(areas), [](double a) { return a < 0; });
    return (turnsLeft || turnsRight) && std::abs(area) <= std::numeric_limits<double>::max() ? VFIL_SUCCESS
                                                                                             : VFIL_FAILURE;
}

void vfILBilinearTransform::TransformPointXY(float& x, float& y)
{
    const double s = m_size[0] == 0 ? 0 : x / m_size[0];
    const double t = m_size[1] == 0 ? 0 : y / m_size[1];
    const auto at = [&](int i) {
        return SaturateToFloat(m_origin[i] + m_along[i] * s + m_across[i] * t + m_twist[i] * s * t);
    };
    x = at(0);
    y = at(1);
}

/// origin + along s + across t + twist s t is the point. Without s, by the cross product with along + twist
/// t, that is a quadratic equation in t. Of its two roots one may be the quotient of two numbers that nearly
/// vanish, as where opposite sides are parallel; the other form of that root does not.
void vfILBilinearTransform::Invert(double x, double y, double& u, double& v) const
{
    const Way rest = {m_origin[0] - x, m_origin[1] - y};
    const double a = Cross(m_twist, m_across);
    const double b = Cross(m_along, m_across) + Cross(m_twist, rest);
    const double c = Cross(m_along, rest);
    const double root = std::sqrt(b * b - 4 * a * c); // NaN for a point that nothing maps to
    const double sum = -0.5 * (b + std::copysign(root, b));
    u = v = std::numeric_limits<double>::quiet_NaN();
    double nearest = std::numeric_limits<double>::infinity();
    for (const double t : {c / sum, sum / a}) {
        const Way slope = {m_along[0] + m_twist[0] * t, m_along[1] + m_twist[1] * t};
        const int axis = std::abs(slope[0]) >= std::abs(slope[1]) ? 0 : 1;
        const double s = -(rest[axis] + m_across[axis] * t) / slope[axis];
        const double beyond = std::max(Beyond(s), Beyond(t));
        if (!(beyond < nearest)) continue;
        nearest = beyond;
        u = s * m_size[0];
        v = t * m_size[1];
    }
}

void vfILBilinearTransform::InvertTransformPointXY(float& x, float& y)
{
    double u = 0;
    double v = 0;
    Invert(x, y, u, v);
    x = SaturateToFloat(u);
    y = SaturateToFloat(v);
}

/// By the form of the interpolation type.
void vfILBilinearTransform::SampleByForm(const vfILVector2f& start, long width, unsigned char* output)
{
    const SampleRow sample = FindSampleRow(m_simdAvailable != 0, SampleFormOf(GetInterpolationType()),
                                           SamplePixelOf(Run().output));
    const SampleSource source = SourceOf(Run());
    double u[kSampleBlock];
    double v[kSampleBlock];
    for (long at = 0; at < width; at += kSampleBlock) {
        const long count = std::min(kSampleBlock, width - at);
        for (long i = 0; i < count; ++i)
            Invert(start[0] + static_cast<double>(at + i), start[1], u[i], v[i]);
        sample(source, u, v, static_cast<std::size_t>(count), output + at * Run().output.pixelBytes);
    }
}

void vfILBilinearTransform::TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start,
                                                                          long width, unsigned char* output)
{
    SampleByForm(start, width, output);
}

void vfILBilinearTransform::TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                                   unsigned char* output)
{
    SampleByForm(start, width, output);
}

void vfILBilinearTransform::TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                                                  unsigned char* output)
{
    SampleByForm(start, width, output);
}
