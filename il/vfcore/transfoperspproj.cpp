/// \file
/// The card before a camera.

#include "il/loops/frame/saturate.h"

#include <vfil/perspective.h>

#include <cmath>
#include <iterator>

namespace {

using Point = HmPoint3<double>;

/// Angles of which less is none.
constexpr double kLeastTurn = 0.000001;

double AbsoluteSum(const Point& p)
{
    return std::fabs(p.x) + std::fabs(p.y) + std::fabs(p.z);
}

} // namespace

const wchar_t* const vfILTransfoPerspProj::m_ClassName = L"vfILTransfoPerspProj";

vfILTransfoPerspProj::vfILTransfoPerspProj() = default;

vfILTransfoPerspProj::~vfILTransfoPerspProj() = default;

const wchar_t* vfILTransfoPerspProj::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILTransfoPerspProj::Verify()
{
    return VerifyTransform(VFIL_INTERP_SUM_NEAREST, GetClassNameW());
}

void vfILTransfoPerspProj::SetCoefficients()
{
    SetClipMode(VFIL_CLIP_POSITIVE);
    m_localScale = {1, 1, 1};
    m_localRotate = {};
    m_localCenter = {};
    m_localTrans = {m_localTrans.x + m_stabTrans.x, m_localTrans.y + m_stabTrans.y, m_cameraPos.z};
    const double d = m_cameraPos.z;
    const double exact[] = {d, 0, d * m_localTrans.x, 0, d, d * m_localTrans.y, -0.0, 0, d};
    float coefficients[9];
    std::transform(std::begin(exact), std::end(exact), coefficients, vfil::SaturateToFloat);
    SetCoefficients(coefficients);
}

bool vfILTransfoPerspProj::PointBehindCam(long x, long y) const
{
    const float* const c = GetCoefficients();
    const double d = static_cast<double>(x) * c[6] + static_cast<double>(y) * c[7] + c[8];
    return m_cameraPos.z > 0 ? d <= 0 : d >= 0;
}

int vfILTransfoPerspProj::BehindCam() const
{
    const vfILBbox2l& roi = GetROI();
    const long x0 = roi.GetOffsetX();
    const long y0 = roi.GetOffsetY();
    const long x1 = x0 + roi.GetSizeX() - 1;
    const long y1 = y0 + roi.GetSizeY() - 1;
    return PointBehindCam(x0, y0) && PointBehindCam(x0, y1) && PointBehindCam(x1, y1) &&
                   PointBehindCam(x1, y0)
               ? 1
               : 0;
}

int vfILTransfoPerspProj::FacesCam() const
{
    long width = 0;
    long height = 0;
    if (GetInputImg() != nullptr) GetInputImg()->GetDimensions(&width, &height);
    Point scale, rotation, translation;
    return ComputeParameters(width, height, scale, rotation, translation) ? 1 : 0;
}

/// How the placement composes, and whether the face looks at the camera.
bool vfILTransfoPerspProj::ComputeParameters(long width, long height, Point& scale, Point& rotation,
                                             Point& translation) const
{
    const bool stabilises = m_globalUse != 0;
    const Point& c = m_cameraPos;
    Point centre{m_localCenter.x + static_cast<double>(width - 1) * 0.5,
                 m_localCenter.y + static_cast<double>(height - 1) * 0.5, m_localCenter.z};
    Point offset{-c.x, -c.y, -c.z};
    Point moved = m_localTrans;
    HmTransfo4 placement;
    placement.Scale(m_localScale.x, m_localScale.y, m_localScale.z);
    if (stabilises) {
        placement.Scale(m_stabScale.x, m_stabScale.y, m_stabScale.z);
        moved = {moved.x - m_stabTrans.x, moved.y - m_stabTrans.y, moved.z - m_stabTrans.z};
        offset = {m_stabCenter.x - c.x + m_stabTrans.x, m_stabCenter.y - c.y + m_stabTrans.y,
                  m_stabCenter.z - c.z + m_stabTrans.z};
    }
    placement.Translate(offset.x, offset.y, offset.z);
    if (stabilises && AbsoluteSum(m_stabRotate) > kLeastTurn) placement.RotateXYZ(m_stabRotate);
    placement.Translate(moved.x, moved.y, moved.z);
    if (AbsoluteSum(m_localRotate) > kLeastTurn) placement.RotateXYZ(m_localRotate);
    placement.ExtractTransforms(scale, rotation, translation);
    const Point normal = GetNormal(rotation);
    placement.MapInPlace(centre);
    return (c.x - centre.x) * normal.x + (c.y - centre.y) * normal.y + (c.z - centre.z) * normal.z > 0;
}

/// Of a card so turned, which faces z when it is not.
vfILTransfoPerspProj::Point vfILTransfoPerspProj::GetNormal(const Point& rotation)
{
    Point normal{0, 0, 1};
    if (AbsoluteSum(rotation) > 0) HmTransfo4().RotateXYZ(rotation).MapInPlace(normal);
    return normal;
}
