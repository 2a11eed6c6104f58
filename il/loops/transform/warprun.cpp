/// \file
/// The warp of a picture along vectors.
#include "il/loops/transform/warprun.h"

#include "il/loops/frame/rowloop.h"

#include <cmath>
#include <cstring>

namespace vfil {

namespace {

constexpr std::size_t kBlock = WarpHits::kMost;

/// Collects hits, and writes them in their order.
template <std::size_t kPixelBytes>
class HitWriter {
public:
    explicit HitWriter(const WarpRun& run) : m_run(run), m_hits{} {}

    WarpHits& Hits() { return m_hits; }
    std::size_t Room() const { return kBlock - m_hits.count; }

    void Write()
    {
        unsigned char pixels[kBlock * kPixelBytes];
        m_run.sample(m_run.source, m_hits.u, m_hits.v, m_hits.count, pixels);
        const auto rowBytes = static_cast<std::size_t>(m_run.width) * kPixelBytes;
        for (std::size_t i = 0; i < m_hits.count; ++i) {
            const auto x = static_cast<std::size_t>(m_hits.x[i]);
            const auto y = static_cast<std::size_t>(m_hits.y[i]);
            std::memcpy(m_run.output + y * rowBytes + x * kPixelBytes, pixels + i * kPixelBytes, kPixelBytes);
        }
        m_hits.count = 0;
    }

private:
    const WarpRun& m_run;
    WarpHits m_hits;
};

/// The whole pixels of a coordinate around the corners, from 0 to \p last; none when one of them is no finite
/// number.
struct Extent {
    Extent(const double (&corners)[4], double last)
        : low(std::fmax(std::floor(*std::min_element(corners, corners + 4)), 0)),
          high(std::fmin(std::ceil(*std::max_element(corners, corners + 4)), last))
    {
        if (!std::all_of(corners, corners + 4, [](double c) { return std::isfinite(c); }))
            low = 0, high = -1; // a large low less 1 is what it was
    }

    double low, high;
};

/// A cell, pixel by pixel.
template <std::size_t kPixelBytes>
void TakeCell(const WarpCell& cell, const WarpCells& cells, const WarpPixelsKernel& kernel,
              HitWriter<kPixelBytes>& writer)
{
    const Extent rows(cell.targetY, cells.lastY);
    const Extent columns(cell.targetX, cells.lastX);
    if (rows.high < rows.low) return;
    for (double y = rows.low; y <= rows.high; y += 1)
        for (double x = columns.low; x <= columns.high;) {
            if (writer.Room() == 0) writer.Write();
            const double left = columns.high - x + 1;
            const auto pixels = static_cast<std::size_t>(std::min(left, static_cast<double>(writer.Room())));
            kernel(cell, x, y, pixels, writer.Hits());
            x += static_cast<double>(pixels);
        }
}

template <std::size_t kPixelBytes>
void TakeRow(const WarpCells& cells, const WarpRows& kernels, HitWriter<kPixelBytes>& writer)
{
    for (std::size_t next = 0; next < cells.count;) {
        next = kernels.cells(cells, next, writer.Hits());
        if (next == cells.count) break;
        if (writer.Room() < kBlock / 2)
            writer.Write();
        else
            TakeCell(CellOf(cells, next++), cells, kernels.pixels, writer);
    }
    writer.Write();
}

/// The whole output.
template <std::size_t kPixelBytes>
void Fill(const WarpRun& run, const unsigned char* pixel)
{
    const auto pixels = static_cast<std::size_t>(run.width) * static_cast<std::size_t>(run.height);
    for (std::size_t i = 0; i < pixels; ++i)
        std::memcpy(run.output + i * kPixelBytes, pixel, kPixelBytes);
}

} // namespace

template <std::size_t kPixelBytes>
void WarpByMesh(const vfILProcessor& processor, const WarpRun& run)
{
    static constexpr unsigned char kOpaqueBlack[] = {0, 0, 0, 255};
    Fill<kPixelBytes>(run, kOpaqueBlack);
    if (run.sourceWidth < 2) return;
    HitWriter<kPixelBytes> writer(run);
    ForEachRow(processor, run.sourceHeight - 1, [&](long row) {
        const std::ptrdiff_t below = std::ptrdiff_t{row} * run.sourceWidth;
        const std::ptrdiff_t above = below + run.sourceWidth;
        const WarpCells cells{.x = {run.vectorsX + below, run.vectorsX + above},
                              .y = {run.vectorsY + below, run.vectorsY + above},
                              .count = static_cast<std::size_t>(run.sourceWidth) - 1,
                              .row = static_cast<double>(row),
                              .source = run.first,
                              .target = run.second,
                              .lastX = static_cast<double>(run.width - 1),
                              .lastY = static_cast<double>(run.height - 1)};
        TakeRow(cells, *run.kernels, writer);
    });
}

template <std::size_t kPixelBytes>
void WarpByPixel(const vfILProcessor& processor, const WarpRun& run)
{
    const long width = std::min(run.width, run.sourceWidth);
    const long height = std::min(run.height, run.sourceHeight);
    const double factor = run.first - run.second;
    if (width < run.width || height < run.height) Fill<kPixelBytes>(run, run.source.defaultPixel);
    ForEachRow(processor, height, [&](long row) {
        const std::ptrdiff_t vectors = std::ptrdiff_t{row} * run.sourceWidth;
        unsigned char* const output = run.output + std::ptrdiff_t{row} * run.width * kPixelBytes;
        for (long x = 0; x < width; x += kBlock) {
            const std::size_t pixels = std::min(static_cast<std::size_t>(width - x), kBlock);
            double u[kBlock], v[kBlock];
            run.kernels->shift(run.vectorsX + vectors + x, run.vectorsY + vectors + x, factor,
                               static_cast<double>(x), static_cast<double>(row), pixels, u, v);
            run.sample(run.source, u, v, pixels, output + x * std::ptrdiff_t{kPixelBytes});
        }
    });
}

template void WarpByMesh<1>(const vfILProcessor& processor, const WarpRun& run);
template void WarpByMesh<4>(const vfILProcessor& processor, const WarpRun& run);
template void WarpByPixel<1>(const vfILProcessor& processor, const WarpRun& run);
template void WarpByPixel<4>(const vfILProcessor& processor, const WarpRun& run);

} // namespace vfil
