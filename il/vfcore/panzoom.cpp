/// \file
/// Scales and shifts.

#include "il/loops/transform/panzoomlines.h"
#include "il/loops/transform/panzoomsums.h"

#include <vfil/panzoom.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

using namespace vfil;

const wchar_t* const vfILPanZoomTransform::m_ClassName = L"vfILPanZoomTransform";

vfILPanZoomTransform::vfILPanZoomTransform()
{
    SetCoefficientCount(4);
    KeepsLines();
}

// The tables belong to a run; the mapping is made of the coefficients whenever it is needed.
vfILPanZoomTransform::vfILPanZoomTransform(const vfILPanZoomTransform& other)
    : vfILMonadicTransformProc(other)
{}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the frame looks for it
vfILPanZoomTransform& vfILPanZoomTransform::operator=(const vfILPanZoomTransform& other)
{
    vfILMonadicTransformProc::operator=(other);
    return *this;
}

vfILPanZoomTransform::~vfILPanZoomTransform()
{
    ReleaseTables();
}

// The members are no smart pointers, for which a host's compiler would have to read <memory>.
void vfILPanZoomTransform::ReleaseTables()
{
    const std::unique_ptr<PanZoomLines> lines(std::exchange(m_lines, nullptr));
    const std::unique_ptr<PanZoomSums> sums(std::exchange(m_sums, nullptr));
}

const wchar_t* vfILPanZoomTransform::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILPanZoomTransform::Verify()
{
    return VerifyTransform(VFIL_INTERP_PANZOOM, GetClassNameW());
}

vfILStatus vfILPanZoomTransform::SetUpCoefficients()
{
    std::copy_n(GetCoefficients(), 4, m_forward);
    const float product = m_forward[0] * m_forward[2];
    if (product == 0) return VFIL_FAILURE;
    const double sx = m_forward[0], tx = m_forward[1], sy = m_forward[2], ty = m_forward[3];
    const double inverse = 1 / (sx * sy);
    const double back[4] = {sy * inverse, -(sy * tx) * inverse, sx * inverse, -(sx * ty) * inverse};
    // False for what follows a NaN, too.
    const auto fits = [](double v) { return std::abs(v) <= double{std::numeric_limits<float>::max()}; };
    if (!fits(product) || !std::all_of(std::begin(back), std::end(back), fits)) return VFIL_FAILURE;
    std::transform(std::begin(back), std::end(back), m_inverse,
                   [](double v) { return static_cast<float>(v); });
    return VFIL_SUCCESS;
}

void vfILPanZoomTransform::TransformPointXY(float& x, float& y)
{
    x = static_cast<float>(double{m_forward[0]} * x + m_forward[1]);
    y = static_cast<float>(double{m_forward[2]} * y + m_forward[3]);
}

void vfILPanZoomTransform::InvertTransformPointXY(float& x, float& y)
{
    x = static_cast<float>(double{m_inverse[0]} * x + m_inverse[1]);
    y = static_cast<float>(double{m_inverse[2]} * y + m_inverse[3]);
}

vfILStatus vfILPanZoomTransform::PrepareData()
{
    ReleaseTables();
    const vfILStatus status = vfILMonadicTransformProc::PrepareData();
    if (status != VFIL_SUCCESS || Run().effectBox.IsNull() != 0) return status;
    const AxisMap x{m_inverse[0], m_inverse[1]};
    const AxisMap y{m_inverse[2], m_inverse[3]};
    const vfILInterpolationType type = GetInterpolationType();
    if (type >= VFIL_INTERP_SUM_BILINEAR && type <= VFIL_INTERP_SUM_NEAREST) {
        const double half = GetFilteringLevel() * 0.25 + 0.5;
        m_sums = PanZoomSums::Create(Run(), half, x, y, m_simdAvailable != 0).release();
    }
    if (type > VFIL_INTERP_BICUBIC) return status;
    m_lines = PanZoomLines::Create(Run(), GetInterpolationType(), x, y, m_simdAvailable != 0).release();
    if (m_lines == nullptr) return Fail(0x10001, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILPanZoomTransform::CleanData()
{
    ReleaseTables();
    return vfILMonadicTransformProc::CleanData();
}

vfILStatus vfILPanZoomTransform::DoEffect()
{
    if (GetInterpolationType() != VFIL_INTERP_PANZOOM) {
        const vfILStatus status = vfILMonadicTransformProc::DoEffect();
        if (m_lines != nullptr) m_lines->Finish();
        return status;
    }
    const vfILVector2l toOutput = GetOutputOffset() - GetROI().GetOffset();
    return TransformImageWithAntialiasedOrBilinearPanzoom(
        m_simdAvailable, m_inverse[0], m_inverse[1], m_inverse[2], m_inverse[3], GetInputImg(),
        Run().input.pixels, GetInputImgPremultiplied(), nullptr, nullptr, {}, {}, GetDefaultColor(),
        GetOutputImg(), Run().effectBox, toOutput, static_cast<int>(GetProcessingMode()),
        GetCreatePremultipliedOutput());
}

void vfILPanZoomTransform::TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start, long,
                                                                         unsigned char* output)
{
    m_lines->MakeLine(static_cast<long>(start[1]), output);
}

void vfILPanZoomTransform::TransformLineWithBilinearInterpolation(const vfILVector2f& start, long,
                                                                  unsigned char* output)
{
    m_lines->MakeLine(static_cast<long>(start[1]), output);
}

void vfILPanZoomTransform::TransformLineWithBicubicInterpolation(const vfILVector2f& start, long,
                                                                 unsigned char* output)
{
    m_lines->MakeLine(static_cast<long>(start[1]), output);
}

/// What hangs over the input, and what grows, is the frame's.
void vfILPanZoomTransform::TransformLineWithPixelSumming(const vfILVector2f& start, long width,
                                                         unsigned char* output)
{
    if (m_sums == nullptr || !m_sums->MakeLine(static_cast<long>(start[1]), output))
        return vfILMonadicTransformProc::TransformLineWithPixelSumming(start, width, output);
    const auto first = static_cast<long>(m_sums->First());
    const auto behind = static_cast<long>(m_sums->Behind());
    if (first > 0) vfILMonadicTransformProc::TransformLineWithPixelSumming(start, first, output);
    if (behind >= width) return;
    const vfILVector2f rest(start[0] + static_cast<float>(behind), start[1]);
    vfILMonadicTransformProc::TransformLineWithPixelSumming(rest, width - behind,
                                                            output + behind * Run().output.pixelBytes);
}
