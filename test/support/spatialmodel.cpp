#include "support/spatialmodel.h"

#include "support/layermodel.h"

namespace vfil::test {

long EdgeIndex(vfILEdgeMode mode, long i, long size)
{
    while (i < 0 || i >= size) {
        if (mode == VFIL_EDGE_COLOR) return -1;
        if (mode == VFIL_EDGE_WRAP) i += i < 0 ? size : -size;
        if (mode == VFIL_EDGE_CLAMP) i += i < 0 ? 1 : -1;
        if (mode == VFIL_EDGE_MIRROR) i = (i < 0 ? 0 : 2 * size) - 1 - i;
    }
    return i;
}

Snapshot ModelSpatialRun(const SpatialCase& run, const GuardedImage& input, const GuardedImage& output,
                         const WindowRule& rule)
{
    const FormatCase& format = input.Format();
    const Snapshot before(input);
    GuardedImage filtered(format.id, input.Width(), input.Height());
    for (long y = 0; y < input.Height(); ++y)
        for (long x = 0; x < input.Width(); ++x) {
            Pixel pixel{};
            for (std::size_t c = 0; c < static_cast<std::size_t>(format.channels); ++c)
                pixel[c] = rule([&](long dx, long dy) {
                    const long sx = EdgeIndex(run.edgeMode, x - run.radiusX + dx, before.width);
                    const long sy = EdgeIndex(run.edgeMode, y - run.radiusY + dy, before.height);
                    return sx < 0 || sy < 0 ? run.edgePixel[c] : before.At(sx, sy)[c];
                });
            filtered.Set(x, y, pixel);
        }
    return ModelRun(run.regions, input, filtered, output, [&](const Pixel& p, const Pixel& q, int mask) {
        return SelectAndMix(format.Full(), format.channels, run.regions.mode, p, q, mask);
    });
}

} // namespace vfil::test
