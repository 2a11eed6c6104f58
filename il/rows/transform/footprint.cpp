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

/// Makes the polygon of homogeneous vertices.
void Divide(long count, const double* x, const double* y, const double* w, double inside,
            Footprint& footprint)
{
    footprint.count = 0;
    footprint.inside = 0;
    for (long i = 0; i < count; ++i) {
        if (w[i] >= -kTiny && w[i] <= kTiny) return;
        footprint.x[i] = w[i] == 1 ? x[i] : x[i] / w[i];
        footprint.y[i] = w[i] == 1 ? y[i] : y[i] / w[i];
    }
    footprint.count = count;
    footprint.inside = inside;
}

/// From the differences of the vertices: without that the products of a small footprint far from 0 would
/// cancel.
double SignedArea(const Footprint& f)
{
    if (f.count == 4)
        return ((f.x[2] - f.x[0]) * (f.y[3] - f.y[1]) - (f.x[3] - f.x[1]) * (f.y[2] - f.y[0])) * 0.5;
    double sum = 0;
    for (long i = 2; i < f.count; ++i)
        sum += (f.x[i - 1] - f.x[0]) * (f.y[i] - f.y[0]) - (f.x[i] - f.x[0]) * (f.y[i - 1] - f.y[0]);
    return sum * 0.5;
}

/// Whether four vertices are those of a box: each side is upright or level.
bool IsBox(const Footprint& f)
{
    return (f.y[0] == f.y[1] && f.x[1] == f.x[2] && f.y[2] == f.y[3] && f.x[3] == f.x[0]) ||
           (f.x[0] == f.x[1] && f.y[1] == f.y[2] && f.x[2] == f.x[3] && f.y[3] == f.y[0]);
}

enum class Shape { Quad, Box, Other };

Shape KindOf(const Footprint& f)
{
    if (f.count != 4) return Shape::Other;
    double reach = 0;
    for (int i = 0; i < 4; ++i)
        reach += std::fabs(f.x[i]) + std::fabs(f.y[i]);
    if (!(reach < kFar)) return Shape::Other;
    return IsBox(f) ? Shape::Box : Shape::Quad;
}

/// A footprint and its area.
struct Measured {
    const Footprint& footprint;
    double signedArea;
    double area;  ///< in the input
    double whole; ///< with what cutting took away; -1 for a footprint that sees nothing, or overflows

    explicit Measured(const Footprint& f)
        : footprint(f), signedArea(SignedArea(f)), area(std::fabs(signedArea)), whole(-1)
    {
        if (f.count < 3 || !(f.inside > kTiny)) return;
        whole = f.inside == 1 ? area : area / f.inside;
        if (!std::isfinite(whole)) whole = -1;
    }
    double Outside() const { return whole - area; }
    double Sign() const { return signedArea < 0 ? -1 : 1; }
};

/// Sums footprints, which wait until a group of the same kind is full.
template <class Source>
class Summing {
    using Sample = typename Source::Sample;
    static constexpr int kChannels = Source::kChannels;

public:
    Summing(const Source& source, bool useVectors, Sample* sums)
        : m_source(source), m_rows(FindFootprintRows(useVectors)),
          m_sums(sums), m_picture{source.base, source.rowBytes, source.left,
                                  source.top,  source.right,    source.bottom}
    {}
    void Add(const Measured& measured, std::size_t index)
    {
        const Shape kind = KindOf(measured.footprint);
        if (kind == Shape::Other) {
            SumAlone(measured, index);
            return;
        }
        Group& group = kind == Shape::Quad ? m_quads : m_boxes;
        for (int i = 0; i < 4; ++i) {
            group.shapes.x[i][group.count] = measured.footprint.x[i];
            group.shapes.y[i][group.count] = measured.footprint.y[i];
        }
        group.shapes.sign[group.count] = measured.Sign();
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
        group.outside[at] = 0;
    }

    void SumAlone(const Measured& measured, std::size_t index)
    {
        const Footprint& footprint = measured.footprint;
        double channels[kChannels];
        double weight = 0;
        Preset(channels, measured.Outside());
        SumPolygon<Sample, kChannels>({footprint.x, footprint.y, footprint.count, measured.Sign()}, m_picture,
                                      channels, weight);
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

void MakeFootprint(const double x[4], const double y[4], const double w[4], const FootprintPlanes* planes,
                   Footprint& footprint)
{
    if (planes == nullptr) {
        Divide(4, x, y, w, 1, footprint);
        return;
    }
    const Corners corners(x, y, w);
    Corners cut = corners;
    cut.Cut(planes->planes, planes->first);
    double area = cut.Area();
    if (area == 0 && planes->second > 0) {
        cut = corners;
        cut.Cut(planes->planes + planes->first, planes->second);
        area = cut.Area();
    }
    Divide(cut.count, cut.x, cut.y, cut.w, area / corners.Area(), footprint);
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
