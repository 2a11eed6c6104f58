/// \file
/// Filters by libvips, in its integer forms, with one worker and without its cache. Pipelines are built for
/// each frame, since they are bound to its memory, and write into ours. Left out is what version 8.14 gets
/// wrong for bytes: ranks in windows beyond 3x3, and the square Laplacian, whose weights its vector form
/// rounds to nothing. Its approximate form of Gaussians takes longer than the integer one.
#include "bench/filters.h"

#include <vips/vips.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace bench {

namespace {

using Image = std::shared_ptr<VipsImage>;

Image Own(VipsImage* image)
{
    if (image != nullptr) return {image, [](VipsImage* owned) { g_object_unref(owned); }};
    std::fprintf(stderr, "libvips refused: %s\n", vips_error_buffer());
    std::abort();
}

VipsBandFormat SamplesOf(const Layout& layout)
{
    return layout.format == kRgba16.format ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR;
}

Image Wrap(vfil::host::Picture& picture, const Layout& layout)
{
    return Own(vips_image_new_from_memory(picture.Pixels(), picture.Bytes(), kWidth, kHeight,
                                          layout.format == kMono8.format ? 1 : 4, SamplesOf(layout)));
}

Image Matrix(const Kernel& kernel, int width, int height)
{
    Image matrix = Own(vips_image_new_matrix_from_array(width, height, kernel.weights.data(),
                                                        static_cast<int>(kernel.weights.size())));
    vips_image_set_double(matrix.get(), "scale", kernel.divisor);
    return matrix;
}

/// call(in, &result).
template <class Call>
void AddCall(const std::string& operation, const Layout& layout, Call call)
{
    Add(operation, "libvips", [layout, call](const Frame& frame) {
        const Image in = Wrap(frame.Photo(layout.format), layout);
        const Image out = Wrap(frame.Out(layout.format), layout);
        VipsImage* result = nullptr;
        call(in.get(), &result);
        if (vips_image_write(Own(result).get(), out.get()) != 0) Own(nullptr);
    });
}

/// call(in, &result, radius).
template <class Radii, class Call>
void AddSizes(const char* filter, const Radii& radii, const Layout& layout, Call call)
{
    for (const int radius : radii)
        AddCall(Sized(filter, radius, layout), layout,
                [radius, call](VipsImage* in, VipsImage** result) { call(in, result, radius); });
}

void AddMatrix(const std::string& operation, const Layout& layout, const Kernel& kernel, int side)
{
    AddCall(operation, layout, [matrix = Matrix(kernel, side, side)](VipsImage* in, VipsImage** result) {
        vips_conv(in, result, matrix.get(), "precision", VIPS_PRECISION_INTEGER, nullptr);
    });
}

void AddConvolutions(const Layout& layout)
{
    for (const int radius : kConvolutionRadii) {
        const int side = 2 * radius + 1;
        AddMatrix(Sized(kConvolve, radius, layout), layout, NoiseKernel(radius), side);
        AddCall(Sized(kConvolveSeparable, radius, layout), layout,
                [row = Matrix(TriangleRow(radius), side, 1)](VipsImage* in, VipsImage** result) {
                    vips_convsep(in, result, row.get(), "precision", VIPS_PRECISION_INTEGER, nullptr);
                });
    }
}

/// Like ours it ends at one sigma: there the weight is 0.607 of the middle's.
void Gauss(VipsImage* in, VipsImage** result, int radius)
{
    vips_gaussblur(in, result, radius, "min_ampl", 0.6, nullptr);
}

/// It has no erosion of gray, but the first and the last of a window's samples are the same.
template <class Choose> // the index among the samples, of their count
auto Rank(Choose choose)
{
    return [choose](VipsImage* in, VipsImage** result, int radius) {
        const int side = 2 * radius + 1;
        vips_rank(in, result, side, side, choose(side * side), nullptr);
    };
}

void AddVips()
{
    if (VIPS_INIT("bench") != 0) return;
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    const auto first = Rank([](int) { return 0; });
    const auto last = Rank([](int count) { return count - 1; });
    for (const Layout& layout : kLayouts) {
        AddConvolutions(layout);
        AddSizes(kGauss, kBlurRadii, layout, Gauss);
        AddSizes(kErode, std::array{1}, layout, first);
        AddSizes(kDilate, std::array{1}, layout, last);
    }
    for (const Layout& layout : {kRgba8, kMono8}) {
        const Kernel diamond{{kDiamondWeights.begin(), kDiamondWeights.end()}, 1};
        AddMatrix(Named(kLaplaceDiamond, layout), layout, diamond, 3);
        AddCall(Named(kSobel, layout), layout,
                [](VipsImage* in, VipsImage** result) { vips_sobel(in, result, nullptr); });
        AddSizes(kMedian, std::array{1}, layout, Rank([](int count) { return count / 2; }));
    }
}

const Source s_source(AddVips);

} // namespace
} // namespace bench
