/// \file
/// Our convolutions and blurs, over whole pictures. The edge is the nearest pixel, as most peers have it.
#include "filterbench.h"

#include <vfil/blur.h>

namespace bench {

namespace {

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

void AddBlurs()
{
    for (const Layout& layout : kLayouts) {
        AddConvolution(kConvolve, NoiseKernel, layout);
        AddConvolution(kConvolveSeparable, TriangleKernel, layout);
        for (const int radius : kBlurRadii) {
            AddBlur(Sized(kGauss, radius, layout), VFIL_BLUR_GAUSS, radius, layout);
            if (layout.format != kRgba16.format)
                AddBlur(Sized(kBox, radius, layout), VFIL_BLUR_BOX, radius, layout);
        }
    }
    AddRecursive();
}

const Source s_source(AddBlurs);

} // namespace
} // namespace bench
