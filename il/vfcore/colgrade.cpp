/// \file
/// Ramps of colours: parameters, and the stages of a run.

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/frame/saturate.h"

#include <vfil/colorgrade.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

using namespace vfil;

const wchar_t* const vfILColorGradeImg::m_ClassName = L"vfILColorGradeImg";

vfILColorGradeImg::vfILColorGradeImg()
{
    SetProcessingMode(VFIL_MODE_RGBA);
}

vfILColorGradeImg::vfILColorGradeImg(const vfILColorGradeImg& other) : vfILImgProc(other)
{
    SetProcessingMode(VFIL_MODE_RGBA);
    CopyParameters(other);
}

vfILColorGradeImg& vfILColorGradeImg::operator=(const vfILColorGradeImg& other)
{
    if (this == &other) return *this;
    vfILImgProc::operator=(other);
    CopyParameters(other);
    return *this;
}

vfILColorGradeImg::~vfILColorGradeImg() = default;

/// What a run knows stays with the processor that runs.
void vfILColorGradeImg::CopyParameters(const vfILColorGradeImg& other)
{
    m_type = other.m_type;
    std::copy(std::begin(other.m_isStop), std::end(other.m_isStop), m_isStop);
    std::copy(std::begin(other.m_stops), std::end(other.m_stops), m_stops);
    m_x = other.m_x;
    m_y = other.m_y;
    m_dx = other.m_dx;
    m_dy = other.m_dy;
    m_angle = other.m_angle;
    m_ratio = other.m_ratio;
    m_invertFlag = other.m_invertFlag;
    m_colorLL = other.m_colorLL;
    m_colorLR = other.m_colorLR;
    m_colorUR = other.m_colorUR;
    m_colorUL = other.m_colorUL;
}

const wchar_t* vfILColorGradeImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILRampType vfILColorGradeImg::GetType() const
{
    return m_type;
}

void vfILColorGradeImg::SetType(vfILRampType type)
{
    m_type = type;
}

int vfILColorGradeImg::IsWeightOccupied(long weight) const
{
    return weight >= 0 && weight < kWeights && m_isStop[weight] ? 1 : 0;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): hosts call it so
void vfILColorGradeImg::SetColor(vfILColor color, long weight)
{
    if (weight < 0 || weight >= kWeights) return;
    m_isStop[weight] = true;
    m_stops[weight] = color;
}

vfILColor vfILColorGradeImg::GetColor(long weight) const
{
    return IsWeightOccupied(weight) != 0 ? m_stops[weight] : vfILColor();
}

int vfILColorGradeImg::DelColor(long weight)
{
    if (IsWeightOccupied(weight) == 0) return 0;
    m_isStop[weight] = false;
    m_stops[weight] = vfILColor();
    return 1;
}

void vfILColorGradeImg::SetVector(long x, long y, long dx, long dy)
{
    m_x = SaturateToInt32(x);
    m_y = SaturateToInt32(y);
    m_dx = SaturateToInt32(dx);
    m_dy = SaturateToInt32(dy);
    const double radians = std::atan2(m_dy, m_dx);
    long degrees = std::lround(radians * 180.0 / std::numbers::pi);
    if (m_dx == 0) degrees = m_dy > 0 ? 90 : 270;
    m_angle = static_cast<std::uint16_t>(degrees < 0 ? degrees + 360 : degrees);
}

void vfILColorGradeImg::GetVector(long* x, long* y, long* dx, long* dy) const
{
    if (x != nullptr) *x = m_x;
    if (y != nullptr) *y = m_y;
    if (dx != nullptr) *dx = m_dx;
    if (dy != nullptr) *dy = m_dy;
}

unsigned short vfILColorGradeImg::GetAngle() const
{
    return m_angle;
}

double vfILColorGradeImg::GetRatio() const
{
    return m_ratio;
}

void vfILColorGradeImg::SetRatio(double ratio)
{
    m_ratio = ratio;
}

unsigned char vfILColorGradeImg::GetInvertFlag() const
{
    return m_invertFlag;
}

void vfILColorGradeImg::SetInvertFlag(unsigned char flag)
{
    m_invertFlag = flag;
}

const vfILColor& vfILColorGradeImg::GetColorLL() const
{
    return m_colorLL;
}

void vfILColorGradeImg::SetColorLL(const vfILColor& color)
{
    m_colorLL = color;
}

const vfILColor& vfILColorGradeImg::GetColorLR() const
{
    return m_colorLR;
}

void vfILColorGradeImg::SetColorLR(const vfILColor& color)
{
    m_colorLR = color;
}

const vfILColor& vfILColorGradeImg::GetColorUR() const
{
    return m_colorUR;
}

void vfILColorGradeImg::SetColorUR(const vfILColor& color)
{
    m_colorUR = color;
}

const vfILColor& vfILColorGradeImg::GetColorUL() const
{
    return m_colorUL;
}

void vfILColorGradeImg::SetColorUL(const vfILColor& color)
{
    m_colorUL = color;
}

vfILStatus vfILColorGradeImg::Execute()
{
    // The interrupt is not polled between the stages.
    vfILStatus status = Verify();
    if (status == VFIL_SUCCESS) status = PrepareData();
    if (status == VFIL_SUCCESS) status = ProcessData();
    const vfILStatus cleaned = CleanData();
    return status == VFIL_SUCCESS ? cleaned : status;
}

vfILStatus vfILColorGradeImg::Verify()
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the checks of vfILImgProc come in another order here
    if (vfILProcessor::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (IsAllChannelProcessed() == 0) return Fail(0x20002, GetClassNameW());
    if (GetOutputImg() == nullptr) return Fail(0x10002, GetClassNameW());
    const ImageView output(GetOutputImg());
    if (!output.HasPixels()) return Fail(0x10003, GetClassNameW());
    if (!PointFormats::Contains(output.format->id)) return Fail(0x1000D, GetClassNameW());
    const vfILBbox2l target = TargetBox(GetROI(), GetOutputOffset());
    if (!((target & output.Box()) == target)) return Fail(0x1000A, GetClassNameW());

    const int type = m_type; // any number may have been set
    if (type < VFIL_RAMP_LINEAR || type > VFIL_RAMP_SQUARE) return Fail(0x1003E, GetClassNameW());
    const auto reaches = [this](std::int64_t length) {
        return std::abs(std::int64_t{m_dx}) >= length || std::abs(std::int64_t{m_dy}) >= length;
    };
    if ((type == VFIL_RAMP_LINEAR && !reaches(1)) || (type == VFIL_RAMP_RADIAL && !reaches(2)))
        return Fail(0x1003F, GetClassNameW());
    if (!(m_ratio > 0)) return Fail(0x10045, GetClassNameW());
    if (m_invertFlag > 1) return Fail(0x10047, GetClassNameW());
    if (m_colorLL.Verify() != 1) return Fail(0x10041, GetClassNameW());
    if (m_colorLR.Verify() != 1) return Fail(0x10042, GetClassNameW());
    if (m_colorUR.Verify() != 1) return Fail(0x10043, GetClassNameW());
    if (m_colorUL.Verify() != 1) return Fail(0x10040, GetClassNameW());
    for (long weight = 0; weight < kWeights; ++weight)
        if (m_isStop[weight] && m_stops[weight].Verify() != 1) return Fail(0x10044, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILColorGradeImg::PrepareData()
{
    const ImageView output(GetOutputImg());
    m_targetBox = TargetBox(GetROI(), GetOutputOffset());
    if (output.image == nullptr) return Fail(0x10002, GetClassNameW());
    if (!output.HasPixels()) return Fail(0x10003, GetClassNameW());
    if (!Covers(output.Box(), m_targetBox)) return Fail(0x1000A, GetClassNameW());
    m_output = output;
    m_firstRowEven = (m_targetBox.GetOffsetY() & 1) == 0 ? 1 : 0;
    return VFIL_SUCCESS;
}

vfILStatus vfILColorGradeImg::ProcessData()
{
    if (m_targetBox.IsNull() != 0) return VFIL_SUCCESS;
    if (m_type == VFIL_RAMP_SQUARE) return RenderSquare();
    if (std::count(std::begin(m_isStop), std::end(m_isStop), true) < 2) {
        vfILColor color = GetColor(std::find(std::begin(m_isStop), std::end(m_isStop), true) - m_isStop);
        return RenderConstant(color);
    }
    if (!MakeTable()) return Fail(0x10001, GetClassNameW());
    return m_type == VFIL_RAMP_RADIAL ? RenderRadial() : RenderLinear();
}

vfILStatus vfILColorGradeImg::CleanData()
{
    m_table.Free();
    m_entries = nullptr;
    m_twinRow = nullptr;
    m_output = {};
    return VFIL_SUCCESS;
}
