/// \file
/// Footprints: from mapped corners to polygons, and from polygons to the groups that the kernels sum.
#include "il/rows/transform/footprint.h"

#include "il/rows/transform/footprintrows.h"
#include "il/rows/transform/polygon.h"

#include <algorithm>
#include <cmath>

namespace vfil {
namespace {

/// Vertices as near as this to the plane of the eye, and footprints of which cutting leaves no more, count
/// for nothing.
constexpr double kTiny = 0.00001;
/// Coordinates whose squares and products are far from the ends of a double. Vectors sum no others.
constexpr double kFar = 0x1p30;

/// A footprint's corners before they are divided.
struct Corners {
    long count;
    double x[Footprint::kCapacity], y[Footprint::kCapacity], w[Footprint::kCapacity];

    Corners(const double fromX[4], const double fromY[4], const double fromW[4]) : count(4)
    {
        std::copy_n(fromX, 4, x);
        std::copy_n(fromY, 4, y);
        std::copy_n(fromW, 4, w);
    }
    bool Cut(const double (*planes)[4], long planeCount)
    {
        return ClipPolygon(count, x, y, w, planes, planeCount, Footprint::kCapacity);
    }
    double Area() const { return PolygonArea(count, x, y, w); }
};

Footprint Divided(const Corners& corners, double inside)
{
    Footprint footprint;
    for (long i = 0; i < corners.count; ++i) {
        const double w = corners.w[i];
        if (w >= -kTiny && w <= kTiny) return {};
        footprint.x[i] = w == 1 ? corners.x[i] : corners.x[i] / w;
        footprint.y[i] = w == 1 ? corners.y[i] : corners.y[i] / w;
    }
    footprint.count = corners.count;
    footprint.inside = inside;
    return footprint;
}

/// Sums of the signed areas between the edges and an axis through the first vertex: without that the products
/// of a small footprint far from 0 would cancel.
double SignedArea(const Footprint& footprint)
{
    double sum = 0;
    for (long i = 2; i < footprint.count; ++i) {
        sum += (footprint.x[i - 1] - footprint.x[0]) * (footprint.y[i] - footprint.y[0]) -
               (footprint.x[i] - footprint.x[0]) * (footprint.y[i - 1] - footprint.y[0]);
    }
    return sum * 0.5;
}

/// The smallest and the largest of a footprint's coordinates.
struct Extent {
    double low, high;

    Extent(const double* values, long count) : low(values[0]), high(values[0])
    {
        for (long i = 1; i < count; ++i) {
            low = std::min(low, values[i]);
            high = std::max(high, values[i]);
        }
    }
};

/// Whether four vertices are those of a box: each side is upright or level.
bool IsBox(const Footprint& f)
{
    if (f.count != 4) return false;
    return (f.y[0] == f.y[1] && f.x[1] == f.x[2] && f.y[2] == f.y[3] && f.x[3] == f.x[0]) ||
           (f.x[0] == f.x[1] && f.y[1] == f.y[2] && f.x[2] == f.x[3] && f.y[3] == f.y[0]);
}

enum class Shape { Quad, Box, Other };

/// A footprint and its area.
struct Measured {
    const Footprint& footprint;
    double signedArea;
    double area;  ///< in the input
    double whole; ///< with what cutting took away; -1 for a footprint that sees nothing, or overflows

    explicit Measured(const Footprint& f)
        : footprint(f), signedArea(SignedArea(f)), area(std::fabs(signedArea)), whole(-1)
    {
        if (f.count >= 3 && f.inside > kTiny && std::isfinite(area / f.inside)) whole = area / f.inside;
    }
    double Outside() const { return whole - area; }
    double Sign() const { return signedArea < 0 ? -1 : 1; }
};

Shape KindOf(const Footprint& footprint, const Extent& columns, const Extent& rows)
{
    const bool isNear = columns.low > -kFar && columns.high < kFar && rows.low > -kFar && rows.high < kFar;
    if (footprint.count != 4 || !isNear) return Shape::Other;
    return IsBox(footprint) ? Shape::Box : Shape::Quad;
}

/// Sums footprints, which wait until a group of the same kind is full.
template <class Source>
class Summing {
    using Sample = typename Source::Sample;
    static constexpr int kChannels = Source::kChannels;

public:
    Summing(const Source& source, bool useVectors, Sample* sums)
        : m_source(source), m_rows(FindFootprintRows(useVectors)),
          m_sums(sums), m_picture{source.base, source.rowBytes, source.left, source.right}
    {}
    void Add(const Measured& measured, std::size_t index)
    {
        const Footprint& footprint = measured.footprint;
        const Extent columns(footprint.x, footprint.count);
        const Extent rows(footprint.y, footprint.count);
        const Shape kind = KindOf(footprint, columns, rows);
        if (kind == Shape::Other) {
            SumAlone(measured, rows, index);
            return;
        }
        Group& group = kind == Shape::Quad ? m_quads : m_boxes;
        if (kind == Shape::Quad)
            PlaceQuad(measured, group.shapes, group.count);
        else
            PlaceBox(columns, rows, group.shapes, group.count);
        group.shapes.top[group.count] = FirstRow(rows);
        group.shapes.bottom[group.count] = LastRow(rows);
        group.outside[group.count] = measured.Outside();
        group.index[group.count] = index;
        if (++group.count == kFootprintGroup) Flush(group, KernelOf(kind));
    }
    void Finish()
    {
        Flush(m_quads, KernelOf(Shape::Quad));
        Flush(m_boxes, KernelOf(Shape::Box));
    }
    void SetDefault(std::size_t index) { std::copy_n(m_source.defaultPixel, kChannels, PixelAt(index)); }

private:
    struct Group {
        FootprintGroup shapes{};
        double outside[kFootprintGroup];
        std::size_t index[kFootprintGroup];
        std::size_t count = 0;
    };

    FootprintKernel KernelOf(Shape kind) const
    {
        const auto& kernels = kind == Shape::Quad ? m_rows.quads : m_rows.boxes;
        return kernels[sizeof(Sample) - 1][kChannels == 4];
    }
    Sample* PixelAt(std::size_t index) { return m_sums + index * kChannels; }

    double FirstRow(const Extent& rows) const
    {
        const double top = m_source.top;
        return std::trunc(std::min(std::max(rows.low + 0.5, top), m_source.bottom + 1.0));
    }
    double LastRow(const Extent& rows) const
    {
        const double bottom = m_source.bottom;
        return std::trunc(std::min(std::max(rows.high + 0.5, m_source.top - 1.0), bottom));
    }

    static void PlaceQuad(const Measured& measured, FootprintGroup& group, std::size_t at)
    {
        for (int i = 0; i < 4; ++i) {
            group.x[i][at] = measured.footprint.x[i];
            group.y[i][at] = measured.footprint.y[i];
        }
        group.sign[at] = measured.Sign();
    }

    static void PlaceBox(const Extent& columns, const Extent& rows, FootprintGroup& group, std::size_t at)
    {
        group.x[0][at] = columns.low;
        group.x[1][at] = columns.high;
        group.y[0][at] = rows.low;
        group.y[1][at] = rows.high;
    }

    /// What lies outside the input counts as the default pixel.
    void Preset(double* channels, double outside) const
    {
        for (int c = 0; c < kChannels; ++c)
            channels[c] = outside > 0 ? m_source.defaultPixel[c] * outside : 0;
    }

    void Flush(Group& group, FootprintKernel kernel)
    {
        if (group.count == 0) return;
        for (std::size_t i = group.count; i < kFootprintGroup; ++i)
            CopyLast(group, i);
        FootprintSums sums;
        for (std::size_t i = 0; i < kFootprintGroup; ++i) {
            Preset(sums.channels[i], group.outside[i]);
            sums.weights[i] = 0;
        }
        kernel(group.shapes, m_picture, sums);
        for (std::size_t i = 0; i < group.count; ++i)
            Store(sums.channels[i], group.outside[i] + sums.weights[i], group.index[i]);
        group.count = 0;
    }

    /// The unused end of a group: as the last one, whose sums nobody reads.
    static void CopyLast(Group& group, std::size_t at)
    {
        FootprintGroup& shapes = group.shapes;
        const std::size_t last = group.count - 1;
        for (int i = 0; i < 4; ++i) {
            shapes.x[i][at] = shapes.x[i][last];
            shapes.y[i][at] = shapes.y[i][last];
        }
        shapes.sign[at] = shapes.sign[last];
        shapes.top[at] = shapes.top[last];
        shapes.bottom[at] = shapes.bottom[last];
        group.outside[at] = 0;
    }

    void SumAlone(const Measured& measured, const Extent& rows, std::size_t index)
    {
        const Footprint& footprint = measured.footprint;
        double channels[kChannels];
        double weight = 0;
        Preset(channels, measured.Outside());
        SumPolygon<Sample, kChannels>(
            {footprint.x, footprint.y, footprint.count, measured.Sign(), FirstRow(rows), LastRow(rows)},
            m_picture, channels, weight);
        Store(channels, measured.Outside() + weight, index);
    }

    void Store(const double* channels, double total, std::size_t index)
    {
        if (!(total > 0)) {
            SetDefault(index);
            return;
        }
        constexpr double kFull = Arith<Sample>::kFull;
        const double share = 1 / total;
        for (int c = 0; c < kChannels; ++c) {
            const double mean = channels[c] * share;
            PixelAt(index)[c] = static_cast<Sample>(mean > 0 ? std::min(mean, kFull) : 0);
        }
    }

    const Source& m_source;
    const FootprintRows& m_rows;
    Sample* m_sums;
    FootprintPicture m_picture;
    Group m_quads, m_boxes;
};

} // namespace

bool NeedsCut(const double x[4], const double y[4], const double w[4], const FootprintPlanes& planes)
{
    return Corners(x, y, w).Cut(planes.planes, planes.first);
}

Footprint MakeFootprint(const double x[4], const double y[4], const double w[4],
                        const FootprintPlanes* planes)
{
    const Corners corners(x, y, w);
    if (planes == nullptr) return Divided(corners, 1);
    Corners cut = corners;
    cut.Cut(planes->planes, planes->first);
    double area = cut.Area();
    if (area == 0 && planes->second > 0) {
        cut = corners;
        cut.Cut(planes->planes + planes->first, planes->second);
        area = cut.Area();
    }
    return Divided(cut, area / corners.Area());
}

template <class Source>
void SumFootprints(const Footprint* footprints, std::size_t count, const Source& source, bool useVectors,
                   typename Source::Sample* sums, double* areas)
{
    const bool isEmpty = source.right < source.left || source.bottom < source.top;
    Summing<Source> summing(source, useVectors, sums);
    for (std::size_t i = 0; i < count; ++i) {
        const Measured measured(footprints[i]);
        areas[i] = isEmpty ? -1 : measured.whole;
        if (areas[i] < 0)
            summing.SetDefault(i);
        else if (areas[i] > 0.5)
            summing.Add(measured, i);
    }
    summing.Finish();
}

template void SumFootprints(const Footprint*, std::size_t, const FootprintSource<std::uint8_t, 1>&, bool,
                            std::uint8_t*, double*);
template void SumFootprints(const Footprint*, std::size_t, const FootprintSource<std::uint8_t, 4>&, bool,
                            std::uint8_t*, double*);
template void SumFootprints(const Footprint*, std::size_t, const FootprintSource<std::uint16_t, 1>&, bool,
                            std::uint16_t*, double*);
template void SumFootprints(const Footprint*, std::size_t, const FootprintSource<std::uint16_t, 4>&, bool,
                            std::uint16_t*, double*);

} // namespace vfil
