/// \file
/// Ramps of colours: the table of colours, and the rows.

#include "il/loops/frame/colourpixel.h"
#include "il/loops/treat/ramprun.h"
#include "il/loops/treat/ramptable.h"

#include "il/rows/treat/placerows.h"

#include <vfil/colorgrade.h>

#include <algorithm>
#include <cmath>

using namespace vfil;

/// The vector as the region's first pixel sees it, and the last colour's number.
struct vfILColorGradeImg::Way {
    double x, y, dx, dy, ratio, last;

    double Length() const { return std::sqrt(dx * dx + dy * dy); }
    /// Of the pixels from (left, row) on.
    LinearPlaces Linear(double left, double row) const
    {
        const double length = Length();
        return {(left - x) * dx + (row - y) * dy, dx, length, 1 / length, last};
    }
    RadialPlaces Radial(double left, double row) const
    {
        const double height = row == y ? 0.0 : (row - y) * ratio; // the ratio may be infinite
        return {left - x, height * height, last};
    }
};

vfILColorGradeImg::Way vfILColorGradeImg::WayOf() const
{
    const auto left = static_cast<double>(GetROI().GetOffsetX());
    const auto bottom = static_cast<double>(GetROI().GetOffsetY());
    return {m_x - left, m_y - bottom, static_cast<double>(m_dx), static_cast<double>(m_dy),
            m_ratio,    m_lastEntry};
}

/// False when memory is short.
bool vfILColorGradeImg::MakeTable()
{
    RampStop stops[kWeights];
    std::size_t count = 0;
    for (long weight = 0; weight < kWeights; ++weight) {
        const long at = m_invertFlag != 0 ? kWeights - 1 - weight : weight;
        if (m_isStop[at]) stops[count++] = {weight, RampColour(m_stops[at])};
    }
    constexpr double kMostEntries = 1 << 26; // nobody sees a colour of so long a ramp change
    const double length = std::ceil(WayOf().Length());
    if (length > kMostEntries) return false;
    const std::size_t entries = std::max(static_cast<std::size_t>(length), std::size_t{1});
    const auto entryBytes = static_cast<std::size_t>(m_output.pixelBytes);
    const auto width = static_cast<std::size_t>(m_targetBox.GetSizeX());
    unsigned char* const memory = m_table.Allocate((width + entries + 2 * kTablePad) * entryBytes);
    if (memory == nullptr) return false;
    m_twinRow = memory;
    unsigned char* const table = memory + (width + kTablePad) * entryBytes;
    PointFormats::Visit(m_output.format->id, [&](auto format) {
        using Format = decltype(format);
        auto* const samples = reinterpret_cast<typename Format::Sample*>(table);
        const RampStores stores{m_simdAvailable != 0};
        if constexpr (Format::kChannels == 4) {
            FillMultiColorsRGBA(stops, count, entries, stores, samples);
        } else {
            FillMultiColorsMONO(stops, count, entries, stores, samples);
        }
    });
    FillRow(table - kTablePad * entryBytes, kTablePad * entryBytes, table, entryBytes);
    unsigned char* const behind = table + entries * entryBytes;
    FillRow(behind, kTablePad * entryBytes, behind - entryBytes, entryBytes);
    m_entries = table;
    m_lastEntry = static_cast<double>(entries - 1);
    return true;
}

namespace {

RampGround GroundOf(const vfILPictureView& output, const vfILBbox2l& box, int useVectors)
{
    return {output, box, useVectors != 0};
}

} // namespace

/// 0 when all pixels have one colour: those of the corners are the extremes.
int vfILColorGradeImg::ViewIntersectsGrade() const
{
    const auto entry = [way = WayOf()](long x, long y) {
        return IndexOf(way.Linear(static_cast<double>(x), static_cast<double>(y)));
    };
    const long right = m_targetBox.GetSizeX() - 1;
    const long top = m_targetBox.GetSizeY() - 1;
    const std::int32_t first = entry(0, 0);
    return entry(right, 0) == first && entry(0, top) == first && entry(right, top) == first ? 0 : 1;
}

/// 0 when all pixels have the last colour: that of the nearest to the centre is the first one.
int vfILColorGradeImg::ViewIntersectsCircle() const
{
    const Way way = WayOf();
    const double x = std::clamp(way.x, 0.0, static_cast<double>(m_targetBox.GetSizeX() - 1));
    const double y = std::clamp(way.y, 0.0, static_cast<double>(m_targetBox.GetSizeY() - 1));
    return IndexOf(way.Radial(x, y)) < m_lastEntry ? 1 : 0;
}

vfILStatus vfILColorGradeImg::RenderLinear()
{
    const RampGround ground = GroundOf(m_output, m_targetBox, m_simdAvailable);
    const Way way = WayOf();
    if (ViewIntersectsGrade() == 0) {
        PaintPixel(*this, ground, m_entries + IndexOf(way.Linear(0, 0)) * m_output.pixelBytes);
        return VFIL_SUCCESS;
    }
    PaintRows(*this, ground, {m_dy == 0}, m_twinRow, [&](long row, unsigned char* out, bool streaming) {
        FindLinearRow(ground.useVectors, streaming,
                      ground.PixelBytes())(way.Linear(0, static_cast<double>(row)), m_entries, out,
                                           static_cast<std::size_t>(ground.Width()));
    });
    return VFIL_SUCCESS;
}

vfILStatus vfILColorGradeImg::RenderRadial()
{
    const RampGround ground = GroundOf(m_output, m_targetBox, m_simdAvailable);
    const Way way = WayOf();
    if (ViewIntersectsCircle() == 0) {
        PaintPixel(*this, ground, m_entries + static_cast<long>(m_lastEntry) * m_output.pixelBytes);
        return VFIL_SUCCESS;
    }
    const RampTwins twins{false, true, m_y - std::int64_t{GetROI().GetOffsetY()}};
    PaintRows(*this, ground, twins, m_twinRow, [&](long row, unsigned char* out, bool streaming) {
        FindRadialRow(ground.useVectors, streaming,
                      ground.PixelBytes())(way.Radial(0, static_cast<double>(row)), m_entries, out,
                                           static_cast<std::size_t>(ground.Width()));
    });
    return VFIL_SUCCESS;
}

vfILStatus vfILColorGradeImg::RenderSquare()
{
    const RampGround ground = GroundOf(m_output, m_targetBox, m_simdAvailable);
    const RampColour lowerLeft(m_colorLL), lowerRight(m_colorLR), upperRight(m_colorUR), upperLeft(m_colorUL);
    const long top = m_targetBox.GetSizeY() - 1;
    m_twinRow = m_table.Allocate(ground.RowBytes());
    if (m_twinRow == nullptr) return Fail(0x10001, GetClassNameW());
    const RampTwins twins{m_colorLL == m_colorUL && m_colorLR == m_colorUR};
    PointFormats::Visit(m_output.format->id, [&](auto format) {
        using Format = decltype(format);
        PaintRows(*this, ground, twins, m_twinRow, [&](long row, unsigned char* out, bool streaming) {
            const RampColour left = Between(lowerLeft, upperLeft, row, top);
            const RampColour right = Between(lowerRight, upperRight, row, top);
            const auto width = static_cast<std::size_t>(ground.Width());
            const RampStores stores{ground.useVectors, streaming};
            auto* const samples = reinterpret_cast<typename Format::Sample*>(out);
            if constexpr (Format::kChannels == 4) {
                Fill2ColorsRGBA(left, right, width, stores, samples);
            } else {
                Fill2ColorsMONO(left, right, width, stores, samples);
            }
        });
    });
    return VFIL_SUCCESS;
}

vfILStatus vfILColorGradeImg::RenderConstant(vfILColor& color)
{
    ColourPixel pixel;
    if (pixel.Set(*m_output.format, color))
        PaintPixel(*this, GroundOf(m_output, m_targetBox, m_simdAvailable), pixel.bytes);
    return VFIL_SUCCESS;
}
