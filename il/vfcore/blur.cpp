/// \file
/// Blurs: what each type is made of. The box and the recursive types have sources of their own.

#include "il/loops/frame/copyinstead.h"
#include "il/loops/frame/runarray.h"
#include "il/loops/frame/windowloop.h"

#include <vfil/blur.h>

#include <cmath>
#include <limits>
#include <numeric>

using namespace vfil;

namespace {

using BoxFormats = FormatList<Rgba8, Mono8>;

/// A Gaussian from -radius to radius, of sum 1.
void FillGaussian(double* weights, long radius, double sigma)
{
    const double inverse = sigma == 0 ? 0 : 1 / sigma;
    double* weight = weights;
    for (long x = -radius; x <= radius; ++x) {
        const auto square = static_cast<double>(x) * static_cast<double>(x);
        *weight++ = std::exp(-0.5 * square * inverse * inverse);
    }
    const double sum = std::accumulate(weights, weight, 0.0);
    std::transform(weights, weight, weights, [sum](double w) { return w / sum; });
}

/// Copies weights that stand a step apart, scaled to a sum of 1.
void CopyScaled(const float* weights, long step, long count, float* to)
{
    double sum = 0;
    for (long i = 0; i < count; ++i)
        sum += weights[i * step];
    for (long i = 0; i < count; ++i)
        to[i] = static_cast<float>(weights[i * step] / sum);
}

} // namespace

const wchar_t* const vfILBlurImg::m_ClassName = L"vfILBlurImg";

const wchar_t* vfILBlurImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILBlurImg::~vfILBlurImg() = default;

vfILStatus vfILBlurImg::Execute()
{
    const bool reaches = GetRadiusX() >= 1 || GetRadiusY() >= 1;
    return m_degree != 0 && reaches ? vfILImgProc::Execute() : CopyInstead(*this);
}

vfILStatus vfILBlurImg::Verify()
{
    if (BuildKernel() != VFIL_SUCCESS) return VFIL_FAILURE;
    const vfILStatus status = vfILConvolveImg::Verify();
    FreeKernel();
    if (status != VFIL_SUCCESS) return status;
    if (m_type < VFIL_BLUR_DISC || m_type > VFIL_BLUR_FAST_GAUSS_FLOAT) {
        return Fail(0x10024, "%s ERROR Verify: Type of blurring is unknown\n", GetClassNameW());
    }
    if (m_type == VFIL_BLUR_BOX && !BoxFormats::Contains(OutputFormat())) {
        return Fail(0x1000D, "%s ERROR Verify: Invalid image format \n", GetClassNameW());
    }
    if (!(m_degree >= 0 && m_degree <= 1)) {
        return Fail(0x10026, "%s ERROR Verify: Degree of blurring is not in range [0..1]\n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILBlurImg::PrepareData()
{
    FreeKernel();
    if (BuildKernel() != VFIL_SUCCESS) return VFIL_FAILURE;
    ReadInputItself(IsRecursive());
    return vfILConvolveImg::PrepareData();
}

vfILStatus vfILBlurImg::CleanData()
{
    FreeKernel();
    return vfILConvolveImg::CleanData();
}

void vfILBlurImg::FreeKernel()
{
    SetKernel(nullptr, GetRadius());
    m_kernelBuffer.Free();
}

/// A type without a kernel has one of a single weight, so that there is one.
vfILStatus vfILBlurImg::BuildKernel()
{
    if (!IsRadiusValid()) return VFIL_SUCCESS; // the frame's check comes after, and says so
    const bool hasKernel = m_type == VFIL_BLUR_DISC || IsGauss();
    const vfILVector2l radius = hasKernel ? WholeRadius() : vfILVector2l(0, 0);
    const long width = 2 * long{radius[0]} + 1;
    const long height = 2 * long{radius[1]} + 1;
    constexpr auto kMost = std::numeric_limits<std::ptrdiff_t>::max() / std::ptrdiff_t{sizeof(float)};
    float* kernel = nullptr;
    if (width <= kMost / height)
        kernel = reinterpret_cast<float*>(
            m_kernelBuffer.Allocate(static_cast<std::size_t>(width * height) * sizeof(float)));
    bool done = kernel != nullptr;
    if (done && m_type == VFIL_BLUR_DISC)
        FillDisc(kernel);
    else if (done && hasKernel)
        done = FillGauss(kernel);
    else if (done)
        *kernel = 1;
    if (!done) return Fail(0x10001, "%s ERROR BuildKernel: insufficient memory space\n", GetClassNameW());
    SetKernel(kernel, GetRadius());
    return VFIL_SUCCESS;
}

/// False when memory is short.
bool vfILBlurImg::FillGauss(float* kernel) const
{
    const vfILVector2l radius = WholeRadius();
    const long width = 2 * long{radius[0]} + 1;
    const long height = 2 * long{radius[1]} + 1;
    RunArray<double> factors;
    if (!factors.Allocate(static_cast<std::size_t>(width + height))) return false;
    double* const x = factors.Data();
    double* const y = x + width;
    FillGaussian(x, radius[0], double{GetRadiusX()} * m_degree);
    FillGaussian(y, radius[1], double{GetRadiusY()} * m_degree);
    for (long row = 0; row < height; ++row)
        kernel = std::transform(
            x, y, kernel, [factor = y[row]](double weight) { return static_cast<float>(weight * factor); });
    return true;
}

void vfILBlurImg::FillDisc(float* kernel) const
{
    const vfILVector2l radius = WholeRadius();
    const float squareX = GetRadiusX() * GetRadiusX();
    const float squareY = GetRadiusY() * GetRadiusY();
    float* weight = kernel;
    for (long y = -long{radius[1]}; y <= radius[1]; ++y)
        for (long x = -long{radius[0]}; x <= radius[0]; ++x) {
            const auto fx = static_cast<float>(x);
            const auto fy = static_cast<float>(y);
            *weight++ = fx * fx * squareY + fy * fy * squareX <= squareX * squareY ? 1.0F : 0.0F;
        }
    const auto ones = static_cast<float>(std::count(kernel, weight, 1.0F));
    const float share = m_degree / ones;
    std::transform(kernel, weight, kernel, [share](float one) { return one * share; });
    kernel[(weight - kernel) / 2] = 1 - (ones - 1) * share;
}

/// Up to these radii the kernel is cheaper than the recursion.
bool vfILBlurImg::IsConvolutionFasterThanFastGauss() const
{
    const vfILVector2l radius = WholeRadius();
    return radius[0] <= 4 && radius[1] < 5;
}

/// The type convolves with a Gaussian.
bool vfILBlurImg::IsGauss() const
{
    return m_type == VFIL_BLUR_GAUSS ||
           (m_type == VFIL_BLUR_FAST_GAUSS && IsConvolutionFasterThanFastGauss());
}

int vfILBlurImg::IsKernelSeparable()
{
    if (IsGauss()) return 1;
    return m_type == VFIL_BLUR_DISC ? vfILConvolveImg::IsKernelSeparable() : 0;
}

vfILStatus vfILBlurImg::SeparateKernel(float* kx, float* ky)
{
    if (!IsGauss()) return vfILConvolveImg::SeparateKernel(kx, ky);
    const float* const kernel = GetKernel();
    if (kernel == nullptr) return Fail(0x10021, GetClassNameW());
    const vfILVector2l radius = WholeRadius();
    const long width = 2 * long{radius[0]} + 1;
    const long height = 2 * long{radius[1]} + 1;
    CopyScaled(kernel + radius[1] * width, 1, width, kx);
    CopyScaled(kernel + radius[0], width, height, ky);
    return VFIL_SUCCESS;
}

/// The type filters by recursion.
bool vfILBlurImg::IsRecursive() const
{
    return m_type >= VFIL_BLUR_EXPONENTIAL && !IsGauss();
}

vfILStatus vfILBlurImg::DoEffect()
{
    if (IsRecursive()) return BlurRecursively();
    return m_type == VFIL_BLUR_BOX ? BlurBox() : vfILConvolveImg::DoEffect();
}

void vfILBlurImg::SetType(vfILBlurType type)
{
    m_type = type;
}

vfILBlurType vfILBlurImg::GetType() const
{
    return m_type;
}

void vfILBlurImg::SetDegree(float degree)
{
    m_degree = degree;
}

float vfILBlurImg::GetDegree() const
{
    return m_degree;
}

void vfILBlurImg::SetRadiusNormalizedForBlurType(float rx, float ry)
{
    const float scale = m_type == VFIL_BLUR_BOX ? 0.5F : 1.0F;
    SetRadius(rx * scale, ry * scale);
}
