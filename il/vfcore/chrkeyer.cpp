/// \file
/// The key by hue.

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/runarray.h"
#include "il/loops/keyer/keyloop.h"

#include <vfil/keyer.h>

#include <cmath>
#include <numbers>

using namespace vfil;

const wchar_t* const vfILChromaKeyer::m_ClassName = L"vfILChromaKeyer";

/// The key colour and the sector around it, in full precision.
struct vfILChromaKeyer::Sector {
    double luma = 0;                   ///< of the key colour
    double markedCb = 0, markedCr = 0; ///< where the map marks it: by BT.601, whatever the model
    SectorKeyParams params{};
};

const wchar_t* vfILChromaKeyer::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILChromaKeyer::Verify()
{
    if (vfILKeyerBase::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if (!(m_angleTolerance >= 0 && m_angleTolerance <= 360))
        return Fail(0x10023, "%s:Invalid angle tolerance!!!\n", GetClassNameW());
    if (!(m_lift >= 0 && m_lift <= 1 && m_gain >= 0 && m_gain <= 1))
        return Fail(0x10023, "%s:Invalid lift and/or gain values!!!\n", GetClassNameW());
    if (!IsKeyModel(m_colorModel)) return Fail(0x1006A, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILChromaKeyer::SetAngleTolerance(double degrees)
{
    m_angleTolerance = degrees;
}

double vfILChromaKeyer::GetAngleTolerance() const
{
    return m_angleTolerance;
}

void vfILChromaKeyer::SetLiftAndGain(double lift, double gain)
{
    m_lift = lift;
    m_gain = gain;
}

void vfILChromaKeyer::GetLiftAndGain(double* lift, double* gain) const
{
    if (lift != nullptr) *lift = m_lift;
    if (gain != nullptr) *gain = m_gain;
}

void vfILChromaKeyer::SetOutputChromaMap(int paintMap)
{
    m_outputChromaMap = paintMap != 0;
}

int vfILChromaKeyer::GetOutputChromaMap() const
{
    return m_outputChromaMap;
}

void vfILChromaKeyer::SetKeepOrigAlphaFlag(int keep)
{
    m_keepOrigAlpha = keep != 0;
}

int vfILChromaKeyer::GetKeepOrigAlphaFlag() const
{
    return m_keepOrigAlpha;
}

void vfILChromaKeyer::SetColorModel(PXColorModel model)
{
    m_colorModel = model;
}

PXColorModel vfILChromaKeyer::GetColorModel() const
{
    return m_colorModel;
}

namespace {

// Studio range in 65536ths.
constexpr KeyWeights kCb601{-0x25F2, -0x4A7E, 0x7070};
constexpr KeyWeights kCr601{0x7070, -0x5E28, -0x1249};
constexpr KeyWeights kCb709{-0x19C4, -0x56AD, 0x7070};
constexpr KeyWeights kCr709{0x7070, -0x6621, -0x0A4F};

/// From so many pixels on the table of mattes costs less than it saves.
constexpr std::int64_t kWorthTable = 1 << 16;

} // namespace

double vfILChromaKeyer::ComputeTanAngleTolOver2() const
{
    return 1 / std::tan((1 + m_angleTolerance) * std::numbers::pi * (1.0 / 180) * 0.5);
}

void vfILChromaKeyer::RemapLiftAndGain(double chroma, double* lift, double* gain) const
{
    *lift = m_lift * 0.4;
    // Without chroma there is no hue to key.
    *gain = chroma < 0.0001 ? 0 : 8 * m_gain + 1;
}

vfILChromaKeyer::Sector vfILChromaKeyer::MakeSector() const
{
    Sector sector;
    const bool is709 = m_colorModel == PXColorModel_YCC709;
    GetKeyColor().GetColorAsYCCA(&sector.luma, &sector.markedCb, &sector.markedCr, nullptr);
    double cb = sector.markedCb;
    double cr = sector.markedCr;
    if (is709) GetKeyColor().GetColorAsYCCA709(&sector.luma, &cb, &cr, nullptr);
    cb -= 0.5;
    cr -= 0.5;
    const double angle = 2 * std::numbers::pi - std::atan2(cr, cb);
    SectorKeyParams& params = sector.params;
    params.cb = is709 ? kCb709 : kCb601;
    params.cr = is709 ? kCr709 : kCr601;
    params.cosine = std::cos(angle);
    params.sine = std::sin(angle);
    params.tangent = ComputeTanAngleTolOver2();
    RemapLiftAndGain(cb * cb + cr * cr, &params.lift, &params.gain);
    params.keepAlpha = m_keepOrigAlpha;
    return sector;
}

vfILStatus vfILChromaKeyer::DoEffect()
{
    if (FormatOf(GetInputImgA()) != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if (m_outputChromaMap)
        PaintChromaMap();
    else
        ChromaKeyRGBA8();
    return VFIL_SUCCESS;
}

void vfILChromaKeyer::ChromaKeyRGBA8()
{
    SectorKeyParams params = MakeSector().params;
    // Only so many mattes can differ. Where memory is short each is computed for itself.
    RunArray<std::uint8_t> mattes;
    const std::int64_t pixels = std::int64_t{Run().processBox.GetSizeX()} * Run().rows;
    if (Layers().fast && pixels >= kWorthTable && mattes.Allocate(kSectorMattes)) {
        MakeSectorMattes(params, mattes.Data());
        params.mattes = mattes.Data();
    }
    RunKey(*this, Layers(), params);
}

bool vfILChromaKeyer::IsAlmostEqual(double a, double b)
{
    const double distance = std::abs(a - b);
    return -0.001 < distance && distance < 0.001;
}

/// Writes a pixel of the map. \p scratch keeps its alpha from pixel to pixel.
void vfILChromaKeyer::PlotKey(const Sector& sector, double x, double y, vfILColor& scratch,
                              unsigned char* pixel) const
{
    const SectorKeyParams& p = sector.params;
    const double matte = MatteOfKey(
        (-std::abs(x * p.cosine + y * p.sine) * p.tangent - p.lift + x * p.sine - y * p.cosine) * p.gain);
    double rgb[3] = {matte, matte, matte};
    if (matte == 1) {
        const double cb = x + 0.5;
        const double cr = y + 0.5;
        if (m_colorModel == PXColorModel_YCC709)
            scratch.SetColorAsYCCA709(&sector.luma, &cb, &cr, nullptr);
        else
            scratch.SetColorAsYCCA(&sector.luma, &cb, &cr, nullptr);
        scratch.GetRGB(&rgb[0], &rgb[1], &rgb[2]);
    }
    for (int c = 0; c < 3; ++c)
        pixel[c] = RoundToSample<std::uint8_t>(rgb[c] * 255);
    const auto paint = [pixel](unsigned char red, unsigned char blue) {
        pixel[0] = red;
        pixel[1] = 0;
        pixel[2] = blue;
    };
    if (x == 0 || y == 0) paint(0, 255);
    // The colour is marked with its axes exchanged, and without the half that the picture's axes take off.
    if (IsAlmostEqual(x, sector.markedCr) && IsAlmostEqual(y, sector.markedCb)) paint(255, 0);
    pixel[3] = 255;
}

/// Looks at no input, and for no interruption.
void vfILChromaKeyer::PaintChromaMap() const
{
    const vfILPixelRun& run = Run();
    const Sector sector = MakeSector();
    const double width = static_cast<double>(run.picture.width);
    const double height = static_cast<double>(run.picture.height);
    const vfILBbox2l& box = run.processBox;
    const RowSelection rows =
        SelectMemoryRows(GetProcessingMode(), *run.picture.format, box.GetOffsetY(), box.GetSizeY());
    vfILColor scratch;
    for (long row = 0; row < run.rows; ++row) {
        const long line = box.GetOffsetY() + rows.skip + row * rows.step;
        const double y = (static_cast<double>(line) - height / 2) / height;
        auto* pixel = RowOf<std::uint8_t>(run.output, row);
        for (long column = 0; column < box.GetSizeX(); ++column, pixel += 4) {
            const double x = (static_cast<double>(box.GetOffsetX() + column) - width / 2) / width;
            PlotKey(sector, x, y, scratch, pixel);
        }
    }
}
