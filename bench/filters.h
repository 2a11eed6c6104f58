/// \file
/// The filters that are measured, for those who add them: their sizes, formats, names and kernels.
#pragma once

#include "frames.h"

#include <array>

namespace bench {

struct Layout {
    const char* name;
    GUID format;
};
inline constexpr Layout kRgba8{"rgba8", PXFormat_RGBA32};
inline constexpr Layout kRgba16{"rgba16", PXFormat_RGBA64};
inline constexpr Layout kMono8{"mono8", PXFormat_Mono8};
inline constexpr std::array kLayouts = {kRgba8, kRgba16, kMono8};

// A filter of radius r has a window of 2r + 1 pixels a side.
inline constexpr std::array kConvolutionRadii = {1, 2, 7};
inline constexpr std::array kBlurRadii = {3, 10, 30};
inline constexpr std::array kMorphologyRadii = {1, 5};
inline constexpr std::array kMedianRadii = {1, 2, 3};

inline constexpr char kConvolve[] = "convolve";
inline constexpr char kConvolveSeparable[] = "convolve separable";
inline constexpr char kGauss[] = "gauss";
inline constexpr char kBox[] = "box";
inline constexpr char kErode[] = "erode";
inline constexpr char kDilate[] = "dilate";
inline constexpr char kMedian[] = "median";
inline constexpr char kSobel[] = "sobel";
inline constexpr char kLaplaceSquare[] = "laplace square";
inline constexpr char kLaplaceDiamond[] = "laplace diamond";

/// "erode 3x3, rgba8".
std::string Sized(const std::string& filter, int radius, const Layout& layout);
/// "sobel, rgba8".
std::string Named(const std::string& filter, const Layout& layout);

/// Whole weights, and what divides their sum of products: the form that all peers can be given.
struct Kernel {
    std::vector<double> weights;
    double divisor;

    /// The weights as a caller of ours gives them.
    std::vector<float> Scaled() const;
};

/// A kernel that isn't separable.
Kernel NoiseKernel(int radius);
/// A row that rises to its middle and falls, as a column too.
Kernel TriangleRow(int radius);
/// The same row times itself as a column.
Kernel TriangleKernel(int radius);
inline constexpr std::array<double, 9> kSquareWeights = {-1, -1, -1, -1, 8, -1, -1, -1, -1};
inline constexpr std::array<double, 9> kDiamondWeights = {0, -1, 0, -1, 4, -1, 0, -1, 0};

inline constexpr std::array kMatrixSizes = {3, 9, 50};
/// "svd 3x3, us".
std::string SvdName(int size);
/// A square matrix of full rank by rows: values between -1 and 1.
std::vector<double> NoiseMatrix(int size);

} // namespace bench
