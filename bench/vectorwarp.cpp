/// \file
/// Our vector warp, over whole pictures, and the fields that it is measured with.
#include "warps.h"

#include <vfil/vectorwarp.h>

#include <cmath>

namespace bench {

namespace {

Vectors MakeWaves()
{
    Vectors vectors;
    for (std::size_t i = 0; i < kPixels; ++i) {
        const auto x = static_cast<double>(i % kWidth);
        const auto y = static_cast<double>(i / kWidth);
        vectors.x.push_back(3 * std::sin(x * 0.01 + y * 0.02) + 1.3);
        vectors.y.push_back(4 * std::cos(x * 0.013 - y * 0.011) + 0.7);
    }
    return vectors;
}

void AddWarp(const std::string& operation, const Layout& layout, const Vectors& (*vectors)(), int approximate)
{
    Add(Named(operation, layout), kOurs, [format = layout.format, vectors, approximate](const Frame& frame) {
        vfILVectorWarp warp;
        warp.SetInputImg(&frame.Photo(format));
        warp.SetOutputImg(&frame.Out(format));
        warp.SetProcessingMode(15);
        warp.SetVectors(vectors().x.data(), vectors().y.data());
        warp.SetFastApproximation(approximate);
        Execute(warp);
    });
}

void AddWarps()
{
    for (const Layout& layout : {kRgba8, kMono8}) {
        AddWarp(kWarpBilinear, layout, Waves, 1);
        AddWarp("vector warp, by cell", layout, Waves, 0);
        AddWarp("vector warp, by cell, still", layout, Stillness, 0);
    }
}

const Source s_source(AddWarps);

} // namespace

const Vectors& Waves()
{
    static const Vectors vectors = MakeWaves();
    return vectors;
}

const Vectors& Stillness()
{
    static const Vectors vectors{std::vector<double>(kPixels), std::vector<double>(kPixels)};
    return vectors;
}

} // namespace bench
