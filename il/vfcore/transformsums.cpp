/// \file
/// The frame of the transforms of one input: its line function that sums footprints.

#include "il/loops/frame/rowloop.h"
#include "il/loops/transform/sampling.h"
#include "il/rows/transform/footprint.h"

#include <vfil/transform.h>

#include <algorithm>
#include <cstring>

using namespace vfil;

namespace {

/// The corners of an output pixel's footprint, in homogeneous coordinates of the input, in order around it.
struct Corners {
    double x[4], y[4], w[4];
};

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

void vfILMonadicTransformProc::TransformLineWithPixelSumming(const vfILVector2f& start, long width,
                                                             unsigned char* output)
{
    // Further than pictures reach, where numbers of a float stay apart.
    constexpr double kMostHalf = 0x1p24;
    const double half = std::min(m_filteringLevel * 0.25 + 0.5, kMostHalf);
    const double x = start[0];
    const double low = start[1] - half;
    const double high = start[1] + half;
    const auto corners = [&](double left, double right, Corners& to) {
        MapCorner(left, low, to.x[0], to.y[0], to.w[0]);
        MapCorner(right, low, to.x[1], to.y[1], to.w[1]);
        MapCorner(right, high, to.x[2], to.y[2], to.w[2]);
        MapCorner(left, high, to.x[3], to.y[3], to.w[3]);
    };
    double planes[2 * FootprintPlanes::kMost][4];
    unsigned long first = 0;
    unsigned long second = 0;
    GetNumClipPlanes(first, second);
    FootprintPlanes bounds{planes, 0, 0};
    bounds.first = ClipPlanes(0, first, planes);
    bounds.second = ClipPlanes(first, second, planes + bounds.first);
    Corners line{};
    corners(x - half, x + static_cast<double>(width - 1) + half, line);
    const FootprintPlanes* const cut = NeedsCut(line.x, line.y, line.w, bounds) ? &bounds : nullptr;

    const bool vectors = m_simdAvailable != 0;
    const SampleRow row =
        FindSampleRow(vectors, SampleFormOf(m_interpolationType), SamplePixelOf(m_run.output));
    const SampleSource sampled = SourceOf(m_run);
    // Neighbours share two corners of footprints that are not widened.
    const bool shares = half == 0.5;
    PointFormats::Visit(m_run.output.format->id, [&](auto format) {
        using Format = decltype(format);
        using Sample = typename Format::Sample;
        FootprintSource<Sample, Format::kChannels> source{sampled.pixels,
                                                          sampled.rowBytes,
                                                          sampled.left,
                                                          sampled.bottom,
                                                          sampled.right - 1,
                                                          sampled.top - 1,
                                                          {}};
        std::memcpy(source.defaultPixel, sampled.defaultPixel, sizeof source.defaultPixel);
        auto* out = reinterpret_cast<Sample*>(output);
        constexpr auto kBlock = static_cast<long>(kMostFootprints);
        Footprint footprints[kMostFootprints];
        Corners pixel{};
        for (long at = 0; at < width; at += kBlock) {
            const long count = std::min(kBlock, width - at);
            for (long i = 0; i < count; ++i) {
                const double centre = x + static_cast<double>(at + i);
                if (shares && at + i != 0) {
                    pixel.x[0] = pixel.x[1], pixel.y[0] = pixel.y[1], pixel.w[0] = pixel.w[1];
                    pixel.x[3] = pixel.x[2], pixel.y[3] = pixel.y[2], pixel.w[3] = pixel.w[2];
                    MapCorner(centre + half, low, pixel.x[1], pixel.y[1], pixel.w[1]);
                    MapCorner(centre + half, high, pixel.x[2], pixel.y[2], pixel.w[2]);
                } else {
                    corners(centre - half, centre + half, pixel);
                }
                MakeFootprint(pixel.x, pixel.y, pixel.w, cut, footprints[i]);
            }
            CentreSamples<Sample, Format::kChannels> centres(row, sampled, count);
            FootprintPixels(
                footprints, static_cast<std::size_t>(count), source, vectors,
                [&](std::size_t i, Sample* to) {
                    centres.Write(i, to, [&](double* u, double* v) {
                        MapRow(start[0] + static_cast<float>(at), start[1], count, u, v);
                    });
                },
                out + at * Format::kChannels);
        }
    });
}
