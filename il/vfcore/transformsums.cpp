/// \file
/// The frame of the transforms of one input: its line function that sums footprints.

#include "il/loops/frame/rowloop.h"
#include "il/loops/transform/sampling.h"
#include "il/rows/transform/footprint.h"

#include <vfil/transform.h>

#include <algorithm>
#include <cstring>
#include <limits>

using namespace vfil;

namespace {

/// The points at the centres of some pixels, sampled when the first of them is asked for.
template <class Sample, int samples>
class CentreSamples {
public:
    CentreSamples(const SampleRow& row, const SampleSource& source, long count)
        : m_row(row), m_source(source), m_count(count)
    {}
    /// \param mapCentres  Writes all centres' places to (u, v).
    template <class MapCentres>
    void Write(std::size_t i, Sample* pixel, MapCentres mapCentres)
    {
        if (!m_sampled) {
            double u[kMostFootprints];
            double v[kMostFootprints];
            mapCentres(u, v);
            m_row(m_source, u, v, static_cast<std::size_t>(m_count),
                  reinterpret_cast<unsigned char*>(m_samples));
            m_sampled = true;
        }
        std::copy_n(m_samples + i * samples, samples, pixel);
    }

private:
    const SampleRow& m_row;
    const SampleSource& m_source;
    long m_count;
    bool m_sampled = false;
    Sample m_samples[kMostFootprints * samples];
};

} // namespace

/// The planes that bound what the crop leaves, by those of a picture of its size.
long vfILMonadicTransformProc::ClipPlanes(unsigned long first, unsigned long count, double (*planes)[4])
{
    const vfILBbox2l& box = m_run.sourceBox;
    const auto most = static_cast<unsigned long>(FootprintPlanes::kMost);
    for (unsigned long i = 0; i < std::min(count, most); ++i) {
        double* const plane = planes[i];
        GetClipPlaneCoefficients(first + i, box.GetSizeX(), box.GetSizeY(), plane[0], plane[1], plane[2],
                                 plane[3]);
        plane[2] -= plane[0] * static_cast<double>(box.GetOffsetX()) +
                    plane[1] * static_cast<double>(box.GetOffsetY());
    }
    return static_cast<long>(std::min(count, most));
}

void vfILMonadicTransformProc::MapCorner(double x, double y, double& u, double& v, double& w)
{
    float fx = static_cast<float>(x);
    float fy = static_cast<float>(y);
    float fw = 1;
    InvertTransformPointXYZ(fx, fy, fw);
    u = fx;
    v = fy;
    w = fw;
}

/// The corners of an output pixel's footprint, in homogeneous coordinates of the input, in order around it.
struct vfILMonadicTransformProc::Corners {
    double x[4], y[4], w[4];
    /// Where corners 1 and 2 were mapped from.
    double right = std::numeric_limits<double>::quiet_NaN();
};

/// Maps the corners of left .. right, of which the last footprint may have had the left ones.
void vfILMonadicTransformProc::MapCorners(double left, double right, double low, double high,
                                          Corners& corners)
{
    constexpr int kOpposite[] = {1, 0, 3, 2};
    const bool known = left == corners.right;
    for (const int i : {0, 3}) {
        if (known) {
            corners.x[i] = corners.x[kOpposite[i]];
            corners.y[i] = corners.y[kOpposite[i]];
            corners.w[i] = corners.w[kOpposite[i]];
        } else {
            MapCorner(left, i == 0 ? low : high, corners.x[i], corners.y[i], corners.w[i]);
        }
    }
    MapCorner(right, low, corners.x[1], corners.y[1], corners.w[1]);
    MapCorner(right, high, corners.x[2], corners.y[2], corners.w[2]);
    corners.right = right;
}

template <class Format>
void vfILMonadicTransformProc::SumLine(const vfILVector2f& start, long width, double half,
                                       const FootprintPlanes* planes, unsigned char* output)
{
    using Sample = typename Format::Sample;
    constexpr auto kBlock = static_cast<long>(kMostFootprints);
    const bool vectors = m_simdAvailable != 0;
    const SampleRow row =
        FindSampleRow(vectors, SampleFormOf(m_interpolationType), SamplePixelOf(m_run.output));
    const SampleSource sampled = SourceOf(m_run);
    FootprintSource<Sample, Format::kChannels> source{sampled.pixels,
                                                      sampled.rowBytes,
                                                      sampled.left,
                                                      sampled.bottom,
                                                      sampled.right - 1,
                                                      sampled.top - 1,
                                                      {}};
    std::memcpy(source.defaultPixel, sampled.defaultPixel, sizeof source.defaultPixel);
    auto* const out = reinterpret_cast<Sample*>(output);
    Footprint footprints[kMostFootprints];
    Corners corners;
    const double low = start[1] - half;
    const double high = start[1] + half;
    for (long at = 0; at < width; at += kBlock) {
        const long count = std::min(kBlock, width - at);
        const double x = start[0] + static_cast<double>(at);
        const FootprintPlanes* cut = planes;
        if (cut != nullptr && m_keepsLines) {
            // As of the whole line: of most blocks nothing needs a cut.
            Corners block;
            MapCorners(x - half, x + static_cast<double>(count - 1) + half, low, high, block);
            if (!NeedsCut(block.x, block.y, block.w, *cut)) cut = nullptr;
        }
        for (long i = 0; i < count; ++i) {
            const double centre = x + static_cast<double>(i);
            MapCorners(centre - half, centre + half, low, high, corners);
            MakeFootprint(corners.x, corners.y, corners.w, cut, footprints[i]);
        }
        CentreSamples<Sample, Format::kChannels> centres(row, sampled, count);
        const auto mapCentres = [&](double* u, double* v) {
            MapRow(start[0] + static_cast<float>(at), start[1], count, u, v);
        };
        FootprintPixels(
            footprints, static_cast<std::size_t>(count), source, vectors,
            [&](std::size_t i, Sample* pixel) { centres.Write(i, pixel, mapCentres); },
            out + at * Format::kChannels);
    }
}

void vfILMonadicTransformProc::TransformLineWithPixelSumming(const vfILVector2f& start, long width,
                                                             unsigned char* output)
{
    // Further than pictures reach, where numbers of a float stay apart.
    constexpr double kMostHalf = 0x1p24;
    const double half = std::min(m_filteringLevel * 0.25 + 0.5, kMostHalf);
    double planes[2 * FootprintPlanes::kMost][4];
    unsigned long first = 0;
    unsigned long second = 0;
    GetNumClipPlanes(first, second);
    FootprintPlanes bounds{planes, 0, 0};
    bounds.first = ClipPlanes(0, first, planes);
    bounds.second = ClipPlanes(first, second, planes + bounds.first);
    Corners line;
    MapCorners(start[0] - half, start[0] + static_cast<double>(width - 1) + half, start[1] - half,
               start[1] + half, line);
    // When the whole line's needs no cut, none of its pixels' does.
    const FootprintPlanes* const cut = NeedsCut(line.x, line.y, line.w, bounds) ? &bounds : nullptr;
    PointFormats::Visit(m_run.output.format->id,
                        [&](auto format) { SumLine<decltype(format)>(start, width, half, cut, output); });
}
