/// \file
/// Our filters, over whole pictures. The edge is the nearest pixel, as most peers have it.
#include "filters.h"

#include <vfil/blur.h>
#include <vfil/edges.h>
#include <vfil/morphology.h>
#include <vfil/rank.h>

namespace bench {

namespace {

/// tune(processor) sets what is not the default.
template <class Processor, class Tune>
void AddFilter(const std::string& operation, const Layout& layout, Tune tune)
{
    Add(operation, kOurs, [format = layout.format, tune](const Frame& frame) mutable {
        Processor processor;
        processor.SetInputImg(&frame.Photo(format));
        processor.SetOutputImg(&frame.Out(format));
        processor.SetProcessingMode(15);
        processor.SetEdgeMode(VFIL_EDGE_CLAMP);
        tune(processor);
        Execute(processor);
    });
}

void AddConvolution(const char* filter, Kernel makeKernel(int), const Layout& layout)
{
    for (const int radius : kConvolutionRadii) {
        AddFilter<vfILConvolveImg>(Sized(filter, radius, layout), layout,
                                   [radius, kernel = makeKernel(radius).Scaled()](auto& convolve) mutable {
                                       convolve.SetKernel(kernel.data(), static_cast<float>(radius));
                                   });
    }
}

void AddBlur(const std::string& operation, vfILBlurType type, int radius, const Layout& layout)
{
    AddFilter<vfILBlurImg>(operation, layout, [=](auto& blur) {
        blur.SetType(type);
        blur.SetRadius(static_cast<float>(radius));
    });
}

template <class Processor>
void AddMorphology(const char* filter, const Layout& layout)
{
    for (const int radius : kMorphologyRadii) {
        AddFilter<Processor>(Sized(filter, radius, layout), layout, [radius](auto& processor) {
            const auto reach = static_cast<float>(radius);
            processor.SetStructuringElement(VFIL_STRUCT_RECTANGLE, 1, reach, reach, 0, 0);
            processor.SetMode(vfILMorphologyMode{1});
        });
    }
}

struct Recursive {
    const char* name;
    vfILBlurType type;
};
constexpr Recursive kRecursive[] = {{"exponential", VFIL_BLUR_EXPONENTIAL},
                                    {"exponential float", VFIL_BLUR_EXPONENTIAL_FLOAT},
                                    {"fast gauss", VFIL_BLUR_FAST_GAUSS},
                                    {"fast gauss float", VFIL_BLUR_FAST_GAUSS_FLOAT}};

/// By ourselves: nobody does the same.
void AddRecursive()
{
    for (const Recursive& blur : kRecursive) {
        for (const int radius : {5, 20, 100})
            AddBlur(Named(std::string(blur.name) + " radius " + std::to_string(radius), kRgba8), blur.type,
                    radius, kRgba8);
    }
}

/// Windows are ellipses: of radius 1 a cross, of 3 29 pixels, of 8 197.
template <class Processor>
void AddRank(const std::string& filter)
{
    for (const int radius : {1, 3, 8})
        AddFilter<Processor>(Named(filter + " radius " + std::to_string(radius), kRgba8), kRgba8,
                             [radius](auto& rank) { rank.SetRadius(static_cast<float>(radius)); });
}

/// Beside the peers the window is their square, as far as an ellipse can be one: a fraction of the radius
/// takes the corners in, but for those of 7x7. Ours chooses whole pixels by brightness, theirs each channel
/// by itself; on mono pictures that is the same.
void AddMedians(const Layout& layout)
{
    for (const int radius : kMedianRadii)
        AddFilter<vfILMedianRankImg>(Sized(kMedian, radius, layout), layout, [radius](auto& median) {
            median.SetRadius(static_cast<float>(radius) + 0.99F);
        });
}

void AddEdges(const Layout& layout)
{
    AddFilter<vfILSobelImg>(Named(kSobel, layout), layout, [](auto&) {});
    AddFilter<vfILLaplaceImg>(Named(kLaplaceSquare, layout), layout, [](auto&) {});
    AddFilter<vfILLaplaceImg>(Named(kLaplaceDiamond, layout), layout,
                              [](auto& laplace) { laplace.SetType(VFIL_LAPLACE_DIAMOND); });
}

void AddReliefs()
{
    for (const unsigned long directions : {1UL, 255UL}) {
        const std::string ending = directions == 1 ? " east" : " all directions";
        const auto tune = [directions](auto& relief) { relief.SetDirection(directions); };
        AddFilter<vfILGradientImg>(Named("gradient" + ending, kRgba8), kRgba8, tune);
        AddFilter<vfILEmbossImg>(Named("emboss" + ending, kRgba8), kRgba8, tune);
    }
    for (const vfILSharpenType type : {VFIL_SHARPEN_PLAIN, VFIL_SHARPEN_EDGES})
        AddFilter<vfILSharpenImg>(Named(type == VFIL_SHARPEN_PLAIN ? "sharpen" : "sharpen edges", kRgba8),
                                  kRgba8, [type](auto& sharpen) {
                                      sharpen.SetType(type);
                                      sharpen.SetRadius(1);
                                      sharpen.SetEdgeSensitivity(0.5);
                                  });
}

} // namespace

void AddFilters()
{
    for (const Layout& layout : kLayouts) {
        AddConvolution(kConvolve, NoiseKernel, layout);
        AddConvolution(kConvolveSeparable, TriangleKernel, layout);
        for (const int radius : kBlurRadii) {
            AddBlur(Sized(kGauss, radius, layout), VFIL_BLUR_GAUSS, radius, layout);
            if (layout.format != kRgba16.format)
                AddBlur(Sized(kBox, radius, layout), VFIL_BLUR_BOX, radius, layout);
        }
        AddMorphology<vfILErodeImg>(kErode, layout);
        AddMorphology<vfILDilateImg>(kDilate, layout);
    }
    for (const Layout& layout : {kRgba8, kMono8}) {
        AddMedians(layout);
        AddEdges(layout);
    }
    AddRecursive();
    AddRank<vfILMaxRankImg>("rank max");
    AddRank<vfILMinRankImg>("rank min");
    AddRank<vfILMedianRankImg>("rank median");
    AddRank<vfILSelectiveRankImg>("rank selective");
    AddReliefs();
}

} // namespace bench
